// The program's help in other forms.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tools {

std::string manual_page(const CLI::App& app);  // in troff's man macros
std::string bash_completion(const CLI::App& app);

}  // namespace tools

// What the tour's times were measured on.
#pragma once

#include <string>

namespace tools {

std::string processor_name();  // as the system tells it
std::string compiler_name();   // that made this program, with its version
std::string today();           // 2000-12-31

}  // namespace tools

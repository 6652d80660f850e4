// What is wrong with a command line, said such that it can be mended.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace tools {

// Adds `nuqi help`.
void add_help(CLI::App& app);

// Looks at values before they are converted: none may be empty, and numbers must be numbers. After all
// commands were added.
void check_values(CLI::App& app);

// One sentence on a failed parse: it names an unknown command or option, the one that was probably
// meant, and the help to read.
std::string sentence_on(const CLI::App& app, const CLI::ParseError& error);

}  // namespace tools

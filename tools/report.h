// What a command says about its work, besides the results themselves.
#pragma once

#include <string>

namespace tools {

// The line on stdout about what was done; on stderr once a file is written to stdout.
[[gnu::format(printf, 1, 2)]] void report(const char* format, ...);

// Something that is no failure but worth a sentence on stderr, once however often it is met.
void print_note(const std::string& sentence);

void leave_stdout_to_files();

// --quiet: neither reports nor notes nor progress.
void be_quiet();
bool is_quiet();

// Throws UserError where stdout could not take what was printed.
void finish_stdout();

}  // namespace tools

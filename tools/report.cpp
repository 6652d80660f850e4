// What a command says about its work, besides the results themselves.
#include "report.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <set>

#include "failure.h"

namespace tools {
namespace {

bool quiet = false;
bool stdout_is_a_file = false;

}  // namespace

void report(const char* format, ...) {
  if (quiet) return;
  va_list values;
  va_start(values, format);
  std::vfprintf(stdout_is_a_file ? stderr : stdout, format, values);
  va_end(values);
}

void print_note(const std::string& sentence) {
  static std::set<std::string> printed;
  if (quiet || !printed.insert(sentence).second) return;
  std::fprintf(stderr, "nuqi: note: %s\n", sentence.c_str());
}

void leave_stdout_to_files() { stdout_is_a_file = true; }

void be_quiet() { quiet = true; }
bool is_quiet() { return quiet; }

void finish_stdout() {
  errno = 0;
  const bool printed = static_cast<bool>(std::cout.flush());  // the parser's help
  if (std::fflush(stdout) == 0 && !std::ferror(stdout) && printed) return;
  throw UserError(std::string("standard output cannot be written") +
                  (errno == 0 ? "" : std::string(": ") + std::strerror(errno)));
}

}  // namespace tools

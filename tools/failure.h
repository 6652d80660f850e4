// What goes wrong: the caller's mistakes, and calls that the library refuses.
#pragma once

#include <cstdio>
#include <set>
#include <stdexcept>
#include <string>

#include "nuqi/nuqi.h"

namespace tools {

// A mistake in the arguments or the files: one sentence for stderr, exit code 2.
struct UserError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The program only makes calls that must succeed, so any other status is its own fault: exit code 1.
inline void require_ok(StatusCode status, const char* call) {
  if (status == StatusOk) return;
  throw std::runtime_error(std::string(call) + " failed with status " + std::to_string(status));
}

// Something that is no failure but worth a sentence, once however often it is met.
inline void print_note(const std::string& sentence) {
  static std::set<std::string> printed;
  if (printed.insert(sentence).second) std::fprintf(stderr, "nuqi: note: %s\n", sentence.c_str());
}

}  // namespace tools

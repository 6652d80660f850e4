// What goes wrong: the caller's mistakes, and calls that the library refuses.
#pragma once

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

}  // namespace tools

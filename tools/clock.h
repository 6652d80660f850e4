// How long a call takes.
#pragma once

#include <chrono>

namespace tools {

template <class Call>
double seconds_of(const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace tools

// How long calls take.
#pragma once

#include <chrono>
#include <cstring>
#include <nuqi/hpp/scratch.hpp>

#include "failure.h"

namespace tools {

template <class Call>
double seconds_of(const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Adds up the calls alone, without the work between them.
class Stopwatch {
 public:
  template <class Call>
  void time(const Call& call) {
    seconds_ += seconds_of(call);
  }
  double seconds() const { return seconds_; }

 private:
  double seconds_ = 0;
};

// Fetches the memory that a call will work in, so that the call need not: `size_query` is the library's, of
// `arguments`.
template <class Query, class... Arguments>
void fetch(nuqi::Scratch& scratch, Query* size_query, Arguments... arguments) {
  int32_t bytes = 0;
  require_ok(size_query(arguments..., &bytes), "a size query");
  if (void* const memory = scratch.get(size_t(bytes))) std::memset(memory, 0, size_t(bytes));
}

}  // namespace tools

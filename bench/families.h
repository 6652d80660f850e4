// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();
void register_norm();

inline void register_all() {
  register_accumulate();
  register_norm();
}

}  // namespace nuqi::bench

// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();
void register_abs_diff();
void register_copy();

inline void register_all() {
  register_accumulate();
  register_abs_diff();
  register_copy();
}

}  // namespace nuqi::bench

// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();
void register_abs_diff();
void register_copy();
void register_motion_history();
void register_fast_arctan();
void register_sample_line();
void register_histogram();

inline void register_all() {
  register_accumulate();
  register_abs_diff();
  register_copy();
  register_motion_history();
  register_fast_arctan();
  register_sample_line();
  register_histogram();
}

}  // namespace nuqi::bench

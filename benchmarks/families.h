// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();
void register_abs_diff();
void register_copy();
void register_motion_history();
void register_fast_arctan();
void register_sample_line();
void register_mean();
void register_norm();
void register_min_max();
void register_histogram();
void register_derivative3x3();
void register_blur();
void register_sobel();
void register_laplace();
void register_canny();

inline void register_all() {
  register_accumulate();
  register_abs_diff();
  register_copy();
  register_motion_history();
  register_fast_arctan();
  register_sample_line();
  register_mean();
  register_norm();
  register_min_max();
  register_histogram();
  register_derivative3x3();
  register_blur();
  register_sobel();
  register_laplace();
  register_canny();
}

}  // namespace nuqi::bench

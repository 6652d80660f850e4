// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();
void register_norm();
void register_canny();

inline void register_all() {
  register_accumulate();
  register_norm();
  register_canny();
}

}  // namespace nuqi::bench

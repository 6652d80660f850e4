// The families that have benchmarks.
#pragma once

namespace nuqi::bench {

void register_accumulate();

inline void register_all() { register_accumulate(); }

}  // namespace nuqi::bench

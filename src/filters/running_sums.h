// Sums of floats along the rows of an image: chains of additions by contract, so that sixteen rows walk in
// step, a lane each, and are turned back into rows sixteen columns at a time.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/transpose.h"

namespace nuqi::NUQI_ISA {
namespace {

// The last columns of sixteen rows, in memory of the caller's.
struct RunningColumns {
  static constexpr int kCount = 64;  // those of three blocks are in use at once
  float (*values)[16];

  NUQI_INLINE float* at(int64_t x) const { return values[x & (kCount - 1)]; }
  NUQI_INLINE void set(int64_t x, const Px<float>& column) const { store(at(x), column); }

  // The sum around column 0 but for its last column; the columns that leave the first windows are set.
  NUQI_INLINE Px<double> start(int half) const {
    const auto first = load(at(0));
    for (int k = 1; k <= half; ++k) set(-k, first);
    set(-half - 1, Px<float>{});  // nothing leaves the first sum
    auto sum = load_doubles(at(0)) * broadcast(static_cast<double>(half + 1));
    for (int k = 1; k < half; ++k) sum = sum + load_doubles(at(k));
    return sum;
  }
};

// The sums along the rows of sixteen columns from x on become rows at `to`. Unrolled, they stay in
// registers up to their transpose.
NUQI_INLINE void sum_rows(const RunningColumns& columns, int half, int64_t x, Px<double>& sum,
                          float* to) {
  Px<float> along[16];
  for_each<16>([&](int i) NUQI_FORCED {
    const auto enters = columns.at(x + i + half), leaves = columns.at(x + i - half - 1);
    sum = (sum + load_doubles(enters)) - load_doubles(leaves);
    along[i] = round_to_floats(sum);
  });
  transpose(along, to);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

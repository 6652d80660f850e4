// Words for finding the smallest and the largest of many lanes.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/reduce.h"
#include "core/simd/shuffle.h"

namespace nuqi::NUQI_ISA {
namespace {

// min and max where both are wanted of the same operands, without NaN.
template <class T, int N>
struct Sorted {
  Vec<T, N> lower, upper;
};
template <class T, int N>
NUQI_INLINE Sorted<T, N> sorted(const Vec<T, N>& a, const Vec<T, N>& b) {
  Sorted<T, N> out;
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    const auto two = machine::sorted(a.r[i], b.r[i]);
    out.lower.r[i] = two.lower;
    out.upper.r[i] = two.upper;
  });
  return out;
}

// All bits of the first n lanes.
template <int N>
NUQI_INLINE Vec<uint8_t, N> first_lanes(int n) {
  const auto numbers = lane_numbers<uint8_t>(typename UpTo<N>::Type{});
  return as<uint8_t>(numbers < broadcast<int8_t, N>((int8_t)n));
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Keys of floats, lane by lane: integers in the order of the floats.
#pragma once

#include "core/float_order.h"
#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

using nuqi::float_order;

// Bits of floats as keys, or keys as bits.
template <int N>
NUQI_INLINE Vec<int32_t, N> float_order(const Vec<int32_t, N>& bits) {
  return bits ^ (bits >> 31 & broadcast<int32_t, N>(0x7FFFFFFF));
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// What both directions of the pyramid share: sums are 16-bit lanes or floats, of single pixels int32_t or
// float.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "pyramid/pyramid.h"

namespace nuqi::NUQI_ISA {
namespace {

// a * weight, for vectors and single sums.
template <class T, int N>
NUQI_INLINE Vec<T, N> times(const Vec<T, N>& a, int weight) {
  return a * broadcast<T, N>(static_cast<T>(weight));
}
template <class S>
NUQI_INLINE S times(S a, int weight) {
  return a * static_cast<S>(weight);
}

template <class T>
using PixelSum = typename IfElse<kIsFloat<T>, float, int32_t>::Type;

// The first and the last line of an image have sums of their own, or those of mirrored pixels, which for
// floats is not the same.
struct Place {
  bool first, last;
};

// Walks elements from `from` to `to`, N or more, in blocks: body(x). The last block overlaps the one
// before it.
template <int N, class Body>
NUQI_INLINE void for_whole_blocks(int64_t from, int64_t to, const Body& body) {
  for (; from < to - N; from += N) body(from);
  body(to - N);
}

// Stores the first `elements` of a block's lanes. All lanes, where those beyond are written later.
template <int elements, class T, int N>
NUQI_INLINE void store_block(T* to, const Vec<T, N>& a) {
  if constexpr (Machine::kMasks && elements < N)
    store(to, a, First{elements});
  else
    store(to, a);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

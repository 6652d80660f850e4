// What both directions of the pyramid share: sums of floats, 16-bit sums of bytes, and int32_t where single
// columns of bytes are summed.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/shuffle.h"
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

// a * 6 by a product: as two shifts and an addition, which compilers make of it, it takes longer.
template <class S>
NUQI_INLINE S six_times(const S& a) {
  int six = 6;
  __asm__("" : "+r"(six));
  return times(a, six);
}

template <class T>
using ColumnSum = typename IfElse<kIsFloat<T>, float, int32_t>::Type;

// Whether a line is an image's first or last: for floats, the sums there are not those of mirrored pixels,
// which would round differently.
struct Place {
  bool first, last;
};
constexpr Place kInside = {false, false};

// Rows that a band of so many bytes has. Tall bands repeat little of their neighbours' work; those of long
// rows are left by the prefetchers, and their lines by the cache, before the next block of columns comes.
NUQI_INLINE int band_rows(int64_t bytes, int64_t row_bytes) {
  constexpr int kFewest = 4, kMost = 32;
  const int64_t rows = bytes / row_bytes;
  return int(rows < kFewest ? kFewest : rows < kMost ? rows : kMost);
}

struct No {
  static constexpr bool value = false;
};
struct Yes {
  static constexpr bool value = true;
};
// Walks all elements of a row, N in a block, where one block reaches both ends or the last one overlaps the
// one before it: body(start, end, x, part), start and end being a Yes or a No.
template <int N, class Body>
NUQI_INLINE void for_whole_row(int64_t elements, const Body& body) {
  if (elements < N) return body(Yes{}, Yes{}, 0, First{int(elements)});
  if (elements == N) return body(Yes{}, Yes{}, 0, Whole{});
  body(Yes{}, No{}, 0, Whole{});
  for (int64_t x = N; x < elements - N; x += N) body(No{}, No{}, x, Whole{});
  body(No{}, Yes{}, elements - N, Whole{});
}

// The sums that fill a register, less those of a part of a pixel.
template <int channels, class T>
constexpr int kBlockSums = kRegBytes / (kIsFloat<T> ? 4 : 2) / channels* channels;

}  // namespace
}  // namespace nuqi::NUQI_ISA

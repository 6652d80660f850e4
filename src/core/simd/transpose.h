// In-register transposes: rows become columns.
#pragma once

#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// The units of two registers interleaved, from the lower or the upper half of every group: with units of
// one lane and groups of four a0 b0 a1 b1 or a2 b2 a3 b3, then the same of the next four.
template <int unit, int group, bool upper, class Native, int... I>
NUQI_INLINE Native zip_units(const Native& a, const Native& b, Indices<I...>) {
  constexpr int n = sizeof...(I), first = upper ? group / unit / 2 : 0;
  return __builtin_shufflevector(
      a, b,
      (I / group * group + (I % group / unit / 2 + first) * unit + I % unit + I / unit % 2 * n)...);
}

// Four registers, seen as rows of four units in every group, become the columns.
template <int unit, int group, class V>
NUQI_INLINE void transpose_four(V& a, V& b, V& c, V& d) {
  constexpr auto lanes = typename UpTo<V::kLanes>::Type{};
  const auto p = zip_units<unit, group, false>(a.r[0], c.r[0], lanes);
  const auto q = zip_units<unit, group, true>(a.r[0], c.r[0], lanes);
  const auto r = zip_units<unit, group, false>(b.r[0], d.r[0], lanes);
  const auto s = zip_units<unit, group, true>(b.r[0], d.r[0], lanes);
  a.r[0] = zip_units<unit, group, false>(p, r, lanes);
  b.r[0] = zip_units<unit, group, true>(p, r, lanes);
  c.r[0] = zip_units<unit, group, false>(q, s, lanes);
  d.r[0] = zip_units<unit, group, true>(q, s, lanes);
}

// Eight registers, seen as rows of eight lanes in every sixteen bytes, become the columns.
template <int N>
NUQI_INLINE void transpose_eight(Vec<int16_t, N> (&a)[8]) {
  constexpr auto lanes = typename UpTo<N>::Type{};
  // Each step moves the highest bit of a register's number behind the lane's, and that one's into it.
  for_each<3>([&](int) NUQI_FORCED {
    Vec<int16_t, N> b[8];
    for_each<4>([&](int i) NUQI_FORCED {
      b[2 * i].r[0] = zip_half<0>(a[i].r[0], a[i + 4].r[0], lanes);
      b[2 * i + 1].r[0] = zip_half<1>(a[i].r[0], a[i + 4].r[0], lanes);
    });
    for_each<8>([&](int i) NUQI_FORCED { a[i] = b[i]; });
  });
}

// As many registers as each has lanes. First within 16 bytes, where shuffles cost least on AVX2.
template <int n>
NUQI_INLINE void transpose_square(Vec<float, n> (&a)[n]) {
  for_each<n / 4>([&](int i) NUQI_FORCED {
    transpose_four<1, 4>(a[4 * i], a[4 * i + 1], a[4 * i + 2], a[4 * i + 3]);
  });
  if constexpr (n == 8) {
    for_each<4>([&](int i) NUQI_FORCED {
      constexpr auto lanes = typename UpTo<n>::Type{};
      const auto low = zip_units<4, 8, false>(a[i].r[0], a[i + 4].r[0], lanes);
      a[i + 4].r[0] = zip_units<4, 8, true>(a[i].r[0], a[i + 4].r[0], lanes);
      a[i].r[0] = low;
    });
  }
  if constexpr (n == 16)
    for_each<4>([&](int i)
                    NUQI_FORCED { transpose_four<4, 16>(a[i], a[i + 4], a[i + 8], a[i + 12]); });
}

// to[16 * x + y] = row(y)[x], for sixteen rows and columns.
template <class Row>
NUQI_INLINE void transpose(const Row& row, float* to) {
  constexpr int n = Reg<float>::kLanes;
  for (int y = 0; y < 16; y += n)
    for (int x = 0; x < 16; x += n) {
      Reg<float> square[n];
      for_each<n>([&](int i) NUQI_FORCED { square[i] = load<n>(row(y + i) + x); });
      transpose_square(square);
      for_each<n>([&](int i) NUQI_FORCED { store(to + 16 * (x + i) + y, square[i]); });
    }
}

// The same of rows in registers.
NUQI_INLINE void transpose(const Px<float> (&rows)[16], float* to) {
  constexpr int n = Reg<float>::kLanes;
  for_each<16 / n>([&](int y) NUQI_FORCED {
    for_each<16 / n>([&](int x) NUQI_FORCED {
      Reg<float> square[n];
      for_each<n>([&](int i) NUQI_FORCED { square[i].r[0] = rows[n * y + i].r[x]; });
      transpose_square(square);
      for_each<n>([&](int i) NUQI_FORCED { store(to + 16 * (n * x + i) + n * y, square[i]); });
    });
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

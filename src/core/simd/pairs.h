// Weighted sums of 16-bit lanes, in 32 bits. Their lanes stand in an order of the machine's own: only the
// function that packs them knows it, and sums of different kinds do not mix.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// sums + the products of two neighbours each.
template <int N>
NUQI_INLINE Vec<int32_t, N> add_dot_pairs(const Vec<int32_t, N>& sums, const Vec<int16_t, 2 * N>& a,
                                          const Vec<int16_t, 2 * N>& b) {
  return generate<Vec<int32_t, N>>(
      [&](int i) NUQI_FORCED { return machine::add_dot_pairs(sums.r[i], a.r[i], b.r[i]); });
}

// sums + the even 16-bit lanes * x + the odd ones * y, of one register.
template <class V, class Pairs>
NUQI_INLINE V add_weighted_pairs(const V& sums, const Pairs& lanes, int16_t x, int16_t y) {
  const int32_t both = (int32_t)((uint32_t)(uint16_t)y << 16 | (uint16_t)x);
  return machine::add_dot_pairs(sums, lanes, (Pairs)(V{} + both));
}

// sum + a * x + b * y.
template <int N>
NUQI_INLINE Vec<int32_t, N> add_pairs(const Vec<int32_t, N>& sum, const Vec<int16_t, N>& a,
                                      const Vec<int16_t, N>& b, int16_t x, int16_t y) {
  return generate<Vec<int32_t, N>>([&](int i) NUQI_FORCED {
    const typename UpTo<Vec<int16_t, N>::kLanesPerReg>::Type lanes;
    const auto &u = a.r[i / 2], &v = b.r[i / 2];
    const auto pairs = i % 2 == 0 ? zip_half<0>(u, v, lanes) : zip_half<1>(u, v, lanes);
    return add_weighted_pairs(sum.r[i], pairs, x, y);
  });
}

// Sums of add_pairs, each lane in its place, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> pack_pairs(const Vec<int32_t, N>& a) {
  return generate<Vec<int16_t, N>>(
      [&](int i) NUQI_FORCED { return machine::pack_saturated(a.r[2 * i], a.r[2 * i + 1]); });
}

// sum + from[i] * x + from[i + 1] * y: even lanes in one register, odd ones in the next.
template <int N>
NUQI_INLINE Vec<int32_t, N> add_neighbours(const Vec<int32_t, N>& sum, const int16_t* from,
                                           int16_t x, int16_t y) {
  const Vec<int16_t, N> here = load<N>(from), next = load<N>(from + 1);
  return generate<Vec<int32_t, N>>([&](int i) NUQI_FORCED {
    return add_weighted_pairs(sum.r[i], (i % 2 == 0 ? here : next).r[i / 2], x, y);
  });
}

// Sums of add_neighbours, each lane in its place, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> pack_neighbours(const Vec<int32_t, N>& a) {
  const Vec<int16_t, N> packed = pack_pairs(a);
  return generate<Vec<int16_t, N>>([&](int i) NUQI_FORCED {
    const typename UpTo<Vec<int16_t, N>::kLanesPerReg>::Type lanes;
    return zip_half<0>(packed.r[i], swap_halves(packed.r[i]), lanes);
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

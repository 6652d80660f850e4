// Words for finding the smallest and the largest of many lanes, and where they lie.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/reduce.h"
#include "core/simd/shuffle.h"

namespace nuqi::NUQI_ISA {
namespace {

// min and max where both are wanted of the same operands: AVX-512 has one port for its minima and
// maxima, so that there one comparison and two choices on other ports are cheaper.
template <class T, int N>
struct Sorted {
  Vec<T, N> lower, upper;
};
template <class T, int N>
NUQI_INLINE Sorted<T, N> sorted(const Vec<T, N>& a, const Vec<T, N>& b) {
#if NUQI_LEVEL == 2
  static_assert(Vec<T, N>::kRegs == 1 && (sizeof(T) == 1 || sizeof(T) == 4));
  using Native = typename Vec<T, N>::Native;
  const __m512i x = (__m512i)a.r[0], y = (__m512i)b.r[0];
  if constexpr (sizeof(T) == 1) {
    const __mmask64 less =
        kIsSigned<T> ? _mm512_cmplt_epi8_mask(x, y) : _mm512_cmplt_epu8_mask(x, y);
    return {{{(Native)_mm512_mask_mov_epi8(y, less, x)}},
            {{(Native)_mm512_mask_mov_epi8(x, less, y)}}};
  } else {
    const __mmask16 less =
        kIsSigned<T> ? _mm512_cmplt_epi32_mask(x, y) : _mm512_cmplt_epu32_mask(x, y);
    return {{{(Native)_mm512_mask_mov_epi32(y, less, x)}},
            {{(Native)_mm512_mask_mov_epi32(x, less, y)}}};
  }
#else
  return {min(a, b), max(a, b)};
#endif
}

// All bits of the first n lanes.
template <int N>
NUQI_INLINE Vec<uint8_t, N> first_lanes(int n) {
  const auto numbers = lane_numbers<uint8_t>(typename UpTo<N>::Type{});
  return as<uint8_t>(numbers < broadcast<int8_t, N>((int8_t)n));
}

// A bit for each lane where a equals, or is below, b, the first lane's in the lowest place.
#if NUQI_LEVEL == 2
template <int comparison, class T, int N>
NUQI_INLINE uint64_t bits_compared(const Vec<T, N>& a, const Vec<T, N>& b) {
  static_assert(Vec<T, N>::kRegs == 1);
  if constexpr (sizeof a == 16) {  // a mask's sixteen bytes
    static_assert(!kIsSigned<T>);
    return _mm_cmp_epu8_mask((__m128i)a.r[0], (__m128i)b.r[0], comparison);
  } else {
    const __m512i x = (__m512i)a.r[0], y = (__m512i)b.r[0];
    if constexpr (sizeof(T) == 1)
      return kIsSigned<T> ? _mm512_cmp_epi8_mask(x, y, comparison)
                          : _mm512_cmp_epu8_mask(x, y, comparison);
    else
      return kIsSigned<T> ? _mm512_cmp_epi32_mask(x, y, comparison)
                          : _mm512_cmp_epu32_mask(x, y, comparison);
  }
}
template <class T, int N>
NUQI_INLINE uint64_t bits_equal(const Vec<T, N>& a, const Vec<T, N>& b) {
  return bits_compared<_MM_CMPINT_EQ>(a, b);
}
template <class T, int N>
NUQI_INLINE uint64_t bits_below(const Vec<T, N>& a, const Vec<T, N>& b) {
  return bits_compared<_MM_CMPINT_LT>(a, b);
}
#else
// The same of a mask.
template <class T, int N>
NUQI_INLINE uint64_t bits_of(const Vec<T, N>& mask) {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  if (!any(mask)) return 0;
#endif
  uint64_t bits = 0;
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    constexpr int kLanes = Vec<T, N>::kLanesPerReg;
    const auto& reg = mask.r[i];
    uint64_t part = 0;
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
    for (int lane = 0; lane < kLanes; ++lane) part |= uint64_t{reg[lane] != 0} << lane;
#else
#if NUQI_LEVEL > 0
    if constexpr (sizeof reg == 32)
      part = (uint32_t)(sizeof(T) == 1 ? _mm256_movemask_epi8((__m256i)reg)
                                       : _mm256_movemask_ps((__m256)reg));
    else
#endif
      part = (uint32_t)(sizeof(T) == 1 ? _mm_movemask_epi8((__m128i)reg)
                                       : _mm_movemask_ps((__m128)reg));
#endif
    bits |= part << i * kLanes;
  });
  return bits;
}
template <class T, int N>
NUQI_INLINE uint64_t bits_equal(const Vec<T, N>& a, const Vec<T, N>& b) {
  return bits_of(a == b);
}
template <class T, int N>
NUQI_INLINE uint64_t bits_below(const Vec<T, N>& a, const Vec<T, N>& b) {
  return bits_of(a < b);
}
#endif

}  // namespace
}  // namespace nuqi::NUQI_ISA

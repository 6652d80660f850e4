// What a whole vector comes to: a bit for each lane, or one for all.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

// A bit for each lane of a register, set where a > b, the first lane's in the lowest place.
template <int N>
NUQI_INLINE uint32_t bits_greater(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  static_assert(Vec<int16_t, N>::kRegs == 1);
#if NUQI_LEVEL == 2
  return _mm512_cmpgt_epi16_mask((__m512i)a.r[0], (__m512i)b.r[0]);
#elif NUQI_LEVEL == 1
  const __m256i mask = (__m256i)(a > b).r[0];
  const __m128i low = _mm256_castsi256_si128(mask), high = _mm256_extracti128_si256(mask, 1);
  return (uint32_t)_mm_movemask_epi8(_mm_packs_epi16(low, high));
#elif defined(__SSE2__) && !defined(NUQI_PLAIN)
  return (uint32_t)_mm_movemask_epi8(_mm_packs_epi16((__m128i)(a > b).r[0], __m128i{}));
#else
  typedef uint64_t Halves __attribute__((vector_size(16)));
  const typename Vec<int16_t, N>::Reg lane_bits = {1, 2, 4, 8, 16, 32, 64, 128};
  const Halves halves = (Halves)((a > b).r[0] & lane_bits);
  uint64_t all = halves[0] | halves[1];
  all |= all >> 32;
  return (uint32_t)(all | all >> 16) & 0xFF;
#endif
}

// Whether any bit is set.
template <class T, int N>
NUQI_INLINE bool any(const Vec<T, N>& a) {
  static_assert(Vec<T, N>::kRegs == 1);
#if NUQI_LEVEL == 2
  return _mm512_test_epi32_mask((__m512i)a.r[0], (__m512i)a.r[0]) != 0;
#elif NUQI_LEVEL == 1
  return !_mm256_testz_si256((__m256i)a.r[0], (__m256i)a.r[0]);
#else
  typedef uint64_t Halves __attribute__((vector_size(16)));
  const Halves halves = (Halves)a.r[0];
  return (halves[0] | halves[1]) != 0;
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Sums of two neighbouring bytes.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// The sums of every two bytes, as 16-bit integers.
template <class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> pair_sums(const Vec<T, N>& a) {
#if NUQI_LEVEL == 0
  return even_bytes(a) + odd_bytes(a);
#else
  // As products with one: the instruction takes unsigned bytes times signed ones.
  using Native = typename Vec<int16_t, N / 2>::Native;
  const auto ones = broadcast<T, N>(1);
  return generate<Vec<int16_t, N / 2> >([&](int i) NUQI_FORCED {
    const auto &u = kIsSigned<T> ? ones.r[i] : a.r[i], &s = kIsSigned<T> ? a.r[i] : ones.r[i];
#if NUQI_LEVEL == 2
    if constexpr (sizeof(Native) == 64)
      return (Native)_mm512_maddubs_epi16((__m512i)u, (__m512i)s);
    else
#endif
        if constexpr (sizeof(Native) == 32)
      return (Native)_mm256_maddubs_epi16((__m256i)u, (__m256i)s);
    else
      return (Native)_mm_maddubs_epi16((__m128i)u, (__m128i)s);
  });
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Arithmetic that machines have instructions for and the languages no operators: products of narrow
// lanes, sums that saturate, magnitudes, fused squares.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// The exact products of bytes.
template <class T>
NUQI_INLINE Px<int32_t> multiply_bytes(const Px<T>& a, const Px<T>& b) {
  const Px<int32_t> x = convert<int32_t>(a);
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  return x * convert<int32_t>(b);
#else
  // Multiply-add of 16-bit pairs: one instruction, where 32-bit products take several. The upper
  // half of one factor has to be clear, or sign extensions multiply each other.
  Px<int32_t> y = convert<int32_t>(b);
  if constexpr (kIsSigned<T>) y = y & broadcast<int32_t>(0xFFFF);
  return generate<Px<int32_t>>([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    return _mm512_madd_epi16((__m512i)x.r[i], (__m512i)y.r[i]);
#elif NUQI_LEVEL == 1
    return _mm256_madd_epi16((__m256i)x.r[i], (__m256i)y.r[i]);
#else
    return _mm_madd_epi16((__m128i)x.r[i], (__m128i)y.r[i]);
#endif
  });
#endif
}

// The upper halves of the 32-bit products, rounded down.
template <int N>
NUQI_INLINE Vec<int16_t, N> multiply_high(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  using V = Vec<int16_t, N>;
  return generate<V>([&](int i) NUQI_FORCED {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
    typedef int32_t Pairs __attribute__((vector_size(sizeof(typename V::Native))));
    const Pairs x = (Pairs)a.r[i], y = (Pairs)b.r[i];
    const Pairs even = (x << 16 >> 16) * (y << 16 >> 16), odd = (x >> 16) * (y >> 16);
    return (even >> 16 & 0xFFFF) | (odd & ~0xFFFF);
#elif NUQI_LEVEL == 2
    return _mm512_mulhi_epi16((__m512i)a.r[i], (__m512i)b.r[i]);
#elif NUQI_LEVEL == 1
    return _mm256_mulhi_epi16((__m256i)a.r[i], (__m256i)b.r[i]);
#else
    return _mm_mulhi_epi16((__m128i)a.r[i], (__m128i)b.r[i]);
#endif
  });
}

// a - b, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> subtract_saturated(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  using V = Vec<int16_t, N>;
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  const auto wrapped = as<int16_t>(as<uint16_t>(a) - as<uint16_t>(b));
  const auto limit = as<int16_t>(broadcast<uint16_t, N>(0x7FFF) - as<uint16_t>(a >> 15));
  return select(((a ^ b) & (a ^ wrapped)) < V{}, limit, wrapped);
#else
  return generate<V>([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    return _mm512_subs_epi16((__m512i)a.r[i], (__m512i)b.r[i]);
#elif NUQI_LEVEL == 1
    return _mm256_subs_epi16((__m256i)a.r[i], (__m256i)b.r[i]);
#else
    return _mm_subs_epi16((__m128i)a.r[i], (__m128i)b.r[i]);
#endif
  });
#endif
}

// a + b, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> add_saturated(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  using V = Vec<int16_t, N>;
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  const auto wrapped = as<int16_t>(as<uint16_t>(a) + as<uint16_t>(b));
  const auto limit = as<int16_t>(broadcast<uint16_t, N>(0x7FFF) - as<uint16_t>(a >> 15));
  return select(((a ^ wrapped) & (b ^ wrapped)) < V{}, limit, wrapped);
#else
  return generate<V>([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    return _mm512_adds_epi16((__m512i)a.r[i], (__m512i)b.r[i]);
#elif NUQI_LEVEL == 1
    return _mm256_adds_epi16((__m256i)a.r[i], (__m256i)b.r[i]);
#else
    return _mm_adds_epi16((__m128i)a.r[i], (__m128i)b.r[i]);
#endif
  });
#endif
}

// Magnitudes: 128 of -128.
template <int N>
NUQI_INLINE Vec<uint8_t, N> abs(const Vec<int8_t, N>& a) {
  static_assert(Vec<int8_t, N>::kRegs == 1);
#if NUQI_LEVEL == 2
  return {{(typename Vec<uint8_t, N>::Native)_mm512_abs_epi8((__m512i)a.r[0])}};
#elif NUQI_LEVEL == 1
  return {{(typename Vec<uint8_t, N>::Native)_mm256_abs_epi8((__m256i)a.r[0])}};
#else
  const auto bits = as<uint8_t>(a);
  return min(bits, Vec<uint8_t, N>{} - bits);
#endif
}

#if NUQI_LEVEL > 0
// Of every two bytes, left * even + right * odd. The weights of signed bytes are not negative: the
// instruction multiplies unsigned bytes by signed ones.
template <int left, int right, class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> multiply_pairs(const Vec<T, N>& a) {
  static_assert(!kIsSigned<T> || (left >= 0 && right >= 0));
  using Out = Vec<int16_t, N / 2>;
  const auto weights = broadcast<int16_t, N / 2>(int16_t(right * 256 + (left & 255)));
  return generate<Out>([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    const __m512i x = (__m512i)a.r[i], w = (__m512i)weights.r[i];
    return kIsSigned<T> ? _mm512_maddubs_epi16(w, x) : _mm512_maddubs_epi16(x, w);
#else
    const __m256i x = (__m256i)a.r[i], w = (__m256i)weights.r[i];
    return kIsSigned<T> ? _mm256_maddubs_epi16(w, x) : _mm256_maddubs_epi16(x, w);
#endif
  });
}
#endif

// sum + a * a, where the square is exact: then a fused operation is the same and saves one.
NUQI_INLINE Px<float> add_exact_square(const Px<float>& sum, const Px<float>& a) {
#if NUQI_LEVEL == 2
  return {{(Px<float>::Native)_mm512_fmadd_ps((__m512)a.r[0], (__m512)a.r[0], (__m512)sum.r[0])}};
#else
  return sum + a * a;
#endif
}
NUQI_INLINE Px<double> add_exact_square(const Px<double>& sum, const Px<double>& a) {
#if NUQI_LEVEL == 2
  return generate<Px<double>>([&](int i) NUQI_FORCED {
    return _mm512_fmadd_pd((__m512d)a.r[i], (__m512d)a.r[i], (__m512d)sum.r[i]);
  });
#else
  return sum + a * a;
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Conversions between lane types. Integers widen exactly; to float they are exact up to 2^24.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class T>
constexpr bool kIsSigned = T(-1) < T(0);
template <class T>
constexpr bool kIsFloat = T(0.5) > T(0);

// The lanes of two registers in turns: a0 b0 a1 b1 ... from their lower, or their upper, halves.
template <class Reg, int... I>
NUQI_INLINE Reg zip_low(const Reg& a, const Reg& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (I / 2 + I % 2 * n)...);
}
template <class Reg, int... I>
NUQI_INLINE Reg zip_high(const Reg& a, const Reg& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (n / 2 + I / 2 + I % 2 * n)...);
}

// Half a register: the lanes I of a.
template <class Reg, int... I>
NUQI_INLINE auto low_half(const Reg& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, I...);
}
template <class Reg, int... I>
NUQI_INLINE auto high_half(const Reg& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, (int{sizeof...(I)} + I)...);
}

// To lanes of twice the size.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N> widen(const Vec<From, N>& a) {
  using In = Vec<From, N>;
  using Out = Vec<To, N>;
  using OutReg = typename Out::Reg;
  using Lanes = typename UpTo<In::kLanesPerReg>::Type;
  if constexpr (In::kRegs == Out::kRegs) {
    return generate<Out>([&](int i)
                             NUQI_FORCED { return __builtin_convertvector(a.r[i], OutReg); });
  } else if constexpr (sizeof(OutReg) > 16) {
    using Half = typename UpTo<In::kLanesPerReg / 2>::Type;
    return generate<Out>([&](int i) NUQI_FORCED {
      return i % 2 == 0 ? __builtin_convertvector(low_half(a.r[i / 2], Half{}), OutReg)
                        : __builtin_convertvector(high_half(a.r[i / 2], Half{}), OutReg);
    });
  } else if constexpr (kIsSigned<From>) {
    constexpr int kBits = 8 * sizeof(From);
    return generate<Out>([&](int i) NUQI_FORCED {
      const auto& in = a.r[i / 2];
      return (OutReg)(i % 2 == 0 ? zip_low(in, in, Lanes{}) : zip_high(in, in, Lanes{})) >> kBits;
    });
  } else {
    return generate<Out>([&](int i) NUQI_FORCED {
      const auto& in = a.r[i / 2];
      const typename In::Reg zero = {};
      return (OutReg)(i % 2 == 0 ? zip_low(in, zero, Lanes{}) : zip_high(in, zero, Lanes{}));
    });
  }
}

// Bytes to 32-bit integers.
template <class From>
NUQI_INLINE Px<int32_t> widen_bytes(const Px<From>& a) {
#if NUQI_LEVEL == 2
  const __m128i in = (__m128i)a.r[0];
  return {
      {(Px<int32_t>::Reg)(kIsSigned<From> ? _mm512_cvtepi8_epi32(in) : _mm512_cvtepu8_epi32(in))}};
#elif NUQI_LEVEL == 1
  return generate<Px<int32_t> >([&](int i) NUQI_FORCED {
    const __m128i x = (__m128i)a.r[0];
    const __m128i in = i == 0 ? x : _mm_unpackhi_epi64(x, x);
    return kIsSigned<From> ? _mm256_cvtepi8_epi32(in) : _mm256_cvtepu8_epi32(in);
  });
#else
  return widen<int32_t>(widen<int16_t>(a));
#endif
}

// The lanes as To: wider integers, or floats.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N> convert(const Vec<From, N>& a) {
  using Out = Vec<To, N>;
  if constexpr (sizeof(To) == 2 * sizeof(From) && !kIsFloat<To>) {
    return widen<To>(a);
  } else if constexpr (kIsFloat<To> && sizeof(To) == sizeof(From) && !kIsFloat<From>) {
    return generate<Out>(
        [&](int i) NUQI_FORCED { return __builtin_convertvector(a.r[i], typename Out::Reg); });
  } else if constexpr (sizeof(To) == 4 && sizeof(From) == 1) {
    if constexpr (kIsFloat<To>)
      return convert<To>(widen_bytes(a));
    else
      return widen_bytes(a);
  } else {
    static_assert(sizeof(To) == sizeof(From) && kIsFloat<To> == kIsFloat<From>);
    return as<To>(a);
  }
}

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
  return generate<Px<int32_t> >([&](int i) NUQI_FORCED {
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

// a where the mask byte is not zero, +0.0 elsewhere.
NUQI_INLINE Px<float> keep_selected(const Px<uint8_t>& mask, const Px<float>& a) {
#if NUQI_LEVEL == 2
  const __m128i bytes = (__m128i)mask.r[0];
  return {{(Px<float>::Reg)_mm512_maskz_mov_ps(_mm_test_epi8_mask(bytes, bytes), (__m512)a.r[0])}};
#else
  return keep(convert<int32_t>(nonzero(mask)), a);
#endif
}

// a where the mask byte is not zero, b elsewhere.
template <class T>
NUQI_INLINE Px<T> choose(const Px<uint8_t>& mask, const Px<T>& a, const Px<T>& b) {
  static_assert(sizeof(T) == 4);
#if NUQI_LEVEL == 2
  const __m128i bytes = (__m128i)mask.r[0];
  return {{(typename Px<T>::Reg)_mm512_mask_mov_epi32(
      (__m512i)b.r[0], _mm_test_epi8_mask(bytes, bytes), (__m512i)a.r[0])}};
#else
  return select(convert<int32_t>(mask == Px<uint8_t>{}), b, a);
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

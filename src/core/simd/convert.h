// Conversions between lane types. Integers widen exactly; to float they are exact up to 2^24.
#pragma once

#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class T>
constexpr bool kIsSigned = T(-1) < T(0);
template <class T>
constexpr bool kIsFloat = T(0.5) > T(0);

// The lanes of two registers in turns: a0 b0 a1 b1 ... from their lower, or their upper, halves.
template <class Native, int... I>
NUQI_INLINE Native zip_low(const Native& a, const Native& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (I / 2 + I % 2 * n)...);
}
template <class Native, int... I>
NUQI_INLINE Native zip_high(const Native& a, const Native& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (n / 2 + I / 2 + I % 2 * n)...);
}

// The lanes of two registers with an even number, which on little-endian machines hold the lower
// halves of lanes of twice the size.
template <class Native, int... I>
NUQI_INLINE Native even_lanes(const Native& a, const Native& b, Indices<I...>) {
  return __builtin_shufflevector(a, b, (2 * I)...);
}

// Half a register: the lanes I of a.
template <class Native, int... I>
NUQI_INLINE auto low_half(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, I...);
}
template <class Native, int... I>
NUQI_INLINE auto high_half(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, (int{sizeof...(I)} + I)...);
}

// To lanes of twice the size.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N> widen(const Vec<From, N>& a) {
  using In = Vec<From, N>;
  using Out = Vec<To, N>;
  using OutReg = typename Out::Native;
  using Lanes = typename UpTo<In::kLanesPerReg>::Type;
#if NUQI_LEVEL > 0
  // GCC 12 makes four instructions of the conversion to 64 bytes.
  if constexpr (sizeof(From) == 1 && In::kRegs == 1 && Out::kRegs == 1) {
    constexpr bool is_signed = kIsSigned<From>;
#if NUQI_LEVEL == 2
    if constexpr (sizeof(OutReg) == 64) {
      const __m256i in = (__m256i)a.r[0];
      return {{(OutReg)(is_signed ? _mm512_cvtepi8_epi16(in) : _mm512_cvtepu8_epi16(in))}};
    }
#endif
    if constexpr (sizeof(OutReg) == 32) {
      const __m128i in = (__m128i)a.r[0];
      return {{(OutReg)(is_signed ? _mm256_cvtepi8_epi16(in) : _mm256_cvtepu8_epi16(in))}};
    }
  }
#endif
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
      const typename In::Native zero = {};
      return (OutReg)(i % 2 == 0 ? zip_low(in, zero, Lanes{}) : zip_high(in, zero, Lanes{}));
    });
  }
}

// Bytes to 32-bit integers.
template <class From>
NUQI_INLINE Px<int32_t> widen_bytes(const Px<From>& a) {
#if NUQI_LEVEL == 2
  const __m128i in = (__m128i)a.r[0];
  return {{(Px<int32_t>::Native)(kIsSigned<From> ? _mm512_cvtepi8_epi32(in)
                                                 : _mm512_cvtepu8_epi32(in))}};
#elif NUQI_LEVEL == 1
  return generate<Px<int32_t>>([&](int i) NUQI_FORCED {
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
        [&](int i) NUQI_FORCED { return __builtin_convertvector(a.r[i], typename Out::Native); });
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

// The bytes in even places, or in odd ones, as 16-bit integers.
template <class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> even_bytes(const Vec<T, N>& a) {
  using Out = Vec<int16_t, N / 2>;
  return generate<Out>([&](int i) NUQI_FORCED {
    const auto both = (typename Out::Native)a.r[i];
    if constexpr (kIsSigned<T>)
      return both << 8 >> 8;
    else
      return both & 255;
  });
}
template <class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> odd_bytes(const Vec<T, N>& a) {
  using Signed = Vec<int16_t, N / 2>;
  using Unsigned = Vec<uint16_t, N / 2>;
  return generate<Signed>([&](int i) NUQI_FORCED {
    if constexpr (kIsSigned<T>)
      return (typename Signed::Native)a.r[i] >> 8;
    else
      return (typename Unsigned::Native)a.r[i] >> 8;
  });
}

// 64 bits to bytes, the lowest first: 255 where the bit is set.
NUQI_INLINE Vec<uint8_t, 64> bytes_of_bits(uint64_t bits) {
  using Bytes = Vec<uint8_t, 64>;
#if NUQI_LEVEL == 2
  return {{(Bytes::Native)_mm512_movm_epi8(bits)}};
#else
  // Each lane gets the byte that holds its bit, and looks at that bit alone.
  constexpr uint64_t kOnes = 0x0101010101010101, kLaneBits = 0x8040201008040201;
  typedef uint64_t Words __attribute__((vector_size(sizeof(Bytes::Native))));
  return generate<Bytes>([&](int i) NUQI_FORCED {
    const Bytes::Native lane_bits = (Bytes::Native)(kLaneBits + Words{});
#if NUQI_LEVEL == 1
    const Words from = Words{0, kOnes, 2 * kOnes, 3 * kOnes} + 4 * kOnes * (uint64_t)i;
    const Words all = (Words)_mm256_shuffle_epi8((__m256i)(bits + Words{}), (__m256i)from);
#else
    const auto spread = [&](int byte) NUQI_FORCED { return (bits >> 8 * byte & 0xFF) * kOnes; };
    const Words all = {spread(2 * i), spread(2 * i + 1)};
#endif
    return ((Bytes::Native)all & lane_bits) == lane_bits;
  });
#endif
}

// To doubles, exactly.
NUQI_INLINE Px<double> to_doubles(const Px<float>& a) {
  using Native = Px<double>::Native;
  return generate<Px<double>>([&](int i) NUQI_FORCED {
    const auto& in = a.r[i / 2];
#if NUQI_LEVEL == 2
    const __m512d both = (__m512d)in;
    return (Native)_mm512_cvtps_pd(
        (__m256)(i % 2 == 0 ? _mm512_castpd512_pd256(both) : _mm512_extractf64x4_pd(both, 1)));
#elif NUQI_LEVEL == 1
    const __m256 both = (__m256)in;
    return (Native)_mm256_cvtps_pd(i % 2 == 0 ? _mm256_castps256_ps128(both)
                                              : _mm256_extractf128_ps(both, 1));
#elif defined(__SSE2__) && !defined(NUQI_PLAIN)
    const __m128 both = (__m128)in;
    return (Native)_mm_cvtps_pd(i % 2 == 0 ? both : _mm_movehl_ps(both, both));
#else
    return i % 2 == 0 ? Native{in[0], in[1]} : Native{in[2], in[3]};
#endif
  });
}

// Rounds to floats.
NUQI_INLINE Px<float> round_to_floats(const Px<double>& a) {
  return generate<Px<float>>([&](int i) NUQI_FORCED {
    const auto &low = a.r[2 * i], &high = a.r[2 * i + 1];
#if NUQI_LEVEL == 2
    // All lanes: the forms without a mask warn of an undefined value in GCC 12's header.
    const __m256 halves[2] = {_mm512_maskz_cvtpd_ps(0xFF, (__m512d)low),
                              _mm512_maskz_cvtpd_ps(0xFF, (__m512d)high)};
    return _mm512_insertf32x8(_mm512_castps256_ps512(halves[0]), halves[1], 1);
#elif NUQI_LEVEL == 1
    return _mm256_set_m128(_mm256_cvtpd_ps((__m256d)high), _mm256_cvtpd_ps((__m256d)low));
#elif defined(__SSE2__) && !defined(NUQI_PLAIN)
    return _mm_movelh_ps(_mm_cvtpd_ps((__m128d)low), _mm_cvtpd_ps((__m128d)high));
#else
    return Px<float>::Native{(float)low[0], (float)low[1], (float)high[0], (float)high[1]};
#endif
  });
}

// Floats from memory as doubles. Half the instructions, where a conversion can load what it converts.
NUQI_INLINE Px<double> load_doubles(const float* from, First part) {
  return to_doubles(load(from, part));
}
NUQI_INLINE Px<double> load_doubles(const float* from, Whole = {}) {
#if NUQI_LEVEL == 0
  return to_doubles(load(from));
#else
  return generate<Px<double>>([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    return _mm512_cvtps_pd(_mm256_loadu_ps(from + 8 * i));
#else
    return _mm256_cvtps_pd(_mm_loadu_ps(from + 4 * i));
#endif
  });
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

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

// The lanes of two registers with an even number, which on little-endian machines hold the lower
// halves of lanes of twice the size.
template <class Reg, int... I>
NUQI_INLINE Reg even_lanes(const Reg& a, const Reg& b, Indices<I...>) {
  return __builtin_shufflevector(a, b, (2 * I)...);
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
    typedef int32_t Pairs __attribute__((vector_size(sizeof(typename V::Reg))));
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

// 64 bits to bytes, the lowest first: 255 where the bit is set.
NUQI_INLINE Vec<uint8_t, 64> bytes_of_bits(uint64_t bits) {
  using Bytes = Vec<uint8_t, 64>;
#if NUQI_LEVEL == 2
  return {{(Bytes::Reg)_mm512_movm_epi8(bits)}};
#else
  // Each lane gets the byte that holds its bit, and looks at that bit alone.
  constexpr uint64_t kOnes = 0x0101010101010101, kLaneBits = 0x8040201008040201;
  typedef uint64_t Words __attribute__((vector_size(sizeof(Bytes::Reg))));
  return generate<Bytes>([&](int i) NUQI_FORCED {
    const Bytes::Reg lane_bits = (Bytes::Reg)(kLaneBits + Words{});
#if NUQI_LEVEL == 1
    const Words from = Words{0, kOnes, 2 * kOnes, 3 * kOnes} + 4 * kOnes * (uint64_t)i;
    const Words all = (Words)_mm256_shuffle_epi8((__m256i)(bits + Words{}), (__m256i)from);
#else
    const auto spread = [&](int byte) NUQI_FORCED { return (bits >> 8 * byte & 0xFF) * kOnes; };
    const Words all = {spread(2 * i), spread(2 * i + 1)};
#endif
    return ((Bytes::Reg)all & lane_bits) == lane_bits;
  });
#endif
}

// Magnitudes: 128 of -128.
template <int N>
NUQI_INLINE Vec<uint8_t, N> abs(const Vec<int8_t, N>& a) {
  static_assert(Vec<int8_t, N>::kRegs == 1);
#if NUQI_LEVEL == 2
  return {{(typename Vec<uint8_t, N>::Reg)_mm512_abs_epi8((__m512i)a.r[0])}};
#elif NUQI_LEVEL == 1
  return {{(typename Vec<uint8_t, N>::Reg)_mm256_abs_epi8((__m256i)a.r[0])}};
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

// To doubles, exactly.
NUQI_INLINE Px<double> to_doubles(const Px<float>& a) {
  using Reg = Px<double>::Reg;
  return generate<Px<double>>([&](int i) NUQI_FORCED {
    const auto& in = a.r[i / 2];
#if NUQI_LEVEL == 2
    const __m512d both = (__m512d)in;
    return (Reg)_mm512_cvtps_pd(
        (__m256)(i % 2 == 0 ? _mm512_castpd512_pd256(both) : _mm512_extractf64x4_pd(both, 1)));
#elif NUQI_LEVEL == 1
    const __m256 both = (__m256)in;
    return (Reg)_mm256_cvtps_pd(i % 2 == 0 ? _mm256_castps256_ps128(both)
                                           : _mm256_extractf128_ps(both, 1));
#elif defined(__SSE2__) && !defined(NUQI_PLAIN)
    const __m128 both = (__m128)in;
    return (Reg)_mm_cvtps_pd(i % 2 == 0 ? both : _mm_movehl_ps(both, both));
#else
    return i % 2 == 0 ? Reg{in[0], in[1]} : Reg{in[2], in[3]};
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
    return Px<float>::Reg{(float)low[0], (float)low[1], (float)high[0], (float)high[1]};
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

// sum + a * a, where the square is exact: then a fused operation is the same and saves one.
NUQI_INLINE Px<float> add_exact_square(const Px<float>& sum, const Px<float>& a) {
#if NUQI_LEVEL == 2
  return {{(Px<float>::Reg)_mm512_fmadd_ps((__m512)a.r[0], (__m512)a.r[0], (__m512)sum.r[0])}};
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

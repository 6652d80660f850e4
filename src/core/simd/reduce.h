// What a whole vector comes to: bits of its lanes, their sum or extreme, and running sums of bytes.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// A bit for each lane of a register, set where a < b, the first lane's in the lowest place.
template <int N>
NUQI_INLINE uint32_t bits_below(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  static_assert(Vec<int16_t, N>::kRegs == 1);
#if NUQI_LEVEL == 2
  uint32_t bits = _mm512_cmplt_epi16_mask((__m512i)a.r[0], (__m512i)b.r[0]);
#if defined(__i386__)
  // GCC 12 leaves the upper word undefined where such a mask widens to 64 bits.
  __asm__("" : "+r"(bits));
#endif
  return bits;
#elif NUQI_LEVEL == 1
  const __m256i mask = (__m256i)(a < b).r[0];
  const __m128i low = _mm256_castsi256_si128(mask), high = _mm256_extracti128_si256(mask, 1);
  return (uint32_t)_mm_movemask_epi8(_mm_packs_epi16(low, high));
#elif defined(__SSE2__) && !defined(NUQI_PLAIN)
  return (uint32_t)_mm_movemask_epi8(_mm_packs_epi16((__m128i)(a < b).r[0], __m128i{}));
#else
  typedef uint64_t Halves __attribute__((vector_size(16)));
  const typename Vec<int16_t, N>::Native lane_bits = {1, 2, 4, 8, 16, 32, 64, 128};
  const Halves halves = (Halves)((a < b).r[0] & lane_bits);
  uint64_t all = halves[0] | halves[1];
  all |= all >> 32;
  return (uint32_t)(all | all >> 16) & 0xFF;
#endif
}

// Whether any bit is set.
template <class T, int N>
NUQI_INLINE bool any(const Vec<T, N>& a) {
  if constexpr (Vec<T, N>::kRegs > 1) {
    using Half = Vec<T, N / 2>;
    return any(generate<Half>([&](int i) NUQI_FORCED { return a.r[i] | a.r[Half::kRegs + i]; }));
  } else {
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
}

// ---- Horizontal reductions

// The lanes from I + Down on; zeros follow them.
template <int Down, class Native, int... I>
NUQI_INLINE Native lanes_from(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, Native{}, (I + Down)...);
}
template <int Lanes, class T, int N, class Op>
NUQI_INLINE T reduce_first(const Vec<T, N>& a, const Op& op) {
  if constexpr (Lanes == 1) {
    return a.r[0][0];
  } else {
    using All = typename UpTo<N>::Type;
    return reduce_first<Lanes / 2>(op(a, Vec<T, N>{{lanes_from<Lanes / 2>(a.r[0], All{})}}), op);
  }
}
// op of the upper half of the lanes and the lower one, until one lane is left: one order everywhere.
template <class T, int N, class Op>
NUQI_INLINE T reduce(const Vec<T, N>& a, const Op& op) {
  using V = Vec<T, N>;
  using Half = Vec<T, N / 2>;
  if constexpr (V::kBytes == 16) {
    return reduce_first<N>(a, op);
  } else if constexpr (V::kRegs == 1) {
    using Lanes = typename UpTo<N / 2>::Type;
    return reduce(op(Half{{low_half(a.r[0], Lanes{})}}, Half{{high_half(a.r[0], Lanes{})}}), op);
  } else {
    return reduce(op(generate<Half>([&](int i) NUQI_FORCED { return a.r[i]; }),
                     generate<Half>([&](int i) NUQI_FORCED { return a.r[Half::kRegs + i]; })),
                  op);
  }
}
template <class T, int N>
NUQI_INLINE T reduce_add(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return x + y; });
}
template <class T, int N>
NUQI_INLINE T reduce_min(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return min(x, y); });
}
template <class T, int N>
NUQI_INLINE T reduce_max(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return max(x, y); });
}

// The sums of two neighbours each, in lanes of twice the size.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N / 2> sum_pairs(const Vec<From, N>& a) {
  static_assert(sizeof(To) == 2 * sizeof(From) && kIsSigned<To> == kIsSigned<From>);
  const Vec<To, N / 2> pairs = lanes_as<To>(a);
  constexpr int kBits = 8 * sizeof(From);
  return ((pairs << kBits) >> kBits) + (pairs >> kBits);
}

// The sums of eight neighbours each.
template <int N>
NUQI_INLINE Vec<uint64_t, N / 8> sum_eights(const Vec<uint8_t, N>& a) {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  return sum_pairs<uint64_t>(sum_pairs<uint32_t>(sum_pairs<uint16_t>(a)));
#else
  using Out = Vec<uint64_t, N / 8>;
  constexpr int kBytes = sizeof(typename Out::Native);
  return generate<Out>([&](int i) NUQI_FORCED {
    if constexpr (kBytes == 16) return _mm_sad_epu8((__m128i)a.r[i], __m128i{});
#if NUQI_LEVEL >= 1
    if constexpr (kBytes == 32) return _mm256_sad_epu8((__m256i)a.r[i], __m256i{});
#endif
#if NUQI_LEVEL == 2
    if constexpr (kBytes == 64) return _mm512_sad_epu8((__m512i)a.r[i], __m512i{});
#endif
  });
#endif
}

// The sums of two neighbours' products each.
template <int N>
NUQI_INLINE Vec<int32_t, N / 2> dot_pairs(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  const auto x = lanes_as<int32_t>(a), y = lanes_as<int32_t>(b);
  return ((x << 16) >> 16) * ((y << 16) >> 16) + (x >> 16) * (y >> 16);
#else
  return generate<Vec<int32_t, N / 2> >([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    return _mm512_madd_epi16((__m512i)a.r[i], (__m512i)b.r[i]);
#elif NUQI_LEVEL == 1
    return _mm256_madd_epi16((__m256i)a.r[i], (__m256i)b.r[i]);
#else
    return _mm_madd_epi16((__m128i)a.r[i], (__m128i)b.r[i]);
#endif
  });
#endif
}

// ---- Over many pixels

// Running sums of bytes and of their squares.
#if NUQI_LEVEL == 2

template <class T, bool squares>
class ByteSums {
 public:
  static constexpr int kTurns = 4;     // the dot product takes five cycles: four sums hide them
  static constexpr int kRoom = 16384;  // additions of extremes that a 32-bit lane holds

  // Makes room for `blocks` additions, kRoom at most.
  NUQI_INLINE void reserve(int blocks) {
    if (used_ + blocks > kRoom) collect();
    used_ += blocks;
  }
  NUQI_INLINE void add(const Reg<T>& a, int turn) {
    // The dot product's factors are an unsigned and a signed byte: x + 128 and x, or x and x - 128.
    const auto one = broadcast<int8_t, 64>(1);
    const auto other = a ^ broadcast<T, 64>(T(128));
    if constexpr (kIsSigned<T>) {
      add_dots(sums_.r[turn], as<uint8_t>(one), a);
      if constexpr (squares) add_dots(products_.r[turn], as<uint8_t>(other), a);
    } else {
      add_dots(sums_.r[turn], a, one);
      if constexpr (squares) add_dots(products_.r[turn], a, as<int8_t>(other));
    }
  }
  NUQI_INLINE void collect() {
    const int64_t sum = reduce_add(sum_pairs<int64_t>(sums_));
    sum_ += sum;
    squares_ += reduce_add(sum_pairs<int64_t>(products_)) + (kIsSigned<T> ? -128 : 128) * sum;
    sums_ = products_ = {};
    used_ = 0;
  }
  NUQI_INLINE int64_t sum() const { return sum_; }
  NUQI_INLINE int64_t squares_sum() const { return squares_; }

 private:
  using Sums = Vec<int32_t, 16 * kTurns>;
  static NUQI_INLINE void add_dots(Sums::Native& sums, const Reg<uint8_t>& a,
                                   const Reg<int8_t>& b) {
    sums = (Sums::Native)_mm512_dpbusd_epi32((__m512i)sums, (__m512i)a.r[0], (__m512i)b.r[0]);
  }

  Sums sums_ = {}, products_ = {};
  int64_t sum_ = 0, squares_ = 0;
  int used_ = 0;
};

#else

template <class T, bool squares>
class ByteSums {
 public:
  static constexpr int kTurns = 1;
  static constexpr int kRoom = 16384;

  NUQI_INLINE void reserve(int blocks) {
    if (used_ + blocks > kRoom) collect();
    used_ += blocks;
  }
  NUQI_INLINE void add(const Reg<T>& a, int) {
    // Signed bytes are summed as x + 128.
    const auto x = as<uint8_t>(kIsSigned<T> ? a ^ broadcast<T, Reg<T>::kLanes>(T(128)) : a);
    sums_ = sums_ + sum_eights(x);
    if constexpr (squares) {
      const auto even = even_bytes(x), odd = odd_bytes(x);
      squares_lanes_ = squares_lanes_ + as<uint32_t>(dot_pairs(even, even) + dot_pairs(odd, odd));
    }
  }
  NUQI_INLINE void collect() {
    const int64_t lanes = kIsSigned<T> ? int64_t{used_} * Reg<T>::kLanes : 0;
    const int64_t sum = static_cast<int64_t>(reduce_add(sums_));
    sum_ += sum - 128 * lanes;
    squares_ += static_cast<int64_t>(reduce_add(sum_pairs<uint64_t>(squares_lanes_)));
    if (kIsSigned<T>) squares_ += 16384 * lanes - 256 * sum;
    sums_ = {};
    squares_lanes_ = {};
    used_ = 0;
  }
  NUQI_INLINE int64_t sum() const { return sum_; }
  NUQI_INLINE int64_t squares_sum() const { return squares_; }

 private:
  Reg<uint64_t> sums_ = {};
  Reg<uint32_t> squares_lanes_ = {};
  int64_t sum_ = 0, squares_ = 0;
  int used_ = 0;
};

#endif

}  // namespace
}  // namespace nuqi::NUQI_ISA

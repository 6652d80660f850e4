// Conversions between lane types. Integers widen exactly; to float they are exact up to 2^24.
#pragma once

#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// To lanes of twice the size.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N> widen(const Vec<From, N>& a) {
  using Out = Vec<To, N>;
  return generate<Out>([&](int i) NUQI_FORCED {
    if constexpr (Out::kRegs == Vec<From, N>::kRegs)
      return machine::widen_all<typename Out::Native>(a.r[i]);
    else
      return i % 2 == 0 ? machine::widen_low<To>(a.r[i / 2]) : machine::widen_high<To>(a.r[i / 2]);
  });
}

// Bytes to 32-bit integers.
template <class From>
NUQI_INLINE Px<int32_t> widen_bytes(const Px<From>& a) {
  using Out = Px<int32_t>;
  return generate<Out>([&](int i)
                           NUQI_FORCED { return machine::widen_bytes<Out::Native>(a.r[0], i); });
}

// A register's worth of signed bytes from memory as 32-bit integers.
template <int N>
NUQI_INLINE Vec<int32_t, N> load_widened(const int8_t* from) {
  return {{machine::load_widened<typename Vec<int32_t, N>::Native>(from)}};
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

// The upper bytes of 16-bit lanes.
template <class V, int... I>
NUQI_INLINE auto high_bytes_at(const V& a, const V& b, Indices<I...>) {
  return __builtin_shufflevector((NativeAs<uint8_t, V>)a, (NativeAs<uint8_t, V>)b, (2 * I + 1)...);
}
template <class T, int N>
NUQI_INLINE Vec<uint8_t, N> high_bytes(const Vec<T, N>& a) {
  static_assert(sizeof(T) == 2 && Vec<uint8_t, N>::kRegs == 1);
  return {{high_bytes_at(a.r[0], a.r[Vec<T, N>::kRegs - 1], typename UpTo<N>::Type{})}};
}

// 64 bits to bytes, the lowest first: 255 where the bit is set.
NUQI_INLINE Vec<uint8_t, 64> bytes_of_bits(uint64_t bits) {
  using Out = Vec<uint8_t, 64>;
  return generate<Out>([&](int i)
                           NUQI_FORCED { return machine::bytes_of_bits<Out::Native>(bits, i); });
}

// Floats or 32-bit integers to doubles, exactly.
template <class T, int N>
NUQI_INLINE Vec<double, N> to_doubles(const Vec<T, N>& a) {
  return generate<Vec<double, N>>(
      [&](int i) NUQI_FORCED { return machine::to_doubles(a.r[i / 2], i % 2); });
}

// Unsigned integers less 2^31, which is added again.
template <int N>
NUQI_INLINE Vec<double, N> to_doubles(const Vec<uint32_t, N>& a) {
  const auto centred = as<int32_t>(a ^ broadcast<uint32_t, N>(0x80000000));
  return to_doubles(centred) + broadcast<double, N>(0x1p31);
}

// Rounds to floats.
template <int N>
NUQI_INLINE Vec<float, N> round_to_floats(const Vec<double, N>& a) {
  return generate<Vec<float, N>>(
      [&](int i) NUQI_FORCED { return machine::round_to_floats(a.r[2 * i], a.r[2 * i + 1]); });
}

// Floats from memory as doubles. Half the instructions, where a conversion can load what it converts.
NUQI_INLINE Px<double> load_doubles(const float* from, First part) {
  return to_doubles(load(from, part));
}
template <int N = 16>
NUQI_INLINE Vec<double, N> load_doubles(const float* from, Whole = {}) {
  using Out = Vec<double, N>;
  return generate<Out>([&](int i) NUQI_FORCED {
    return machine::load_doubles<typename Out::Native>(from + i * Out::kLanesPerReg);
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

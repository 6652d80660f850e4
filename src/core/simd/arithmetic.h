// Arithmetic that machines have instructions for and the languages no operators: products of narrow
// lanes, sums that saturate, magnitudes, fused squares.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// The exact products of bytes.
template <class T>
NUQI_INLINE Px<int32_t> multiply_bytes(const Px<T>& a, const Px<T>& b) {
  const Px<int32_t> x = convert<int32_t>(a), y = convert<int32_t>(b);
  return generate<Px<int32_t>>(
      [&](int i) NUQI_FORCED { return machine::multiply_bytes<kIsSigned<T>>(x.r[i], y.r[i]); });
}

// The upper halves of the 32-bit products, rounded down.
template <int N>
NUQI_INLINE Vec<int16_t, N> multiply_high(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  return generate<Vec<int16_t, N>>(
      [&](int i) NUQI_FORCED { return machine::multiply_high(a.r[i], b.r[i]); });
}

// a - b, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> subtract_saturated(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  return generate<Vec<int16_t, N>>(
      [&](int i) NUQI_FORCED { return machine::subtract_saturated(a.r[i], b.r[i]); });
}

// a + b, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> add_saturated(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  return generate<Vec<int16_t, N>>(
      [&](int i) NUQI_FORCED { return machine::add_saturated(a.r[i], b.r[i]); });
}

// The averages of unsigned lanes, rounded up.
template <int N>
NUQI_INLINE Vec<uint16_t, N> average(const Vec<uint16_t, N>& a, const Vec<uint16_t, N>& b) {
  return generate<Vec<uint16_t, N>>([&](int i)
                                        NUQI_FORCED { return machine::average(a.r[i], b.r[i]); });
}

// Magnitudes: 128 of -128.
template <int N>
NUQI_INLINE Vec<uint8_t, N> abs(const Vec<int8_t, N>& a) {
  return generate<Vec<uint8_t, N>>([&](int i) NUQI_FORCED { return machine::magnitude(a.r[i]); });
}

// Of every two bytes, left * even + right * odd: where Machine::kMultipliesBytes. The weights of signed
// bytes are not negative, since the instruction multiplies unsigned bytes by signed ones.
template <int left, int right, class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> multiply_pairs(const Vec<T, N>& a) {
  static_assert(!kIsSigned<T> || (left >= 0 && right >= 0));
  const auto weights = broadcast<int16_t, N / 2>(int16_t(right * 256 + (left & 255)));
  return generate<Vec<int16_t, N / 2>>([&](int i) NUQI_FORCED {
    return kIsSigned<T> ? machine::multiply_add_bytes(weights.r[i], a.r[i])
                        : machine::multiply_add_bytes(a.r[i], weights.r[i]);
  });
}

// even + odd of every two bytes.
template <class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> pair_sums(const Vec<T, N>& a) {
  if constexpr (Machine::kMultipliesBytes)
    return multiply_pairs<1, 1>(a);
  else
    return even_bytes(a) + odd_bytes(a);
}

// Correctly rounded; NaN below zero.
template <int N>
NUQI_INLINE Vec<double, N> square_root(const Vec<double, N>& a) {
  return generate<Vec<double, N>>([&](int i) NUQI_FORCED { return machine::square_root(a.r[i]); });
}

// sum + a * b, where the product is exact: then a fused operation is the same and saves one.
template <class T, int N>
NUQI_INLINE Vec<T, N> add_exact_product(const Vec<T, N>& sum, const Vec<T, N>& a,
                                        const Vec<T, N>& b) {
  return generate<Vec<T, N>>(
      [&](int i) NUQI_FORCED { return machine::add_exact_product(sum.r[i], a.r[i], b.r[i]); });
}
template <class T, int N>
NUQI_INLINE Vec<T, N> add_exact_square(const Vec<T, N>& sum, const Vec<T, N>& a) {
  return add_exact_product(sum, a, a);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

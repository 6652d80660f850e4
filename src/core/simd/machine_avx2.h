// What AVX2 has instructions for, in registers of 32 bytes. Shuffles stay within groups of sixteen.
#pragma once

#include <immintrin.h>

#include "core/simd/machine_sse2.h"

namespace nuqi::NUQI_ISA {
namespace {
namespace machine {

struct Avx2 : Sse2 {
  static constexpr bool kOrdersSignedBytes = true;
  static constexpr int kRegBytes = 32;
  static constexpr bool kShufflesBytes = true;
  static constexpr bool kMultipliesBytes = true;
};

template <class V>
concept Ymm = sizeof(V) == 32;
template <class V>
concept Wide = sizeof(V) > 16;

template <Ymm V>
NUQI_INLINE V load_groups(const void* low, const void* high) {
  return (V)_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)low)),
                                    _mm_loadu_si128((const __m128i*)high), 1);
}

// ---- Conversion

template <class To, Wide V>
NUQI_INLINE auto widen_low(const V& a) {
  using Half = typename UpTo<sizeof(V) / sizeof(LaneOf<V>) / 2>::Type;
  using Out = NativeAs<To, V>;
  return __builtin_convertvector(low_half(a, Half{}), Out);
}
template <class To, Wide V>
NUQI_INLINE auto widen_high(const V& a) {
  using Half = typename UpTo<sizeof(V) / sizeof(LaneOf<V>) / 2>::Type;
  using Out = NativeAs<To, V>;
  return __builtin_convertvector(high_half(a, Half{}), Out);
}
template <Ymm Out, class V>
requires(sizeof(LaneOf<V>) == 1) NUQI_INLINE Out widen_all(const V& a) {
  const __m128i in = (__m128i)a;
  return (Out)(kIsSigned<LaneOf<V>> ? _mm256_cvtepi8_epi16(in) : _mm256_cvtepu8_epi16(in));
}
template <Ymm Out, class V>
NUQI_INLINE Out widen_bytes(const V& a, int i) {
  const __m128i all = (__m128i)a, in = i == 0 ? all : _mm_unpackhi_epi64(all, all);
  return (Out)(kIsSigned<LaneOf<V>> ? _mm256_cvtepi8_epi32(in) : _mm256_cvtepu8_epi32(in));
}

template <Ymm V>
NUQI_INLINE auto to_doubles(const V& a, int half) {
  return (NativeAs<double, V>)_mm256_cvtps_pd(half == 0 ? _mm256_castps256_ps128((__m256)a)
                                                        : _mm256_extractf128_ps((__m256)a, 1));
}
template <Ymm V>
NUQI_INLINE auto ints_to_doubles(const V& a, int half) {
  return (NativeAs<double, V>)_mm256_cvtepi32_pd(
      half == 0 ? _mm256_castsi256_si128((__m256i)a) : _mm256_extracti128_si256((__m256i)a, 1));
}
template <Ymm V>
NUQI_INLINE auto round_to_floats(const V& low, const V& high) {
  return (NativeAs<float, V>)_mm256_set_m128(_mm256_cvtpd_ps((__m256d)high),
                                             _mm256_cvtpd_ps((__m256d)low));
}
template <Ymm V>
NUQI_INLINE V load_doubles(const float* from) {
  return (V)_mm256_cvtps_pd(_mm_loadu_ps(from));
}

template <Ymm V>
NUQI_INLINE V bytes_of_bits(uint64_t bits, int i) {
  typedef uint64_t Words __attribute__((vector_size(32)));
  constexpr uint64_t kOnes = 0x0101010101010101, kLaneBits = 0x8040201008040201;
  const V lane_bits = (V)(kLaneBits + Words{});
  const Words from = Words{0, kOnes, 2 * kOnes, 3 * kOnes} + 4 * kOnes * (uint64_t)i;
  const V all = (V)_mm256_shuffle_epi8((__m256i)(bits + Words{}), (__m256i)from);
  return (V)((all & lane_bits) == lane_bits);
}

// ---- Arithmetic

template <Ymm V>
NUQI_INLINE V add_saturated(const V& a, const V& b) {
  return (V)_mm256_adds_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V>
NUQI_INLINE V subtract_saturated(const V& a, const V& b) {
  return (V)_mm256_subs_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V>
NUQI_INLINE V multiply_high(const V& a, const V& b) {
  return (V)_mm256_mulhi_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V>
NUQI_INLINE auto dot_pairs(const V& a, const V& b) {
  return (NativeAs<int32_t, V>)_mm256_madd_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V, class Pairs>
NUQI_INLINE V add_dot_pairs(const V& sums, const Pairs& a, const Pairs& b) {
  return sums + (V)_mm256_madd_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V>
NUQI_INLINE auto pack_saturated(const V& low, const V& high) {
  return (NativeAs<int16_t, V>)_mm256_packs_epi32((__m256i)low, (__m256i)high);
}
template <bool is_signed, Ymm V>
NUQI_INLINE V multiply_bytes(const V& a, const V& b) {
  return (V)_mm256_madd_epi16((__m256i)a, (__m256i)(is_signed ? b & 0xFFFF : b));
}
template <Xmm U, class S>
NUQI_INLINE NativeAs<int16_t, U> multiply_add_bytes(U a, S b) {
  return (NativeAs<int16_t, U>)_mm_maddubs_epi16((__m128i)a, (__m128i)b);
}
template <Ymm U, class S>
NUQI_INLINE NativeAs<int16_t, U> multiply_add_bytes(U a, S b) {
  return (NativeAs<int16_t, U>)_mm256_maddubs_epi16((__m256i)a, (__m256i)b);
}
template <Ymm V>
NUQI_INLINE auto magnitude(const V& a) {
  return (NativeAs<uint8_t, V>)_mm256_abs_epi8((__m256i)a);
}
template <Ymm V>
NUQI_INLINE auto sum_eights(const V& a) {
  return (NativeAs<uint64_t, V>)_mm256_sad_epu8((__m256i)a, __m256i{});
}

// ---- Shuffles

template <Ymm V>
NUQI_INLINE V shuffle_bytes(V a, NativeAs<int8_t, V> places) {
  return (V)_mm256_shuffle_epi8((__m256i)a, (__m256i)places);
}

// ---- Predicates

template <Ymm V>
NUQI_INLINE bool any(const V& a) {
  return !_mm256_testz_si256((__m256i)a, (__m256i)a);
}
template <Ymm V>
NUQI_INLINE uint64_t bits(const V& predicate) {
  const __m256i p = (__m256i)predicate;
  if constexpr (sizeof(LaneOf<V>) == 1)
    return (uint32_t)_mm256_movemask_epi8(p);
  else if constexpr (sizeof(LaneOf<V>) == 2)
    return (uint32_t)_mm_movemask_epi8(
        _mm_packs_epi16(_mm256_castsi256_si128(p), _mm256_extracti128_si256(p, 1)));
  else
    return (uint32_t)_mm256_movemask_ps((__m256)p);
}

}  // namespace machine
}  // namespace
}  // namespace nuqi::NUQI_ISA

// What SSE2 has instructions for, in registers of 16 bytes.
#pragma once

#include <immintrin.h>

#include "core/simd/machine_plain.h"

namespace nuqi::NUQI_ISA {
namespace {
namespace machine {

struct Sse2 : Plain {};

template <class V>
concept Xmm = sizeof(V) == 16;

// ---- Conversion

template <Xmm V>
NUQI_INLINE auto to_doubles(const V& a, int half) {
  return (NativeAs<double, V>)_mm_cvtps_pd(half == 0 ? (__m128)a
                                                     : _mm_movehl_ps((__m128)a, (__m128)a));
}
template <Xmm V>
NUQI_INLINE auto ints_to_doubles(const V& a, int half) {
  const __m128i all = (__m128i)a;
  return (NativeAs<double, V>)_mm_cvtepi32_pd(half == 0 ? all : _mm_unpackhi_epi64(all, all));
}
template <Xmm V>
NUQI_INLINE auto round_to_floats(const V& low, const V& high) {
  return (NativeAs<float, V>)_mm_movelh_ps(_mm_cvtpd_ps((__m128d)low), _mm_cvtpd_ps((__m128d)high));
}
template <Xmm V>
NUQI_INLINE V load_doubles(const float* from) {
  return (V)_mm_cvtps_pd((__m128)_mm_loadl_epi64((const __m128i*)from));
}

// ---- Arithmetic

template <Xmm V>
NUQI_INLINE V add_saturated(const V& a, const V& b) {
  return (V)_mm_adds_epi16((__m128i)a, (__m128i)b);
}
template <Xmm V>
NUQI_INLINE V subtract_saturated(const V& a, const V& b) {
  return (V)_mm_subs_epi16((__m128i)a, (__m128i)b);
}
template <Xmm V>
NUQI_INLINE V multiply_high(const V& a, const V& b) {
  return (V)_mm_mulhi_epi16((__m128i)a, (__m128i)b);
}
template <Xmm V>
NUQI_INLINE auto dot_pairs(const V& a, const V& b) {
  return (NativeAs<int32_t, V>)_mm_madd_epi16((__m128i)a, (__m128i)b);
}
template <Xmm V, class Pairs>
NUQI_INLINE V add_dot_pairs(const V& sums, const Pairs& a, const Pairs& b) {
  return sums + (V)_mm_madd_epi16((__m128i)a, (__m128i)b);
}
template <Xmm V>
NUQI_INLINE auto pack_saturated(const V& low, const V& high) {
  return (NativeAs<int16_t, V>)_mm_packs_epi32((__m128i)low, (__m128i)high);
}
// A multiply-add of 16-bit pairs is one instruction, where a 32-bit product takes several. The upper
// half of one factor has to be clear, or sign extensions multiply each other.
template <bool is_signed, Xmm V>
NUQI_INLINE V multiply_bytes(const V& a, const V& b) {
  return (V)_mm_madd_epi16((__m128i)a, (__m128i)(is_signed ? b & 0xFFFF : b));
}
template <Xmm V>
NUQI_INLINE auto sum_eights(const V& a) {
  return (NativeAs<uint64_t, V>)_mm_sad_epu8((__m128i)a, __m128i{});
}

// ---- Predicates

template <Xmm V>
NUQI_INLINE uint64_t bits(const V& predicate) {
  if constexpr (sizeof(LaneOf<V>) == 1)
    return (uint32_t)_mm_movemask_epi8((__m128i)predicate);
  else if constexpr (sizeof(LaneOf<V>) == 2)
    return (uint32_t)_mm_movemask_epi8(_mm_packs_epi16((__m128i)predicate, __m128i{}));
  else
    return (uint32_t)_mm_movemask_ps((__m128)predicate);
}

}  // namespace machine
}  // namespace
}  // namespace nuqi::NUQI_ISA

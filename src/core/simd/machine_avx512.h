// What AVX-512 with VBMI and VNNI has instructions for, in registers of 64 bytes; predicates are masks.
#pragma once

#include <immintrin.h>

#include "core/simd/machine_avx2.h"

namespace nuqi::NUQI_ISA {
namespace {
namespace machine {

struct Avx512 : Avx2 {
  static constexpr int kRegBytes = 64;
  static constexpr bool kPermutesBytes = true;
  static constexpr bool kDotsBytes = true;
  static constexpr bool kMasks = true;
};

template <class V>
concept Zmm = sizeof(V) == 64;
template <class V>
concept AnyRegister = sizeof(V) >= 16;

// ---- Memory. What is masked out is not touched, whatever page it lies in.

template <class V>
NUQI_INLINE uint64_t first_lanes(int64_t bytes) {
  return bytes >= int{sizeof(V)} ? ~uint64_t{0} : (uint64_t{1} << bytes) - 1;
}
template <class V>
NUQI_INLINE V load_masked(const char* from, uint64_t lanes) {
  if constexpr (sizeof(V) == 64)
    return (V)_mm512_maskz_loadu_epi8(lanes, from);
  else if constexpr (sizeof(V) == 32)
    return (V)_mm256_maskz_loadu_epi8((__mmask32)lanes, from);
  else
    return (V)_mm_maskz_loadu_epi8((__mmask16)lanes, from);
}
template <AnyRegister V>
NUQI_INLINE V load_first(const char* from, int64_t bytes) {
  return bytes > 0 ? load_masked<V>(from, first_lanes<V>(bytes)) : V{};
}
template <AnyRegister V>
NUQI_INLINE void store_first(char* to, const V& a, int64_t bytes) {
  if (bytes <= 0) return;
  const uint64_t lanes = first_lanes<V>(bytes);
  if constexpr (sizeof(V) == 64)
    _mm512_mask_storeu_epi8(to, lanes, (__m512i)a);
  else if constexpr (sizeof(V) == 32)
    _mm256_mask_storeu_epi8(to, (__mmask32)lanes, (__m256i)a);
  else
    _mm_mask_storeu_epi8(to, (__mmask16)lanes, (__m128i)a);
}
// Floats: the predicate's lanes from memory, the others from `otherwise`.
template <Zmm V, class K>
NUQI_INLINE V load_or(const void* from, K lanes, V otherwise) {
  return (V)_mm512_mask_loadu_ps((__m512)otherwise, (__mmask16)lanes, from);
}

// ---- Conversion

template <Zmm Out, class V>
requires(sizeof(LaneOf<V>) == 1) NUQI_INLINE Out widen_all(const V& a) {
  const __m256i in = (__m256i)a;
  return (Out)(kIsSigned<LaneOf<V>> ? _mm512_cvtepi8_epi16(in) : _mm512_cvtepu8_epi16(in));
}
template <Zmm Out, class V>
requires(sizeof(LaneOf<V>) == 2 && kIsSigned<LaneOf<V>>) NUQI_INLINE Out widen_all(const V& a) {
  return (Out)_mm512_cvtepi16_epi32((__m256i)a);
}
template <Zmm Out, class V>
NUQI_INLINE Out widen_bytes(const V& a, int) {
  const __m128i in = (__m128i)a;
  return (Out)(kIsSigned<LaneOf<V>> ? _mm512_cvtepi8_epi32(in) : _mm512_cvtepu8_epi32(in));
}
template <Zmm Out>
NUQI_INLINE Out load_widened(const int8_t* from) {
  return (Out)_mm512_cvtepi8_epi32(_mm_loadu_si128((const __m128i*)from));
}

template <Zmm V>
NUQI_INLINE auto to_doubles(const V& a, int half) {
  const __m512d both = (__m512d)a;
  const __m256d lanes = half == 0 ? _mm512_castpd512_pd256(both) : _mm512_extractf64x4_pd(both, 1);
  return (NativeAs<double, V>)(kIsFloat<LaneOf<V>> ? _mm512_cvtps_pd((__m256)lanes)
                                                   : _mm512_cvtepi32_pd((__m256i)lanes));
}
template <Zmm V>
NUQI_INLINE auto round_to_floats(const V& low, const V& high) {
  // All lanes: the forms without a mask warn of an undefined value in GCC 12's header.
  const __m256 halves[2] = {_mm512_maskz_cvtpd_ps(0xFF, (__m512d)low),
                            _mm512_maskz_cvtpd_ps(0xFF, (__m512d)high)};
  return (NativeAs<float, V>)_mm512_insertf32x8(_mm512_castps256_ps512(halves[0]), halves[1], 1);
}
template <Zmm V>
NUQI_INLINE V load_doubles(const float* from) {
  return (V)_mm512_cvtps_pd(_mm256_loadu_ps(from));
}
// The selected ones of eight floats, register i of a predicate.
template <Zmm V, class K>
NUQI_INLINE V load_doubles(const float* from, K lanes, int i) {
  return (V)_mm512_maskz_cvtps_pd((__mmask8)(lanes >> 8 * i), _mm256_loadu_ps(from));
}

template <Zmm V>
NUQI_INLINE V bytes_of_bits(uint64_t bits, int) {
  return (V)_mm512_movm_epi8(bits);
}

// ---- Arithmetic

// By a vector of counts: one operation, where a count in a register makes two.
template <Zmm V>
NUQI_INLINE V shift_right(const V& a, int count) {
  return sizeof(LaneOf<V>) == 2
             ? (V)_mm512_srav_epi16((__m512i)a, (__m512i)(NativeAs<int16_t, V>{} + (int16_t)count))
             : a >> count;
}
template <Zmm V>
NUQI_INLINE V add_saturated(const V& a, const V& b) {
  return (V)_mm512_adds_epi16((__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE V subtract_saturated(const V& a, const V& b) {
  return (V)_mm512_subs_epi16((__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE V average(const V& a, const V& b) {
  return (V)_mm512_avg_epu16((__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE V multiply_high(const V& a, const V& b) {
  return (V)_mm512_mulhi_epi16((__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE auto dot_pairs(const V& a, const V& b) {
  return (NativeAs<int32_t, V>)_mm512_madd_epi16((__m512i)a, (__m512i)b);
}
template <Zmm V, class Pairs>
NUQI_INLINE V add_dot_pairs(const V& sums, const Pairs& a, const Pairs& b) {
  return (V)_mm512_dpwssd_epi32((__m512i)sums, (__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE auto pack_saturated(const V& low, const V& high) {
  return (NativeAs<int16_t, V>)_mm512_packs_epi32((__m512i)low, (__m512i)high);
}
template <bool is_signed, Zmm V>
NUQI_INLINE V multiply_bytes(const V& a, const V& b) {
  return (V)_mm512_madd_epi16((__m512i)a, (__m512i)(is_signed ? b & 0xFFFF : b));
}
template <Zmm U, class S>
NUQI_INLINE NativeAs<int16_t, U> multiply_add_bytes(U a, S b) {
  return (NativeAs<int16_t, U>)_mm512_maddubs_epi16((__m512i)a, (__m512i)b);
}
template <Zmm V, class U, class S>
NUQI_INLINE V add_dots(V sums, U a, S b) {
  return (V)_mm512_dpbusd_epi32((__m512i)sums, (__m512i)a, (__m512i)b);
}
template <Zmm V>
NUQI_INLINE auto magnitude(const V& a) {
  return (NativeAs<uint8_t, V>)_mm512_abs_epi8((__m512i)a);
}
template <Zmm V>
NUQI_INLINE auto sum_eights(const V& a) {
  return (NativeAs<uint64_t, V>)_mm512_sad_epu8((__m512i)a, __m512i{});
}

// As floats: GCC joins a selection that follows only with an operation of the same kind.
template <Wide V>
requires(sizeof(LaneOf<V>) == 4) NUQI_INLINE V clear_sign(const V& a) {
  if constexpr (sizeof(V) == 64)
    return (V)_mm512_and_ps((__m512)a, (__m512)(NativeAs<int32_t, V>{} + 0x7FFFFFFF));
  else
    return (V)_mm256_and_ps((__m256)a, (__m256)(NativeAs<int32_t, V>{} + 0x7FFFFFFF));
}
template <Zmm V>
NUQI_INLINE V add_exact_product(const V& sum, const V& a, const V& b) {
  if constexpr (sizeof(LaneOf<V>) == 4)
    return (V)_mm512_fmadd_ps((__m512)a, (__m512)b, (__m512)sum);
  else
    return (V)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)sum);
}

template <Zmm V>
NUQI_INLINE V square_root(const V& a) {
  return (V)_mm512_maskz_sqrt_pd(0xFF, (__m512d)a);  // see round_to_floats
}

// ---- Shuffles

template <AnyRegister V>
NUQI_INLINE V permute_bytes(V a, NativeAs<uint8_t, V> places) {
  if constexpr (sizeof(V) == 64)
    return (V)_mm512_permutexvar_epi8((__m512i)places, (__m512i)a);
  else if constexpr (sizeof(V) == 32)
    return (V)_mm256_permutexvar_epi8((__m256i)places, (__m256i)a);
  else
    return (V)_mm_permutexvar_epi8((__m128i)places, (__m128i)a);
}
template <Zmm V>
NUQI_INLINE V permute_bytes(V low, V high, NativeAs<uint8_t, V> places) {
  return (V)_mm512_permutex2var_epi8((__m512i)low, (__m512i)places, (__m512i)high);
}

// GCC 12 copies both halves first where it is written as a shuffle.
template <Ymm V>
requires(sizeof(LaneOf<V>) == 4) NUQI_INLINE auto zip(const V& a, const V& b) {
  const __m512i places = _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
  return _mm512_permutex2var_epi32(_mm512_castsi256_si512((__m256i)a), places,
                                   _mm512_castsi256_si512((__m256i)b));
}

// ---- Predicates

template <Zmm V>
NUQI_INLINE bool any(const V& a) {
  return _mm512_test_epi32_mask((__m512i)a, (__m512i)a) != 0;
}

template <int comparison, AnyRegister V>
NUQI_INLINE auto compare(const V& a, const V& b) {
  constexpr bool is_signed = kIsSigned<LaneOf<V>>;
  if constexpr (sizeof(V) == 16) {  // mask bytes
    static_assert(sizeof(LaneOf<V>) == 1 && !is_signed);
    return _mm_cmp_epu8_mask((__m128i)a, (__m128i)b, comparison);
  } else {
    static_assert(sizeof(V) == 64);
    const __m512i x = (__m512i)a, y = (__m512i)b;
    constexpr int of_floats = comparison == _MM_CMPINT_LT ? _CMP_LT_OQ : _CMP_EQ_OQ;
    if constexpr (kIsFloat<LaneOf<V>> && sizeof(LaneOf<V>) == 4)
      return _mm512_cmp_ps_mask((__m512)a, (__m512)b, of_floats);
    else if constexpr (kIsFloat<LaneOf<V>>)
      return _mm512_cmp_pd_mask((__m512d)a, (__m512d)b, of_floats);
    else if constexpr (sizeof(LaneOf<V>) == 1)
      return is_signed ? _mm512_cmp_epi8_mask(x, y, comparison)
                       : _mm512_cmp_epu8_mask(x, y, comparison);
    else if constexpr (sizeof(LaneOf<V>) == 2)
      return _mm512_cmp_epi16_mask(x, y, comparison);
    else
      return is_signed ? _mm512_cmp_epi32_mask(x, y, comparison)
                       : _mm512_cmp_epu32_mask(x, y, comparison);
  }
}
template <AnyRegister V>
NUQI_INLINE auto below(const V& a, const V& b) {
  return compare<_MM_CMPINT_LT>(a, b);
}
template <AnyRegister V>
NUQI_INLINE auto equal(const V& a, const V& b) {
  return compare<_MM_CMPINT_EQ>(a, b);
}
template <class K>
requires(sizeof(K) <= 8) NUQI_INLINE uint64_t bits(const K& predicate) {
  K lanes = predicate;
#if defined(__i386__)
  // GCC 12 leaves the upper word undefined where a mask of 8 or 32 bits widens to 64.
  if constexpr (sizeof(K) < 8) __asm__("" : "+q"(lanes));
#endif
  return lanes;
}

template <AnyRegister V>
NUQI_INLINE auto selected(const V& mask) {
  if constexpr (sizeof(V) == 16)
    return _mm_test_epi8_mask((__m128i)mask, (__m128i)mask);
  else
    return _mm512_test_epi8_mask((__m512i)mask, (__m512i)mask);
}
// a where selected, zero or b elsewhere: register i of the lanes that the predicate is about.
template <Wide V, class K>
NUQI_INLINE V keep(K lanes, const V& a, int i) {
  if constexpr (sizeof(V) == 32)
    return (V)_mm256_maskz_mov_ps((__mmask8)(lanes >> 8 * i), (__m256)a);
  else if constexpr (sizeof(LaneOf<V>) == 1)
    return (V)_mm512_maskz_mov_epi8(lanes, (__m512i)a);
  else
    return (V)_mm512_maskz_mov_ps(lanes, (__m512)a);
}
template <Zmm V, class K>
NUQI_INLINE V choose(K lanes, const V& a, const V& b, int) {
  if constexpr (sizeof(LaneOf<V>) == 1)
    return (V)_mm512_mask_mov_epi8((__m512i)b, lanes, (__m512i)a);
  else
    return (V)_mm512_mask_mov_epi32((__m512i)b, lanes, (__m512i)a);
}

}  // namespace machine
}  // namespace
}  // namespace nuqi::NUQI_ISA

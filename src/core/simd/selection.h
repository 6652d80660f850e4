// What mask bytes select: the pixels where they are not zero. Sixteen of them go with sixteen lanes, the
// first eight with eight floats, a register of them with a register of bytes.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/reduce.h"

namespace nuqi::NUQI_ISA {
namespace {

#if NUQI_LEVEL == 2

NUQI_INLINE __mmask16 selected_lanes(const Px<uint8_t>& mask) {
  return _mm_test_epi8_mask((__m128i)mask.r[0], (__m128i)mask.r[0]);
}
NUQI_INLINE __mmask64 selected_lanes(const Vec<uint8_t, 64>& mask) {
  return _mm512_test_epi8_mask((__m512i)mask.r[0], (__m512i)mask.r[0]);
}

#endif

// ---- a where selected, zero elsewhere

NUQI_INLINE Px<float> keep_selected(const Px<uint8_t>& mask, const Px<float>& a) {
#if NUQI_LEVEL == 2
  return {{(Px<float>::Native)_mm512_maskz_mov_ps(selected_lanes(mask), (__m512)a.r[0])}};
#else
  return keep(convert<int32_t>(nonzero(mask)), a);
#endif
}
NUQI_INLINE Vec<float, 8> keep_selected(const Px<uint8_t>& mask, const Vec<float, 8>& a) {
#if NUQI_LEVEL == 2
  return {{_mm256_maskz_mov_ps((__mmask8)selected_lanes(mask), (__m256)a.r[0])}};
#else
  const Px<int32_t> lanes = convert<int32_t>(nonzero(mask));
  return keep(generate<Vec<int32_t, 8>>([&](int i) NUQI_FORCED { return lanes.r[i]; }), a);
#endif
}
template <class T, int N>
NUQI_INLINE Vec<T, N> keep_selected(const Vec<uint8_t, N>& mask, const Vec<T, N>& a) {
  static_assert(sizeof(T) == 1);
#if NUQI_LEVEL == 2
  return {
      {(typename Vec<T, N>::Native)_mm512_maskz_mov_epi8(selected_lanes(mask), (__m512i)a.r[0])}};
#else
  return keep(nonzero(mask), a);
#endif
}

template <class Part>
NUQI_INLINE Px<double> load_doubles(const float* from, const Px<uint8_t>& mask, Part part) {
  return to_doubles(keep_selected(mask, load(from, part)));
}
#if NUQI_LEVEL == 2
NUQI_INLINE Px<double> load_doubles(const float* from, const Px<uint8_t>& mask, Whole) {
  const __mmask16 selected = selected_lanes(mask);
  return generate<Px<double>>([&](int i) NUQI_FORCED {
    return _mm512_maskz_cvtps_pd((__mmask8)(selected >> 8 * i), _mm256_loadu_ps(from + 8 * i));
  });
}
#endif

// ---- a where selected, b elsewhere

template <class T, int N>
NUQI_INLINE Vec<T, N> choose(const Vec<uint8_t, N>& mask, const Vec<T, N>& a, const Vec<T, N>& b) {
  static_assert(sizeof(T) == 1 || (sizeof(T) == 4 && N == 16));
#if NUQI_LEVEL == 2
  using Native = typename Vec<T, N>::Native;
  const __m512i x = (__m512i)a.r[0], y = (__m512i)b.r[0];
  if constexpr (sizeof(T) == 1)
    return {{(Native)_mm512_mask_mov_epi8(y, selected_lanes(mask), x)}};
  else
    return {{(Native)_mm512_mask_mov_epi32(y, selected_lanes(mask), x)}};
#else
  const auto unselected = mask == Vec<uint8_t, N>{};
  if constexpr (sizeof(T) == 1)
    return select(unselected, b, a);
  else
    return select(convert<int32_t>(unselected), b, a);
#endif
}

// ---- How many are selected

template <int N>
class SelectedCount {
 public:
#if NUQI_LEVEL == 2
  NUQI_INLINE void add(const Vec<uint8_t, N>& mask) {
    count_ += __builtin_popcountll(selected_lanes(mask));
  }
  NUQI_INLINE uint32_t total() const { return count_; }

 private:
  uint32_t count_ = 0;
#else
  NUQI_INLINE void add(const Vec<uint8_t, N>& mask) {
    sums_ = sums_ + sum_eights(min(mask, broadcast<uint8_t, N>(1)));
  }
  NUQI_INLINE uint32_t total() const { return static_cast<uint32_t>(reduce_add(sums_)); }

 private:
  Vec<uint64_t, N / 8> sums_ = {};
#endif
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

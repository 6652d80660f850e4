// Weighted sums of 16-bit lanes, in 32 bits. Their lanes stand in an order of the machine's own: only the
// function that packs them knows it, and sums of different kinds do not mix.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

#if defined(__SSE2__) && !defined(NUQI_PLAIN)
// sum + the even 16-bit lanes * x + the odd ones * y.
template <class Native>
NUQI_INLINE Native add_weighed(const Native& sum, const Native& lanes, int16_t x, int16_t y) {
  const int32_t both = (int32_t)((uint32_t)(uint16_t)y << 16 | (uint16_t)x);
#if NUQI_LEVEL == 2
  return _mm512_dpwssd_epi32(sum, lanes, _mm512_set1_epi32(both));
#elif NUQI_LEVEL == 1
  return _mm256_add_epi32(sum, _mm256_madd_epi16(lanes, _mm256_set1_epi32(both)));
#else
  return _mm_add_epi32(sum, _mm_madd_epi16(lanes, _mm_set1_epi32(both)));
#endif
}
#endif

// sum + a * x + b * y.
template <int N>
NUQI_INLINE Vec<int32_t, N> add_pairs(const Vec<int32_t, N>& sum, const Vec<int16_t, N>& a,
                                      const Vec<int16_t, N>& b, int16_t x, int16_t y) {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  return sum + widen<int32_t>(a) * broadcast<int32_t, N>(x) +
         widen<int32_t>(b) * broadcast<int32_t, N>(y);
#else
  return generate<Vec<int32_t, N> >([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    const __m512i u = (__m512i)a.r[i / 2], v = (__m512i)b.r[i / 2];
    const __m512i pairs = i % 2 == 0 ? _mm512_unpacklo_epi16(u, v) : _mm512_unpackhi_epi16(u, v);
    return add_weighed((__m512i)sum.r[i], pairs, x, y);
#elif NUQI_LEVEL == 1
    const __m256i u = (__m256i)a.r[i / 2], v = (__m256i)b.r[i / 2];
    const __m256i pairs = i % 2 == 0 ? _mm256_unpacklo_epi16(u, v) : _mm256_unpackhi_epi16(u, v);
    return add_weighed((__m256i)sum.r[i], pairs, x, y);
#else
    const __m128i u = (__m128i)a.r[i / 2], v = (__m128i)b.r[i / 2];
    const __m128i pairs = i % 2 == 0 ? _mm_unpacklo_epi16(u, v) : _mm_unpackhi_epi16(u, v);
    return add_weighed((__m128i)sum.r[i], pairs, x, y);
#endif
  });
#endif
}

// Sums of add_pairs, each lane in its place, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> pack_pairs(const Vec<int32_t, N>& a) {
  using Out = Vec<int16_t, N>;
  return generate<Out>([&](int i) NUQI_FORCED {
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
    // The low halves of all lanes are the even ones of both registers.
    constexpr int n = Out::kLanesPerReg;
    const Vec<int32_t, n> both = {{a.r[2 * i], a.r[2 * i + 1]}};
    const auto held = min(max(both, broadcast<int32_t, n>(-32768)), broadcast<int32_t, n>(32767));
    return even_lanes((typename Out::Native)held.r[0], (typename Out::Native)held.r[1],
                      typename UpTo<n>::Type{});
#elif NUQI_LEVEL == 2
    return _mm512_packs_epi32((__m512i)a.r[2 * i], (__m512i)a.r[2 * i + 1]);
#elif NUQI_LEVEL == 1
    return _mm256_packs_epi32((__m256i)a.r[2 * i], (__m256i)a.r[2 * i + 1]);
#else
    return _mm_packs_epi32((__m128i)a.r[2 * i], (__m128i)a.r[2 * i + 1]);
#endif
  });
}

// sum + from[i] * x + from[i + 1] * y.
template <int N>
NUQI_INLINE Vec<int32_t, N> add_neighbours(const Vec<int32_t, N>& sum, const int16_t* from,
                                           int16_t x, int16_t y) {
  const Vec<int16_t, N> here = load<N>(from), next = load<N>(from + 1);
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  return add_pairs(sum, here, next, x, y);
#else
  // Even lanes in one register, odd ones in the next.
  return generate<Vec<int32_t, N> >([&](int i) NUQI_FORCED {
    using Sum = typename Vec<int32_t, N>::Native;
    const Sum lanes = (Sum)(i % 2 == 0 ? here : next).r[i / 2];
#if NUQI_LEVEL == 2
    return add_weighed((__m512i)sum.r[i], (__m512i)lanes, x, y);
#elif NUQI_LEVEL == 1
    return add_weighed((__m256i)sum.r[i], (__m256i)lanes, x, y);
#else
    return add_weighed((__m128i)sum.r[i], (__m128i)lanes, x, y);
#endif
  });
#endif
}

// Sums of add_neighbours, each lane in its place, at most 32767 and at least -32768.
template <int N>
NUQI_INLINE Vec<int16_t, N> pack_neighbours(const Vec<int32_t, N>& a) {
  const Vec<int16_t, N> packed = pack_pairs(a);
#if defined(NUQI_PLAIN) || !defined(__SSE2__)
  return packed;
#else
  return generate<Vec<int16_t, N> >([&](int i) NUQI_FORCED {
#if NUQI_LEVEL == 2
    const __m512i in = (__m512i)packed.r[i];
    return _mm512_unpacklo_epi16(in, _mm512_bsrli_epi128(in, 8));
#elif NUQI_LEVEL == 1
    const __m256i in = (__m256i)packed.r[i];
    return _mm256_unpacklo_epi16(in, _mm256_bsrli_epi128(in, 8));
#else
    const __m128i in = (__m128i)packed.r[i];
    return _mm_unpacklo_epi16(in, _mm_bsrli_si128(in, 8));
#endif
  });
#endif
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

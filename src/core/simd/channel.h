// Loads of an image's only channel, or of one out of three interleaved ones.
//
// load_third<N>(from, part) gives from[0], from[3], from[6] ... and touches nothing beyond the last of
// them: the third channel of the last pixel may end a page. It looks at them through three windows
// that overlap where they must, so that the last one ends with the last element.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Sixteen or eight floats

#if NUQI_LEVEL == 0

template <int N>
NUQI_INLINE Vec<float, N> load_third(const float* from, Whole) {
  return generate<Vec<float, N>>([&](int i) NUQI_FORCED {
    const auto at0 = load<4>(from + 12 * i).r[0], at6 = load<4>(from + 12 * i + 6).r[0];
    return __builtin_shufflevector(at0, at6, 0, 3, 4, 7);
  });
}

#else

NUQI_INLINE auto load_eight_thirds(const float* from) {
  const auto at0 = load<8>(from).r[0], at7 = load<8>(from + 7).r[0], at14 = load<8>(from + 14).r[0];
  // The elements wanted of each window lie in lanes of their own, so that two blends bring them together.
  const auto first5 = __builtin_shufflevector(at0, at7, 0, 1, 10, 3, 4, 13, 6, 7);
  const auto all = __builtin_shufflevector(first5, at14, 0, 9, 2, 3, 12, 5, 6, 15);
  return __builtin_shufflevector(all, all, 0, 3, 6, 2, 5, 1, 4, 7);
}

#if NUQI_LEVEL == 1

template <int N>
NUQI_INLINE Vec<float, N> load_third(const float* from, Whole) {
  return generate<Vec<float, N>>([&](int i)
                                     NUQI_FORCED { return load_eight_thirds(from + 24 * i); });
}

#else

template <class Native, int... I>
NUQI_INLINE Native every_third_float(const Native& at0, const Native& at15, const Native& at30,
                                     Indices<I...>) {
  const auto first11 = __builtin_shufflevector(at0, at15,
                                               (I < 6    ? 3 * I
                                                : I < 11 ? 3 * I - 15 + 16
                                                         : I)...);
  return __builtin_shufflevector(first11, at30, (I < 11 ? I : 3 * I - 30 + 16)...);
}
template <int N>
NUQI_INLINE Vec<float, N> load_third(const float* from, Whole) {
  if constexpr (N == 8)
    return {{load_eight_thirds(from)}};
  else
    return {{every_third_float(load(from).r[0], load(from + 15).r[0], load(from + 30).r[0],
                               UpTo<16>::Type{})}};
}

#endif
#endif

// ---- One register of bytes

#if NUQI_LEVEL == 0

template <class Native, int... I>
NUQI_INLINE Native two_lanes_down(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, Native{}, (I + 2)...);
}
// In turns the lanes of one's lower and the other's upper half.
template <class Native, class Lanes>
NUQI_INLINE Native zip_low_high(const Native& a, const Native& b, Lanes lanes) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return zip_low(a, (Native)__builtin_shufflevector((Halves)b, (Halves)b, 1, 0), lanes);
}
template <class Native, class Lanes>
NUQI_INLINE Native zip_high_low(const Native& a, const Native& b, Lanes lanes) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return zip_low((Native)__builtin_shufflevector((Halves)a, (Halves)a, 1, 0), b, lanes);
}

// Zipping the two halves of 48 bytes takes byte p to 2 p mod 47, four times to 16 p: byte 3 i to i.
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  static_assert(N == 16 && sizeof(T) == 1);
  constexpr auto lanes = UpTo<16>::Type{};
  auto a = load(from).r[0], b = load(from + 16).r[0];
  auto c = two_lanes_down(load(from + 30).r[0], lanes);
  for_each<2>([&](int) NUQI_FORCED {
    const auto first = zip_low_high(a, b, lanes), second = zip_high_low(a, c, lanes);
    c = zip_low_high(b, c, lanes);
    a = first;
    b = second;
  });
  return {{zip_low_high(zip_low_high(a, b, lanes), zip_high_low(a, c, lanes), lanes)}};
}

#elif NUQI_LEVEL == 1

// Sixteen bytes of each of two groups of sixteen pixels: byte shuffles stay within such halves.
NUQI_INLINE __m256i load_two(const void* from) {
  const __m128i* group = (const __m128i*)from;
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(group)),
                                 _mm_loadu_si128(group + 3), 1);
}
template <int... I>
NUQI_INLINE __m256i every_third_byte(__m256i at0, __m256i at16, __m256i at30, Indices<I...>) {
  typedef signed char Bytes __attribute__((vector_size(32)));
  constexpr auto at = [](int i) { return 3 * (i % 16); };
  const Bytes of0 = {(at(I) < 16 ? at(I) : -1)...};
  const Bytes of16 = {(at(I) >= 16 && at(I) < 32 ? at(I) - 16 : -1)...};
  const Bytes of30 = {(at(I) >= 32 ? at(I) - 30 : -1)...};
  return _mm256_shuffle_epi8(at0, (__m256i)of0) | _mm256_shuffle_epi8(at16, (__m256i)of16) |
         _mm256_shuffle_epi8(at30, (__m256i)of30);
}
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  static_assert(N == 32 && sizeof(T) == 1);
  return {{(typename Vec<T, N>::Native)every_third_byte(load_two(from), load_two(from + 16),
                                                        load_two(from + 30), UpTo<32>::Type{})}};
}

#else

// Of the windows' bytes, those of the second fit between those of the first.
template <class Native, int... I>
NUQI_INLINE Native every_third_byte(const Native& at0, const Native& at64, const Native& at126,
                                    Indices<I...>) {
  constexpr uint64_t kSecond = ((I % 3 == 2 && I < 60 ? uint64_t{1} << I : 0) | ...);
  constexpr uint64_t kLast22 = ~uint64_t{0} << 42;
  typedef char Bytes __attribute__((vector_size(64)));
  const Bytes of = {char((I < 42 ? 3 * I : 3 * I - 126 + 128) % 64)...};
  const __m512i both = _mm512_mask_mov_epi8((__m512i)at0, kSecond, (__m512i)at64);
  const __m512i first42 = _mm512_permutexvar_epi8((__m512i)of, both);
  return (Native)_mm512_mask_permutexvar_epi8(first42, kLast22, (__m512i)of, (__m512i)at126);
}
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  static_assert(N == 64 && sizeof(T) == 1);
  return {{every_third_byte(load<N>(from).r[0], load<N>(from + 64).r[0], load<N>(from + 126).r[0],
                            UpTo<64>::Type{})}};
}

#endif

// ---- The first few of either

#if NUQI_LEVEL == 2

template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, First part) {
  // Loads no lane of a window that starts beyond the last element.
  const auto window = [&](int at) NUQI_FORCED {
    return load<N>(from + at, First{3 * part.lanes - 2 - at}).r[0];
  };
  if constexpr (sizeof(T) == 1)
    return {{every_third_byte(window(0), window(64), window(126), UpTo<64>::Type{})}};
  else
    return {{every_third_float(window(0), window(15), window(30), UpTo<16>::Type{})}};
}

#else

template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, First part) {
  alignas(64) T lanes[N] = {};
  for (int i = 0; i < part.lanes; ++i) lanes[i] = load_one(from + 3 * i);
  return load<N>(lanes);
}

#endif

// ---- Either

template <int channels, int N, class T, class Part>
NUQI_INLINE Vec<T, N> load_channel(const T* from, Part part) {
  if constexpr (channels == 3)
    return load_third<N>(from, part);
  else
    return load<N>(from, part);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Loads of one channel out of three interleaved ones.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// load_third(from, part): from[0], from[3], from[6] ... What lies beyond the last element that it
// returns is not touched: the third channel of the last pixel may end a page. Therefore the last of
// the windows that it looks through ends with that element.

#if NUQI_LEVEL == 2

template <int N, class T>
NUQI_INLINE Vec<T, N> window(const T* from, int at, Whole) {
  return load<N>(from + at);
}
template <int N, class T>
NUQI_INLINE Vec<T, N> window(const T* from, int at, First part) {
  return load<N>(from + at, First{3 * part.lanes - 2 - at});  // nothing where that is negative
}

template <class Reg, int... I>
NUQI_INLINE Reg every_third_float(const Reg& at0, const Reg& at15, const Reg& at30, Indices<I...>) {
  const Reg first11 = __builtin_shufflevector(at0, at15,
                                              (I < 6    ? 3 * I
                                               : I < 11 ? 3 * I - 15 + 16
                                                        : I)...);
  return __builtin_shufflevector(first11, at30, (I < 11 ? I : 3 * I - 30 + 16)...);
}
template <int N = 16, class Part>
NUQI_INLINE Px<float> load_third(const float* from, Part part) {
  return {{every_third_float(window<16>(from, 0, part).r[0], window<16>(from, 15, part).r[0],
                             window<16>(from, 30, part).r[0], UpTo<16>::Type{})}};
}

// Of the windows' bytes, those of the second fit between those of the first.
template <class Reg, int... I>
NUQI_INLINE Reg every_third_byte(const Reg& at0, const Reg& at64, const Reg& at126, Indices<I...>) {
  constexpr uint64_t kSecond = ((I % 3 == 2 && I < 60 ? uint64_t{1} << I : 0) | ...);
  constexpr uint64_t kLast22 = ~uint64_t{0} << 42;
  typedef char Bytes __attribute__((vector_size(64)));
  const Bytes from = {char((I < 42 ? 3 * I : 3 * I + 2) % 64)...};
  const __m512i both = _mm512_mask_mov_epi8((__m512i)at0, kSecond, (__m512i)at64);
  const __m512i first42 = _mm512_permutexvar_epi8((__m512i)from, both);
  return (Reg)_mm512_mask_permutexvar_epi8(first42, kLast22, (__m512i)from, (__m512i)at126);
}
template <int N, class T, class Part>
NUQI_INLINE Vec<T, N> load_third(const T* from, Part part) {
  static_assert(N == 64 && sizeof(T) == 1);
  return {{every_third_byte(window<64>(from, 0, part).r[0], window<64>(from, 64, part).r[0],
                            window<64>(from, 126, part).r[0], UpTo<64>::Type{})}};
}

#else

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, First part) {
  alignas(64) T lanes[N] = {};
  for (int i = 0; i < part.lanes; ++i) lanes[i] = load_one(from + 3 * i);
  return load<N>(lanes);
}

#if NUQI_LEVEL == 1

template <int N = 16>
NUQI_INLINE Px<float> load_third(const float* from, Whole) {
  return generate<Px<float> >([&](int i) NUQI_FORCED {
    const float* group = from + 24 * i;
    // Where they are wanted, the three windows' elements lie in different lanes.
    const auto at0 = load<8>(group).r[0], at7 = load<8>(group + 7).r[0],
               at14 = load<8>(group + 14).r[0];
    const auto first5 = __builtin_shufflevector(at0, at7, 0, 1, 10, 3, 4, 13, 6, 7);
    const auto all = __builtin_shufflevector(first5, at14, 0, 9, 2, 3, 12, 5, 6, 15);
    return __builtin_shufflevector(all, all, 0, 3, 6, 2, 5, 1, 4, 7);
  });
}

// Sixteen bytes from each of the two groups of sixteen pixels.
NUQI_INLINE __m256i two_windows(const void* from) {
  const auto at = [&](int byte) NUQI_FORCED {
    return _mm_loadu_si128((const __m128i*)((const char*)from + byte));
  };
  return _mm256_inserti128_si256(_mm256_castsi128_si256(at(0)), at(48), 1);
}
template <int... I>
NUQI_INLINE __m256i every_third_byte(__m256i at0, __m256i at16, __m256i at30, Indices<I...>) {
  typedef char Bytes __attribute__((vector_size(32)));
  const Bytes from0 = {(I % 16 < 6 ? 3 * (I % 16) : -1)...};
  const Bytes from16 = {(I % 16 >= 6 && I % 16 < 11 ? 3 * (I % 16) - 16 : -1)...};
  const Bytes from30 = {(I % 16 >= 11 ? 3 * (I % 16) - 30 : -1)...};
  return _mm256_shuffle_epi8(at0, (__m256i)from0) | _mm256_shuffle_epi8(at16, (__m256i)from16) |
         _mm256_shuffle_epi8(at30, (__m256i)from30);
}
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  static_assert(N == 32 && sizeof(T) == 1);
  return {{(typename Vec<T, N>::Reg)every_third_byte(two_windows(from), two_windows(from + 16),
                                                     two_windows(from + 30), UpTo<32>::Type{})}};
}

#else

template <int N = 16>
NUQI_INLINE Px<float> load_third(const float* from, Whole) {
  return generate<Px<float> >([&](int i) NUQI_FORCED {
    const auto at0 = load<4>(from + 12 * i).r[0], at6 = load<4>(from + 12 * i + 6).r[0];
    return __builtin_shufflevector(at0, at6, 0, 3, 4, 7);
  });
}

template <class Reg, int... I>
NUQI_INLINE Reg two_lanes_down(const Reg& a, Indices<I...>) {
  return __builtin_shufflevector(a, Reg{}, (I + 2)...);
}
// The lower half of a with the upper half of b, in turns; and the other way round.
template <class Reg, class Lanes>
NUQI_INLINE Reg zip_low_high(const Reg& a, const Reg& b, Lanes lanes) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return zip_low(a, (Reg)__builtin_shufflevector((Halves)b, (Halves)b, 1, 0), lanes);
}
template <class Reg, class Lanes>
NUQI_INLINE Reg zip_high_low(const Reg& a, const Reg& b, Lanes lanes) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return zip_low((Reg)__builtin_shufflevector((Halves)a, (Halves)a, 1, 0), b, lanes);
}
// Zipping the halves of 48 bytes takes byte p to 2 p mod 47. Four times, and byte 3 i has come to i.
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  static_assert(N == 16 && sizeof(T) == 1);
  constexpr auto lanes = UpTo<16>::Type{};
  auto a = load(from).r[0], b = load(from + 16).r[0],
       c = two_lanes_down(load(from + 30).r[0], lanes);
  for_each<2>([&](int) NUQI_FORCED {
    const auto a2 = zip_low_high(a, b, lanes), b2 = zip_high_low(a, c, lanes);
    c = zip_low_high(b, c, lanes), a = a2, b = b2;
  });
  return {{zip_low_high(zip_low_high(a, b, lanes), zip_high_low(a, c, lanes), lanes)}};
}

#endif
#endif

}  // namespace
}  // namespace nuqi::NUQI_ISA

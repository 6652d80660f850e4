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

// ---- Floats, from windows whose elements wanted lie in lanes of their own, so that blends join them

template <class V>
NUQI_INLINE V third_of_12(const V& at0, const V& at6) {
  return __builtin_shufflevector(at0, at6, 0, 3, 4, 7);
}
template <class V>
NUQI_INLINE V third_of_24(const V& at0, const V& at7, const V& at14) {
  const auto first5 = __builtin_shufflevector(at0, at7, 0, 1, 10, 3, 4, 13, 6, 7);
  const auto all = __builtin_shufflevector(first5, at14, 0, 9, 2, 3, 12, 5, 6, 15);
  return __builtin_shufflevector(all, all, 0, 3, 6, 2, 5, 1, 4, 7);
}
template <class V, int... I>
NUQI_INLINE V third_of_48(const V& at0, const V& at15, const V& at30, Indices<I...>) {
  const auto first11 = __builtin_shufflevector(at0, at15,
                                               (I < 6    ? 3 * I
                                                : I < 11 ? 3 * I - 15 + 16
                                                         : I)...);
  return __builtin_shufflevector(first11, at30, (I < 11 ? I : 3 * I - 30 + 16)...);
}

// ---- Bytes

// Without byte shuffles. Zipping the two halves of 48 bytes takes byte p to 2 p mod 47, four times to
// 16 p: byte 3 i to i.
template <class V, int... I>
NUQI_INLINE V third_by_zips(V a, V b, const V& at30, Indices<I...> lanes) {
  // The lanes of one's lower half and the other's upper half, interleaved.
  const auto low_high = [&](const V& x, const V& y)
                            NUQI_FORCED { return zip_low(x, swap_halves(y), lanes); };
  const auto high_low = [&](const V& x, const V& y)
                            NUQI_FORCED { return zip_low(swap_halves(x), y, lanes); };
  V c = __builtin_shufflevector(at30, V{}, (I + 2)...);
  for_each<2>([&](int) NUQI_FORCED {
    const V first = low_high(a, b), second = high_low(a, c);
    c = low_high(b, c);
    a = first;
    b = second;
  });
  return low_high(low_high(a, b), high_low(a, c));
}

// By shuffles within groups of sixteen, each with windows of its own.
template <class V, int... I>
NUQI_INLINE V third_by_shuffles(const V& at0, const V& at16, const V& at30, Indices<I...>) {
  using Places = NativeAs<int8_t, V>;
  constexpr auto at = [](int i) { return 3 * (i % 16); };
  return machine::shuffle_bytes(at0, Places{(at(I) < 16 ? at(I) : -1)...}) |
         machine::shuffle_bytes(at16, Places{(at(I) >= 16 && at(I) < 32 ? at(I) - 16 : -1)...}) |
         machine::shuffle_bytes(at30, Places{(at(I) >= 32 ? at(I) - 30 : -1)...});
}

// By permutations. Of the windows' bytes, those of the second fit between those of the first.
template <class V, int... I>
NUQI_INLINE V third_by_permutations(const V& at0, const V& at64, const V& at126, Indices<I...>) {
  const NativeAs<uint8_t, V> places = {uint8_t((I < 42 ? 3 * I : 3 * I - 126 + 128) % 64)...};
  const V both = __builtin_shufflevector(at0, at64, (I % 3 == 2 && I < 60 ? 64 + I : I)...);
  return __builtin_shufflevector(machine::permute_bytes(both, places),
                                 machine::permute_bytes(at126, places), (I < 42 ? I : 64 + I)...);
}

// ---- Either

// One register; window(x) is the register of elements from x on.
template <class V, class Window>
NUQI_INLINE auto third_of(const Window& window) {
  using Lanes = typename UpTo<sizeof(V) / sizeof(LaneOf<V>)>::Type;
  if constexpr (kIsFloat<LaneOf<V>>) {
    if constexpr (sizeof(V) == 16)
      return third_of_12<V>(window(0), window(6));
    else if constexpr (sizeof(V) == 32)
      return third_of_24<V>(window(0), window(7), window(14));
    else
      return third_of_48<V>(window(0), window(15), window(30), Lanes{});
  } else if constexpr (Machine::kPermutesBytes) {
    return third_by_permutations<V>(window(0), window(64), window(126), Lanes{});
  } else if constexpr (Machine::kShufflesBytes) {
    return third_by_shuffles<V>(window(0), window(16), window(30), Lanes{});
  } else {
    return third_by_zips<V>(window(0), window(16), window(30), Lanes{});
  }
}

template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, Whole) {
  using V = Vec<T, N>;
  return generate<V>([&](int i) NUQI_FORCED {
    const T* const first = from + 3 * i * V::kLanesPerReg;
    return third_of<typename V::Native>([&](int x) NUQI_FORCED {
      if constexpr (V::kBytes == 32 && sizeof(T) == 1)  // sixteen bytes for each group
        return machine::load_groups<typename V::Native>(first + x, first + x + 48);
      else
        return load<V::kLanesPerReg>(first + x).r[0];
    });
  });
}
template <int N, class T>
NUQI_INLINE Vec<T, N> load_third(const T* from, First part) {
  if constexpr (Machine::kMasks) {
    // Loads no lane of a window that starts beyond the last element.
    return {{third_of<typename Vec<T, N>::Native>(
        [&](int x) NUQI_FORCED { return load<N>(from + x, First{3 * part.lanes - 2 - x}).r[0]; })}};
  } else {
    alignas(64) T lanes[N] = {};
    for (int i = 0; i < part.lanes; ++i) lanes[i] = load_one(from + 3 * i);
    return load<N>(lanes);
  }
}

// An only channel, or one of three.
template <int channels, int N, class T, class Part>
NUQI_INLINE Vec<T, N> load_channel(const T* from, Part part) {
  if constexpr (channels == 3)
    return load_third<N>(from, part);
  else
    return load<N>(from, part);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

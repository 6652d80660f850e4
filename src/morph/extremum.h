// The one of two vectors that an erosion or a dilation keeps.
#pragma once

#include "core/simd/float_order.h"
#include "core/simd/memory.h"
#include "morph/strip.h"

namespace nuqi::NUQI_ISA {
namespace {

template <Extremum extremum, class T, int N>
NUQI_INLINE Vec<T, N> best(const Vec<T, N>& a, const Vec<T, N>& b) {
  return extremum == Extremum::least ? min(a, b) : max(a, b);
}

// Arbitrary masks compare integers: floats are turned into keys, and keys back.
template <class T>
using KeyOf = typename IfElse<kIsFloat<T>, int32_t, T>::Type;

template <class T, int N>
NUQI_INLINE Vec<T, N> swap_key(const Vec<T, N>& a) {
  if constexpr (kIsFloat<T>)
    return as<T>(float_order(as<int32_t>(a)));
  else
    return a;
}

// Of floats as keys, where they are asked for.
template <bool keys, class T>
NUQI_INLINE void copy_pixels(const T* from, T* to, int64_t count) {
  for_blocks<Reg<T>::kLanes>(count, [&](int64_t x, auto part) NUQI_FORCED {
    const auto pixels = load<Reg<T>::kLanes>(from + x, part);
    store(to + x, keys ? swap_key<T>(pixels) : pixels, part);
  });
}

// What any pixel replaces.
template <Extremum extremum, class T, int N = Reg<T>::kLanes>
NUQI_INLINE Vec<KeyOf<T>, N> worst() {
  constexpr bool least = extremum == Extremum::least;
  if constexpr (kIsFloat<T>)
    return broadcast<int32_t, N>(least ? INT32_MAX : INT32_MIN);
  else
    return broadcast<T, N>(least ? 0xFF : 0);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Extrema of lines of pixels or rows, from windows that grow fourfold.
#pragma once

#include "morph/extremum.h"

namespace nuqi::NUQI_ISA {
namespace {

template <Extremum extremum, class T, int N>
NUQI_INLINE Vec<T, N> best(const Vec<T, N>& a, const Vec<T, N>& b, const Vec<T, N>& c,
                           const Vec<T, N>& d) {
  return best<extremum>(best<extremum>(a, b), best<extremum>(c, d));
}

// Where a line's extremum comes from: windows of `reached` elements at four distances from its start.
struct Windows {
  int64_t reached = 1, at[4] = {0, 0, 0, 0};
  explicit constexpr Windows(int64_t size) {
    while (4 * reached < size) reached *= 4;
    const bool two = size <= 2 * reached;
    at[1] = two ? size - reached : reached;
    at[2] = two ? 0 : size - 2 * reached;
    at[3] = size - reached;
  }
};

template <Extremum extremum, class T, class Part>
NUQI_INLINE void take_four(const T* a, const T* b, const T* c, const T* d, T* to, Part part) {
  constexpr int N = Reg<T>::kLanes;
  store(to, best<extremum>(load<N>(a, part), load<N>(b, part), load<N>(c, part), load<N>(d, part)),
        part);
}

template <Extremum extremum, class T>
NUQI_NOINLINE void of_rows(const T* a, const T* b, const T* c, const T* d, T* to, int64_t count) {
  for_blocks<Reg<T>::kLanes>(count, [&](int64_t x, auto part) NUQI_FORCED {
    take_four<extremum>(a + x, b + x, c + x, d + x, to + x, part);
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Extrema along lines of pixels, from windows that grow fourfold.
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

// Every element of `to` becomes the extremum of the `size` pixels from that of `row` on: windows of w
// become windows of 4 * w, kept in `between`, then those of the size. From the left, so that only what is
// read no more is overwritten where these are one row.
template <Extremum extremum, class T>
NUQI_NOINLINE void along_row(const T* row, T* between, T* to, int64_t count, int64_t channels,
                             int64_t size) {
  const auto combine = [&](T* into, int64_t n, int64_t b, int64_t c, int64_t d) NUQI_FORCED {
    for_blocks<Reg<T>::kLanes>(n, [&](int64_t x, auto part) NUQI_FORCED {
      const T* at = row + x;
      take_four<extremum, T>(at, at + b, at + c, at + d, into + x, part);
    });
  };
  int64_t rest = count + (size - 1) * channels;
  for (int64_t step = channels; 4 * step < size * channels; step *= 4) {
    rest -= 3 * step;
    combine(between, rest, step, 2 * step, 3 * step);
    row = between;
  }
  const Windows last(size);
  if (size > 1 || row != to)
    combine(to, count, last.at[1] * channels, last.at[2] * channels, last.at[3] * channels);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

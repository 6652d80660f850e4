// The source rows of a small element: the caller's, or, near the ends of the rows and where floats are
// compared as keys, a tile of pixels with the copies that stand beside them.
#pragma once

#include "morph/extremum.h"
#include "morph/window.h"

namespace nuqi::NUQI_ISA {
namespace {

// Blocks are read whole, so that a row has room for one more than it holds; rows lie an odd number of
// cache lines apart.
constexpr int kTileBytes = 512, kTileStep = kTileBytes + 64;

template <class T>
struct Tile {
  static constexpr int kStep = kTileStep / sizeof(T);

  alignas(64) T pixels[kWindowSources * kStep];
  const T* rows[kWindowSources];

  static NUQI_INLINE int64_t sources(const ElementJob<T>& job) {
    return job.height + job.element.height - 1;
  }
  // The caller's rows, from a column on.
  NUQI_INLINE void refer(const ElementJob<T>& job, int64_t from) {
    for (int64_t r = 0; r < sources(job); ++r) rows[r] = job.rows[r] + from;
  }
  // Columns `from` to `from` + count - 1 of the image, all of its rows; those outside are copies.
  template <bool keys>
  NUQI_INLINE void fill(const ElementJob<T>& job, int64_t from, int64_t count) {
    const int64_t before = from < 0 ? -from : 0, beyond = from + count - job.count;
    const int64_t after = beyond > 0 ? beyond : 0, inside = count - before - after;
    const int64_t last = job.count - job.channels;  // the pixel that copies repeat
    for (int64_t r = 0; r < sources(job); ++r) {
      const T* src = job.rows[r];
      T* row = pixels + r * kStep;
      T* to = row + before;
      rows[r] = row;
      copy_pixels<keys>(src + from + before, to, inside);
      for (int64_t i = 1; i <= before; ++i) to[-i] = to[job.channels - i];
      to += inside;
      // The tile may hold less than a pixel of the row itself.
      copy_pixels<keys>(src + last, to, after < job.channels ? after : job.channels);
      for (int64_t i = job.channels; i < after; ++i) to[i] = to[i - job.channels];
    }
  }
};

// Computes `count` columns from dst's first on: rows[r][0] is the leftmost pixel under the element there.
template <class T>
using Stretch = void (*)(const ElementJob<T>& job, const T* const* rows, Image<T> dst,
                         int64_t count);

template <bool keys, class T>
NUQI_NOINLINE void for_stretches(const ElementJob<T>& job, Stretch<T> compute) {
  constexpr int N = Reg<T>::kLanes;
  const int64_t around = int64_t{job.element.width - 1} * job.channels;
  const int64_t left = int64_t{job.anchor.x} * job.channels, right = around - left;
  const int64_t most = (kTileBytes / int{sizeof(T)} - around) / N * N;
  Tile<T> tile;
  for (int64_t x = 0; x < job.count;) {
    const int64_t rest = job.count - x, blocks = (rest - right) / N * N;
    int64_t count = blocks;
    if (!keys && rest > most && x >= left && blocks > 0) {
      tile.refer(job, x - left);
    } else {
      count = rest <= most ? rest : keys ? most : (left + N - 1) / N * N;
      tile.template fill<keys>(job, x - left, count + around);
    }
    compute(job, tile.rows, {job.dst.data + x, job.dst.step}, count);
    x += count;
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

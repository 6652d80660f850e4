// What a filter over a square window hands to its kernel: some rows of a stripe.
#pragma once

#include "core/image.h"

namespace nuqi {

// Kernels compute up to eight output rows together, and read the rows of all.
constexpr int kMostRowsAtOnce = 8;

// A job's output rows at most, and the source rows that its kernel may read.
constexpr int kMostRows = 64;
constexpr int kMostSources = kMostRows + 6 + kMostRowsAtOnce - 1;

// Output row y comes from rows[y] to rows[y + size - 1]. kMostRowsAtOnce - 1 readable rows follow the
// last window's; no result shows them.
template <class T, class D>
struct WindowJob {
  const T* const* rows;
  Image<D> dst;
  RoiSize roi;
};

}  // namespace nuqi

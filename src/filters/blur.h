// What the entries of the box blurs hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/isa.h"
#include "filters/window.h"

namespace nuqi {

// Sums of floats run along the rows and down the columns, and keep what they have rounded away.
struct RunningBlurJob {
  static constexpr int kRows = 16;
  const float* rows[kRows];  // those from `count` on are readable too
  int count;
  int repeats;  // copies of the last row below an image: their sums are its own
  int half;
  bool first;        // rows[0] is an image's first row
  int skipped;       // rows before the first that completes a window
  Image<float> dst;  // of rows[skipped]
  int32_t width;
  void* const* ring;  // the sums along the last 2 * half + 1 rows, then the column sums
};

template <class T>
struct BlurKernelsOf {
  void (*of[3])(const WindowJob<T, int16_t>&);  // [size 3, 5, 7]
};
template <>
struct BlurKernelsOf<float> {
  void (*running)(const RunningBlurJob&);
};

using BlurKernels = ByType<BlurKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(BlurKernels, blur_kernels)

}  // namespace nuqi

// The kernels of rectangles of bytes that are too large for those of windows, and not too large for a strip
// of columns to hold their rows.
#pragma once

#include "morph/window.h"

namespace nuqi {

// Rows of such a rectangle at most, and bytes beside a pixel; the same on all machines.
constexpr int kRectangleHeight = 64, kRectangleBytes = 256;
// A job's rows of the result at most, and its source rows.
constexpr int kRectangleRows = 64, kRectangleSources = kRectangleRows + kRectangleHeight - 1;

struct RectangleKernels {
  void (*of[2])(const ElementJob<uint8_t>&);  // erosion, dilation
};

NUQI_KERNEL_TABLES(RectangleKernels, rectangle_kernels)

}  // namespace nuqi

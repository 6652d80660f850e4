// What erosion and dilation hand to the kernels of small elements: some rows of a strip.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// The elements that these kernels serve have so many rows at most, and so many bytes beside a pixel. Like
// everything that a state keeps its rows for, it is the same on all machines.
constexpr int kSmallHeight = 9, kSmallBytes = 96;

// A job's rows of the result at most, and its source rows. Of rows longer than kLongRow bytes it has
// fewer: their starts meet in few sets of the cache.
constexpr int kLongRow = 2048, kLongWindowRows = 8;
constexpr int kWindowRows = 32, kWindowSources = kWindowRows + kSmallHeight - 1;

// Row y of the result comes from rows[y] to rows[y + element.height - 1]. Counts are in elements: of
// interleaved channels one pixel is `channels` further on than the one before.
template <class T>
struct ElementJob {
  const T* const* rows;
  Image<T> dst;
  int64_t count, height;
  int32_t channels;
  RoiSize element;
  PixelPoint anchor;
  const uint8_t* inside;  // of arbitrary masks: kMaskEntry bytes for each pixel
};

template <class T>
struct WindowKernelsOf {
  void (*rectangle[2][2])(const ElementJob<T>&);  // [erosion, dilation][3x3, 5x5]
  void (*cross[2][2])(const ElementJob<T>&);
};

template <class T>
struct MaskKernelsOf {
  void (*of[2])(const ElementJob<T>&);
};

using WindowKernels = ByType<WindowKernelsOf, uint8_t, float>;
using MaskKernels = ByType<MaskKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(WindowKernels, window_kernels)
NUQI_KERNEL_TABLES(MaskKernels, mask_kernels)

}  // namespace nuqi

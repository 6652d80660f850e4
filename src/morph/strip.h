// What the entries of erosion and dilation hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

enum class Extremum { least, greatest };

// Bytes that an arbitrary mask has for each pixel of the element, all of them alike.
template <class T>
constexpr int kMaskEntry = sizeof(T) == 1 ? 8 : 1;

// The rows of one strip enter the ring, one after the other, and results leave it once it holds as many
// as the element has. Counts are in elements: of interleaved channels one pixel is `channels` further on
// than the one before.
template <class T>
struct StripJob {
  Image<const T> src;
  Image<T> dst;
  int64_t count, channels;
  int64_t height, end;  // source rows; rows that enter: those, and copies of the last one
  bool first;           // copies of the first row stand above it
  RoiSize element;
  PixelPoint anchor;
  const uint8_t* inside;  // of arbitrary masks: kMaskEntry bytes for each pixel
  void** rows;            // the ring: those of the element, then as many as are computed besides
  int32_t slots, held;
};

// What a strip leaves in the ring: `held` rows from rows[oldest] on, wrapping at the last slot.
struct RingState {
  int32_t oldest, held;
};

template <class T>
struct MorphKernelsOf {
  RingState (*rectangle[2])(const StripJob<T>&);
  RingState (*cross[2])(const StripJob<T>&);
  RingState (*mask[2])(const StripJob<T>&);
};

using MorphKernels = ByType<MorphKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(MorphKernels, strip_kernels)

}  // namespace nuqi

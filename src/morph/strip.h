// What the entries of erosion and dilation hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

enum class Extremum { least, greatest };

// A row of the result, from the ring's rows under the element. Counts are in elements: of interleaved
// channels one pixel is `channels` further on than the one before.
template <class T>
struct MorphJob {
  uint8_t* const* rows;  // as many as the element has
  T* dst;
  int64_t count;
  int64_t channels;
  RoiSize element;
  PixelPoint anchor;
  const uint8_t* inside;  // of arbitrary masks
  T* spare;               // room for an expanded row
};

template <class T>
struct MorphKernelsOf {
  // Each element becomes the extremum of `window` pixels from it on, of which all are readable.
  void (*along_row[2])(T* row, int64_t count, int64_t channels, int32_t window);
  // The extremum of four rows.
  void (*of_rows[2])(const T* const* rows, T* dst, int64_t count);
  void (*cross[2])(const MorphJob<T>&);
  void (*mask[2])(const MorphJob<T>&);
  // Elements as the ring holds them for masks: floats as keys.
  void (*to_ring)(const T* src, T* ring, int64_t count);
};

using MorphKernels = ByType<MorphKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(MorphKernels, strip_kernels)

}  // namespace nuqi

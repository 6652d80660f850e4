// What the entries of the extrema hand to their kernels, and what they get back.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

template <class T>
struct MinMaxJob {
  Image<const T> src;         // of three channels: at the first pixel's chosen one
  Image<const uint8_t> mask;  // masked forms only
  RoiSize roi;
};

// Places count pixels in raster order from 0; -1 where there is no such pixel.
template <class T>
struct MinMax {
  T min = 0, max = 0;
  int64_t min_at = -1, max_at = -1;
};

template <class T>
struct MinMaxKernelsOf {
  MinMax<T> (*of[2][2])(const MinMaxJob<T>&);  // [three channels][masked]
};

using MinMaxKernels = ByType<MinMaxKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(MinMaxKernels, min_max_kernels)

}  // namespace nuqi

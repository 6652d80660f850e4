// What the entries of the means and deviations hand to their kernels, and what they get back.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

template <class T>
struct MeanJob {
  Image<const T> src;         // of three channels: at the first pixel's chosen one
  Image<const uint8_t> mask;  // masked forms only
  RoiSize roi;
};

struct MeanSums {
  double sum = 0, squares = 0;
  int32_t count = 0;  // masked forms only
};

template <class T>
struct MeanKernelsOf {
  using Kernel = void (*)(const MeanJob<T>&, MeanSums&);
  Kernel mean[2];          // [of three channels], masked
  Kernel deviation[2][2];  // [of three channels][masked]
};

using MeanKernels = ByType<MeanKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(MeanKernels, mean_kernels)

}  // namespace nuqi

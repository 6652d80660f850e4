// What the entries of the thresholds hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

template <class T>
struct ThresholdJob {
  Image<const T> src;
  Image<T> dst;
  RoiSize roi;
  T level, value;
};

template <class T>
struct ThresholdKernelsOf {
  void (*threshold)(const ThresholdJob<T>&);
};

using ThresholdKernels = ByType<ThresholdKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(ThresholdKernels, threshold_kernels)

}  // namespace nuqi

// What the entries of the fixed 3x3 derivatives hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"
#include "filters/result.h"

namespace nuqi {

// Floats have the first four.
enum class Derivative { dx, dy, scharr_dx, scharr_dy, d2x, d2y, dxdy };

template <class T>
struct DerivativeJob {
  Image<const T> src;
  Image<FilterResult<T>> dst;
  RoiSize roi;    // at least 1 x 2
  int32_t shift;  // Scharr of bytes only; 0 to 15
  float scale;    // Scharr of floats only: 2^-shift
};

template <class T>
struct DerivativeKernelsOf {
  void (*of[7])(const DerivativeJob<T>&);  // [derivative]
};

using DerivativeKernels = ByType<DerivativeKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(DerivativeKernels, derivative_kernels)

}  // namespace nuqi

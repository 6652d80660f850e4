// What the entries of the norm family hand to its kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

enum class Norm { inf, l1, l2 };
enum class NormOf { image, difference, relative };

template <class T>
struct NormJob {
  Image<const T> src;   // of three channels: at the first pixel's chosen one
  Image<const T> src2;  // differences only
  Image<const uint8_t> mask;
  RoiSize roi;
};

// The largest magnitude, the sum of magnitudes or the sum of squares.
struct NormTotals {
  double of_image;   // or of the difference
  double of_second;  // relative norms only
};

template <class T>
struct NormKernelsOf {
  NormTotals (*of[3][3][2])(const NormJob<T>&);  // [NormOf][Norm][three channels]
};

using NormKernels = ByType<NormKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(NormKernels, norm_kernels)

}  // namespace nuqi

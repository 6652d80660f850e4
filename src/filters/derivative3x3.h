// What the entries of the fixed 3x3 derivatives hand to their kernels.
#pragma once

#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// Floats have the first four.
enum class Derivative { dx, dy, scharr_dx, scharr_dy, d2x, d2y, dxdy };

// Bytes give 16-bit integers, floats give floats.
template <class T>
struct DerivativeOf {
  using Type = int16_t;
};
template <>
struct DerivativeOf<float> {
  using Type = float;
};

template <class T>
struct DerivativeJob {
  Image<const T> src;
  Image<typename DerivativeOf<T>::Type> dst;
  RoiSize roi;    // at least 1 x 2
  int32_t shift;  // Scharr of bytes only; 0 to 15
  float scale;    // Scharr of floats only: 2^-shift
};

template <class T, int kCount>
struct DerivativeKernelsOf {
  void (*of[kCount])(const DerivativeJob<T>&);
};

struct DerivativeKernels {
  DerivativeKernelsOf<uint8_t, 7> u8;
  DerivativeKernelsOf<int8_t, 7> s8;
  DerivativeKernelsOf<float, 4> f32;
};

NUQI_KERNEL_TABLES(DerivativeKernels, derivative_kernels)

}  // namespace nuqi

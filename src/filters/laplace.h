// What the entries of the Laplace filters hand to their kernels.
#pragma once

#include "core/isa.h"
#include "filters/window.h"

namespace nuqi {

template <class T, class D>
struct LaplaceKernelsOf {
  void (*of[3])(const WindowJob<T, D>&);  // [size 3, 5, 7]
};

struct LaplaceKernels {
  LaplaceKernelsOf<uint8_t, int16_t> u8;
  LaplaceKernelsOf<int8_t, int16_t> s8;
  LaplaceKernelsOf<float, float> f32;
};

NUQI_KERNEL_TABLES(LaplaceKernels, laplace_kernels)

}  // namespace nuqi

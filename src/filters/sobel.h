// What the entries of the Sobel filters hand to their kernels.
#pragma once

#include "core/isa.h"
#include "filters/window.h"

namespace nuqi {

// The coefficients of both kernels from the middle outwards: at k, that of the neighbour k columns to
// the right, or k rows below. Its mirror image's is the same, or the negative for odd orders.
template <class C>
struct SobelWeights {
  C x[4], y[4];
};

template <class T, class D>
using SobelKernel = void (*)(const WindowJob<T, D>&, const SobelWeights<D>&);

template <class T, class D>
struct SobelKernelsOf {
  SobelKernel<T, D> of[3][2][2];  // [aperture 3, 5, 7][x order is odd][y order is odd]
};

struct SobelKernels {
  SobelKernelsOf<uint8_t, int16_t> u8;
  SobelKernelsOf<int8_t, int16_t> s8;
  SobelKernelsOf<float, float> f32;
};

NUQI_KERNEL_TABLES(SobelKernels, sobel_kernels)

}  // namespace nuqi

// What the entries of the Sobel filters hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/isa.h"
#include "filters/result.h"
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

template <class T>
struct SobelKernelsOf {
  SobelKernel<T, FilterResult<T>> of[3][2]
                                    [2];  // [aperture 3, 5, 7][x order is odd][y order is odd]
};

using SobelKernels = ByType<SobelKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(SobelKernels, sobel_kernels)

}  // namespace nuqi

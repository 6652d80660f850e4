// What the entries of the Laplace filters hand to their kernels.
#pragma once

#include "core/by_type.h"
#include "core/isa.h"
#include "filters/result.h"
#include "filters/window.h"

namespace nuqi {

template <class T>
struct LaplaceKernelsOf {
  void (*of[3])(const WindowJob<T, FilterResult<T>>&);  // [size 3, 5, 7]
};

using LaplaceKernels = ByType<LaplaceKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(LaplaceKernels, laplace_kernels)

}  // namespace nuqi

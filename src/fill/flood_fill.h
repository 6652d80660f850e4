// The kernels of the flood fills of equal pixels.
#pragma once

#include "core/by_type.h"
#include "core/isa.h"
#include "fill/fill_words.h"

namespace nuqi {

template <class T>
struct FloodFillKernelsOf {
  FillRegion (*of[2])(const FillJob<T>&);  // [diagonal]
};
using FloodFillKernels = ByType<FloodFillKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(FloodFillKernels, flood_fill_kernels)

}  // namespace nuqi

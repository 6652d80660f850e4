// What the entries of the gradient fills share with their kernels.
#pragma once

#include "core/by_type.h"
#include "core/isa.h"
#include "fill/fill_words.h"

namespace nuqi {

// In the pixels' type: what a byte cannot hold is refused before.
template <class T>
struct FillDeltas {
  T lower, upper;
};

template <class T>
struct GradientFillKernelsOf {
  FillRegion (*of[2])(const FillJob<T>&, const FillDeltas<T>&);  // [diagonal]
};
using GradientFillKernels = ByType<GradientFillKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(GradientFillKernels, gradient_fill_kernels)

}  // namespace nuqi

// What the entries of the accumulation family hand to its kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

enum class Term { add, square, product, weighted };

template <class T>
struct AccumulateJob {
  Image<const T> src, src2;   // src2: products only
  Image<const uint8_t> mask;  // masked forms only
  Image<float> acc;
  RoiSize roi;
  float alpha;  // weighted forms only
};

template <class T>
struct AccumulateKernelsOf {
  void (*of[4][2])(const AccumulateJob<T>&);  // [term][masked]
};

using AccumulateKernels = ByType<AccumulateKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(AccumulateKernels, accumulate_kernels)

}  // namespace nuqi

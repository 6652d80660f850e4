// What the entries of the accumulation family hand to its kernels.
#pragma once

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

struct AccumulateKernels {
  AccumulateKernelsOf<uint8_t> u8;
  AccumulateKernelsOf<int8_t> s8;
  AccumulateKernelsOf<float> f32;
};

NUQI_KERNEL_TABLES(AccumulateKernels, accumulate_kernels)

}  // namespace nuqi

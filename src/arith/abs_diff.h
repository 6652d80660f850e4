// What the entries of the absolute-difference family hand to its kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

template <class T>
struct AbsDiffJob {
  Image<const T> src;
  Image<const T> src2 = {};  // of two images only
  Image<T> dst;
  RoiSize roi;
  T constant = 0;  // of an image and a constant only
};

template <class T>
struct AbsDiffKernelsOf {
  void (*of_images)(const AbsDiffJob<T>&);
  void (*of_constant)(const AbsDiffJob<T>&);
};

using AbsDiffKernels = ByType<AbsDiffKernelsOf, uint8_t, float>;

NUQI_KERNEL_TABLES(AbsDiffKernels, abs_diff_kernels)

}  // namespace nuqi

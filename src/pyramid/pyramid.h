// What the entries of the Gaussian pyramid hand to its kernels.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

template <class T>
struct PyramidJob {
  Image<const T> src;
  Image<T> dst;
  RoiSize roi;  // the source's
};

template <class T>
struct PyramidKernelsOf {
  void (*of[2])(const PyramidJob<T>&);  // [one channel, three]
};

// An object for each direction.
using PyramidKernels = ByType<PyramidKernelsOf, uint8_t, int8_t, float>;

NUQI_KERNEL_TABLES(PyramidKernels, pyramid_down_kernels)
NUQI_KERNEL_TABLES(PyramidKernels, pyramid_up_kernels)

}  // namespace nuqi

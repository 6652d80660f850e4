// What the entry of the fast arctangent hands to its kernels.
#pragma once

#include "core/isa.h"
#include "nuqi/nuqi.h"

namespace nuqi {

struct FastArctanJob {
  const float *y, *x;
  float* angle;
  int32_t length;
};

struct FastArctanKernels {
  void (*fast_arctan)(const FastArctanJob&);
};

NUQI_KERNEL_TABLES(FastArctanKernels, fast_arctan_kernels)

}  // namespace nuqi

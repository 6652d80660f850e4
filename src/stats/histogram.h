// What the entry of the joint histogram hands to its kernel.
#pragma once

#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// The bins of the values of two channels. A pixel's counter lies at the place column + row * row_length
// of a small table.
struct JointBins {
  uint8_t columns[256], rows[256];
  int8_t row_length;
};

struct HistogramKernels {
  // The places of pixels of two interleaved channels, into room for a multiple of 32 of them. Null at
  // levels without lookups in registers: places found one by one and stored take longer than counting
  // without them.
  void (*find_places)(const uint8_t* pixels, int32_t count, const JointBins& bins,
                      uint16_t* places);
};

NUQI_KERNEL_TABLES(HistogramKernels, histogram_kernels)

}  // namespace nuqi

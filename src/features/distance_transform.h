// What the entries of the distance transforms share with their kernels.
#pragma once

#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// Distances are integers, in units of 2^-18, until the last pass makes them floats. That of a pixel
// that no zero has reached; as a float 4096.
constexpr int32_t kDistanceFar = (1 << 30) - 1;

struct DistanceJob {
  Image<const uint8_t> src;
  Image<float> dst;  // holds the integers, too
  RoiSize roi;
  int32_t orthogonal, diagonal, knight;  // the weights of steps, at most kDistanceFar
};

struct DistanceKernels {
  void (*of[2])(const DistanceJob&);  // 3x3 and 5x5
};

NUQI_KERNEL_TABLES(DistanceKernels, distance_kernels)

}  // namespace nuqi

// The distance transforms behind one argument list: for their tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

struct DistanceArgs {
  const uint8_t* src;
  int32_t srcStep;
  float* dst;
  int32_t dstStep;
  RoiSize roi;
  const float* metrics;
};

struct DistanceMember {
  const char* name;
  int weights;
  StatusCode (*of)(const uint8_t*, int32_t, float*, int32_t, RoiSize, const float*);

  StatusCode call(const DistanceArgs& a) const {
    return of(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.metrics);
  }
};

constexpr DistanceMember kDistanceTransforms[] = {
    {"nuqiDistanceTransform_3x3_8u32f_C1R", 2, nuqiDistanceTransform_3x3_8u32f_C1R},
    {"nuqiDistanceTransform_5x5_8u32f_C1R", 3, nuqiDistanceTransform_5x5_8u32f_C1R},
};

}  // namespace nuqi::test

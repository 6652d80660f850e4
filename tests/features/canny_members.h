// Canny behind one argument list: for its tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

struct CannyArgs {
  const int16_t* dx;
  int32_t dxStep;
  const int16_t* dy;
  int32_t dyStep;
  uint8_t* dst;
  int32_t dstStep;
  RoiSize roi;
  float low, high;
  void* buffer;
};

inline StatusCode call_canny(const CannyArgs& a) {
  return nuqiCanny_16s8u_C1R(a.dx, a.dxStep, a.dy, a.dyStep, a.dst, a.dstStep, a.roi, a.low, a.high,
                             a.buffer);
}

}  // namespace nuqi::test

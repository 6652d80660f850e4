// A plain loop of the fast arctangent, as one would write it. Compiled by each compiler.
#include "arith/fast_arctan_plain.h"

#include <cmath>

namespace nuqi::bench::PLAIN_COMPILER {

void plain_fast_arctan(const float* y, const float* x, float* __restrict angle, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const float ax = std::fabs(x[i]), ay = std::fabs(y[i]);
    const float larger = ax > ay ? ax : ay;
    const float t = (ax < ay ? ax : ay) / (larger > 1e-8f ? larger : 1e-8f);
    float a = (-15.8131895f * t + 61.0941963f) * t - 0.140500411f;
    a = ax < ay ? 90.0f - a : a;
    a = x[i] < 0.0f ? 180.0f - a : a;
    angle[i] = y[i] < 0.0f ? 360.0f - a : a;
  }
}

}  // namespace nuqi::bench::PLAIN_COMPILER

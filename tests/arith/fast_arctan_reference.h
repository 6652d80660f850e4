// The fast arctangent of one vector.
#pragma once

#include <cmath>

namespace nuqi::test {

// As the machines' instructions have them: the second operand where either is NaN.
inline float min_reference(float a, float b) { return a < b ? a : b; }
inline float max_reference(float a, float b) { return a > b ? a : b; }

inline float fast_arctan_reference(float y, float x) {
  const float ax = std::fabs(x), ay = std::fabs(y);
  const float numerator = min_reference(ax, ay);
  const float divisor = max_reference(max_reference(ax, ay), 9.99999993922529e-09f);
  const float t = numerator / divisor;
  float a = -15.813189506530762f * t;
  a = a + 61.09419631958008f;
  a = a * t;
  a = a + -0.14050041139125824f;
  if (ax < ay) a = 90.0f - a;
  if (x < 0.0f) a = 180.0f - a;
  if (y < 0.0f) a = 360.0f - a;
  return a;
}

}  // namespace nuqi::test

// Where the samples of a line lie: the error term of a digital line, step by step.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

inline std::vector<PixelPoint> line_reference(PixelPoint start, PixelPoint end) {
  const int64_t dx = int64_t{end.x} - start.x, dy = int64_t{end.y} - start.y;
  const bool x_major = std::abs(dx) > std::abs(dy);
  const int64_t major = std::abs(x_major ? dx : dy), minor = std::abs(x_major ? dy : dx);
  const int32_t x_sign = dx >= 0 ? 1 : -1, y_sign = dy >= 0 ? 1 : -1;
  std::vector<PixelPoint> points;
  PixelPoint at = start;
  int64_t error = major;
  for (int64_t k = 0; k <= major; ++k) {
    points.push_back(at);
    error -= 2 * minor;
    if (error < 0) {
      error += 2 * major;
      (x_major ? at.y : at.x) += x_major ? y_sign : x_sign;
    }
    (x_major ? at.x : at.y) += x_major ? x_sign : y_sign;
  }
  return points;
}

}  // namespace nuqi::test

// Distances by the two passes, pixel after pixel.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// `weights` holds two or three. Integers of 64 bits: nothing can overflow.
inline std::vector<float> distance_reference(const std::vector<uint8_t>& src, RoiSize roi,
                                             const std::vector<float>& weights) {
  std::vector<int64_t> units;
  for (float weight : weights) units.push_back(std::llrint(weight * 262144.0));
  std::vector<int64_t> distances;
  for (uint8_t pixel : src) distances.push_back(pixel == 0 ? 0 : 1073741823);

  const auto at = [&](int x, int y) -> int64_t& {
    return distances[static_cast<size_t>(y) * roi.width + x];
  };
  struct Step {
    int dx, dy;
    size_t weight;
  };
  const Step steps[] = {{-1, 0, 0},  {0, -1, 0}, {-1, -1, 1}, {1, -1, 1},
                        {-2, -1, 2}, {2, -1, 2}, {-1, -2, 2}, {1, -2, 2}};
  const auto visit = [&](int x, int y, int sign) {
    for (const Step& step : steps) {
      const int from_x = x + sign * step.dx, from_y = y + sign * step.dy;
      if (step.weight >= units.size()) continue;
      if (from_x < 0 || from_x >= roi.width || from_y < 0 || from_y >= roi.height) continue;
      at(x, y) = std::min(at(x, y), at(from_x, from_y) + units[step.weight]);
    }
  };
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) visit(x, y, 1);
  for (int y = roi.height - 1; y >= 0; --y)
    for (int x = roi.width - 1; x >= 0; --x) visit(x, y, -1);

  std::vector<float> result;
  for (int64_t distance : distances)
    result.push_back(static_cast<float>(static_cast<double>(distance) / 262144.0));
  return result;
}

}  // namespace nuqi::test

// Canny's edges, one pixel after the other.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// The destination's pixels in raster order, for arguments that the call accepts.
inline std::vector<uint8_t> canny_reference(const int16_t* dx, int32_t dx_step, const int16_t* dy,
                                            int32_t dy_step, RoiSize roi, float low, float high) {
  const int width = roi.width, height = roi.height;
  const auto pixel = [](const int16_t* image, int32_t step, int x, int y) {
    const char* row = reinterpret_cast<const char*>(image) + static_cast<int64_t>(y) * step;
    int16_t value;
    std::memcpy(&value, row + 2 * x, sizeof value);
    return static_cast<int>(value);
  };
  const auto at = [&](int x, int y) { return static_cast<size_t>(y) * width + x; };
  const auto inside = [&](int x, int y) { return x >= 0 && x < width && y >= 0 && y < height; };
  const int low_int = low >= 32767 ? 32767 : static_cast<int>(low);
  const int high_int = high >= 32767 ? 32767 : static_cast<int>(high);
  const size_t pixels = static_cast<size_t>(width) * height;

  std::vector<int> magnitude(pixels);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      // Each image is walked by the other's step here.
      const int sum = std::abs(pixel(dx, dy_step, x, y)) + std::abs(pixel(dy, dx_step, x, y));
      const int m = std::min(sum, 32767);
      magnitude[at(x, y)] = m > low_int ? m : 0;
    }
  const auto magnitude_at = [&](int x, int y) { return inside(x, y) ? magnitude[at(x, y)] : 0; };

  std::vector<bool> kept(pixels);
  std::vector<uint8_t> edges(pixels);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const int gx = pixel(dx, dx_step, x, y), gy = pixel(dy, dy_step, x, y);
      const int m = magnitude[at(x, y)];
      int step_x = 0, step_y = 1;
      if (std::abs(gy) * 4096 < std::abs(gx) * 1697)
        step_x = 1, step_y = 0;
      else if (std::abs(gy) * 4096 < std::abs(gx) * 9889)
        step_x = (gx < 0) == (gy < 0) ? 1 : -1;
      kept[at(x, y)] =
          m > magnitude_at(x - step_x, y - step_y) && m > magnitude_at(x + step_x, y + step_y);
      if (kept[at(x, y)] && m > high_int) edges[at(x, y)] = 255;
    }

  // Until nothing changes: a kept pixel beside an edge is an edge.
  for (bool changed = true; changed;) {
    changed = false;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        if (!kept[at(x, y)] || edges[at(x, y)] != 0) continue;
        for (int ny = y - 1; ny <= y + 1; ++ny)
          for (int nx = x - 1; nx <= x + 1; ++nx)
            if (inside(nx, ny) && edges[at(nx, ny)] != 0) edges[at(x, y)] = 255, changed = true;
      }
  }
  return edges;
}

}  // namespace nuqi::test

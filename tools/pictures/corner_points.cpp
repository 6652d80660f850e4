// The strongest corners of a picture, and marks where they are.
#include "pictures/corner_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nuqi/nuqi.hpp>

#include "pictures/peaks.h"

namespace tools {
namespace {

constexpr std::array<uint8_t, 3> kRing = {255, 138, 30}, kShade = {20, 16, 24};

// Calls visit(x, y) with the pixels nearer than `distance`.
template <class Visit>
void for_each_near(RoiSize size, const Corner& corner, double distance, const Visit& visit) {
  const double reach = std::min(distance, double(std::max(size.width, size.height)));
  const int32_t most = int32_t(std::ceil(reach));
  for (int32_t y = std::max(corner.y - most, 0); y <= std::min(corner.y + most, size.height - 1);
       ++y)
    for (int32_t x = std::max(corner.x - most, 0); x <= std::min(corner.x + most, size.width - 1);
         ++x)
      if (std::hypot(x - corner.x, y - corner.y) < distance) visit(x, y);
}

void put(Picture& picture, int32_t x, int32_t y, const std::array<uint8_t, 3>& ink) {
  if (x < 0 || y < 0 || x >= picture.size.width || y >= picture.size.height) return;
  const size_t pixel = size_t(y) * size_t(picture.size.width) + size_t(x);
  std::copy(ink.begin(), ink.end(), picture.pixels.begin() + ptrdiff_t(3 * pixel));
}

}  // namespace

Plane<float> floats_of(const Plane<uint8_t>& grey) {
  Plane<float> floats(grey.size);
  std::copy(grey.values.begin(), grey.values.end(), floats.values.begin());
  return floats;
}

Plane<float> corner_strength(const Plane<float>& grey, int aperture, int block) {
  Plane<float> strength(grey.size);
  nuqi::min_eigen(grey, strength, {aperture, block});
  return strength;
}

std::vector<Corner> strongest_corners(const Plane<float>& strength, size_t count, double distance) {
  const RoiSize size = strength.size;
  std::vector<Corner> corners;
  Plane<uint8_t> taken(size);
  for (const Peak& peak : peaks_of(strength)) {
    const Corner corner{peak.x, peak.y, peak.value};
    if (corners.size() == count || corner.strength <= 0) break;
    if (taken.values[size_t(corner.y) * size_t(size.width) + size_t(corner.x)]) continue;
    corners.push_back(corner);
    for_each_near(size, corner, distance, [&](int32_t x, int32_t y) {
      taken.values[size_t(y) * size_t(size.width) + size_t(x)] = 1;
    });
  }
  return corners;
}

Picture with_rings(Picture picture, const std::vector<Corner>& corners) {
  for (const auto& [radius, ink] : {std::pair{4, kShade}, std::pair{3, kRing}})
    for (const Corner& corner : corners)
      for (int32_t dy = -radius; dy <= radius; ++dy)
        for (int32_t dx = -radius; dx <= radius; ++dx)
          if (std::lround(std::hypot(dx, dy)) == radius)
            put(picture, corner.x + dx, corner.y + dy, ink);
  return picture;
}

}  // namespace tools

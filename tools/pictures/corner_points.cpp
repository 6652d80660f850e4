// The strongest corners of a picture, and marks where they are.
#include "pictures/corner_points.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tools {
namespace {

template <class T>
constexpr uint32_t kStep = kGreatest<T> / 255;  // between two levels of 8 bits

constexpr std::array<uint8_t, 3> kRing = {255, 138, 30}, kShade = {20, 16, 24};

// Calls visit(x, y) with the pixels nearer than `distance`.
template <class Visit>
void for_each_near(RoiSize size, const Peak& corner, double distance, const Visit& visit) {
  const double reach = std::min(distance, double(std::max(size.width, size.height)));
  const int32_t most = int32_t(std::ceil(reach));
  for (int32_t y = std::max(corner.y - most, 0); y <= std::min(corner.y + most, size.height - 1);
       ++y)
    for (int32_t x = std::max(corner.x - most, 0); x <= std::min(corner.x + most, size.width - 1);
         ++x)
      if (std::hypot(x - corner.x, y - corner.y) < distance) visit(x, y);
}

template <class T>
void put(PictureOf<T>& picture, int32_t x, int32_t y, const std::array<uint8_t, 3>& ink) {
  if (x < 0 || y < 0 || x >= picture.size.width || y >= picture.size.height) return;
  const size_t pixel = size_t(y) * size_t(picture.size.width) + size_t(x);
  T* const samples = &picture.pixels[pixel * size_t(picture.channels)];
  for (size_t c = 0; c < ink.size(); ++c) samples[c] = T(ink[c] * kStep<T>);
  if (picture.channels == 4) samples[3] = T(kGreatest<T>);
}

}  // namespace

template <class T>
Plane<float> floats_of(const Plane<T>& grey) {
  Plane<float> floats(grey.size);
  std::transform(grey.values.begin(), grey.values.end(), floats.values.begin(),
                 [](T level) { return float(level) / kStep<T>; });
  return floats;
}

std::vector<Peak> strongest_corners(const Plane<float>& strength, size_t count, double distance) {
  const RoiSize size = strength.size;
  std::vector<Peak> corners;
  Plane<uint8_t> taken(size);
  for (const Peak& peak : peaks_of(strength)) {
    if (corners.size() == count || peak.value <= 0) break;
    if (taken.values[size_t(peak.y) * size_t(size.width) + size_t(peak.x)]) continue;
    corners.push_back(peak);
    for_each_near(size, peak, distance, [&](int32_t x, int32_t y) {
      taken.values[size_t(y) * size_t(size.width) + size_t(x)] = 1;
    });
  }
  return corners;
}

template <class T>
PictureOf<T> with_rings(PictureOf<T> picture, const std::vector<Peak>& corners) {
  for (const auto& [radius, ink] : {std::pair{4, kShade}, std::pair{3, kRing}})
    for (const Peak& corner : corners)
      for (int32_t dy = -radius; dy <= radius; ++dy)
        for (int32_t dx = -radius; dx <= radius; ++dx)
          if (std::lround(std::hypot(dx, dy)) == radius)
            put(picture, corner.x + dx, corner.y + dy, ink);
  return picture;
}

template Plane<float> floats_of(const Plane<uint8_t>&);
template Plane<float> floats_of(const Plane<float>&);
template Picture with_rings(Picture, const std::vector<Peak>&);
template PictureOf<float> with_rings(PictureOf<float>, const std::vector<Peak>&);

}  // namespace tools

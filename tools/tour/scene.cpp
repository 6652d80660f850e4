// What the tour works on: a picture from a file, or a landscape that the program draws itself.
#include "tour/scene.h"

#include <algorithm>
#include <cmath>

#include "tour/landscape.h"
#include "tour/page_picture.h"

namespace tools {
namespace {

constexpr int32_t kLongestSide = 1024;

Scene scene_of(std::string name, Picture picture) {
  Scene scene;
  scene.file_size = picture.size;
  picture = shrunk(picture, kLongestSide, Shrink::mean);
  scene.name = std::move(name);
  scene.grey = with_two_rows(grey_of(picture));
  scene.colour = std::move(picture);
  return scene;
}

// A ball lit from the upper left.
void draw_ball(Plane<uint8_t>& frame, double centre_x, double centre_y, double radius,
               double tone) {
  const RoiSize size = frame.size;
  const auto first = [](double at) { return std::max(0, int32_t(std::ceil(at))); };
  const auto end = [](double at, int32_t limit) { return std::min(limit, int32_t(at) + 1); };
  for (int32_t y = first(centre_y - radius); y < end(centre_y + radius, size.height); ++y) {
    for (int32_t x = first(centre_x - radius); x < end(centre_x + radius, size.width); ++x) {
      const double u = (x - centre_x) / radius, v = (y - centre_y) / radius;
      const double depth = 1 - u * u - v * v;
      if (depth <= 0) continue;
      const double light = 0.35 + 0.65 * std::max(0.0, (std::sqrt(depth) - u - v) / std::sqrt(3.0));
      frame.values[size_t(y) * size_t(size.width) + size_t(x)] = uint8_t(tone * light);
    }
  }
}

}  // namespace

Scene scene_of_file(const std::string& path) {
  return scene_of(path.substr(path.find_last_of('/') + 1), read_picture(path));
}

Scene built_in_scene() { return scene_of("the built-in landscape", landscape()); }

Plane<uint8_t> frame_of(const Scene& scene, int index, int count) {
  Plane<uint8_t> frame = scene.grey;
  const double width = frame.size.width, height = frame.size.height;
  const double radius = 0.11 * std::min(width, height);
  const double way = (index + 0.5) / count;
  draw_ball(frame, way * width, height * (0.3 + 0.12 * std::sin(9 * way)), radius, 250);
  draw_ball(frame, (1 - way) * width, height * 0.72, 0.8 * radius, 110);
  uint32_t position = 0;
  for (uint8_t& value : frame.values) {
    const uint32_t bits = hash(position++, uint32_t(index), 7);
    const int noise = int(bits & 255) + int(bits >> 8 & 255) + int(bits >> 16 & 255) +
                      int(bits >> 24) - 510;  // close to normal, deviation 148
    value = uint8_t(std::clamp(int(value) + noise / 32, 0, 255));
  }
  return frame;
}

Plane<uint8_t> ellipse_mask(RoiSize size) {
  Plane<uint8_t> mask(size);
  size_t i = 0;
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      const double u = (2 * x + 1.0) / size.width - 1, v = (2 * y + 1.0) / size.height - 1;
      mask.values[i++] = u * u + v * v < 0.7 ? 255 : 0;
    }
  }
  return mask;
}

}  // namespace tools

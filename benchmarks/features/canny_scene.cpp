// Draws the scene and takes its derivatives.
#include "features/canny_scene.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace nuqi::bench {
namespace {

// A value from 0 to 1 for each point of a lattice.
float lattice(int x, int y, uint32_t seed) {
  uint32_t h =
      static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u ^ seed;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  return static_cast<float>((h ^ h >> 15) >> 8) / 16777216.0f;
}

// Smooth noise from 0 to 1 whose spots are `size` pixels wide.
float noise(float x, float y, float size, uint32_t seed) {
  const float fx = x / size, fy = y / size;
  const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
  const float u = fx - ix, v = fy - iy, a = u * u * (3 - 2 * u), b = v * v * (3 - 2 * v);
  const float top = std::lerp(lattice(ix, iy, seed), lattice(ix + 1, iy, seed), a);
  const float bottom = std::lerp(lattice(ix, iy + 1, seed), lattice(ix + 1, iy + 1, seed), a);
  return std::lerp(top, bottom, b);
}

struct Object {
  float x, y, radius, angle, brightness, texture;
  bool box;
};

float distance_to(const Object& object, float x, float y) {
  const float dx = x - object.x, dy = y - object.y;
  if (!object.box) return std::hypot(dx, dy) - object.radius;
  const float c = std::cos(object.angle), s = std::sin(object.angle);
  return std::max(std::abs(c * dx + s * dy), 2 * std::abs(c * dy - s * dx)) - object.radius;
}

// The scene's pixels, row after row.
std::vector<uint8_t> paint(RoiSize roi) {
  const size_t pixels = static_cast<size_t>(roi.width) * roi.height;
  std::vector<float> light(pixels), texture(pixels);
  const auto for_each_pixel = [&](float left, float top, float right, float bottom, auto visit) {
    const int x0 = std::max(0, static_cast<int>(left)), y0 = std::max(0, static_cast<int>(top));
    const int x1 = std::min(roi.width, static_cast<int>(right));
    const int y1 = std::min(roi.height, static_cast<int>(bottom));
    for (int y = y0; y < y1; ++y)
      for (int x = x0; x < x1; ++x)
        visit(static_cast<float>(x), static_cast<float>(y), static_cast<size_t>(y) * roi.width + x);
  };
  const float width = static_cast<float>(roi.width), height = static_cast<float>(roi.height);

  for_each_pixel(0, 0, width, height, [&](float x, float y, size_t i) {
    light[i] = 90 + 60 * noise(x, y, 300, 1) + y * 0.05f;
    texture[i] = y > 0.7f * height ? 80 : 0;  // grass
  });
  // As many objects to the area at every size.
  for (int n = 0; n <= static_cast<int>(pixels / 1200); ++n) {
    const auto random = [&](uint32_t seed) { return lattice(n, 0, seed); };
    const Object object = {
        random(11) * width, random(12) * height,   4 + 60 * random(13) * random(14) * random(14),
        6 * random(15),     30 + 190 * random(16), random(17) < 0.4f ? 120 * random(18) : 0,
        random(19) < 0.6f};
    const float reach = 1.5f * object.radius + 2;
    for_each_pixel(object.x - reach, object.y - reach, object.x + reach, object.y + reach,
                   [&](float x, float y, size_t i) {
                     const float outside = distance_to(object, x, y) / 2.5f;  // a soft outline
                     const float inside = std::clamp(0.5f - outside, 0.0f, 1.0f);
                     const float own = object.brightness + 0.2f * (x - object.x);
                     light[i] = std::lerp(light[i], own, inside);
                     texture[i] = std::lerp(texture[i], object.texture, inside);
                   });
  }
  std::vector<uint8_t> picture(pixels);
  for_each_pixel(0, 0, width, height, [&](float x, float y, size_t i) {
    const float spots = noise(x, y, 7, 2) + 0.5f * noise(x, y, 3, 3) - 0.75f;
    const float sensor = lattice(static_cast<int>(x), static_cast<int>(y), 4) - 0.5f;
    const float value = light[i] + texture[i] * spots + 6 * sensor;
    picture[i] = static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f));
  });
  return picture;
}

}  // namespace

CannyScene::CannyScene(RoiSize roi)
    : dx(static_cast<size_t>(roi.width) * roi.height),
      dy(static_cast<size_t>(roi.width) * roi.height),
      buffer([&] {
        int32_t size = 0;
        nuqiCannyGetSize(roi, &size);
        return static_cast<size_t>(size);
      }()) {
  const std::vector<uint8_t> picture = paint(roi);
  const auto at = [&](int x, int y) {
    return static_cast<size_t>(std::clamp(y, 0, roi.height - 1)) * roi.width +
           std::clamp(x, 0, roi.width - 1);
  };
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) {
      const auto p = [&](int i, int j) { return int{picture[at(x + i, y + j)]}; };
      dx.get()[at(x, y)] = static_cast<int16_t>(p(1, -1) - p(-1, -1) + 2 * (p(1, 0) - p(-1, 0)) +
                                                p(1, 1) - p(-1, 1));
      dy.get()[at(x, y)] = static_cast<int16_t>(p(-1, 1) - p(-1, -1) + 2 * (p(0, 1) - p(0, -1)) +
                                                p(1, 1) - p(1, -1));
    }
}

CannyScene& canny_scene(RoiSize roi) {
  static std::map<std::pair<int, int>, std::unique_ptr<CannyScene>> made;
  auto& entry = made[{roi.width, roi.height}];
  if (!entry) entry = std::make_unique<CannyScene>(roi);
  return *entry;
}

}  // namespace nuqi::bench

// How distances are shown: in colours, with contour lines and a scale.
#include "pictures/distance_picture.h"

#include <algorithm>
#include <cmath>

#include "pictures/colours.h"
#include "pictures/plot.h"
#include "pictures/scale.h"

namespace tools {
namespace {

constexpr Ink kContour = {150, 220, 255};

}  // namespace

double distance_range(const Plane<float>& distances) {
  return std::max(1.0, double(*std::max_element(distances.values.begin(), distances.values.end())));
}

Picture distance_picture(const Plane<float>& distances, double range) {
  return heat_colours(distances, range);
}

void draw_contours(Picture& picture, const Plane<float>& distances, double step) {
  const int32_t width = distances.size.width, height = distances.size.height;
  const auto band = [&](int32_t x, int32_t y) {
    return std::floor(double(distances.values[size_t(y) * size_t(width) + size_t(x)]) / step);
  };
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const double here = band(x, y);
      if ((x > 0 && band(x - 1, y) < here) || (x + 1 < width && band(x + 1, y) < here) ||
          (y > 0 && band(x, y - 1) < here) || (y + 1 < height && band(x, y + 1) < here)) {
        fill(picture, x, y, x, y, kContour);
      }
    }
  }
}

Picture with_scale(const Picture& picture, double range, double step) {
  return with_scale(picture, {0, range, step},
                    [&](const Plane<float>& values) { return heat_colours(values, range); });
}

}  // namespace tools

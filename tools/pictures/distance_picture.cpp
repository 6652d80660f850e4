// How distances are shown: in colours, with contour lines and a scale.
#include "pictures/distance_picture.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "pictures/plot.h"
#include "tour/colours.h"

namespace tools {
namespace {

constexpr Ink kContour = {150, 220, 255}, kSheet = {16, 18, 24}, kNumbers = {205, 210, 220};
constexpr int32_t kLeastWidth = 320;  // of a sheet: the widest numbers do not touch

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
  const int32_t width = std::max(picture.size.width, kLeastWidth);
  const int32_t dot = std::max(2, width / 480), margin = 8 * dot, bar = 6 * dot;
  const int32_t top = picture.size.height + 4 * dot;
  Picture sheet({width, top + bar + 13 * dot}, 3);
  fill(sheet, 0, 0, width - 1, sheet.size.height - 1, kSheet);
  for (int32_t y = 0; y < picture.size.height; ++y) {
    const size_t row = 3 * size_t(picture.size.width);
    std::copy_n(picture.pixels.begin() + ptrdiff_t(size_t(y) * row), row,
                sheet.pixels.begin() + 3 * ptrdiff_t(y) * width);
  }

  const int32_t last = width - 2 * margin - 1;  // of the bar's columns
  Plane<float> values({last + 1, 1});
  for (int32_t x = 0; x <= last; ++x) values.values[size_t(x)] = float(x * range / last);
  const Picture colours = heat_colours(values, range);
  for (int32_t x = 0; x <= last; ++x) {
    const uint8_t* rgb = &colours.pixels[3 * size_t(x)];
    fill(sheet, margin + x, top, margin + x, top + bar - 1, {rgb[0], rgb[1], rgb[2]});
  }
  for (double value = 0; value <= range; value += step) {
    const int32_t x = margin + int32_t(std::lround(value / range * last));
    const int32_t half = 2 * dot * int32_t(std::to_string(int64_t(value)).size());
    fill(sheet, x - dot / 2, top + bar, x + dot / 2, top + bar + 2 * dot - 1, kNumbers);
    draw_number(sheet, value, std::min(x + half, width - dot), top + bar + 6 * dot, dot, kNumbers);
  }
  return sheet;
}

}  // namespace tools

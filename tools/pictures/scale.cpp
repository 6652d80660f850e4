// A scale of colours below a picture.
#include "pictures/scale.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "pictures/plot.h"

namespace tools {
namespace {

constexpr Ink kNumbers = {205, 210, 220};
constexpr int32_t kLeastWidth = 320;  // of a sheet: the widest numbers do not touch

// A multiple of `step`, in thousands, millions or thousands of millions where all such multiples are.
std::string number_text(double value, double step) {
  if (value == 0) return "0";
  const char* units[] = {"", "k", "M", "G"};
  size_t unit = 0;
  for (; unit < 3 && step >= 1e3; ++unit) step /= 1e3, value /= 1e3;
  const int decimals = std::max(0, int(std::ceil(-std::log10(step) - 1e-9)));
  char text[40];
  std::snprintf(text, sizeof text, "%.*f%s", decimals, value, units[unit]);
  return text;
}

}  // namespace

Scale scale_of(double low, double high) {
  constexpr double kFinest = 1e-4;  // step_to gives whole numbers
  return {low, high, step_to((high - low) / kFinest) * kFinest};
}

Picture with_scale(const Picture& picture, const Scale& scale, const Colouring& colours) {
  const auto [low, high, step] = scale;
  const int32_t width = std::max(picture.size.width, kLeastWidth);
  const int32_t dot = std::max(2, width / 480), margin = 8 * dot, bar = 6 * dot;
  const int32_t top = picture.size.height + 4 * dot;
  Picture sheet({width, top + bar + 13 * dot}, 3);
  fill(sheet, 0, 0, width - 1, sheet.size.height - 1, kSheetInk);
  for (int32_t y = 0; y < picture.size.height; ++y) {
    const size_t row = 3 * size_t(picture.size.width);
    std::copy_n(picture.pixels.begin() + ptrdiff_t(size_t(y) * row), row,
                sheet.pixels.begin() + 3 * ptrdiff_t(y) * width);
  }

  const int32_t last = width - 2 * margin - 1;  // of the bar's columns
  const double span = high - low;
  Plane<float> values({last + 1, 1});
  for (int32_t x = 0; x <= last; ++x) values.values[size_t(x)] = float(low + x * span / last);
  const Picture bar_colours = colours(values);
  for (int32_t x = 0; x <= last; ++x) {
    const uint8_t* rgb = &bar_colours.pixels[3 * size_t(x)];
    fill(sheet, margin + x, top, margin + x, top + bar - 1, {rgb[0], rgb[1], rgb[2]});
  }
  for (double count = std::ceil(low / step); count * step <= high; ++count) {
    const int32_t x = margin + int32_t(std::lround((count * step - low) / span * last));
    const std::string text = number_text(count * step, step);
    const int32_t half = 2 * dot * int32_t(text.size());
    fill(sheet, x - dot / 2, top + bar, x + dot / 2, top + bar + 2 * dot - 1, kNumbers);
    draw_number(sheet, text, std::clamp(x + half, 2 * half, width - dot), top + bar + 6 * dot, dot,
                kNumbers);
  }
  return sheet;
}

}  // namespace tools

// Small diagrams: bars and curves over a grid, with numbers at the axes.
#include "pictures/plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace tools {
namespace {

constexpr RoiSize kSheet{640, 360};
constexpr int32_t kLeft = 76, kRight = 619, kTop = 16, kBottom = 323;  // of the diagram, ends in
constexpr Ink kGrid = {226, 229, 234}, kAxis = {120, 128, 140}, kText = {70, 76, 88};
constexpr int32_t kDot = 2;  // the side of a digit's dot

// The dots of a sign, row by row, the highest bit first.
constexpr uint16_t kDigits[10] = {
    0b111101101101111, 0b010110010010111, 0b111001111100111, 0b111001111001111, 0b101101111001001,
    0b111100111001111, 0b111100111101111, 0b111001010010010, 0b111101111101111, 0b111101111001111};

uint16_t dots_of(char sign) {
  switch (sign) {
    case '-': return 0b000000111000000;
    case '.': return 0b000000000000010;
    case 'k': return 0b101101110101101;
    case 'M': return 0b101111111101101;
    case 'G': return 0b111100101101111;
    default: return kDigits[sign - '0'];
  }
}

}  // namespace

double step_to(double end) {
  double step = 1;
  for (int i = 0; end / step > 6; ++i) step *= i % 3 == 1 ? 2.5 : 2;
  return step;
}

void fill(Picture& picture, int32_t left, int32_t top, int32_t right, int32_t bottom, Ink ink) {
  for (int32_t y = top; y <= bottom; ++y) {
    for (int32_t x = left; x <= right; ++x) {
      std::copy(ink.begin(), ink.end(),
                picture.pixels.begin() + 3 * (ptrdiff_t(y) * picture.size.width + x));
    }
  }
}

void draw_number(Picture& picture, double value, int32_t right, int32_t middle, int32_t dot,
                 Ink ink) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", value);
  draw_number(picture, text, right, middle, dot, ink);
}

void draw_number(Picture& picture, const std::string& text, int32_t right, int32_t middle,
                 int32_t dot, Ink ink) {
  int32_t x = right - int32_t(text.size()) * 4 * dot + dot;
  for (const char sign : text) {
    const uint16_t dots = dots_of(sign);
    for (int32_t i = 0; i < 15; ++i) {
      if ((dots >> (14 - i) & 1) == 0) continue;
      const int32_t left = x + i % 3 * dot, top = middle + (i / 3 - 2) * dot - dot / 2;
      fill(picture, left, top, left + dot - 1, top + dot - 1, ink);
    }
    x += 4 * dot;
  }
}

Plot::Plot(double last, double top) : picture_(kSheet, 3), last_(last), top_(std::max(top, 1.0)) {
  std::fill(picture_.pixels.begin(), picture_.pixels.end(), uint8_t{255});
  grid();
}

int32_t Plot::column_of(double place) const {
  if (last_ <= 0) return (kLeft + kRight) / 2;
  return kLeft + int32_t(std::lround(std::clamp(place / last_, 0.0, 1.0) * (kRight - kLeft)));
}

int32_t Plot::row_of(double value) const {
  return kBottom - int32_t(std::lround(std::clamp(value / top_, 0.0, 1.0) * (kBottom - kTop)));
}

void Plot::fill(int32_t left, int32_t top, int32_t right, int32_t bottom, Ink ink) {
  tools::fill(picture_, left, top, right, bottom, ink);
}

void Plot::grid() {
  for (double value = 0; value <= top_; value += step_to(top_)) {
    const int32_t y = row_of(value);
    fill(kLeft, y, kRight, y, kGrid);
    draw_number(picture_, value, kLeft - 8, y, kDot, kText);
  }
  for (double place = 0; place <= last_; place += step_to(last_)) {
    const int32_t x = column_of(place);
    fill(x, kTop, x, kBottom, kGrid);
    const int32_t half = place < 10 ? kDot : place < 100 ? 4 * kDot : 6 * kDot;
    draw_number(picture_, place, std::min(x + half, kSheet.width - 4), kBottom + 16, kDot, kText);
  }
  fill(kLeft, kBottom + 1, kRight, kBottom + 1, kAxis);
  fill(kLeft - 1, kTop, kLeft - 1, kBottom + 1, kAxis);
}

void Plot::bars(const std::vector<double>& values, Ink ink) {
  const double width = double(kRight - kLeft + 1) / double(values.size());
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] <= 0) continue;
    const int32_t left = kLeft + int32_t(double(i) * width);
    const int32_t right = kLeft + int32_t(double(i + 1) * width) - 1;
    fill(left, row_of(values[i]), std::max(left, right), kBottom, ink);
  }
}

void Plot::curve(const std::vector<double>& values, Ink ink) {
  for (size_t i = 0; i < values.size(); ++i) {
    const int32_t x = column_of(double(i)), y = row_of(values[i]);
    const size_t next = std::min(i + 1, values.size() - 1);
    const int32_t x2 = column_of(double(next)), y2 = row_of(values[next]);
    const int32_t steps = std::max({x2 - x, std::abs(y2 - y), int32_t{1}});
    for (int32_t k = 0; k <= steps; ++k) {
      const int32_t u = x + (x2 - x) * k / steps, v = y + (y2 - y) * k / steps;
      fill(u, std::max(v - 1, kTop), u, v, ink);
    }
  }
}

void Plot::channel_curves(const std::vector<uint8_t>& pixels) {
  std::vector<double> values(pixels.size() / 3);
  for (size_t c = 0; c < 3; ++c) {
    for (size_t i = 0; i < values.size(); ++i) values[i] = pixels[3 * i + c];
    curve(values, kChannelInks[c]);
  }
}

}  // namespace tools

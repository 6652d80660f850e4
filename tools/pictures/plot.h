// Small diagrams: bars and curves over a grid, with numbers at the axes.
#pragma once

#include <array>

#include "pictures/picture.h"

namespace tools {

using Ink = std::array<uint8_t, 3>;  // red, green, blue
inline constexpr Ink kGreyInk = {70, 80, 96};
inline constexpr Ink kChannelInks[3] = {{220, 60, 50}, {30, 160, 80}, {50, 100, 230}};

// 1, 2 or 5 times a power of ten, so that at most six steps reach `end`; whole numbers.
double step_to(double end);

// A rectangle of a colour picture, both ends in.
void fill(Picture& picture, int32_t left, int32_t top, int32_t right, int32_t bottom, Ink ink);

// A whole number whose digits are 3 dots wide and 5 high, of `dot` pixels each: it ends before column
// `right`, and `middle` is its middle row. Each digit takes 4 dots.
void draw_number(Picture& picture, double value, int32_t right, int32_t middle, int32_t dot,
                 Ink ink);
// The same of a text of digits and the signs "-.kMG".
void draw_number(Picture& picture, const std::string& text, int32_t right, int32_t middle,
                 int32_t dot, Ink ink);

class Plot {
 public:
  // A white sheet with a grid for places 0 to `last` and values 0 to `top`.
  Plot(double last, double top);

  // One bar a value; they fill the width, each half a place to either side of its own.
  void bars(const std::vector<double>& values, Ink ink);
  // A curve through the values at places 0, 1, 2 ...
  void curve(const std::vector<double>& values, Ink ink);
  // A curve for each channel of a picture's pixels, in the channels' inks.
  void channel_curves(const std::vector<uint8_t>& pixels);

  const Picture& picture() const { return picture_; }

 private:
  int32_t column_of(double place) const;
  int32_t row_of(double value) const;
  void fill(int32_t left, int32_t top, int32_t right, int32_t bottom, Ink ink);  // both ends in
  void grid();

  Picture picture_;
  double last_, top_;
};

}  // namespace tools

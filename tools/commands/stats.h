// What statistics are taken of, and the kinds of statistics, one source file each.
#pragma once

#include <nuqi/hpp/image.hpp>
#include <string>

#include "pictures/picture.h"

namespace tools {

// Grey levels, or those of one channel of a colour picture.
struct Levels {
  Plane<uint8_t> plane;
  int channel = 0;  // 1 to 3; 0 where they are grey levels
};

struct Selection {
  Plane<uint8_t> plane;
  int64_t count = 0;  // of pixels, at least 1

  nuqi::Mask mask() const { return nuqi::Mask(plane); }
};

// Each prints lines that begin with a name and go on with its value.
constexpr int kNameWidth = 20;
void print_means(const Levels& levels, const Selection& selection);
void print_extrema(const Levels& levels, const Selection& selection);
void print_norms(const Levels& levels, const Selection& selection);
void print_distance(const Levels& levels, const Levels& other, const Selection& selection);
void print_histogram(const Levels& levels, const Selection& selection, int bins);

// Writes a picture of one bar for each level.
void draw_histogram(const Levels& levels, const Selection& selection, const std::string& path);

}  // namespace tools

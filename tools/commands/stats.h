// What statistics are taken of, and the kinds of statistics, one source file each.
#pragma once

#include <algorithm>
#include <string>

#include "pictures/picture.h"

namespace tools {

// Grey levels, or one channel of a colour picture.
struct Levels {
  Picture picture;
  int channel = 0;  // 1 to 3; 0 where the picture is grey

  RoiSize size() const { return picture.size; }
  int32_t step() const { return picture.size.width * picture.channels; }
  const uint8_t* at(int32_t x, int32_t y) const {
    return picture.pixels.data() + ptrdiff_t(step()) * y + ptrdiff_t(picture.channels) * x;
  }
};

struct Selection {
  Plane<uint8_t> mask;
  int64_t count = 0;  // of pixels, at least 1

  const uint8_t* at(int32_t x, int32_t y) const {
    return mask.data() + ptrdiff_t(mask.step()) * y + x;
  }
};

// The library sums bytes in 32 bits. Larger pictures are taken in tiles whose sums stay below 2^31.
template <class Body>
void for_tiles(RoiSize size, const Body& body) {
  constexpr int32_t kSide = 2048;
  for (int32_t y = 0; y < size.height; y += kSide) {
    for (int32_t x = 0; x < size.width; x += kSide) {
      body(x, y, RoiSize{std::min(kSide, size.width - x), std::min(kSide, size.height - y)});
    }
  }
}

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

// Levels of a pyramid of colour pictures, and the differences between them.
#pragma once

#include <vector>

#include "pictures/picture.h"

namespace tools {

// How often a picture can be halved until it is a single pixel.
int most_levels(RoiSize size);

// The picture with its last column and row once more, where that makes its width and height even.
Picture made_even(const Picture& picture);

// One level down, and up to `size`: twice the picture's, or one pixel less.
Picture level_down(const Picture& picture);
Picture level_up(const Picture& picture, RoiSize size);

// The picture, and so many levels down from it.
std::vector<Picture> levels_of(const Picture& picture, int count);

// What a level lacks that comes up from the one below, in 16 bits.
using Differences = std::vector<int16_t>;
Differences differences_of(const Picture& level, const Picture& below);
Picture rebuilt_level(const Differences& differences, const Picture& below, RoiSize size);
// Of all levels but the last; and the first level again, from those and the last.
std::vector<Differences> differences_of(const std::vector<Picture>& levels);
Picture rebuilt(const std::vector<Differences>& differences, const std::vector<Picture>& levels);
int largest_deviation(const Picture& a, const Picture& b);

// Differences to look at: 128 is none.
Picture picture_of(const Differences& differences, RoiSize size);
// The levels with their differences in place of all but the last.
std::vector<Picture> pictures_of(const std::vector<Differences>& differences,
                                 const std::vector<Picture>& levels);

// All on one white sheet: the first on top, the others in a row below.
Picture sheet_of(const std::vector<Picture>& levels);

}  // namespace tools

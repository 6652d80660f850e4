// Levels of a pyramid of pictures, and the differences between them.
#pragma once

#include <vector>

#include "clock.h"
#include "pictures/picture.h"

namespace tools {

// How often a picture can be halved until it is a single pixel.
int most_levels(RoiSize size);

// The picture with its last column and row once more, where that makes its width and height even.
template <class T>
PictureOf<T> made_even(const PictureOf<T>& picture);

// The picture, and so many levels down from it. `calls` times the library.
template <class T>
std::vector<PictureOf<T>> levels_of(const PictureOf<T>& picture, int count, Stopwatch& calls);

// What a level lacks that comes up from the one below; of opaque pictures.
using Differences = std::vector<int32_t>;
template <class T>
Differences differences_of(const PictureOf<T>& level, const PictureOf<T>& below);
template <class T>
PictureOf<T> rebuilt_level(const Differences& differences, const PictureOf<T>& below, RoiSize size);
// Of all levels but the last; and the first level again, from those and the last.
template <class T>
std::vector<Differences> differences_of(const std::vector<PictureOf<T>>& levels);
template <class T>
PictureOf<T> rebuilt(const std::vector<Differences>& differences,
                     const std::vector<PictureOf<T>>& levels);
template <class T>
int largest_deviation(const PictureOf<T>& a, const PictureOf<T>& b);

// The levels with their differences, to look at, in place of all but the last: the middle level, 128 of bytes,
// is none.
template <class T>
std::vector<PictureOf<T>> pictures_of(const std::vector<Differences>& differences,
                                      const std::vector<PictureOf<T>>& levels);

// All on one white sheet: the first on top, the others in a row below.
template <class T>
PictureOf<T> sheet_of(const std::vector<PictureOf<T>>& levels);

}  // namespace tools

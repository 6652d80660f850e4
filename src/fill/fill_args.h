// What the entries of both kinds of fills ask of their arguments.
#pragma once

#include <cstring>

#include "core/image.h"

namespace nuqi {

// One pixel, wherever it lies.
template <class T>
T pixel_of(const Image<T>& image, PixelPoint at) {
  T value;
  std::memcpy(&value, row_of(image, at.y) + at.x, sizeof value);
  return value;
}

// Negative coordinates are large unsigned ones.
constexpr bool inside(PixelPoint at, RoiSize roi) {
  return static_cast<uint32_t>(at.x) < static_cast<uint32_t>(roi.width) &&
         static_cast<uint32_t>(at.y) < static_cast<uint32_t>(roi.height);
}

// The search's part of the buffer as the queries tell it: six bytes a pixel, of a product that wraps.
constexpr uint32_t fill_words_size(RoiSize roi) {
  return static_cast<uint32_t>(roi.width) * static_cast<uint32_t>(roi.height) * 24 >> 2;
}

}  // namespace nuqi

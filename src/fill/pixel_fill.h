// A region found pixel by pixel: in images too narrow for words of 64.
#pragma once

#include <algorithm>
#include <cstring>

#include "fill/fill_words.h"

namespace nuqi {

// One pixel, wherever it lies.
template <class T>
T pixel_of(const Image<T>& image, PixelPoint at) {
  T value;
  std::memcpy(&value, row_of(image, at.y) + at.x, sizeof value);
  return value;
}
template <class T>
void set_pixel(const Image<T>& image, PixelPoint at, T value) {
  std::memcpy(row_of(image, at.y) + at.x, &value, sizeof value);
}

// Negative coordinates are large unsigned ones.
constexpr bool inside(PixelPoint at, RoiSize roi) {
  return static_cast<uint32_t>(at.x) < static_cast<uint32_t>(roi.width) &&
         static_cast<uint32_t>(at.y) < static_cast<uint32_t>(roi.height);
}

// The stack's size as the queries tell it: six bytes a pixel, of a product that wraps.
constexpr uint32_t fill_stack_size(RoiSize roi) {
  return static_cast<uint32_t>(roi.width) * static_cast<uint32_t>(roi.height) * 24 >> 2;
}

// Pixels of a region whose neighbours have not been looked at, in six bytes each.
class PixelStack {
 public:
  explicit PixelStack(void* buffer) : start_(static_cast<char*>(buffer)) {}

  bool empty() const { return size_ == 0; }
  void push(PixelPoint at) {
    const int16_t x = static_cast<int16_t>(at.x);  // of a narrow image
    std::memcpy(start_ + size_, &at.y, sizeof at.y);
    std::memcpy(start_ + size_ + sizeof at.y, &x, sizeof x);
    size_ += kEntry;
  }
  PixelPoint pop() {
    int32_t y;
    int16_t x;
    size_ -= kEntry;
    std::memcpy(&y, start_ + size_, sizeof y);
    std::memcpy(&x, start_ + size_ + sizeof y, sizeof x);
    return {x, y};
  }

 private:
  static constexpr int64_t kEntry = 6;
  char* start_;
  int64_t size_ = 0;
};

// Visits the region of `seed`, which has been taken: take(from, to) tells whether a neighbour belongs to
// it and was not taken before. The value of what it returns is left to the caller.
//
// The buffer holds six bytes a pixel. A pixel is pushed when it is taken, so once, and the seed is gone
// before another is pushed: there are never more than max(1, width * height - 1) entries.
template <bool diagonal, class Take>
FillRegion fill_pixels(RoiSize roi, PixelPoint seed, void* buffer, const Take& take) {
  constexpr PixelPoint kBeside[] = {{0, -1},  {-1, 0}, {1, 0},  {0, 1},
                                    {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
  PixelStack stack(buffer);
  PixelPoint first = seed, last = seed;
  int64_t area = 0;
  for (stack.push(seed); !stack.empty(); ++area) {
    const PixelPoint from = stack.pop();
    first = {std::min(first.x, from.x), std::min(first.y, from.y)};
    last = {std::max(last.x, from.x), std::max(last.y, from.y)};
    for (int i = 0; i < (diagonal ? 8 : 4); ++i) {
      const PixelPoint to = {from.x + kBeside[i].x, from.y + kBeside[i].y};
      if (inside(to, roi) && take(from, to)) stack.push(to);
    }
  }
  return {.area = static_cast<double>(area),
          .value = 0,
          .x = first.x,
          .y = first.y,
          .width = last.x - first.x + 1,
          .height = last.y - first.y + 1};
}

}  // namespace nuqi

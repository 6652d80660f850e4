// An image argument: the ROI's first pixel and the row step in bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nuqi/nuqi.h"

namespace nuqi {

template <class T>
struct Image {
  T* data = nullptr;
  int32_t step = 0;
};

// Forced inline, since kernels call it: a copy that the linker shares between instruction sets would
// run the newest one's everywhere.
template <class T>
__attribute__((always_inline)) inline T* row_of(const Image<T>& image, int64_t y) {
  return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(image.data) +
                              static_cast<uintptr_t>(y * image.step));
}

// The image that starts at the first pixel's channel `coi`, which counts from 1.
template <class T>
Image<T> at_channel(const Image<T>& image, int32_t coi) {
  return {image.data + (coi - 1), image.step};
}

// Bytes of a row of `width` pixels. 64 bits: 4 * width overflows an int.
template <class T>
constexpr int64_t row_bytes(const Image<T>&, int32_t width, int channels = 1) {
  return int64_t{width} * channels * static_cast<int64_t>(sizeof(T));
}

template <class T>
constexpr bool tight(const Image<T>& image, int32_t width, int channels = 1) {
  return image.step == row_bytes(image, width, channels);
}

constexpr bool empty(RoiSize roi) { return roi.width == 0 || roi.height == 0; }

// Whether the pixels of a ROI can be counted by an int, as one long row must be.
constexpr bool countable(RoiSize roi) { return int64_t{roi.width} * roi.height <= INT32_MAX; }

// Back-to-back rows are one long row: one loop, one tail.
inline void ContiguousCollapse(RoiSize& roi, bool back_to_back) {
  if (back_to_back && countable(roi)) roi = {roi.width * roi.height, 1};
}

}  // namespace nuqi

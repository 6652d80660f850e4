// Erosion and dilation, pixel by pixel, straight from their contract.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

struct Element {
  RoiSize size;
  PixelPoint anchor;
  std::vector<int32_t> mask;  // of arbitrary shapes
};

// Of a, b the extremum; the second where they do not compare.
template <class T>
T pick(bool greatest, T a, T b) {
  return (greatest ? a > b : a < b) ? a : b;
}

// Of windows that double.
template <class T>
T of_line(bool greatest, std::vector<T> m) {
  size_t w = 1;
  const size_t n = m.size();
  for (; 2 * w <= n; w *= 2)
    for (size_t i = 0; i + 2 * w <= n; ++i) m[i] = pick(greatest, m[i], m[i + w]);
  return pick(greatest, m[0], m[n - w]);
}

// Integers in the order of the elements, and back.
inline int32_t key(uint8_t value) { return value; }
inline int32_t key(float value) {
  int32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits < 0 ? bits ^ 0x7FFFFFFF : bits;
}
inline void set_from_key(int32_t key, uint8_t& value) { value = static_cast<uint8_t>(key); }
inline void set_from_key(int32_t key, float& value) {
  const int32_t bits = key < 0 ? key ^ 0x7FFFFFFF : key;
  std::memcpy(&value, &bits, sizeof bits);
}

// The pixels of an image under an element whose anchor lies on (x, y), in one channel.
template <class T>
struct Covered {
  const std::vector<T>& pixels;
  RoiSize roi;
  int channels, channel, x, y;
  const Element& element;

  T at(int c, int r) const {
    const int column = std::clamp(x + c - element.anchor.x, 0, roi.width - 1);
    const int row = std::clamp(y + r - element.anchor.y, 0, roi.height - 1);
    return pixels[(static_cast<size_t>(row) * roi.width + column) * channels + channel];
  }
  std::vector<T> row(int r) const {
    std::vector<T> line;
    for (int c = 0; c < element.size.width; ++c) line.push_back(at(c, r));
    return line;
  }
};

template <class T>
T of_rectangle(bool greatest, const Covered<T>& covered) {
  std::vector<T> rows;
  for (int r = 0; r < covered.element.size.height; ++r)
    rows.push_back(of_line(greatest, covered.row(r)));
  return of_line(greatest, rows);
}
template <class T>
T of_cross(bool greatest, const Covered<T>& covered) {
  const auto& [size, anchor, mask] = covered.element;
  T result = of_line(greatest, covered.row(anchor.y));
  for (int r = 0; r < size.height; ++r) result = pick(greatest, result, covered.at(anchor.x, r));
  return result;
}
template <class T>
T of_mask(bool greatest, const Covered<T>& covered) {
  const int32_t least = sizeof(T) == 1 ? 0 : INT32_MIN, most = sizeof(T) == 1 ? 255 : INT32_MAX;
  int32_t found = greatest ? least : most;
  size_t i = 0;
  for (int r = 0; r < covered.element.size.height; ++r)
    for (int c = 0; c < covered.element.size.width; ++c)
      if (covered.element.mask[i++] != 0) found = pick(greatest, found, key(covered.at(c, r)));
  T result;
  set_from_key(found, result);
  return result;
}

template <class T>
std::vector<T> strip_reference(bool dilates, int32_t shape, const Element& element, int channels,
                               RoiSize roi, const std::vector<T>& pixels) {
  std::vector<T> result;
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x)
      for (int channel = 0; channel < channels; ++channel) {
        const Covered<T> covered = {pixels, roi, channels, channel, x, y, element};
        result.push_back(shape == 0   ? of_rectangle(dilates, covered)
                         : shape == 1 ? of_cross(dilates, covered)
                                      : of_mask(dilates, covered));
      }
  return result;
}

}  // namespace nuqi::test

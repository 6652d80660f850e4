// The Gaussian pyramid as naively as it can be said: a function for the sum at one place of a line of
// pixels, along the rows first, then down the columns of the sums.
#pragma once

#include <cstdint>
#include <functional>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// What sums are made of: floats, or integers wide enough for all.
template <class T>
using PyramidSum = std::conditional_t<std::is_same_v<T, float>, float, int32_t>;

// The sum for place j of half as many, over a line of n values s(0) ... s(n - 1).
template <class S, class Line>
S pyramid_down_sum(const Line& s, int n, int j) {
  if (n == 2) return 8 * (s(0) + s(1));
  if (j == 0) return 2 * (3 * s(0) + 4 * s(1) + s(2));
  if (j == n / 2 - 1) return s(n - 4) + 4 * (s(n - 3) + s(n - 1)) + 7 * s(n - 2);
  return s(2 * j - 2) + 4 * (s(2 * j - 1) + s(2 * j + 1)) + 6 * s(2 * j) + s(2 * j + 2);
}

// The sum for place j of twice as many.
template <class S, class Line>
S pyramid_up_sum(const Line& s, int n, int j) {
  const int i = j / 2;
  if (j % 2 == 1) return i == n - 1 ? 8 * s(i) : 4 * (s(i) + s(i + 1));
  if (n == 1) return 8 * s(0);
  if (i == 0) return 2 * (3 * s(0) + s(1));
  if (i == n - 1) return s(i - 1) + 7 * s(i);
  return s(i - 1) + 6 * s(i) + s(i + 1);
}

// A level up or down: the pixels of the result in raster order, channels interleaved.
template <class T>
std::vector<T> pyramid_reference(const std::vector<T>& src, RoiSize roi, int channels, bool up) {
  using S = PyramidSum<T>;
  const auto size = [&](int n) { return up ? 2 * n : n / 2; };
  const auto sum_at = [&](const auto& line, int n, int j) {
    return up ? pyramid_up_sum<S>(line, n, j) : pyramid_down_sum<S>(line, n, j);
  };
  const auto rounded = [&](S sum) {
    if constexpr (std::is_same_v<T, float>)
      return sum * (up ? 0.015625f : 0.00390625f);
    else
      return static_cast<T>(up ? (sum + 32) >> 6 : (sum + 128) >> 8);
  };

  std::vector<T> result;
  const auto row_sum = [&](int x, int y, int channel) {
    const auto pixel = [&](int i) -> S { return src[(y * roi.width + i) * channels + channel]; };
    return sum_at(pixel, roi.width, x);
  };
  std::vector<S> rows;  // the sums along the rows
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < size(roi.width); ++x)
      for (int c = 0; c < channels; ++c) rows.push_back(row_sum(x, y, c));
  const int row = size(roi.width) * channels;
  for (int y = 0; y < size(roi.height); ++y)
    for (int i = 0; i < row; ++i)
      result.push_back(rounded(sum_at([&](int k) { return rows[k * row + i]; }, roi.height, y)));
  return result;
}

}  // namespace nuqi::test

// Means and deviations, one pixel after the other.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// The pixels of a region, or of its chosen channel, and which of them are selected: row after row.
template <class T>
struct MeanPixels {
  size_t width, height;
  std::vector<T> values;
  std::vector<bool> selected;
};

inline int32_t wrapped(uint64_t sum) { return static_cast<int32_t>(static_cast<uint32_t>(sum)); }

template <class T>
int32_t count_of(const MeanPixels<T>& pixels) {
  int32_t count = 0;
  for (bool selected : pixels.selected) count += selected;
  return count;
}

// Bytes: the sum wraps at 32 bits.
template <class T>
double sum_of_bytes(const MeanPixels<T>& pixels) {
  int64_t sum = 0;
  for (size_t i = 0; i < pixels.values.size(); ++i)
    if (pixels.selected[i]) sum += pixels.values[i];
  return wrapped(static_cast<uint64_t>(sum));
}

// nuqiMean_32f_C1MR: four single-precision lanes through blocks of eight, counted in rows of `width`.
inline double sum_in_lanes(const MeanPixels<float>& pixels, size_t width) {
  float lane[4] = {};
  for (size_t i = 0; i < pixels.values.size(); ++i) {
    if (!pixels.selected[i]) continue;
    const size_t x = i % width;
    lane[x < width / 8 * 8 ? x % 4 : 0] += pixels.values[i];
  }
  return (double{lane[0]} + double{lane[2]}) + (double{lane[1]} + double{lane[3]});
}

// `back_to_back`: no gap between the rows of the image, nor between those of the mask.
template <class T>
double mean_reference(const MeanPixels<T>& pixels, int channels, bool back_to_back) {
  const int32_t count = count_of(pixels);
  if (count == 0) return 0.0;
  if constexpr (!std::is_same_v<T, float>) {
    return sum_of_bytes(pixels) / count;
  } else if (channels == 1) {
    return sum_in_lanes(pixels, back_to_back ? pixels.values.size() : pixels.width) / count;
  } else {
    double sum = 0;
    for (size_t i = 0; i < pixels.values.size(); ++i)
      if (pixels.selected[i]) sum += double{pixels.values[i]};
    return sum / count;
  }
}

// Sixteen sums, one for each column mod 16, halved until one is left.
inline double halved(double* lane) {
  for (int n = 8; n > 0; n /= 2)
    for (int i = 0; i < n; ++i) lane[i] += lane[i + n];
  return lane[0];
}

struct MeanAndDeviation {
  double mean, deviation;
};

template <class T>
MeanAndDeviation deviation_reference(const MeanPixels<T>& pixels) {
  double sum = 0, squares = 0;
  if constexpr (std::is_same_v<T, float>) {
    for (size_t y = 0; y < pixels.height; ++y) {
      double s[16] = {}, q[16] = {};
      for (size_t x = 0; x < pixels.width; ++x) {
        const size_t i = y * pixels.width + x;
        if (!pixels.selected[i]) continue;
        const double value = pixels.values[i];
        s[x % 16] += value;
        q[x % 16] += value * value;
      }
      sum += halved(s);
      squares += halved(q);
    }
  } else {
    int64_t exact = 0;
    for (size_t i = 0; i < pixels.values.size(); ++i)
      if (pixels.selected[i]) exact += int64_t{pixels.values[i]} * pixels.values[i];
    sum = sum_of_bytes(pixels);
    squares = static_cast<double>(exact);
  }
  const int32_t count = count_of(pixels);
  const double share = count == 0 ? 0.0 : 1.0 / count;
  const double mean = sum * share;
  return {mean, std::sqrt(squares * share - mean * mean)};
}

}  // namespace nuqi::test

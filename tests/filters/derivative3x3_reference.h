// The fixed 3x3 derivatives, one pixel after the other.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class DerivativeKind { dx, dy, d2x, d2y, dxdy, scharr_dx, scharr_dy };

template <class T>
using DerivativeResult = std::conditional_t<std::is_same_v<T, float>, float, int16_t>;

// A one-channel image whose edge pixels go on for ever.
template <class T>
struct Replicated {
  T at(int y, int x) const {
    y = std::clamp(y, 0, roi.height - 1);
    return pixels[static_cast<size_t>(y) * roi.width + std::clamp(x, 0, roi.width - 1)];
  }
  const std::vector<T>& pixels;
  RoiSize roi;
};

// The sum of weighted pixels.
template <class T>
int weighted_sum(DerivativeKind kind, const Replicated<T>& s, int y, int x) {
  static constexpr int kWeights[7][3][3] = {
      {{-1, 0, 1}, {-2, 0, 2}, {-1, 0, 1}},   {{-1, -2, -1}, {0, 0, 0}, {1, 2, 1}},
      {{1, -2, 1}, {2, -4, 2}, {1, -2, 1}},   {{1, 2, 1}, {-2, -4, -2}, {1, 2, 1}},
      {{1, 0, -1}, {0, 0, 0}, {-1, 0, 1}},    {{-3, 0, 3}, {-10, 0, 10}, {-3, 0, 3}},
      {{-3, -10, -3}, {0, 0, 0}, {3, 10, 3}},
  };
  int sum = 0;
  for (int j = -1; j <= 1; ++j)
    for (int i = -1; i <= 1; ++i)
      sum += kWeights[static_cast<int>(kind)][j + 1][i + 1] * s.at(y + j, x + i);
  return sum;
}

// Bytes: integers of any size, floor division by 2^shift.
template <class T>
int16_t derivative_at(DerivativeKind kind, const Replicated<T>& s, int y, int x, int bottom_up,
                      int shift) {
  const int sum = weighted_sum(kind, s, y, x);
  const auto shifted = [&](int value) {
    return std::floor(std::ldexp(value, -std::min(shift, 1000)));
  };
  const bool odd_member = kind == DerivativeKind::scharr_dy && std::is_same_v<T, uint8_t>;
  const bool odd_pixel = y == s.roi.height - 1 && x >= 8 * ((s.roi.width - 1) / 8);
  if (bottom_up && odd_member && odd_pixel) return static_cast<int16_t>(-shifted(sum));
  return static_cast<int16_t>(shifted(bottom_up ? -sum : sum));
}

// Floats: every operation rounds once, in the order that the header gives.
inline float derivative_at(DerivativeKind kind, const Replicated<float>& s, int y, int x,
                           int bottom_up, int shift) {
  float doubled = 1;  // infinite from shift 128 on
  for (int i = 0; i < std::min(shift, 200); ++i) doubled = doubled * 2;
  const float factor = 1 / doubled;
  const float k3 = 3 * factor, k10 = 10 * factor;
  const auto d = [&](int row) { return s.at(row, x + 1) - s.at(row, x - 1); };
  const auto smoothed = [&](int row) {
    const float outer = s.at(row, x - 1) + s.at(row, x + 1);
    return outer + 2 * s.at(row, x);
  };
  const auto t = [&](int row) {
    const float left = s.at(row, x - 1) * k3, right = s.at(row, x + 1) * k3;
    const float outer = left + right;
    return outer + s.at(row, x) * k10;
  };
  const int above = bottom_up ? y + 1 : y - 1, below = bottom_up ? y - 1 : y + 1;
  switch (kind) {
    case DerivativeKind::dx: {
      const float upper = d(above) + d(y), lower = d(y) + d(below);
      return upper + lower;
    }
    case DerivativeKind::dy: return smoothed(below) - smoothed(above);
    case DerivativeKind::scharr_dx: {
      const float outer = d(above) * k3 + d(below) * k3;
      return outer + d(y) * k10;
    }
    default: return t(below) - t(above);
  }
}

// Pixels in raster order. `bottom_up` and `shift` are 0 for members that do not take them.
template <class T>
std::vector<DerivativeResult<T>> derivative_reference(DerivativeKind kind,
                                                      const std::vector<T>& src, RoiSize roi,
                                                      int bottom_up, int shift) {
  const Replicated<T> s = {src, roi};
  std::vector<DerivativeResult<T>> result;
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x)
      result.push_back(derivative_at(kind, s, y, x, bottom_up, shift));
  return result;
}

}  // namespace nuqi::test

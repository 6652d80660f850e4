// The Laplace filters, one pixel after the other.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// The second derivative along x smoothed along y, plus the same the other way round.
template <class T>
std::vector<int16_t> laplace_reference(const std::vector<T>& src, RoiSize roi, int size) {
  static const int second[3][7] = {{1, -2, 1}, {1, 0, -2, 0, 1}, {1, 2, -1, -4, -1, 2, 1}};
  static const int smooth[3][7] = {{1, 2, 1}, {1, 4, 6, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};
  const int* k2 = second[size / 2 - 1];
  const int* k0 = smooth[size / 2 - 1];
  std::vector<int16_t> dst;
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) {
      int sum = 0;
      for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i) {
          const int r = std::clamp(y + j - size / 2, 0, roi.height - 1);
          const int c = std::clamp(x + i - size / 2, 0, roi.width - 1);
          sum += (k2[i] * k0[j] + k0[i] * k2[j]) * src[static_cast<size_t>(r) * roi.width + c];
        }
      dst.push_back(static_cast<int16_t>(std::clamp(sum, -32768, 32767)));
    }
  return dst;
}

// Floats: rows smoothed by [1 1] down the columns, the 3x3 bracket, the row smoothed, twice that.
inline std::vector<float> laplace_reference(const std::vector<float>& src, RoiSize roi, int size) {
  const auto at = [&](int x, int y) {
    return src[static_cast<size_t>(std::clamp(y, 0, roi.height - 1)) * roi.width +
               std::clamp(x, 0, roi.width - 1)];
  };
  // Of the rows y - (size - 3) / 2 to y + (size - 3) / 2.
  const auto m = [&](int x, int y) {
    std::vector<float> v;
    for (int j = -(size - 3) / 2; j <= (size - 3) / 2; ++j) v.push_back(at(x, y + j));
    while (v.size() > 1) {
      for (size_t i = 0; i + 1 < v.size(); ++i) v[i] = v[i] + v[i + 1];
      v.pop_back();
    }
    return v[0];
  };
  std::vector<float> dst;
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) {
      const auto z = [&](int k) {
        const float left = m(x + k - 1, y - 1) + m(x + k - 1, y + 1);
        const float right = m(x + k + 1, y - 1) + m(x + k + 1, y + 1);
        const float diagonal = left + right, middle = 4 * m(x + k, y);
        return diagonal - middle;
      };
      float sum = 0;
      if (size == 3) {
        sum = z(0);
      } else if (size == 5) {
        const float outer = z(-1) + z(1), inner = z(0) + z(0);
        sum = outer + inner;
      } else {
        const float outer = z(-2) + z(2), next = (z(-1) + z(1)) * 4, inner = z(0) * 6;
        sum = outer + next;
        sum = sum + inner;
      }
      dst.push_back(2 * sum);
    }
  return dst;
}

}  // namespace nuqi::test

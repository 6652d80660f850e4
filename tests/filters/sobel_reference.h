// The Sobel filters with selectable aperture, one pixel after the other.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// The kernels of each size and order, lowest column or row first.
inline std::vector<int> derivative_kernel(int size, int order) {
  static const std::vector<std::vector<int>> k3 = {{1, 2, 1}, {-1, 0, 1}, {1, -2, 1}};
  static const std::vector<std::vector<int>> k5 = {
      {1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}, {1, 0, -2, 0, 1}, {-1, 2, 0, -2, 1}, {1, -4, 6, -4, 1}};
  static const std::vector<std::vector<int>> k7 = {
      {1, 6, 15, 20, 15, 6, 1},   {-1, -4, -5, 0, 5, 4, 1},  {1, 2, -1, -4, -1, 2, 1},
      {-1, 0, 3, 0, -3, 0, 1},    {1, -2, -1, 4, -1, -2, 1}, {-1, 4, -5, 0, 5, -4, 1},
      {1, -6, 15, -20, 15, -6, 1}};
  return (size == 3 ? k3 : size == 5 ? k5 : k7)[order];
}

struct SobelShape {
  int size, bottomUp, xOrder, yOrder;
};

inline std::vector<int> x_kernel(SobelShape s) { return derivative_kernel(s.size, s.xOrder); }
inline std::vector<int> y_kernel(SobelShape s) {
  std::vector<int> kernel = derivative_kernel(s.size, s.yOrder);
  if (s.bottomUp && s.yOrder % 2)
    for (int& c : kernel) c = -c;
  return kernel;
}

inline int16_t saturated(int64_t value) {
  return static_cast<int16_t>(std::clamp<int64_t>(value, -32768, 32767));
}

// Neighbours at equal distances are added, or subtracted, before their weight multiplies them; from
// the outside inwards.
template <class At>
float folded(const std::vector<int>& kernel, const At& at) {
  const int half = static_cast<int>(kernel.size()) / 2;
  const bool odd = kernel.front() == -kernel.back();
  float sum = 0;
  for (int k = half; k > 0; --k) {
    const float both = odd ? at(k) - at(-k) : at(k) + at(-k);
    const float term = both * static_cast<float>(kernel[half + k]);
    sum = k == half ? term : sum + term;
  }
  if (odd) return sum;
  const float middle = at(0) * static_cast<float>(kernel[half]);
  return sum + middle;
}

// A whole image in raster order.
template <class T>
std::vector<int16_t> sobel_reference(const std::vector<T>& src, RoiSize roi, SobelShape shape) {
  const std::vector<int> kx = x_kernel(shape), ky = y_kernel(shape);
  std::vector<int16_t> dst;
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) {
      int64_t sum = 0;
      for (int j = 0; j < shape.size; ++j)
        for (int i = 0; i < shape.size; ++i) {
          const int r = std::clamp(y + j - shape.size / 2, 0, roi.height - 1);
          const int c = std::clamp(x + i - shape.size / 2, 0, roi.width - 1);
          sum += kx[i] * ky[j] * src[static_cast<size_t>(r) * roi.width + c];
        }
      dst.push_back(saturated(sum));
    }
  return dst;
}
inline std::vector<float> sobel_reference(const std::vector<float>& src, RoiSize roi,
                                          SobelShape shape) {
  const std::vector<int> kx = x_kernel(shape), ky = y_kernel(shape);
  std::vector<float> down(src.size()), dst(src.size());
  const auto index = [&](int x, int y) {
    return static_cast<size_t>(std::clamp(y, 0, roi.height - 1)) * roi.width +
           std::clamp(x, 0, roi.width - 1);
  };
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x)
      down[index(x, y)] = folded(ky, [&](int k) { return src[index(x, y + k)]; });
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x)
      dst[index(x, y)] = folded(kx, [&](int k) { return down[index(x + k, y)]; });
  return dst;
}

}  // namespace nuqi::test

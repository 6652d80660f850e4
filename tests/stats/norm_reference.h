// The norm family, one pixel after the other.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class NormKind { image, difference, relative };
enum class NormOrder { inf, l1, l2 };

// What single magnitudes come to. One channel's pixels in raster order, `width` a row.
inline double norm_total(NormOrder order, const std::vector<int>& magnitudes, int) {
  int64_t largest = 0, sum = 0, squares = 0;
  for (int64_t m : magnitudes) {
    largest = std::max(largest, m);
    sum += m;
    squares += m * m;
  }
  if (order == NormOrder::inf) return static_cast<double>(largest);
  if (order == NormOrder::l1) return static_cast<int32_t>(static_cast<uint32_t>(sum));
  return static_cast<double>(squares);
}
inline double norm_total(NormOrder order, const std::vector<float>& magnitudes, int width) {
  float largest = 0, part[16] = {};
  for (size_t i = 0; i < magnitudes.size(); ++i) {
    const float m = magnitudes[i];
    if (m > largest) largest = m;
    float& lane = part[i % width % 16];
    lane = lane + (order == NormOrder::l1 ? m : m * m);
  }
  for (int half = 8; half >= 1; half /= 2)
    for (int i = 0; i < half; ++i) part[i] = part[i] + part[i + half];
  return order == NormOrder::inf ? largest : part[0];
}

template <class T>
double norm_reference(NormKind kind, NormOrder order, const std::vector<T>& a,
                      const std::vector<T>& b, const std::vector<uint8_t>& mask, int width) {
  using Wide = decltype(T() + T());  // int or float
  std::vector<Wide> of_image(a.size()), of_second(a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    if (mask[i] == 0) continue;
    of_image[i] = std::abs(kind == NormKind::image ? Wide{a[i]} : a[i] - b[i]);
    of_second[i] = std::abs(Wide{b[i]});
  }
  double value = norm_total(order, of_image, width);
  if (kind == NormKind::relative) {
    const double divisor = norm_total(order, of_second, width);
    value = divisor == 0 ? value * 4503599627370496.0 : value / divisor;
  }
  return order == NormOrder::l2 ? std::sqrt(value) : value;
}

}  // namespace nuqi::test

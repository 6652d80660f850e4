// The extrema, one pixel after the other.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

struct MinMaxResult {
  float min = 0, max = 0;
  PixelPoint min_at = {0, 0}, max_at = {0, 0};
};

// One channel's pixels in raster order, `width` a row; `mask` is empty in the unmasked forms.
template <class T>
MinMaxResult min_max_reference(const std::vector<T>& pixels, const std::vector<uint8_t>& mask,
                               int width) {
  constexpr bool floats = std::is_same_v<T, float>;
  const auto key = [](T value) {
    if constexpr (floats) {
      const int32_t bits = std::bit_cast<int32_t>(value);
      return (bits & 0x7FFFFFFF) ^ (bits >> 31);
    } else {
      return int{value};
    }
  };
  int64_t lowest = floats ? 0x7F800000 : 256, highest = floats ? ~int64_t{0x7F800000} : -256;
  int64_t min_at = -1, max_at = -1;
  for (size_t i = 0; i < pixels.size(); ++i) {
    if (!mask.empty() && mask[i] == 0) continue;
    if (key(pixels[i]) < lowest) lowest = key(pixels[i]), min_at = static_cast<int64_t>(i);
    if (key(pixels[i]) > highest) highest = key(pixels[i]), max_at = static_cast<int64_t>(i);
  }
  if (min_at < 0 || max_at < 0) return {};
  const auto point = [&](int64_t at) {
    return PixelPoint{static_cast<int32_t>(at % width), static_cast<int32_t>(at / width)};
  };
  return {static_cast<float>(pixels[min_at]), static_cast<float>(pixels[max_at]), point(min_at),
          point(max_at)};
}

}  // namespace nuqi::test

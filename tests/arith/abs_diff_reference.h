// The absolute-difference family, one pixel after the other.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

inline uint8_t abs_diff_reference(uint8_t a, int32_t b) {
  const int32_t limited = b < 0 ? 0 : b > 255 ? 255 : b;
  return static_cast<uint8_t>(std::abs(a - limited));
}

inline float abs_diff_reference(float a, float b) {
  const float difference = a - b;
  return std::bit_cast<float>(std::bit_cast<uint32_t>(difference) & 0x7FFFFFFFu);
}

// Pixels in raster order; `src2` is empty in the forms with a constant.
template <class T, class Value>
std::vector<T> abs_diff_reference(const std::vector<T>& src, const std::vector<T>& src2,
                                  Value value) {
  std::vector<T> dst(src.size());
  for (size_t i = 0; i < src.size(); ++i)
    dst[i] = abs_diff_reference(src[i], src2.empty() ? value : static_cast<Value>(src2[i]));
  return dst;
}

}  // namespace nuqi::test

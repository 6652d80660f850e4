// Plain loops, as anybody would write them, that calls are compared with: one for every family.
#include "tour/plain.h"

#include <algorithm>
#include <cstdlib>

namespace tools::plain {

Plane<uint8_t> padded(const Plane<uint8_t>& grey, int32_t reach) {
  const int32_t width = grey.size.width, height = grey.size.height;
  Plane<uint8_t> result({width + 2 * reach, height + 2 * reach});
  uint8_t* out = result.data();
  for (int32_t y = -reach; y < height + reach; ++y) {
    const uint8_t* row = grey.data() + std::clamp(y, 0, height - 1) * ptrdiff_t(width);
    for (int32_t x = -reach; x < width + reach; ++x) *out++ = row[std::clamp(x, 0, width - 1)];
  }
  return result;
}

void add(const Plane<uint8_t>& frame, Plane<float>& sum) {
  for (size_t i = 0; i < frame.values.size(); ++i) sum.values[i] += float(frame.values[i]);
}

void split(const Picture& colour, Plane<uint8_t>& red, Plane<uint8_t>& green,
           Plane<uint8_t>& blue) {
  for (size_t i = 0; i < red.values.size(); ++i) {
    red.values[i] = colour.pixels[3 * i];
    green.values[i] = colour.pixels[3 * i + 1];
    blue.values[i] = colour.pixels[3 * i + 2];
  }
}

void difference(const Plane<uint8_t>& a, const Plane<uint8_t>& b, Plane<uint8_t>& result) {
  for (size_t i = 0; i < a.values.size(); ++i)
    result.values[i] = uint8_t(std::abs(a.values[i] - b.values[i]));
}

void histogram(const Plane<uint8_t>& grey, std::vector<int32_t>& counts) {
  counts.assign(256, 0);
  for (const uint8_t level : grey.values) ++counts[level];
}

void sobel_dx(const Plane<uint8_t>& padded, Plane<int16_t>& result) {
  for (int32_t y = 0; y < result.size.height; ++y) {
    const uint8_t* above = padded.data() + ptrdiff_t(y) * padded.size.width;
    const uint8_t *here = above + padded.size.width, *below = here + padded.size.width;
    int16_t* dst = result.data() + ptrdiff_t(y) * result.size.width;
    for (int32_t x = 0; x < result.size.width; ++x)
      dst[x] =
          int16_t(above[x + 2] - above[x] + 2 * (here[x + 2] - here[x]) + below[x + 2] - below[x]);
  }
}

void blur(const Plane<uint8_t>& padded, int32_t size, Plane<int16_t>& result) {
  for (int32_t y = 0; y < result.size.height; ++y) {
    for (int32_t x = 0; x < result.size.width; ++x) {
      int sum = 0;
      for (int32_t v = 0; v < size; ++v)
        for (int32_t u = 0; u < size; ++u)
          sum += padded.data()[ptrdiff_t(y + v) * padded.size.width + x + u];
      result.data()[ptrdiff_t(y) * result.size.width + x] = int16_t(sum);
    }
  }
}

void erosion(const Plane<uint8_t>& padded, int32_t size, Plane<uint8_t>& result) {
  for (int32_t y = 0; y < result.size.height; ++y) {
    for (int32_t x = 0; x < result.size.width; ++x) {
      uint8_t least = 255;
      for (int32_t v = 0; v < size; ++v)
        for (int32_t u = 0; u < size; ++u)
          least = std::min(least, padded.data()[ptrdiff_t(y + v) * padded.size.width + x + u]);
      result.data()[ptrdiff_t(y) * result.size.width + x] = least;
    }
  }
}

void sum_of_products(const Plane<uint8_t>& picture, const Plane<uint8_t>& tpl,
                     Plane<float>& result) {
  for (int32_t y = 0; y < result.size.height; ++y) {
    for (int32_t x = 0; x < result.size.width; ++x) {
      int sum = 0;
      for (int32_t v = 0; v < tpl.size.height; ++v) {
        const uint8_t* row = picture.data() + ptrdiff_t(y + v) * picture.size.width + x;
        const uint8_t* tpl_row = tpl.data() + ptrdiff_t(v) * tpl.size.width;
        for (int32_t u = 0; u < tpl.size.width; ++u) sum += row[u] * tpl_row[u];
      }
      result.data()[ptrdiff_t(y) * result.size.width + x] = float(sum);
    }
  }
}

}  // namespace tools::plain

// Plain loops, as anybody would write them, that calls are compared with: one for every family.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools::plain {

// With `reach` pixels more on all sides, which equal the edge's: loops need not look where they are.
Plane<uint8_t> padded(const Plane<uint8_t>& grey, int32_t reach);

void add(const Plane<uint8_t>& frame, Plane<float>& sum);
void split(const Picture& colour, Plane<uint8_t>& red, Plane<uint8_t>& green, Plane<uint8_t>& blue);
void difference(const Plane<uint8_t>& a, const Plane<uint8_t>& b, Plane<uint8_t>& result);
void histogram(const Plane<uint8_t>& grey, std::vector<int32_t>& counts);

// Of padded pictures; `size` pixels a side.
void sobel_dx(const Plane<uint8_t>& padded, Plane<int16_t>& result);
void blur(const Plane<uint8_t>& padded, int32_t size, Plane<int16_t>& result);
void erosion(const Plane<uint8_t>& padded, int32_t size, Plane<uint8_t>& result);

void sum_of_products(const Plane<uint8_t>& picture, const Plane<uint8_t>& tpl,
                     Plane<float>& result);

// Those of the benchmarks. A `buffer` is as large as the library's function asks for.
void canny(const Plane<int16_t>& dx, const Plane<int16_t>& dy, float low, float high,
           std::vector<uint8_t>& buffer, Plane<uint8_t>& edges);
void corner_strength(const Plane<float>& grey, int32_t aperture, int32_t block,
                     Plane<float>& strength);
void corner_vectors(const Plane<uint8_t>& grey, int32_t aperture, int32_t block,
                    std::vector<float>& vectors);
void distances(const Plane<uint8_t>& map, const float* weights, bool knights_moves,
               Plane<float>& result);
void pyramid(const Picture& level, bool up, Picture& result);  // of three channels
void fill(Plane<uint8_t>& image, PixelPoint seed, int32_t value, int32_t lower, int32_t upper,
          std::vector<uint8_t>& buffer);  // of gradual changes, 4-connected

// A loop that computes something else is no comparison.
template <class Values>
void require_same(const Values& loop, const Values& library, const char* what) {
  if (loop != library) throw std::runtime_error(std::string(what) + ": the plain loop differs");
}

// In single precision, sums may be rounded in another order.
inline void require_near(const std::vector<float>& loop, const std::vector<float>& library,
                         const char* what) {
  constexpr float kRounding = 1e-4f;
  float most = 0;
  for (const float value : library) most = std::max(most, std::abs(value));
  bool near = true;
  for (size_t i = 0; i < loop.size(); ++i) {
    near = near && std::abs(loop[i] - library[i]) <= kRounding * most;
  }
  if (!near) throw std::runtime_error(std::string(what) + ": the plain loop differs");
}

}  // namespace tools::plain

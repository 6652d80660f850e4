// Flood fills, one pixel after the other.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

struct FillRule {
  bool gradient, diagonal;
  double lower, upper;
};

// Whether the fill goes on from a pixel p to its neighbour q.
template <class T>
bool fill_joins(const FillRule& rule, T seed, T p, T q) {
  if (!rule.gradient) return !(q < seed) && !(q > seed);
  if (std::is_same_v<T, uint8_t>) return p - rule.lower <= q && q <= p + rule.upper;
  const double centre = (rule.lower - rule.upper) / 2, half = (rule.lower + rule.upper) / 2;
  return std::fabs((double(p) - double(q)) - centre) <= half;
}

// Paints the region in `pixels`, row after row. False, and nothing written, where the seed already has
// the new value and the rule is equality.
template <class T>
bool fill_reference(const FillRule& rule, std::vector<T>& pixels, RoiSize roi, PixelPoint seed,
                    T value, FillRegion& region) {
  const std::vector<T> old = pixels;
  const auto at = [&](PixelPoint p) { return static_cast<size_t>(p.y) * roi.width + p.x; };
  const T seed_value = old[at(seed)];
  if (!rule.gradient && !(seed_value < value) && !(seed_value > value)) return false;

  std::vector<bool> reached(pixels.size());
  std::vector<PixelPoint> found = {seed};
  reached[at(seed)] = true;
  for (size_t i = 0; i < found.size(); ++i)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx) {
        if (dx != 0 && dy != 0 && !rule.diagonal) continue;
        const PixelPoint p = found[i], q = {p.x + dx, p.y + dy};
        if (q.x < 0 || q.x >= roi.width || q.y < 0 || q.y >= roi.height || reached[at(q)]) continue;
        if (!fill_joins(rule, seed_value, old[at(p)], old[at(q)])) continue;
        reached[at(q)] = true;
        found.push_back(q);
      }

  PixelPoint first = seed, last = seed;
  for (PixelPoint p : found) {
    pixels[at(p)] = value;
    first = {std::min(first.x, p.x), std::min(first.y, p.y)};
    last = {std::max(last.x, p.x), std::max(last.y, p.y)};
  }
  region.area = static_cast<double>(found.size());
  region.value = static_cast<double>(value);
  region.x = first.x, region.y = first.y;
  region.width = last.x - first.x + 1, region.height = last.y - first.y + 1;
  return true;
}

}  // namespace nuqi::test

// Plain loops, as anybody would write them, that calls are compared with: one for most families.
#pragma once

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

// A loop that computes something else is no comparison.
template <class Values>
void require_same(const Values& loop, const Values& library, const char* what) {
  if (loop != library) throw std::runtime_error(std::string(what) + ": the plain loop differs");
}

}  // namespace tools::plain

// The strongest corners of a picture, and marks where they are.
#pragma once

#include <vector>

#include "pictures/picture.h"

namespace tools {

struct Corner {
  int32_t x, y;
  float strength;
};

// Grey levels as floats from 0 to 255.
Plane<float> floats_of(const Plane<uint8_t>& grey);

// The smaller eigenvalue at every pixel.
Plane<float> corner_strength(const Plane<float>& grey, int aperture, int block);

// At most `count` local maxima above 0, the strongest first, of equal ones the upper and then the left
// one; none nearer than `distance` to one before it. Of a plateau the first pixel counts.
std::vector<Corner> strongest_corners(const Plane<float>& strength, size_t count, double distance);

// The picture with a ring around each corner.
Picture with_rings(Picture picture, const std::vector<Corner>& corners);

}  // namespace tools

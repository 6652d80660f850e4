// The strongest corners of a picture, and marks where they are.
#pragma once

#include <vector>

#include "pictures/peaks.h"

namespace tools {

// Grey levels as floats from 0 to 255, of 16 bits between whole numbers, too.
template <class T>
Plane<float> floats_of(const Plane<T>& grey);

// At most `count` local maxima above 0, the strongest first, of equal ones the upper and then the left
// one; none nearer than `distance` to one before it. Of a plateau the first pixel counts.
std::vector<Peak> strongest_corners(const Plane<float>& strength, size_t count, double distance);

// The picture, of 3 or 4 channels, with a ring around each corner.
template <class T>
PictureOf<T> with_rings(PictureOf<T> picture, const std::vector<Peak>& corners);

}  // namespace tools

// How distances are shown: in colours, with contour lines and a scale.
#pragma once

#include "pictures/picture.h"

namespace tools {

// What the library gives to pixels that reach no feature; no distance is larger.
constexpr float kMostDistance = 4096;

// The largest distance, at least 1: what the palest colour stands for.
double distance_range(const Plane<float>& distances);

// Black at 0, over purple and orange, to pale yellow at `range`.
Picture distance_picture(const Plane<float>& distances, double range);

// Draws lines, pale blue, where the distances pass multiples of `step`: the first pixels beyond them.
void draw_contours(Picture& picture, const Plane<float>& distances, double step);

// The picture, at least as wide as the scale needs, and the scale below it: a number at each `step`.
Picture with_scale(const Picture& picture, double range, double step);

}  // namespace tools

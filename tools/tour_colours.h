// Colours for numbers that are no picture: signed derivatives, variances, edges over a picture.
#pragma once

#include "picture.h"
#include "tour_page.h"

namespace tools {

// Blue below zero, black at zero, orange above; palest at `range` and beyond.
Picture signed_colours(const Plane<int16_t>& plane, double range);
Picture signed_colours(const Plane<float>& plane, double range);
Legend signed_legend(double range);

// Black at zero, over purple and orange, to pale yellow at `range` and beyond.
Picture heat_colours(const Plane<float>& plane, double range);
Legend heat_legend(double range, const std::string& middle);

// The magnitude that all but one in a hundred values stay within, at least 1: a few extreme pixels
// would leave the rest dark.
double usual_range(const Plane<int16_t>& plane);
double usual_range(const Plane<float>& plane);

// Single-precision grey levels, rounded and clamped.
Plane<uint8_t> rounded(const Plane<float>& plane);

// The picture darkened, with the edges in bright orange.
Picture edges_over(const Plane<uint8_t>& grey, const Plane<uint8_t>& edges);

}  // namespace tools

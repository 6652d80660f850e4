// A scale of colours below a picture.
#pragma once

#include <functional>

#include "pictures/plot.h"

namespace tools {

inline constexpr Ink kSheetInk = {16, 18, 24};  // behind pictures and scales

// The colours of a plane of values.
using Colouring = std::function<Picture(const Plane<float>&)>;

// From `low` to `high`, with a number at each multiple of `step`.
struct Scale {
  double low, high, step;
};
// With at most six steps, whole or not.
Scale scale_of(double low, double high);

// The picture, at least as wide as the scale needs, and below it a bar with the scale's colours.
Picture with_scale(const Picture& picture, const Scale& scale, const Colouring& colours);

}  // namespace tools

// From frames to the picture of a motion: what lies between the library's calls.
#pragma once

#include "pictures/colours.h"
#include "pictures/picture.h"

namespace tools {

// 255 where the frames differ by more than `threshold`, 0 elsewhere.
Plane<uint8_t> silhouette_of(const Plane<uint8_t>& difference, int threshold);

// The gradient of a history points where the motion went. At the rim of the motion and where it
// crosses what moved long before it tells nothing of the kind: there it becomes 0.
void keep_steps(const Plane<float>& history, Plane<float>& dx, Plane<float>& dy);

// A gradient is 0 between the steps of the history. Blurring spreads it: all three planes hold the
// sums of kSpreads blurs of kSpreadSize.
constexpr int kSpreads = 8, kSpreadSize = 7;
void spread(Plane<float>& gradient);

struct Motion {
  Plane<uint8_t> frame;        // the last one
  Plane<float> history;        // 0 where nothing moved
  Plane<float> dx, dy, angle;  // the spread gradient and its direction in degrees
  float now = 0, duration = 0;
};

// The last frame darkened, over it the motion: the hue is its direction, grey where it has none, and
// brighter is later.
Picture motion_picture(const Motion& motion);
Legend direction_legend();

}  // namespace tools

// Canny's edges of a picture of any size, the outlines of drawn shapes among them.
#pragma once

#include <string>

#include "pictures/picture.h"

namespace tools {

// Strengths, |dx| + |dy|.
struct Thresholds {
  float low, high;
};

// The derivatives of a picture, prepared such that no two neighbours are equally strong: Canny's method
// drops both of those, and with them every edge between two flat colours.
class EdgeFinder {
 public:
  // `edge_operator` is sobel or scharr.
  EdgeFinder(const Plane<uint8_t>& grey, const std::string& edge_operator);

  // The largest whole numbers that a share of the pixels exceed, of those that have any strength: one
  // in ten the high one, one in four the low one. 0 where no pixel has any.
  Thresholds usual_thresholds() const;

  // 255 on edges, 0 elsewhere.
  Plane<uint8_t> edges(Thresholds thresholds);

  double seconds() const { return seconds_; }  // of the library's calls alone

 private:
  RoiSize size_;
  Plane<int16_t> dx_, dy_;  // four times as large, and up to 3 more
  double seconds_ = 0;
};

Plane<uint8_t> edges_of(const Plane<uint8_t>& grey, const std::string& edge_operator, float low,
                        float high);

}  // namespace tools

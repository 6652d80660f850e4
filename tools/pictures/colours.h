// Colours for numbers that are no picture: signed derivatives, variances, edges over a picture.
#pragma once

#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools {

// What colours mean, to be shown beside them.
struct Legend {
  std::string gradient;  // CSS colours, from the lowest value to the highest
  std::string low, middle, high;
};

// Colours of 16-bit values, looked up.
class SignedColours {
 public:
  explicit SignedColours(double range);
  void put(const int16_t* values, size_t count, uint8_t* rgb) const;

 private:
  std::vector<uint8_t> table_;  // from -32768 on
};

// Blue below zero, black at zero, orange above; palest at `range` and beyond.
Picture signed_colours(const Plane<int16_t>& plane, double range);
Picture signed_colours(const Plane<float>& plane, double range);
Legend signed_legend(double range);

// Black at zero, over purple and orange, to pale yellow at `range` and beyond.
Picture heat_colours(const Plane<float>& plane, double range);
Legend heat_legend(double range, const std::string& middle);

// How often each 16-bit value was met.
class ValueCounts {
 public:
  void add(const int16_t* values, size_t count);
  int lowest() const;
  int highest() const;
  double usual_range() const;

 private:
  uint64_t& of(int value) { return counts_[size_t(value - INT16_MIN)]; }
  uint64_t of(int value) const { return counts_[size_t(value - INT16_MIN)]; }

  std::vector<uint64_t> counts_ = std::vector<uint64_t>(1 << 16);
};

// The magnitude that all but one in a hundred values stay within, at least 1: a few extreme pixels
// would leave the rest dark.
double usual_range(const Plane<int16_t>& plane);
double usual_range(const Plane<float>& plane);

// Single-precision grey levels, rounded and clamped.
Plane<uint8_t> rounded(const Plane<float>& plane);

// The picture darkened, with the edges in bright orange.
Picture edges_over(const Plane<uint8_t>& grey, const Plane<uint8_t>& edges);

}  // namespace tools

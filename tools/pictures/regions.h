// All connected regions of equal pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "clock.h"
#include "pictures/picture.h"

namespace tools {

struct Region {
  FillRegion found;
  PixelPoint first;
  uint8_t level;
};

class Regions {
 public:
  // `connect` is 4 or 8. Shows its progress where the picture is large.
  Regions(const Plane<uint8_t>& grey, int connect);

  // In the order of their first pixels, row by row.
  const std::vector<Region>& all() const { return all_; }
  // That the fills took.
  double seconds() const { return calls_.seconds(); }
  // Each region in a colour of its own; black those of fewer pixels, and of level `dark`.
  Picture coloured(int64_t smallest, int dark = -1) const;

 private:
  Plane<float> paint_;
  std::vector<Region> all_;
  Stopwatch calls_;
};

}  // namespace tools

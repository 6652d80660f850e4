// nuqi stats: minimum and maximum, and where they are first.
#include <cstdio>

#include "commands/stats.h"
#include "failure.h"

namespace tools {

void print_extrema(const Levels& levels, const Selection& selection) {
  const RoiSize roi = levels.size();
  const int32_t step = levels.step(), mask_step = selection.mask.step();
  const uint8_t *src = levels.at(0, 0), *mask = selection.at(0, 0);
  float low = 0, high = 0;
  PixelPoint low_at{}, high_at{};
  if (levels.channel == 0) {
    require_ok(
        nuqiMinMaxIndx_8u_C1MR(src, step, mask, mask_step, roi, &low, &high, &low_at, &high_at),
        "nuqiMinMaxIndx_8u_C1MR");
  } else {
    require_ok(nuqiMinMaxIndx_8u_C3CMR(src, step, mask, mask_step, roi, levels.channel, &low, &high,
                                       &low_at, &high_at),
               "nuqiMinMaxIndx_8u_C3CMR");
  }
  const auto print = [](const char* name, float value, PixelPoint at) {
    std::printf("%-*s%.0f at %d,%d\n", kNameWidth, name, double(value), at.x, at.y);
  };
  print("minimum", low, low_at);
  print("maximum", high, high_at);
}

}  // namespace tools

// nuqi stats: mean and standard deviation.
#include <cmath>
#include <cstdio>
#include <vector>

#include "commands/stats.h"
#include "failure.h"

namespace tools {
namespace {

struct Moments {
  double count = 0, mean = 0, variance = 0;
};

Moments moments_of(const Levels& levels, const Selection& selection, int32_t x, int32_t y,
                   RoiSize roi) {
  Moments moments;
  const int32_t step = levels.step(), mask_step = selection.mask.step();
  const uint8_t *src = levels.at(x, y), *mask = selection.at(x, y);
  for (int32_t row = 0; row < roi.height; ++row) {
    const uint8_t* first = mask + ptrdiff_t(mask_step) * row;
    moments.count += double(roi.width - std::count(first, first + roi.width, 0));
  }
  double deviation = 0;
  if (levels.channel == 0) {
    require_ok(nuqiMean_StdDev_8u_C1MR(src, step, mask, mask_step, roi, &moments.mean, &deviation),
               "nuqiMean_StdDev_8u_C1MR");
  } else {
    require_ok(nuqiMean_StdDev_8u_C3CMR(src, step, mask, mask_step, roi, levels.channel,
                                        &moments.mean, &deviation),
               "nuqiMean_StdDev_8u_C3CMR");
  }
  // Where rounding leaves a constant tile a negative variance, the library's deviation is NaN.
  moments.variance = std::isnan(deviation) ? 0 : deviation * deviation;
  return moments;
}

Moments joined(const std::vector<Moments>& parts) {
  Moments all;
  for (const Moments& part : parts) {
    all.count += part.count;
    all.mean += part.count * part.mean;
  }
  all.mean /= all.count;
  for (const Moments& part : parts) {
    const double distance = part.mean - all.mean;
    all.variance += part.count * (part.variance + distance * distance);
  }
  all.variance /= all.count;
  return all;
}

}  // namespace

void print_means(const Levels& levels, const Selection& selection) {
  std::vector<Moments> tiles;
  for_tiles(levels.size(), [&](int32_t x, int32_t y, RoiSize roi) {
    tiles.push_back(moments_of(levels, selection, x, y, roi));
  });
  const Moments all = joined(tiles);
  std::printf("%-*s%.4f\n", kNameWidth, "mean", all.mean);
  std::printf("%-*s%.4f\n", kNameWidth, "standard deviation", std::sqrt(all.variance));
}

}  // namespace tools

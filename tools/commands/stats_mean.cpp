// nuqi stats: mean and standard deviation.
#include <cstdio>
#include <nuqi/hpp/means.hpp>

#include "commands/stats.h"

namespace tools {

void print_means(const Levels& levels, const Selection& selection) {
  const auto [mean, deviation] = nuqi::mean_std(levels.plane, selection.mask());
  std::printf("%-*s%.4f\n", kNameWidth, "mean", mean);
  std::printf("%-*s%.4f\n", kNameWidth, "standard deviation", deviation);
}

}  // namespace tools

// nuqi stats: minimum and maximum, and where they are first.
#include <cstdio>
#include <nuqi/hpp/min_max.hpp>

#include "commands/stats.h"

namespace tools {

void print_extrema(const Levels& levels, const Selection& selection) {
  const auto found = nuqi::min_max(levels.plane, selection.mask());
  const auto print = [](const char* name, int value, const auto& at) {
    std::printf("%-*s%d at %lld,%lld\n", kNameWidth, name, value, static_cast<long long>(at.x),
                static_cast<long long>(at.y));
  };
  print("minimum", found.min, found.min_at);
  print("maximum", found.max, found.max_at);
}

}  // namespace tools

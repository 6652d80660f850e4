// nuqi stats: how many pixels have which levels.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nuqi/hpp/histogram.hpp>
#include <string>
#include <vector>

#include "commands/stats.h"
#include "pictures/plot.h"

namespace tools {
namespace {

// Histograms take no mask.
std::vector<uint8_t> selected(const Levels& levels, const Selection& selection) {
  std::vector<uint8_t> values;
  values.reserve(size_t(selection.count));
  for (size_t i = 0; i < selection.plane.values.size(); ++i) {
    if (selection.plane.values[i] != 0) values.push_back(levels.plane.values[i]);
  }
  return values;
}

int first_level(int bin, int bins) { return bin * 256 / bins; }

std::vector<int64_t> histogram_of(const Levels& levels, const Selection& selection, int bins) {
  std::vector<int> firsts;
  for (int i = 0; i <= bins; ++i) firsts.push_back(first_level(i, bins));
  const std::vector<uint8_t> values = selected(levels, selection);
  return nuqi::histogram(nuqi::View(values.data(), selection.count, 1), firsts);
}

}  // namespace

void print_histogram(const Levels& levels, const Selection& selection, int bins) {
  const std::vector<int64_t> counts = histogram_of(levels, selection, bins);
  const int64_t most = *std::max_element(counts.begin(), counts.end());
  for (int i = 0; i < bins; ++i) {
    const int64_t count = counts[size_t(i)];
    const int first = first_level(i, bins), last = first_level(i + 1, bins) - 1;
    const std::string name = "levels " + std::to_string(first) + " to " + std::to_string(last);
    const std::string bar(size_t(std::lround(40.0 * double(count) / double(most))), '#');
    std::printf("%-*s%-11lld%s%s\n", kNameWidth, name.c_str(), static_cast<long long>(count),
                bar.empty() ? "" : " ", bar.c_str());
  }
}

void draw_histogram(const Levels& levels, const Selection& selection, const std::string& path) {
  const Ink ink = levels.channel == 0 ? kGreyInk : kChannelInks[levels.channel - 1];
  const std::vector<int64_t> counts = histogram_of(levels, selection, 256);
  Plot plot(255, double(*std::max_element(counts.begin(), counts.end())));
  plot.bars({counts.begin(), counts.end()}, ink);
  write_picture(path, plot.picture());
}

}  // namespace tools

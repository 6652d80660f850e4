// nuqi stats: how many pixels have which levels.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include "commands/stats.h"
#include "failure.h"
#include "pictures/plot.h"

namespace tools {
namespace {

// The histogram takes neither a mask nor one channel of three.
std::vector<uint8_t> selected(const Levels& levels, const Selection& selection) {
  std::vector<uint8_t> values;
  values.reserve(size_t(selection.count));
  const size_t channels = size_t(levels.picture.channels);
  const uint8_t* src =
      levels.picture.pixels.data() + (levels.channel == 0 ? 0 : levels.channel - 1);
  for (size_t i = 0; i < selection.mask.values.size(); ++i) {
    if (selection.mask.values[i] != 0) values.push_back(src[i * channels]);
  }
  return values;
}

int first_level(int bin, int bins) { return bin * 256 / bins; }

std::vector<int32_t> histogram_of(const std::vector<uint8_t>& values, int bins) {
  std::vector<uint8_t> firsts(static_cast<size_t>(bins));
  for (int i = 0; i < bins; ++i) firsts[size_t(i)] = uint8_t(first_level(i, bins));
  std::vector<int32_t> counts(static_cast<size_t>(bins));
  const int32_t count = int32_t(values.size());
  require_ok(
      nuqiCalcHist_8u_C1R(values.data(), count, {count, 1}, counts.data(), bins, firsts.data()),
      "nuqiCalcHist_8u_C1R");
  // A byte cannot name the level 256, at which the last bin ends: it has what the others leave.
  counts.back() = 0;
  counts.back() = count - std::accumulate(counts.begin(), counts.end(), 0);
  return counts;
}

}  // namespace

void print_histogram(const Levels& levels, const Selection& selection, int bins) {
  const std::vector<int32_t> counts = histogram_of(selected(levels, selection), bins);
  const int32_t most = *std::max_element(counts.begin(), counts.end());
  for (int i = 0; i < bins; ++i) {
    const int32_t count = counts[size_t(i)];
    const int first = first_level(i, bins), last = first_level(i + 1, bins) - 1;
    const std::string name = "levels " + std::to_string(first) + " to " + std::to_string(last);
    const std::string bar(size_t(std::lround(40.0 * count / most)), '#');
    std::printf("%-*s%-11d%s%s\n", kNameWidth, name.c_str(), count, bar.empty() ? "" : " ",
                bar.c_str());
  }
}

void draw_histogram(const Levels& levels, const Selection& selection, const std::string& path) {
  const Ink ink = levels.channel == 0 ? kGreyInk : kChannelInks[levels.channel - 1];
  const std::vector<int32_t> counts = histogram_of(selected(levels, selection), 256);
  Plot plot(255, *std::max_element(counts.begin(), counts.end()));
  plot.bars({counts.begin(), counts.end()}, ink);
  write_picture(path, plot.picture());
}

}  // namespace tools

// Plain loops of the histograms, as one would write them. Compiled by each compiler.
#include "stats/histogram_plain.h"

#include <cstring>

namespace nuqi::bench::PLAIN_COMPILER {

void plain_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist, int32_t levelCount,
                const uint8_t* levels) {
  int32_t counts[256] = {};
  for (int y = 0; y < roi.height; ++y) {
    const uint8_t* row = src + static_cast<intptr_t>(y) * step;
    for (int x = 0; x < roi.width; ++x) ++counts[row[x]];
  }
  for (int i = 0; i + 1 < levelCount; ++i) {
    hist[i] = 0;
    for (int v = levels[i]; v < levels[i + 1]; ++v) hist[i] += counts[v];
  }
}

void plain_joint_hist(const uint8_t* src, int32_t step, RoiSize roi, int32_t* hist,
                      int32_t histStep, const int32_t* counts, const int32_t* levels) {
  const int32_t across = counts[0], down = counts[1];
  std::memset(hist, 0, sizeof(int32_t) * (across + 1) * (down + 1));
  const auto bin_of = [](int v, const int32_t* list, int count) {
    if (v < list[0] || v >= list[count]) return -1;
    int bin = 0;
    while (list[bin + 1] <= v) ++bin;
    return bin;
  };
  int32_t columns[256], rows[256];
  for (int v = 0; v < 256; ++v) {
    columns[v] = bin_of(v, levels, across);
    rows[v] = bin_of(v, levels + across + 1, down);
  }
  const int32_t row_counters = histStep / 4;
  for (int y = 0; y < roi.height; ++y) {
    const uint8_t* row = src + static_cast<intptr_t>(y) * step;
    for (int x = 0; x < roi.width; ++x) {
      const int32_t i = columns[row[2 * x]], j = rows[row[2 * x + 1]];
      if (i >= 0 && j >= 0) ++hist[j * row_counters + i];
    }
  }
}

int32_t plain_hist_total(const int32_t* src, float*, int32_t length, int32_t) {
  double total = 0;
  for (int32_t i = 0; i < length; ++i) total += src[i];
  return total == 0;
}

}  // namespace nuqi::bench::PLAIN_COMPILER

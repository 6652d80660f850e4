// The histograms, pixel by pixel.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// A single level's bin has no upper end.
inline std::vector<int32_t> histogram_reference(const std::vector<uint8_t>& pixels,
                                                const std::vector<uint8_t>& levels) {
  std::vector<int32_t> bins(levels.size() == 1 ? 1 : levels.size() - 1);
  for (size_t i = 0; i < bins.size(); ++i)
    for (uint8_t v : pixels)
      if (v >= levels[i] && (levels.size() == 1 || v < levels[i + 1])) ++bins[i];
  return bins;
}

// The bin of a value, or -1.
inline int bin_reference(uint8_t value, const std::vector<int32_t>& levels) {
  if (value < levels.front() || value >= levels.back()) return -1;
  int bin = 0;
  for (size_t i = 1; i < levels.size(); ++i) bin += levels[i] <= value;
  return bin;
}

// On the bytes of the histogram, which may hold rows of any step.
inline void joint_histogram_reference(const std::vector<uint8_t>& pixels,
                                      const std::vector<int32_t>& across,
                                      const std::vector<int32_t>& down, int32_t step,
                                      std::vector<uint8_t>& hist) {
  std::memset(hist.data(), 0, across.size() * down.size() * 4);
  for (size_t i = 0; i < pixels.size(); i += 2) {
    const int column = bin_reference(pixels[i], across), row = bin_reference(pixels[i + 1], down);
    if (column < 0 || row < 0) continue;
    uint8_t* counter = hist.data() + int64_t{row} * step + int64_t{column} * 4;
    uint32_t count;
    std::memcpy(&count, counter, 4);
    ++count;
    std::memcpy(counter, &count, 4);
  }
}

}  // namespace nuqi::test

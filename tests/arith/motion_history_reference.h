// The motion history, one pixel after the other, on the bits of its floats.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// Sorts as the floats do.
inline int32_t motion_key_reference(uint32_t bits) {
  if (bits < 0x80000000u) return static_cast<int32_t>(bits);
  return static_cast<int32_t>(~(bits & 0x7FFFFFFFu));
}

inline uint32_t motion_threshold_reference(float timestamp, float duration) {
  if (std::isnan(timestamp)) return std::bit_cast<uint32_t>(timestamp) | 0x00400000u;
  if (std::isinf(timestamp) && std::isinf(duration) && timestamp > 0) return 0xFFC00000u;
  return std::bit_cast<uint32_t>(timestamp - duration);
}

inline void motion_history_reference(const std::vector<uint8_t>& silhouette,
                                     std::vector<uint32_t>& history, float timestamp,
                                     float duration) {
  const int32_t threshold = motion_key_reference(motion_threshold_reference(timestamp, duration));
  for (size_t i = 0; i < history.size(); ++i) {
    if (silhouette[i] != 0)
      history[i] = std::bit_cast<uint32_t>(timestamp);
    else if (motion_key_reference(history[i]) < threshold)
      history[i] = 0;
  }
}

}  // namespace nuqi::test

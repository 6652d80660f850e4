// The copy family, one element after the other.
#pragma once

#include <cstddef>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

// One channel of interleaved pixels.
template <class T>
std::vector<T> channel_reference(const std::vector<T>& pixels, int channels, int channel) {
  std::vector<T> plane;
  for (size_t i = channel; i < pixels.size(); i += channels) plane.push_back(pixels[i]);
  return plane;
}

template <class T>
std::vector<T> join_reference(const std::vector<std::vector<T>>& planes) {
  std::vector<T> pixels;
  for (size_t i = 0; i < planes[0].size(); ++i)
    for (const std::vector<T>& plane : planes) pixels.push_back(plane[i]);
  return pixels;
}

}  // namespace nuqi::test

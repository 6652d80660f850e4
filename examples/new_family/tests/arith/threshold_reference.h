// The thresholds, pixel by pixel, straight from their contract.
#pragma once

#include <vector>

#include "nuqi/threshold.h"

namespace nuqi::test {

template <class T>
std::vector<T> threshold_reference(std::vector<T> pixels, T level, T value) {
  for (T& pixel : pixels) pixel = pixel > level ? value : T{0};
  return pixels;
}

}  // namespace nuqi::test

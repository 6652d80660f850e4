// The derivatives of a picture as a camera might take it: surfaces in changing light, some of them
// with a texture, soft outlines, and the sensor's noise.
#pragma once

#include "support/images.h"

namespace nuqi::bench {

struct CannyScene {
  explicit CannyScene(RoiSize roi);

  Buffer<int16_t> dx, dy;  // Sobel's, rows back to back
  Buffer<uint8_t> buffer;  // of the queried size
};

// Of which a few pixels in a hundred are edges.
constexpr float kCannyLow = 60, kCannyHigh = 150;

CannyScene& canny_scene(RoiSize roi);

}  // namespace nuqi::bench

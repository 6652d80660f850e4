// What the tour works on: a picture from a file, or a landscape that the program draws itself.
#pragma once

#include <string>

#include "pictures/picture.h"

namespace tools {

struct Scene {
  std::string name;
  RoiSize file_size{0, 0};  // larger than the pictures where they were made smaller
  Picture colour;
  Plane<uint8_t> grey;  // two rows at least
};

// At most 1024 pixels a side: the page shows no more, and all families together take a while.
Scene scene_of_file(const std::string& path);
Scene built_in_scene();

// Frame `index` of `count`: the scene's grey picture with two balls that cross it in opposite
// directions and fresh noise, as a camera on a tripod would see it. Always the same.
Plane<uint8_t> frame_of(const Scene& scene, int index, int count);

// True in the ellipse that fills the middle of the picture.
Plane<uint8_t> ellipse_mask(RoiSize size);

}  // namespace tools

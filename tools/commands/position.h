// Positions of pixels, as users write them.
#pragma once

#include <string>

#include "commands/pairs.h"
#include "failure.h"
#include "pictures/picture.h"

namespace tools {

// "x,y"; throws a UserError where the text is something else.
inline PixelPoint point_of(const std::string& text) {
  PixelPoint point{};
  if (read_pair(text, ',', point.x, point.y)) return point;
  throw UserError(text + ": is no position, which is written as x,y");
}

inline void check_inside(PixelPoint point, const std::string& text, const std::string& path,
                         RoiSize size) {
  if (point.x >= 0 && point.y >= 0 && point.x < size.width && point.y < size.height) return;
  throw UserError(text + ": lies outside " + path + ", which is " + size_text(size));
}

}  // namespace tools

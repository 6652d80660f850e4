// Canny's edges of a picture of any size.
#pragma once

#include <string>

#include "pictures/picture.h"

namespace tools {

// 255 on edges, 0 elsewhere; `edge_operator` is sobel or scharr.
Plane<uint8_t> edges_of(const Plane<uint8_t>& grey, const std::string& edge_operator, float low,
                        float high);

}  // namespace tools

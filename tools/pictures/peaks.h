// The local maxima of a plane of numbers.
#pragma once

#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools {

struct Peak {
  int32_t x, y;
  float value;
};

// All of them, the highest first, of equal ones the upper and then the left one. A plateau that no
// neighbour exceeds counts once, by its first pixel; of a flat plane that is the pixel at the upper left.
std::vector<Peak> peaks_of(const Plane<float>& plane);

// Lines of x, y and the value, below one that names the columns.
void write_csv(const std::string& path, const std::string& value_name,
               const std::vector<Peak>& peaks);

}  // namespace tools

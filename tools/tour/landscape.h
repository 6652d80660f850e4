// The landscape that the tour draws where it is given no picture.
#pragma once

#include "pictures/picture.h"

namespace tools {

// An evening at a lake, 640x480: smooth gradients, soft and sharp edges, lines in all directions,
// fine texture and a camera's grain. Always the same.
Picture landscape();

// Well-mixed bits of three numbers: all the scene's chance comes from here.
uint32_t hash(uint32_t a, uint32_t b, uint32_t c);

}  // namespace tools

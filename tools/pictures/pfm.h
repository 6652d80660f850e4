// Float pictures as PFM files: single-precision numbers as they are.
#pragma once

#include <string>

#include "pictures/picture.h"

namespace tools {

// One channel, in this machine's byte order. Throws UserError where the file cannot be written.
void write_pfm(const std::string& path, const Plane<float>& plane);

}  // namespace tools

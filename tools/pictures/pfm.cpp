// Float pictures as PFM files.
#include "pictures/pfm.h"

#include <bit>
#include <cstring>

#include "pictures/file.h"

namespace tools {

// Text lines tell the kind, the size and, by the sign of a scale, the byte order: negative is
// little-endian. The rows follow from the bottom to the top.
void write_pfm(const std::string& path, const Plane<float>& plane) {
  const bool little = std::endian::native == std::endian::little;
  const std::string header = "Pf\n" + std::to_string(plane.size.width) + " " +
                             std::to_string(plane.size.height) + "\n" +
                             (little ? "-1.0\n" : "1.0\n");
  Bytes bytes(header.begin(), header.end());
  const size_t row = size_t(plane.size.width) * sizeof(float);
  bytes.resize(header.size() + row * size_t(plane.size.height));
  uint8_t* to = bytes.data() + header.size();
  for (int32_t y = plane.size.height - 1; y >= 0; --y, to += row) {
    std::memcpy(to, plane.data() + size_t(y) * size_t(plane.size.width), row);
  }
  write_file(path, bytes.data(), bytes.size());
}

}  // namespace tools

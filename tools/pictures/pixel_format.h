// How the pixels of rows lie in bytes, and the ways from one layout to another.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tools {

struct PixelFormat {
  int channels;  // 1: grey, 3: red, green, blue, 4: and alpha
  int bits;      // of a sample: 8, or 16 in this machine's byte order

  size_t bytes() const { return size_t(channels * bits / 8); }
  bool operator==(const PixelFormat&) const = default;
};

// 16 bits are rounded to 8, alpha is laid over white, colour becomes grey; grey becomes colour, and 8 bits
// become 16, without loss. `from` and `to` do not overlap.
void convert(const uint8_t* from, PixelFormat from_format, size_t pixels, uint8_t* to,
             PixelFormat to_format);

// Samples of either depth from 0 to 65535, and back to 16 bits.
void to_floats(const uint8_t* from, int bits, size_t samples, float* to);
void from_floats(const float* from, size_t samples, uint8_t* to);

}  // namespace tools

// How the pixels of rows lie in bytes, and the ways from one layout to another.
#include "pictures/pixel_format.h"

#include <cstring>
#include <vector>

#include "pictures/picture.h"

namespace tools {
namespace {

constexpr uint32_t kWiden = 257;  // 0xAB becomes 0xABAB: white stays white

// Rows of bytes need not be aligned.
uint32_t sample_at(const uint8_t* row, int bits, size_t i) {
  if (bits == 8) return row[i];
  uint16_t value;
  std::memcpy(&value, row + 2 * i, sizeof value);
  return value;
}
void put_sample(uint32_t sample, int bits, uint8_t* row, size_t i) {
  if (bits == 8) {
    row[i] = uint8_t(sample);
  } else {
    const auto value = uint16_t(sample);
    std::memcpy(row + 2 * i, &value, sizeof value);
  }
}

void convert_bits(const uint8_t* from, int from_bits, size_t samples, uint8_t* to, int to_bits) {
  for (size_t i = 0; i < samples; ++i) {
    const uint32_t sample = sample_at(from, from_bits, i);
    const uint32_t result = from_bits == to_bits ? sample
                            : to_bits == 16      ? sample * kWiden
                                                 : (sample + kWiden / 2) / kWiden;
    put_sample(result, to_bits, to, i);
  }
}

void convert_channels(const uint8_t* from, int from_channels, size_t pixels, uint8_t* to,
                      int to_channels, int bits) {
  const uint32_t white = (1u << bits) - 1;
  for (size_t i = 0; i < pixels; ++i) {
    uint32_t rgb[3];
    const size_t first = i * size_t(from_channels);
    for (size_t c = 0; c < 3; ++c) {
      rgb[c] = sample_at(from, bits, first + (from_channels == 1 ? 0 : c));
      if (from_channels == 4) rgb[c] = over_white(rgb[c], sample_at(from, bits, first + 3), white);
    }
    if (to_channels == 1) put_sample(grey_level(rgb), bits, to, i);
    for (size_t c = 0; to_channels == 3 && c < 3; ++c) put_sample(rgb[c], bits, to, 3 * i + c);
  }
}

}  // namespace

void convert(const uint8_t* from, PixelFormat from_format, size_t pixels, uint8_t* to,
             PixelFormat to_format) {
  const size_t samples = pixels * size_t(from_format.channels);
  if (from_format.channels == to_format.channels) {
    return convert_bits(from, from_format.bits, samples, to, to_format.bits);
  }
  std::vector<uint8_t> same_bits;
  if (from_format.bits != to_format.bits) {
    same_bits.resize(samples * size_t(to_format.bits) / 8);
    convert_bits(from, from_format.bits, samples, same_bits.data(), to_format.bits);
    from = same_bits.data();
  }
  convert_channels(from, from_format.channels, pixels, to, to_format.channels, to_format.bits);
}

void to_floats(const uint8_t* from, int bits, size_t samples, float* to) {
  for (size_t i = 0; i < samples; ++i) {
    to[i] = float(sample_at(from, bits, i) * (bits == 8 ? kWiden : 1));
  }
}

void from_floats(const float* from, size_t samples, uint8_t* to) {
  for (size_t i = 0; i < samples; ++i) put_sample(uint32_t(from[i]), 16, to, i);
}

}  // namespace tools

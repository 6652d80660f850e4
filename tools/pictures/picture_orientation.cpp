// Cameras store a picture as the sensor lay and note its orientation in an Exif block.
#include <algorithm>

#include "pictures/picture.h"

namespace tools {
namespace {

constexpr uint32_t kOrientationTag = 0x0112;

// Reads numbers of the block's own byte order; anything beyond its end is 0.
struct Reader {
  const uint8_t* bytes;
  size_t length;
  bool big_endian;

  uint32_t number(size_t at, int count) const {
    if (at + size_t(count) > length) return 0;
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) {
      value = value << 8 | bytes[at + size_t(big_endian ? i : count - 1 - i)];
    }
    return value;
  }
};

}  // namespace

int exif_orientation(const uint8_t* block, size_t length) {
  if (length < 8) return 1;
  const Reader exif{block, length, block[0] == 'M'};
  const size_t directory = exif.number(4, 4);
  const uint32_t count = exif.number(directory, 2);
  for (uint32_t i = 0; i < count; ++i) {
    const size_t entry = directory + 2 + 12 * size_t{i};
    if (exif.number(entry, 2) != kOrientationTag) continue;
    const uint32_t orientation = exif.number(entry + 8, 2);
    return orientation >= 1 && orientation <= 8 ? int(orientation) : 1;
  }
  return 1;
}

template <class T>
PictureOf<T> turned_upright(PictureOf<T> picture, int orientation) {
  if (orientation == 1) return picture;
  const bool swap = orientation >= 5;
  const bool flip_x = orientation == 2 || orientation == 3 || orientation >= 7;
  const bool flip_y = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  const RoiSize from = picture.size;
  const RoiSize to = swap ? RoiSize{from.height, from.width} : from;
  PictureOf<T> upright(to, picture.channels);
  const size_t pixel = size_t(picture.channels);
  T* out = upright.pixels.data();
  for (int32_t y = 0; y < to.height; ++y) {
    for (int32_t x = 0; x < to.width; ++x, out += pixel) {
      int32_t from_x = swap ? y : x, from_y = swap ? x : y;
      if (flip_x) from_x = from.width - 1 - from_x;
      if (flip_y) from_y = from.height - 1 - from_y;
      const size_t at = size_t(from_y) * size_t(from.width) + size_t(from_x);
      std::copy_n(picture.pixels.data() + pixel * at, pixel, out);
    }
  }
  return upright;
}

template Picture turned_upright(Picture, int);
template PictureOf<float> turned_upright(PictureOf<float>, int);

}  // namespace tools

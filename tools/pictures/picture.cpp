// Pictures in memory, and the way from colour to grey.
#include "pictures/picture.h"

#include "failure.h"
#include "pictures/row_reader.h"

namespace tools {
namespace {

// Canny's buffer of 12 * (width + 2) * (height + 2) bytes must stay below 2^31.
constexpr uint64_t kMaxBorderedPixels = INT32_MAX / 12;

}  // namespace

std::string size_text(RoiSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

void check_same_size(const std::string& name, RoiSize size, const std::string& first_name,
                     RoiSize first) {
  if (size.width == first.width && size.height == first.height) return;
  throw UserError(name + ": is " + size_text(size) + ", but " + first_name + " is " +
                  size_text(first));
}

void check_size(uint32_t width, uint32_t height, const std::string& name) {
  check_sides(width, height, name);
  if ((width + uint64_t{2}) * (height + uint64_t{2}) > kMaxBorderedPixels) {
    throw UserError(name + ": is too large, the limit is " +
                    std::to_string(kMaxBorderedPixels / 1000000) + " million pixels");
  }
}

Picture read_picture(const std::string& path) { return read_picture(path, Form::colour); }

Picture read_picture(const std::string& path, Form form) {
  return whole_picture<uint8_t>(*open_rows(path, form), path);
}

template <class T>
Plane<T> grey_of(const PictureOf<T>& picture) {
  Plane<T> grey(picture.size);
  if (picture.channels == 1) {
    grey.values = picture.pixels;
    return grey;
  }
  const T* pixel = picture.pixels.data();
  for (T& value : grey.values) {
    uint32_t rgb[3];
    for (int c = 0; c < 3; ++c) {
      rgb[c] = uint32_t(pixel[c]);
      if (picture.channels == 4) rgb[c] = over_white(rgb[c], uint32_t(pixel[3]), kGreatest<T>);
    }
    value = T(grey_level(rgb));
    pixel += picture.channels;
  }
  return grey;
}

template <class T>
PictureOf<T> with_channels(const PictureOf<T>& picture, int channels) {
  if (picture.channels == channels) return picture;
  PictureOf<T> result(picture.size, channels);
  for (size_t i = 0; i < result.pixels.size(); ++i) {
    result.pixels[i] = picture.pixels[i / size_t(channels) * size_t(picture.channels)];
  }
  return result;
}

template Plane<uint8_t> grey_of(const Picture&);
template Plane<float> grey_of(const PictureOf<float>&);
template Picture with_channels(const Picture&, int);
template PictureOf<float> with_channels(const PictureOf<float>&, int);

Plane<uint8_t> read_grey(const std::string& path) {
  Picture picture = whole_picture<uint8_t>(*open_rows(path, Form::grey), path);
  Plane<uint8_t> grey;
  grey.size = picture.size;
  grey.values = std::move(picture.pixels);
  return grey;
}

Plane<uint8_t> with_two_rows(Plane<uint8_t> plane) {
  if (plane.size.height != 1) return plane;
  const std::vector<uint8_t> row = plane.values;
  plane.values.insert(plane.values.end(), row.begin(), row.end());
  plane.size.height = 2;
  return plane;
}

}  // namespace tools

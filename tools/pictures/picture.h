// Planes of pixels, and colour pictures read from and written to PNG and JPEG files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nuqi/hpp/image.hpp>
#include <string>
#include <vector>

namespace tools {

// One channel with tight rows, in the form that the library's calls take.
template <class T>
struct Plane {
  RoiSize size{0, 0};
  std::vector<T> values;

  Plane() = default;
  explicit Plane(RoiSize roi) : size(roi), values(size_t(roi.width) * size_t(roi.height)) {}

  T* data() { return values.data(); }
  const T* data() const { return values.data(); }
  int32_t step() const { return size.width * int32_t(sizeof(T)); }
};

}  // namespace tools

// Operations take planes as they are.
template <class T>
struct nuqi::ImageTraits<tools::Plane<T>> {
  static constexpr int channels = 1;
  static constexpr bool row_major = true;
  template <class Plane>
  static auto* data(Plane& plane) {
    return plane.data();
  }
  static int64_t rows(const tools::Plane<T>& plane) { return plane.size.height; }
  static int64_t columns(const tools::Plane<T>& plane) { return plane.size.width; }
  static ptrdiff_t row_stride_bytes(const tools::Plane<T>& plane) { return plane.step(); }
};

namespace tools {

// A picture to look at: 1 channel (grey), 3 (red, green, blue) or 4 (and alpha), interleaved, tight rows.
struct Picture {
  RoiSize size{0, 0};
  int channels = 3;
  std::vector<uint8_t> pixels;

  Picture() = default;
  Picture(RoiSize roi, int count)
      : size(roi), channels(count), pixels(size_t(roi.width) * size_t(roi.height) * count) {}
};

inline nuqi::View<const uint8_t, nuqi::kAnyChannels> view_of(const Picture& picture) {
  return {picture.pixels.data(), picture.size.width, picture.size.height, picture.channels,
          ptrdiff_t(picture.size.width) * picture.channels};
}
inline nuqi::View<uint8_t, nuqi::kAnyChannels> view_of(Picture& picture) {
  return {picture.pixels.data(), picture.size.width, picture.size.height, picture.channels,
          ptrdiff_t(picture.size.width) * picture.channels};
}

std::string size_text(RoiSize size);  // "640x480"
// Throws a UserError where pictures that belong together differ in size.
void check_same_size(const std::string& name, RoiSize size, const std::string& first_name,
                     RoiSize first);

// A PNG or JPEG file of any kind as red, green and blue; row_reader.h has the details. Throws UserError
// where the file cannot be read or is no picture.
Picture read_picture(const std::string& path);

// Writes in the format that the ending of `path` names. Throws UserError.
void write_picture(const std::string& path, const Picture& picture);

// Throws UserError unless `path` ends as pictures do or is "-": lets a command fail before its work.
void check_ending(const std::string& path);

inline uint8_t grey_level(const uint8_t* rgb) {
  return uint8_t((77 * rgb[0] + 150 * rgb[1] + 29 * rgb[2] + 128) / 256);
}
Plane<uint8_t> grey_of(const Picture& picture);

// A grey picture with three equal channels, or the first channel of three.
Picture with_channels(const Picture& picture, int channels);

// grey_of(read_picture(path)), in a third of its memory.
Plane<uint8_t> read_grey(const std::string& path);

inline uint8_t over_white(uint32_t value, uint32_t alpha) {
  return uint8_t((value * alpha + 255 * (255 - alpha) + 127) / 255);
}
Picture picture_of(const Plane<uint8_t>& plane);

// The derivatives need two rows. A row twice has the derivatives of the row alone: pixels beyond an
// edge equal the edge pixel.
Plane<uint8_t> with_two_rows(Plane<uint8_t> plane);

using Bytes = std::vector<uint8_t>;
Bytes encode_png(const Picture& picture, const std::string& name);
Bytes encode_jpeg(const Picture& picture, const std::string& name);

// Both throw UserError: where rows are too long for any command, and where a whole picture is larger than every
// command can take.
void check_sides(uint32_t width, uint32_t height, const std::string& name);
void check_size(uint32_t width, uint32_t height, const std::string& name);

// The orientation, 1 to 8, in an Exif block, which begins with its byte order; 1 where there is none.
int exif_orientation(const uint8_t* block, size_t length);
Picture turned_upright(Picture picture, int orientation);

}  // namespace tools

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
// Samples of 8 bits are bytes, those of 16 bits floats from 0 to 65535: exact, and what the library computes
// with.
template <class T>
struct PictureOf {
  RoiSize size{0, 0};
  int channels = 3;
  std::vector<T> pixels;

  PictureOf() = default;
  PictureOf(RoiSize roi, int count)
      : size(roi), channels(count), pixels(size_t(roi.width) * size_t(roi.height) * count) {}

  size_t row_samples() const { return size_t(size.width) * size_t(channels); }
};
using Picture = PictureOf<uint8_t>;

template <class T>
inline constexpr int kBits = 8;
template <>
inline constexpr int kBits<float> = 16;
template <class T>
inline constexpr uint32_t kGreatest = (1u << kBits<T>)-1;

template <class T>
nuqi::View<const T, nuqi::kAnyChannels> view_of(const PictureOf<T>& picture) {
  return {picture.pixels.data(), picture.size.width, picture.size.height, picture.channels,
          ptrdiff_t(picture.row_samples() * sizeof(T))};
}
template <class T>
nuqi::View<T, nuqi::kAnyChannels> view_of(PictureOf<T>& picture) {
  return {picture.pixels.data(), picture.size.width, picture.size.height, picture.channels,
          ptrdiff_t(picture.row_samples() * sizeof(T))};
}

std::string size_text(RoiSize size);  // "640x480"
// Throws a UserError where pictures that belong together differ in size.
void check_same_size(const std::string& name, RoiSize size, const std::string& first_name,
                     RoiSize first);

// A PNG or JPEG file of any kind as red, green and blue; row_reader.h has the details. Throws UserError
// where the file cannot be read or is no picture.
Picture read_picture(const std::string& path);

// Writes in the format that the ending of `path` names. Throws UserError.
template <class T>
void write_picture(const std::string& path, const PictureOf<T>& picture);

// Throws UserError unless `path` ends as pictures do, in a folder that exists, or is "-": lets a command fail
// before its work.
void check_picture_output(const std::string& path);

// Of red, green and blue.
template <class Sample>
uint32_t grey_level(const Sample* rgb) {
  return (77 * uint32_t(rgb[0]) + 150 * uint32_t(rgb[1]) + 29 * uint32_t(rgb[2]) + 128) / 256;
}
// With alpha over white.
template <class T>
Plane<T> grey_of(const PictureOf<T>& picture);

// A grey picture with three equal channels, or the first channel of three.
template <class T>
PictureOf<T> with_channels(const PictureOf<T>& picture, int channels);

// grey_of(read_picture(path)), in a third of its memory.
Plane<uint8_t> read_grey(const std::string& path);

// `white` is the greatest sample, of 8 or of 16 bits.
inline uint32_t over_white(uint32_t value, uint32_t alpha, uint32_t white) {
  return (value * alpha + white * (white - alpha) + white / 2) / white;
}
template <class T>
PictureOf<T> picture_of(const Plane<T>& plane) {
  PictureOf<T> picture(plane.size, 1);
  picture.pixels = plane.values;
  return picture;
}

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
template <class T>
PictureOf<T> turned_upright(PictureOf<T> picture, int orientation);

}  // namespace tools

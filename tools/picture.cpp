// Pictures: recognising formats, and the way from colour to grey.
#include "picture.h"

#include <algorithm>
#include <cctype>

#include "failure.h"
#include "file.h"

namespace tools {
namespace {

// Canny's buffer of 12 * (width + 2) * (height + 2) bytes must stay below 2^31.
constexpr uint64_t kMaxBorderedPixels = INT32_MAX / 12;

bool starts_with(const Bytes& bytes, std::initializer_list<uint8_t> signature) {
  return bytes.size() >= signature.size() &&
         std::equal(signature.begin(), signature.end(), bytes.begin());
}

bool ends_with(const std::string& path, const std::string& ending) {
  if (path.size() <= ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), path.end() - ptrdiff_t(ending.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<uint8_t>(b)); });
}

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
  if (width < 1 || height < 1) throw UserError(name + ": is an empty picture");
  if ((width + uint64_t{2}) * (height + uint64_t{2}) > kMaxBorderedPixels) {
    throw UserError(name + ": is too large, the limit is " +
                    std::to_string(kMaxBorderedPixels / 1000000) + " million pixels");
  }
}

Picture read_picture(const std::string& path) {
  const Bytes bytes = read_file(path);
  if (starts_with(bytes, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'})) {
    return decode_png(bytes, path);
  }
  if (starts_with(bytes, {0xFF, 0xD8, 0xFF})) return decode_jpeg(bytes, path);
  throw UserError(path + ": is neither a PNG nor a JPEG picture");
}

void check_ending(const std::string& path) {
  if (ends_with(path, ".png") || ends_with(path, ".jpg") || ends_with(path, ".jpeg")) return;
  throw UserError(path + ": cannot be written: its ending must be .png, .jpg or .jpeg");
}

void write_picture(const std::string& path, const Picture& picture) {
  check_ending(path);
  const Bytes bytes =
      ends_with(path, ".png") ? encode_png(picture, path) : encode_jpeg(picture, path);
  write_file(path, bytes.data(), bytes.size());
}

Plane<uint8_t> grey_of(const Picture& picture) {
  Plane<uint8_t> grey(picture.size);
  if (picture.channels == 1) {
    grey.values = picture.pixels;
    return grey;
  }
  const uint8_t* rgb = picture.pixels.data();
  for (uint8_t& value : grey.values) {
    value = uint8_t((77 * rgb[0] + 150 * rgb[1] + 29 * rgb[2] + 128) / 256);
    rgb += 3;
  }
  return grey;
}

Picture picture_of(const Plane<uint8_t>& plane) {
  Picture picture;
  picture.size = plane.size;
  picture.channels = 1;
  picture.pixels = plane.values;
  return picture;
}

Plane<uint8_t> with_two_rows(Plane<uint8_t> plane) {
  if (plane.size.height != 1) return plane;
  const std::vector<uint8_t> row = plane.values;
  plane.values.insert(plane.values.end(), row.begin(), row.end());
  plane.size.height = 2;
  return plane;
}

}  // namespace tools

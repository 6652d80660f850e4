// PNG files, by libpng: palettes, grey, colour, 1 to 16 bits, with and without alpha, interlaced.
// Reading avoids libpng's simplified interface: version 1.6.39 breaks interlaced pictures of 16 bits.
#include <png.h>

#include <cstdio>
#include <cstring>
#include <new>

#include "failure.h"
#include "picture.h"

namespace tools {
namespace {

// Everything that must survive libpng's jump out of a function lives here.
struct Decoder {
  explicit Decoder(const Bytes& file) : bytes(file) {}
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }

  const Bytes& bytes;
  size_t at = 0;
  png_structp png = nullptr;
  png_infop info = nullptr;
  char message[200] = "";
  Bytes rgba;
  std::vector<png_bytep> rows;
};

[[noreturn]] void on_error(png_structp png, png_const_charp message) {
  auto* decoder = static_cast<Decoder*>(png_get_error_ptr(png));
  std::snprintf(decoder->message, sizeof decoder->message, "%s", message);
  png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

void next_bytes(png_structp png, png_bytep target, size_t count) {
  auto* decoder = static_cast<Decoder*>(png_get_io_ptr(png));
  if (count > decoder->bytes.size() - decoder->at) png_error(png, "the file ends too early");
  std::memcpy(target, decoder->bytes.data() + decoder->at, count);
  decoder->at += count;
}

bool read_header(Decoder& decoder) {
  decoder.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &decoder, on_error, on_warning);
  if (decoder.png == nullptr) throw std::bad_alloc();
  if (setjmp(png_jmpbuf(decoder.png))) return false;
  decoder.info = png_create_info_struct(decoder.png);
  png_set_read_fn(decoder.png, &decoder, next_bytes);
  png_read_info(decoder.png, decoder.info);
  return true;
}

// Every kind becomes red, green, blue and alpha of 8 bits.
bool read_rows(Decoder& decoder) {
  png_structp png = decoder.png;
  if (setjmp(png_jmpbuf(png))) return false;
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 255, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, decoder.info);
  if (png_get_rowbytes(png, decoder.info) * decoder.rows.size() != decoder.rgba.size()) {
    png_error(png, "its pixels have an unknown layout");
  }
  png_read_image(png, decoder.rows.data());
  png_read_end(png, nullptr);
  return true;
}

uint8_t over_white(uint32_t value, uint32_t alpha) {
  return uint8_t((value * alpha + 255 * (255 - alpha) + 127) / 255);
}

}  // namespace

Picture decode_png(const Bytes& bytes, const std::string& name) {
  Decoder decoder(bytes);
  if (!read_header(decoder))
    throw UserError(name + ": is a broken PNG picture: " + decoder.message);
  const uint32_t width = png_get_image_width(decoder.png, decoder.info);
  const uint32_t height = png_get_image_height(decoder.png, decoder.info);
  check_size(width, height, name);
  const size_t row_bytes = size_t{4} * width;
  decoder.rgba.resize(row_bytes * height);
  for (size_t y = 0; y < height; ++y) decoder.rows.push_back(decoder.rgba.data() + row_bytes * y);
  if (!read_rows(decoder)) throw UserError(name + ": is a broken PNG picture: " + decoder.message);
  Picture picture(RoiSize{int32_t(width), int32_t(height)}, 3);
  const uint8_t* from = decoder.rgba.data();
  for (size_t i = 0; i < picture.pixels.size(); i += 3, from += 4) {
    for (int c = 0; c < 3; ++c) picture.pixels[i + size_t(c)] = over_white(from[c], from[3]);
  }
  return picture;
}

Bytes encode_png(const Picture& picture, const std::string& name) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = uint32_t(picture.size.width);
  image.height = uint32_t(picture.size.height);
  image.format = picture.channels == 1 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
  png_alloc_size_t length = PNG_IMAGE_PNG_SIZE_MAX(image);
  Bytes bytes(length);
  if (!png_image_write_to_memory(&image, bytes.data(), &length, 0, picture.pixels.data(), 0,
                                 nullptr)) {
    throw UserError(name + ": cannot be written as PNG: " + image.message);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace tools

// JPEG files, by libjpeg: baseline and progressive, grey, colour and CMYK.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "failure.h"
#include "picture.h"

namespace tools {
namespace {

constexpr int kQuality = 92;

// libjpeg reports an error by a function that must not return; it jumps back to `escape`.
struct ErrorManager {
  jpeg_error_mgr base;  // first, so that libjpeg's pointer to it is a pointer to this
  std::jmp_buf escape;
  char message[JMSG_LENGTH_MAX];
};

[[noreturn]] void on_error(j_common_ptr info) {
  auto* errors = reinterpret_cast<ErrorManager*>(info->err);
  errors->base.format_message(info, errors->message);
  std::longjmp(errors->escape, 1);
}

void on_warning(j_common_ptr info, int level) {
  if (level >= 0) return;  // a trace message
  auto* errors = reinterpret_cast<ErrorManager*>(info->err);
  if (errors->base.num_warnings++ == 0) errors->base.format_message(info, errors->message);
}

jpeg_error_mgr* set_up(ErrorManager& errors) {
  jpeg_std_error(&errors.base);
  errors.base.error_exit = on_error;
  errors.base.emit_message = on_warning;
  return &errors.base;
}

// Everything that must survive the jump lives here, outside of the function that is jumped out of.
struct Decoder {
  jpeg_decompress_struct info{};
  ErrorManager errors{};
  Picture picture;
  Bytes row;
  int orientation = 1;

  Decoder() = default;
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { jpeg_destroy_decompress(&info); }
};

// A file of Adobe's programs stores CMYK inverted.
void rgb_of_cmyk(const uint8_t* cmyk, uint8_t* rgb, int width, bool inverted) {
  const int flip = inverted ? 0 : 255;
  for (int x = 0; x < width; ++x, cmyk += 4, rgb += 3) {
    for (int c = 0; c < 3; ++c) {
      rgb[c] = uint8_t(((cmyk[c] ^ flip) * (cmyk[3] ^ flip) + 127) / 255);
    }
  }
}

void read_orientation(Decoder& decoder) {
  for (const jpeg_marker_struct* m = decoder.info.marker_list; m != nullptr; m = m->next) {
    const int orientation = exif_orientation(m->data, m->data_length);
    if (orientation != 1) decoder.orientation = orientation;
  }
}

bool read_header(Decoder& decoder, const Bytes& bytes) {
  jpeg_decompress_struct& info = decoder.info;
  info.err = set_up(decoder.errors);
  if (setjmp(decoder.errors.escape)) return false;
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_save_markers(&info, JPEG_APP0 + 1, 0xFFFF);
  jpeg_read_header(&info, TRUE);
  read_orientation(decoder);
  return true;
}

bool read_rows(Decoder& decoder) {
  jpeg_decompress_struct& info = decoder.info;
  if (setjmp(decoder.errors.escape)) return false;
  const bool four = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
  info.out_color_space = four ? JCS_CMYK : JCS_RGB;
  jpeg_start_decompress(&info);
  const size_t row_bytes = size_t{3} * info.output_width;
  while (info.output_scanline < info.output_height) {
    uint8_t* rgb = decoder.picture.pixels.data() + row_bytes * info.output_scanline;
    uint8_t* target = four ? decoder.row.data() : rgb;
    jpeg_read_scanlines(&info, &target, 1);
    if (four) rgb_of_cmyk(target, rgb, int(info.output_width), info.saw_Adobe_marker != 0);
  }
  jpeg_finish_decompress(&info);
  return true;
}

struct Encoder {
  jpeg_compress_struct info{};
  ErrorManager errors{};
  unsigned char* bytes = nullptr;
  unsigned long length = 0;

  Encoder() = default;
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;
  ~Encoder() {
    jpeg_destroy_compress(&info);
    std::free(bytes);
  }
};

bool write_rows(Encoder& encoder, const Picture& picture) {
  jpeg_compress_struct& info = encoder.info;
  info.err = set_up(encoder.errors);
  if (setjmp(encoder.errors.escape)) return false;
  jpeg_create_compress(&info);
  jpeg_mem_dest(&info, &encoder.bytes, &encoder.length);
  info.image_width = JDIMENSION(picture.size.width);
  info.image_height = JDIMENSION(picture.size.height);
  info.input_components = picture.channels;
  info.in_color_space = picture.channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, kQuality, TRUE);
  jpeg_start_compress(&info, TRUE);
  const size_t row_bytes = size_t(picture.channels) * info.image_width;
  while (info.next_scanline < info.image_height) {
    const uint8_t* row = picture.pixels.data() + row_bytes * info.next_scanline;
    auto* rows = const_cast<uint8_t*>(row);  // libjpeg only reads it
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  return true;
}

}  // namespace

Picture decode_jpeg(const Bytes& bytes, const std::string& name) {
  Decoder decoder;
  if (!read_header(decoder, bytes)) {
    throw UserError(name + ": is a broken JPEG picture: " + decoder.errors.message);
  }
  check_size(decoder.info.image_width, decoder.info.image_height, name);
  const RoiSize size{int32_t(decoder.info.image_width), int32_t(decoder.info.image_height)};
  decoder.picture = Picture(size, 3);
  decoder.row.resize(size_t{4} * decoder.info.image_width);
  if (!read_rows(decoder)) {
    throw UserError(name + ": is a broken JPEG picture: " + decoder.errors.message);
  }
  if (decoder.errors.base.num_warnings > 0) {
    std::fprintf(stderr, "nuqi: note: %s: %s\n", name.c_str(), decoder.errors.message);
  }
  return turned_upright(std::move(decoder.picture), decoder.orientation);
}

Bytes encode_jpeg(const Picture& picture, const std::string& name) {
  Encoder encoder;
  if (!write_rows(encoder, picture)) {
    throw UserError(name + ": cannot be written as JPEG: " + encoder.errors.message);
  }
  return Bytes(encoder.bytes, encoder.bytes + encoder.length);
}

}  // namespace tools

// PNG and JPEG files of the kinds that the program reads but does not write.
#include "sample_pictures.h"

#include <png.h>

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

namespace tools::test {
namespace {

void append(png_structp png, png_bytep bytes, size_t count) {
  auto* file = static_cast<Bytes*>(png_get_io_ptr(png));
  file->insert(file->end(), bytes, bytes + count);
}

void set_palette(png_structp png, png_infop info, RoiSize size, const Sample& sample,
                 bool alpha_table) {
  std::vector<png_color> colours;
  Bytes alphas;
  for (int i = 0; i < size.width * size.height; ++i) {
    const Rgba pixel = sample(i % size.width, i / size.width);
    colours.push_back({uint8_t(pixel[0]), uint8_t(pixel[1]), uint8_t(pixel[2])});
    alphas.push_back(uint8_t(pixel[3]));
  }
  png_set_PLTE(png, info, colours.data(), int(colours.size()));
  if (alpha_table) png_set_tRNS(png, info, alphas.data(), int(alphas.size()), nullptr);
}

// The channels of a colour type, as indices into a pixel.
std::vector<int> channels_of(int colour_type) {
  switch (colour_type) {
    case PNG_COLOR_TYPE_GRAY: return {0};
    case PNG_COLOR_TYPE_GRAY_ALPHA: return {0, 3};
    case PNG_COLOR_TYPE_RGB: return {0, 1, 2};
    default: return {0, 1, 2, 3};
  }
}

Bytes rows_of(const PngKind& kind, RoiSize size, const Sample& sample) {
  Bytes rows;
  for (int i = 0; i < size.width * size.height; ++i) {
    if (kind.colour_type == PNG_COLOR_TYPE_PALETTE) {
      rows.push_back(uint8_t(i));
      continue;
    }
    for (const int channel : channels_of(kind.colour_type)) {
      const uint8_t value = uint8_t(sample(i % size.width, i / size.width)[size_t(channel)]);
      rows.push_back(value);
      if (kind.depth == 16) rows.push_back(value);  // value * 257 is the same grey in 16 bits
    }
  }
  return rows;
}

Bytes exif_block(int orientation, bool big_endian) {
  Bytes block;
  const auto number = [&](uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
      block.push_back(uint8_t(value >> 8 * (big_endian ? count - 1 - i : i)));
    }
  };
  block.insert(block.end(), 2, big_endian ? 'M' : 'I');
  number(42, 2), number(8, 4);  // the directory's place
  number(2, 2);                 // two entries: a maker's, ours
  number(0x010F, 2), number(2, 2), number(4, 4), number(0, 4);
  number(0x0112, 2), number(3, 2), number(1, 4), number(uint32_t(orientation), 2), number(0, 2);
  number(0, 4);
  return block;
}

void add_orientation(jpeg_compress_struct& info, int orientation, bool big_endian) {
  Bytes marker = {'E', 'x', 'i', 'f', 0, 0};
  const Bytes block = exif_block(orientation, big_endian);
  marker.insert(marker.end(), block.begin(), block.end());
  jpeg_write_marker(&info, JPEG_APP0 + 1, marker.data(), unsigned(marker.size()));
}

}  // namespace

Bytes png_of(const PngKind& kind, RoiSize size, const Sample& sample) {
  Bytes file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &file, append, nullptr);
  png_set_IHDR(png, info, png_uint_32(size.width), png_uint_32(size.height), kind.depth,
               kind.colour_type, kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (kind.colour_type == PNG_COLOR_TYPE_PALETTE) {
    set_palette(png, info, size, sample, kind.alpha_table);
  }
  Bytes exif = exif_block(kind.orientation, true);
  if (kind.orientation > 0) png_set_eXIf_1(png, info, png_uint_32(exif.size()), exif.data());
  Bytes rows = rows_of(kind, size, sample);
  const size_t row_bytes = rows.size() / size_t(size.height);
  std::vector<png_bytep> pointers;
  for (int y = 0; y < size.height; ++y) pointers.push_back(rows.data() + row_bytes * size_t(y));
  png_set_rows(png, info, pointers.data());
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  return file;
}

Bytes jpeg_of(JpegKind kind, RoiSize size, const Sample& sample, int orientation, bool big_endian) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&info, &bytes, &length);
  const bool four = kind == JpegKind::cmyk || kind == JpegKind::adobe_cmyk;
  info.image_width = JDIMENSION(size.width);
  info.image_height = JDIMENSION(size.height);
  info.input_components = four ? 4 : kind == JpegKind::grey ? 1 : 3;
  info.in_color_space = four ? JCS_CMYK : kind == JpegKind::grey ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, 98, TRUE);
  if (kind == JpegKind::progressive) jpeg_simple_progression(&info);
  if (kind == JpegKind::cmyk) info.write_Adobe_marker = FALSE;
  jpeg_start_compress(&info, TRUE);
  if (orientation > 0) add_orientation(info, orientation, big_endian);
  for (int y = 0; y < size.height; ++y) {
    Bytes row;
    for (int x = 0; x < size.width; ++x) {
      const Rgba pixel = sample(x, y);
      for (int c = 0; c < info.input_components; ++c) {
        row.push_back(uint8_t(kind == JpegKind::cmyk ? 255 - pixel[size_t(c)] : pixel[size_t(c)]));
      }
    }
    JSAMPROW rows = row.data();
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  const Bytes file(bytes, bytes + length);
  std::free(bytes);
  return file;
}

Picture picture_of_bytes(const Bytes& file, const std::string& name, Form form) {
  File stream(fmemopen(const_cast<uint8_t*>(file.data()), file.size(), "rb"));
  return whole_picture<uint8_t>(*open_rows(std::move(stream), name, form), name);
}

}  // namespace tools::test

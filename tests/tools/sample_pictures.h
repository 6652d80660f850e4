// PNG and JPEG files of the kinds that the program reads but does not write.
#pragma once

#include <array>
#include <functional>

#include "pictures/row_reader.h"

namespace tools::test {

using Rgba = std::array<int, 4>;

// What a pixel of the sample is; grey kinds take the red value.
using Sample = std::function<Rgba(int x, int y)>;

// `colour_type` and `depth` (8, 16, or 1 to 8 for palettes) as in a PNG's header. A palette holds
// the pixels themselves, so it takes at most 256; it gets an alpha table where `alpha_table`.
struct PngKind {
  const char* name;
  int colour_type;
  int depth;
  bool interlaced = false;
  bool alpha_table = false;
  int orientation = 0;  // above 0: in an Exif block
};
Bytes png_of(const PngKind& kind, RoiSize size, const Sample& sample);

enum class JpegKind { grey, colour, progressive, cmyk, adobe_cmyk };

// The CMYK kinds have black ink where the sample has alpha below 255. An orientation above 0 is
// written into an Exif block of the given byte order.
Bytes jpeg_of(JpegKind kind, RoiSize size, const Sample& sample, int orientation = 0,
              bool big_endian = false);

Picture picture_of_bytes(const Bytes& file, const std::string& name, Form form = Form::colour);

}  // namespace tools::test

// Pictures as sinks of rows: whatever size they have, little of them is in memory.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "pictures/file.h"
#include "pictures/picture.h"
#include "pictures/pixel_format.h"

namespace tools {

// Takes a picture's rows from above to below.
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  virtual void write(const uint8_t* row) = 0;
  virtual void finish() = 0;  // after the last row
};

// Rows of `count` samples: bytes, or 16 bits as floats.
inline void write_row(RowWriter& rows, const uint8_t* row, size_t /*count*/) { rows.write(row); }
void write_row(RowWriter& rows, const float* row, size_t count);

// The format that the ending of a file's name chooses; "-" is PNG on stdout. It exists once finish()
// succeeded, and keeps its former contents until then. JPEG knows neither alpha nor 16 bits, PNM but for
// .pam no alpha: a note says what is lost. Throws UserError.
std::unique_ptr<RowWriter> create_picture(const std::string& path, RoiSize size,
                                          PixelFormat format);

bool ends_with(const std::string& path, const std::string& ending);  // in upper or lower case

void set_png_compression(int level);  // 0 to 9, of all PNG files from then on

// ---- The formats, one source file each ---------------------------------------------------------

// `name` stands in the messages of UserError. JPEG takes 1 or 3 channels of 8 bits; a `map` is a PNM file
// without alpha.
std::unique_ptr<RowWriter> write_png(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format);
std::unique_ptr<RowWriter> write_map(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format);
std::unique_ptr<RowWriter> write_pam(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format);
std::unique_ptr<RowWriter> write_jpeg(std::FILE* file, const std::string& name, RoiSize size,
                                      PixelFormat format);

}  // namespace tools

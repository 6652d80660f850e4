// Pictures as sinks of rows: whatever size they have, little of them is in memory.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "pictures/file.h"
#include "pictures/picture.h"

namespace tools {

// Takes a picture's rows from above to below, with 1 (grey), 3 (colour) or 4 channels (and alpha).
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  virtual void write(const uint8_t* row) = 0;
  virtual void finish() = 0;  // after the last row
};

// The format that the ending of a file's name chooses; "-" is PNG on stdout. It exists once finish()
// succeeded, and keeps its former contents until then. JPEG and PNM know no alpha: pixels are laid over
// white. Throws UserError.
std::unique_ptr<RowWriter> create_picture(const std::string& path, RoiSize size, int channels);

// A grey PNG file of 16 bits, whose rows are of uint16_t.
std::unique_ptr<RowWriter> create_png16(const std::string& path, RoiSize size);

bool ends_with(const std::string& path, const std::string& ending);  // in upper or lower case

void set_png_compression(int level);  // 0 to 9, of all PNG files from then on

// ---- The formats, one source file each ---------------------------------------------------------

// `name` stands in the messages of UserError.
std::unique_ptr<RowWriter> write_png(std::FILE* file, const std::string& name, RoiSize size,
                                     int channels, int depth = 8);
std::unique_ptr<RowWriter> write_pnm(std::FILE* file, const std::string& name, RoiSize size,
                                     int channels);
std::unique_ptr<RowWriter> write_jpeg(std::FILE* file, const std::string& name, RoiSize size,
                                      int channels);

}  // namespace tools

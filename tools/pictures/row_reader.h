// Pictures as sources of rows: whatever size they have, little of them is in memory.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "pictures/file.h"
#include "pictures/picture.h"

namespace tools {

// The rows of a picture from above to below: 1 channel is grey, 3 are red, green and blue, a fourth
// is alpha.
class RowReader {
 public:
  virtual ~RowReader() = default;
  RowReader() = default;
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;

  RoiSize size() const { return size_; }
  int channels() const { return channels_; }
  size_t row_bytes() const { return size_t(size_.width) * size_t(channels_); }

  // The next row. Throws UserError where the file is broken or ends too early; once the last row is
  // there, so is the rest of the file.
  void read(uint8_t* row);

 protected:
  void set_shape(RoiSize size, int channels);
  virtual void next_row(uint8_t* row) = 0;
  virtual void finish() {}

 private:
  RoiSize size_{0, 0};
  int channels_ = 0;
  int32_t done_ = 0;
};

enum class Form {
  stored,  // as in the file; grey with alpha becomes colour with alpha
  opaque,  // transparent pixels laid over white: grey or colour
  colour,  // the same, grey becoming colour
  grey,    // the same, colour becoming grey
};

// The rows of a PNG, JPEG or PNM file of any kind. 16 bits are rounded to 8, CMYK is converted, a
// camera's orientation applied. Interlaced and progressive files, and those to be turned, are held in
// memory. Throws UserError where the file cannot be read or is no picture.
std::unique_ptr<RowReader> open_rows(const std::string& path, Form form);
std::unique_ptr<RowReader> open_rows(File file, const std::string& name, Form form);

// Whether a file that nothing was read of begins as one of these does.
bool may_be_picture(const File& file, const std::string& name);

// The rows of a file that is read twice. A pipe gives its picture only once, so it is kept.
using RowOpener = std::function<std::unique_ptr<RowReader>()>;
RowOpener rereadable(const std::string& path, Form form);

// All rows together. Throws UserError where the picture is larger than every command can take.
Picture whole_picture(RowReader& rows, const std::string& name);

Picture read_picture(const std::string& path, Form form);

// The rows of a picture in memory.
std::unique_ptr<RowReader> rows_of(std::shared_ptr<const Picture> picture);

// ---- The formats, one source file each ---------------------------------------------------------

// `name` stands in the messages of UserError.
std::unique_ptr<RowReader> read_png(File file, const std::string& name);
std::unique_ptr<RowReader> read_pnm(File file, const std::string& name);
std::unique_ptr<RowReader> read_jpeg(File file, const std::string& name);

}  // namespace tools

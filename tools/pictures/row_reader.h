// Pictures as sources of rows: whatever size they have, little of them is in memory.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "pictures/file.h"
#include "pictures/picture.h"
#include "pictures/pixel_format.h"

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
  PixelFormat format() const { return format_; }
  int channels() const { return format_.channels; }
  size_t row_bytes() const { return size_t(size_.width) * format_.bytes(); }
  size_t row_samples() const { return size_t(size_.width) * size_t(format_.channels); }

  // The next row: its bytes, or its samples from 0 to 65535, whatever its depth. Throws UserError where the
  // file is broken or ends too early; once the last row is there, so is the rest of the file.
  void read(uint8_t* row);
  void read(float* row);

 protected:
  void set_shape(RoiSize size, PixelFormat format);
  virtual void next_row(uint8_t* row) = 0;
  virtual void finish() {}

 private:
  RoiSize size_{0, 0};
  PixelFormat format_{0, 8};
  int32_t done_ = 0;
  Bytes bytes_;  // of a row that becomes floats
};

enum class Form {
  stored,  // as in the file; grey with alpha becomes colour with alpha
  opaque,  // transparent pixels laid over white: grey or colour
  colour,  // the same, grey becoming colour
  grey,    // the same, colour becoming grey
};

enum class Depth {
  eight,   // 16 bits are rounded to 8
  stored,  // 8 or 16 bits, as in the file
};

// The rows of a PNG, JPEG or PNM file of any kind. CMYK is converted, a camera's orientation applied; a
// note says what is lost. Interlaced and progressive files, and those to be turned, are held in memory.
// Throws UserError where the file cannot be read or is no picture.
std::unique_ptr<RowReader> open_rows(const std::string& path, Form form,
                                     Depth depth = Depth::eight);
std::unique_ptr<RowReader> open_rows(File file, const std::string& name, Form form,
                                     Depth depth = Depth::eight);

// Whether a file that nothing was read of begins as one of these does.
bool may_be_picture(const File& file, const std::string& name);
[[noreturn]] void fail_as_unknown(const std::string& name);  // throws UserError

// The rows of a file that is read twice. A pipe gives its picture only once, so it is kept.
using RowOpener = std::function<std::unique_ptr<RowReader>()>;
RowOpener rereadable(const std::string& path, Form form);

// All rows together: of 8 bits as bytes, of any as floats. Throws UserError where the picture is larger than
// every command can take.
template <class T>
PictureOf<T> whole_picture(RowReader& rows, const std::string& name);

Picture read_picture(const std::string& path, Form form);

// The rows as a viewer shows them, where `orientation` (1 to 8) is how they lie in the file.
std::unique_ptr<RowReader> upright(std::unique_ptr<RowReader> rows, int orientation,
                                   const std::string& name);

// ---- The formats, one source file each ---------------------------------------------------------

// `name` stands in the messages of UserError.
std::unique_ptr<RowReader> read_png(File file, const std::string& name);
std::unique_ptr<RowReader> read_pnm(File file, const std::string& name);
std::unique_ptr<RowReader> read_jpeg(File file, const std::string& name);

}  // namespace tools

// Pictures as sources of rows: recognising formats, and the way to fewer or more channels.
#include "pictures/row_reader.h"

#include <cstring>
#include <type_traits>

#include "failure.h"
#include "report.h"

namespace tools {
namespace {

// libpng and the filters' states take rows of this length, and sums of lengths fit 32 bits.
constexpr int32_t kLongestSide = 1000000;

constexpr int kPngsFirst = 0x89, kJpegsFirst = 0xFF, kPnmsFirst = 'P';

// It stays to be read: a pipe cannot go back further.
int first_byte(const File& file, const std::string& name) {
  const int first = std::getc(file.get());
  if (std::ferror(file.get())) fail_on_file(name, "read");
  std::ungetc(first, file.get());
  return first;
}

// The rows of a picture in memory.
template <class T>
class PictureRows : public RowReader {
 public:
  explicit PictureRows(std::shared_ptr<const PictureOf<T>> picture) : picture_(std::move(picture)) {
    set_shape(picture_->size, {picture_->channels, kBits<T>});
  }

 private:
  void next_row(uint8_t* row) override {
    const T* const samples = picture_->pixels.data() + at_;
    if constexpr (std::is_same_v<T, float>) {
      from_floats(samples, row_samples(), row);
    } else {
      std::memcpy(row, samples, row_bytes());
    }
    at_ += row_samples();
  }

  std::shared_ptr<const PictureOf<T>> picture_;
  size_t at_ = 0;
};

class Converted : public RowReader {
 public:
  Converted(std::unique_ptr<RowReader> rows, PixelFormat format)
      : rows_(std::move(rows)), row_(rows_->row_bytes()) {
    set_shape(rows_->size(), format);
  }

 private:
  void next_row(uint8_t* row) override {
    rows_->read(row_.data());
    convert(row_.data(), rows_->format(), size_t(size().width), row, format());
  }

  std::unique_ptr<RowReader> rows_;
  Bytes row_;
};

int channels_in(Form form, int stored) {
  switch (form) {
    case Form::stored: return stored;
    case Form::opaque: return stored == 1 ? 1 : 3;
    case Form::colour: return 3;
    case Form::grey: break;
  }
  return 1;
}

}  // namespace

void RowReader::read(uint8_t* row) {
  next_row(row);
  if (++done_ == size_.height) finish();
}

void RowReader::read(float* row) {
  bytes_.resize(row_bytes());
  read(bytes_.data());
  to_floats(bytes_.data(), format_.bits, row_samples(), row);
}

void RowReader::set_shape(RoiSize size, PixelFormat format) {
  size_ = size;
  format_ = format;
}

void check_sides(uint32_t width, uint32_t height, const std::string& name) {
  if (width < 1 || height < 1) throw UserError(name + ": is an empty picture");
  if (width > uint32_t{kLongestSide} || height > uint32_t{kLongestSide}) {
    throw UserError(name + ": is too large, the limit is " + std::to_string(kLongestSide) +
                    " pixels along a side");
  }
}

bool may_be_picture(const File& file, const std::string& name) {
  const int first = first_byte(file, name);
  return first == kPngsFirst || first == kJpegsFirst || first == kPnmsFirst;
}

void fail_as_unknown(const std::string& name) {
  throw UserError(name + ": is neither a PNG nor a JPEG nor a PNM picture: convert it to one");
}

std::unique_ptr<RowReader> open_rows(File file, const std::string& name, Form form, Depth depth) {
  const int first = first_byte(file, name);
  if (first == EOF) throw UserError(name + ": is empty");
  if (!may_be_picture(file, name)) fail_as_unknown(name);
  auto* const read = first == kPngsFirst ? read_png : first == kJpegsFirst ? read_jpeg : read_pnm;
  std::unique_ptr<RowReader> rows = read(std::move(file), name);
  const PixelFormat stored = rows->format();
  const PixelFormat format = {channels_in(form, stored.channels),
                              depth == Depth::eight ? 8 : stored.bits};
  if (format.bits < stored.bits) print_note(name + ": its 16 bits are rounded to 8");
  if (stored.channels == 4 && format.channels < 4) {
    print_note(name + ": its alpha is laid over white");
  }
  if (format == stored) return rows;
  return std::make_unique<Converted>(std::move(rows), format);
}

std::unique_ptr<RowReader> open_rows(const std::string& path, Form form, Depth depth) {
  return open_rows(open_input(path), path, form, depth);
}

RowOpener rereadable(const std::string& path, Form form) {
  if (is_regular_file(path)) return [path, form] { return open_rows(path, form); };
  const auto picture =
      std::make_shared<const Picture>(whole_picture<uint8_t>(*open_rows(path, form), path));
  return [picture] { return std::make_unique<PictureRows<uint8_t>>(picture); };
}

template <class T>
PictureOf<T> whole_picture(RowReader& rows, const std::string& name) {
  check_size(uint32_t(rows.size().width), uint32_t(rows.size().height), name);
  PictureOf<T> picture(rows.size(), rows.channels());
  for (size_t at = 0; at < picture.pixels.size(); at += rows.row_samples()) {
    rows.read(picture.pixels.data() + at);
  }
  return picture;
}
template Picture whole_picture(RowReader&, const std::string&);
template PictureOf<float> whole_picture(RowReader&, const std::string&);

std::unique_ptr<RowReader> upright(std::unique_ptr<RowReader> rows, int orientation,
                                   const std::string& name) {
  if (orientation == 1) return rows;
  const auto turned = [&]<class T>(T) -> std::unique_ptr<RowReader> {
    return std::make_unique<PictureRows<T>>(std::make_shared<const PictureOf<T>>(
        turned_upright(whole_picture<T>(*rows, name), orientation)));
  };
  return rows->format().bits == 8 ? turned(uint8_t{}) : turned(float{});
}

}  // namespace tools

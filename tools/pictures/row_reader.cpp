// Pictures as sources of rows: recognising formats, and the way to fewer or more channels.
#include "pictures/row_reader.h"

#include <cstring>

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

class PictureRows : public RowReader {
 public:
  explicit PictureRows(std::shared_ptr<const Picture> picture) : picture_(std::move(picture)) {
    set_shape(picture_->size, picture_->channels);
  }

 private:
  void next_row(uint8_t* row) override {
    std::memcpy(row, picture_->pixels.data() + at_, row_bytes());
    at_ += row_bytes();
  }

  std::shared_ptr<const Picture> picture_;
  size_t at_ = 0;
};

// Red, green and blue of a pixel as it is seen over white.
void put_colour(const uint8_t* pixel, int channels, uint8_t* rgb) {
  for (int c = 0; c < 3; ++c) {
    rgb[c] = channels == 1 ? pixel[0] : channels == 3 ? pixel[c] : over_white(pixel[c], pixel[3]);
  }
}

class Converted : public RowReader {
 public:
  Converted(std::unique_ptr<RowReader> rows, int channels)
      : rows_(std::move(rows)), row_(rows_->row_bytes()) {
    set_shape(rows_->size(), channels);
  }

 private:
  void next_row(uint8_t* row) override {
    rows_->read(row_.data());
    const uint8_t* const end = row_.data() + row_.size();
    for (const uint8_t* pixel = row_.data(); pixel < end; pixel += rows_->channels()) {
      uint8_t rgb[3];
      put_colour(pixel, rows_->channels(), rgb);
      if (channels() == 1) {
        *row = grey_level(rgb);
      } else {
        std::memcpy(row, rgb, 3);
      }
      row += channels();
    }
  }

  std::unique_ptr<RowReader> rows_;
  std::vector<uint8_t> row_;
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

void RowReader::set_shape(RoiSize size, int channels) {
  size_ = size;
  channels_ = channels;
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

std::unique_ptr<RowReader> open_rows(File file, const std::string& name, Form form) {
  if (!may_be_picture(file, name)) {
    throw UserError(name + ": is neither a PNG nor a JPEG nor a PNM picture");
  }
  const int first = first_byte(file, name);
  auto* const read = first == kPngsFirst ? read_png : first == kJpegsFirst ? read_jpeg : read_pnm;
  std::unique_ptr<RowReader> rows = read(std::move(file), name);
  const int channels = channels_in(form, rows->channels());
  if (rows->channels() == 4 && channels < 4) print_note(name + ": its alpha is laid over white");
  if (channels == rows->channels()) return rows;
  return std::make_unique<Converted>(std::move(rows), channels);
}

std::unique_ptr<RowReader> open_rows(const std::string& path, Form form) {
  return open_rows(open_input(path), path, form);
}

RowOpener rereadable(const std::string& path, Form form) {
  if (is_regular_file(path)) return [path, form] { return open_rows(path, form); };
  const auto picture = std::make_shared<const Picture>(whole_picture(*open_rows(path, form), path));
  return [picture] { return rows_of(picture); };
}

Picture whole_picture(RowReader& rows, const std::string& name) {
  check_size(uint32_t(rows.size().width), uint32_t(rows.size().height), name);
  Picture picture(rows.size(), rows.channels());
  for (size_t at = 0; at < picture.pixels.size(); at += rows.row_bytes()) {
    rows.read(picture.pixels.data() + at);
  }
  return picture;
}

std::unique_ptr<RowReader> rows_of(std::shared_ptr<const Picture> picture) {
  return std::make_unique<PictureRows>(std::move(picture));
}

}  // namespace tools

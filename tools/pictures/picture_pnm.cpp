// PNM files: a short text header, then numbers, in text (P2, P3) or in one or two bytes (P5, P6).
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "pictures/row_reader.h"
#include "pictures/row_writer.h"
#include "report.h"

namespace tools {
namespace {

class PnmReader : public RowReader {
 public:
  PnmReader(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {
    const int letter = std::getc(file_.get()), kind = std::getc(file_.get());
    if (letter != 'P' || kind < '2' || kind > '6' || kind == '4') {
      broken("only P2, P3, P5 and P6 are read");
    }
    text_ = kind < '4';
    const uint32_t width = number(), height = number();
    most_ = number();
    check_sides(width, height, name_);
    if (most_ < 1 || most_ > 65535) broken("its greatest value must be 1 to 65535");
    set_shape({int32_t(width), int32_t(height)}, kind == '3' || kind == '6' ? 3 : 1);
    if (!text_ && most_ > 255) wide_.resize(2 * row_bytes());
    if (most_ > 255) print_note(name_ + ": its 16 bits are rounded to 8");
  }

 private:
  [[noreturn]] void broken(const char* why) const {
    if (std::ferror(file_.get())) fail_on_file(name_, "read");
    throw UserError(name_ + ": is a broken PNM picture: " + why);
  }

  // White space and comments before it, one such character after it.
  uint32_t number() {
    int c = std::getc(file_.get());
    while (c == '#' || c == ' ' || (c >= '\t' && c <= '\r')) {
      if (c == '#') {
        while (c != '\n' && c != EOF) c = std::getc(file_.get());
      }
      c = std::getc(file_.get());
    }
    if (c == EOF) broken("the file ends too early");
    if (c < '0' || c > '9') broken("a number is missing");
    uint32_t value = 0;
    for (; c >= '0' && c <= '9'; c = std::getc(file_.get())) {
      if (value > 100000000) broken("a number is too large");
      value = 10 * value + uint32_t(c - '0');
    }
    return value;
  }

  uint8_t byte_of(uint32_t value) const {
    if (value > most_) broken("a value exceeds the greatest one");
    return uint8_t((value * 255 + most_ / 2) / most_);
  }

  void next_row(uint8_t* row) override {
    if (text_) {
      for (size_t i = 0; i < row_bytes(); ++i) row[i] = byte_of(number());
      return;
    }
    uint8_t* const bytes = wide_.empty() ? row : wide_.data();
    const size_t count = wide_.empty() ? row_bytes() : wide_.size();
    if (std::fread(bytes, 1, count, file_.get()) != count) broken("the file ends too early");
    if (wide_.empty() && most_ == 255) return;
    for (size_t i = 0; i < row_bytes(); ++i) {
      row[i] = byte_of(wide_.empty() ? row[i] : uint32_t{wide_[2 * i]} << 8 | wide_[2 * i + 1]);
    }
  }

  File file_;
  std::string name_;
  bool text_ = false;
  uint32_t most_ = 0;
  Bytes wide_;  // two bytes a value, the greater first
};

class PnmWriter : public RowWriter {
 public:
  PnmWriter(std::FILE* file, std::string name, RoiSize size, int channels)
      : file_(file), name_(std::move(name)), row_(size_t(size.width) * size_t(channels)) {
    if (channels == 4) {
      opaque_.resize(row_ / 4 * 3);
      print_note(name_ + ": PNM keeps no alpha, the picture is laid over white");
    }
    if (std::fprintf(file, "P%d\n%d %d\n255\n", channels == 1 ? 5 : 6, size.width, size.height) <
        0) {
      fail_on_file(name_, "written");
    }
  }

  void write(const uint8_t* row) override {
    for (size_t i = 0; i < opaque_.size(); ++i) {
      opaque_[i] = over_white(row[i / 3 * 4 + i % 3], row[i / 3 * 4 + 3]);
    }
    const bool laid = !opaque_.empty();
    const size_t count = laid ? opaque_.size() : row_;
    if (std::fwrite(laid ? opaque_.data() : row, 1, count, file_) != count) {
      fail_on_file(name_, "written");
    }
  }
  void finish() override {}

 private:
  std::FILE* file_;
  std::string name_;
  size_t row_;
  Bytes opaque_;
};

}  // namespace

std::unique_ptr<RowReader> read_pnm(File file, const std::string& name) {
  return std::make_unique<PnmReader>(std::move(file), name);
}

std::unique_ptr<RowWriter> write_pnm(std::FILE* file, const std::string& name, RoiSize size,
                                     int channels) {
  return std::make_unique<PnmWriter>(file, name, size, channels);
}

}  // namespace tools

// PNM files: a short text header, then numbers: in text (P1, P2, P3), in bits (P4), in one or two bytes (P5, P6
// and P7, which is PAM and knows alpha).
#include <bit>
#include <cstring>

#include "failure.h"
#include "pictures/row_reader.h"
#include "pictures/row_writer.h"

namespace tools {
namespace {

class PnmReader : public RowReader {
 public:
  PnmReader(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {
    const int letter = next();
    kind_ = next();
    if (letter != 'P' || kind_ < '1' || kind_ > '7') fail_as_unknown(name_);
    const Header header = kind_ == '7' ? pam_header() : pnm_header();
    check_sides(header.width, header.height, name_);
    if (header.most < 1 || header.most > 65535) broken("its greatest value must be 1 to 65535");
    if (header.samples < 1 || header.samples > 4) broken("its pixels have more than four channels");
    most_ = header.most;
    samples_ = header.samples;
    set_shape({int32_t(header.width), int32_t(header.height)},
              {samples_ == 2 ? 4 : int(samples_), most_ > 255 ? 16 : 8});
  }

 private:
  struct Header {
    uint32_t width = 0, height = 0;
    uint32_t samples = 1;  // of a pixel; 2 are grey and alpha
    uint32_t most = 0;     // the greatest sample
  };

  [[noreturn]] void broken(const char* why) const {
    if (std::ferror(file_.get())) fail_on_file(name_, "read");
    throw UserError(name_ + ": is a broken PNM picture: " + why);
  }

  bool is_bitmap() const { return kind_ == '1' || kind_ == '4'; }

  Header pnm_header() {
    Header header;
    header.width = number();
    header.height = number();
    header.samples = kind_ == '3' || kind_ == '6' ? 3 : 1;
    header.most = is_bitmap() ? 1 : number();
    return header;
  }

  // Lines of a word and its value, up to ENDHDR.
  Header pam_header() {
    Header header;
    header.samples = 0;
    for (std::string word = this->word(); word != "ENDHDR"; word = this->word()) {
      if (word == "WIDTH") {
        header.width = number();
      } else if (word == "HEIGHT") {
        header.height = number();
      } else if (word == "DEPTH") {
        header.samples = number();
      } else if (word == "MAXVAL") {
        header.most = number();
      } else if (word == "TUPLTYPE") {
        check_tuples(this->word());
      } else {
        broken("its header has an unknown word");
      }
    }
    return header;
  }
  void check_tuples(const std::string& type) const {
    for (const char* known : {"BLACKANDWHITE", "GRAYSCALE", "RGB"}) {
      if (type == known || type == std::string(known) + "_ALPHA") return;
    }
    broken("its TUPLTYPE is neither grey nor colour");
  }

  int next() { return std::getc(file_.get()); }

  // What follows white space and comments.
  int next_in_text() {
    int c = next();
    while (c == '#' || c == ' ' || (c >= '\t' && c <= '\r')) {
      if (c == '#') {
        while (c != '\n' && c != EOF) c = next();
      }
      c = next();
    }
    if (c == EOF) broken("the file ends too early");
    return c;
  }

  // With one character of white space after it.
  std::string word() {
    constexpr size_t kLongest = 20;
    std::string text;
    for (int c = next_in_text(); c > ' ' && text.size() < kLongest; c = next()) text += char(c);
    return text;
  }
  uint32_t number() {
    int c = next_in_text();
    if (c < '0' || c > '9') broken("a number is missing");
    uint32_t value = 0;
    for (; c >= '0' && c <= '9'; c = next()) {
      if (value > 100000000) broken("a number is too large");
      value = 10 * value + uint32_t(c - '0');
    }
    return value;
  }

  // 1 is white, in bitmaps black; a text needs no space between bits.
  uint32_t text_sample() {
    if (!is_bitmap()) return number();
    const int c = next_in_text();
    if (c != '0' && c != '1') broken("a bit is neither 0 nor 1");
    return c == '0';
  }

  void read_bytes(uint8_t* bytes, size_t count) {
    if (std::fread(bytes, 1, count, file_.get()) != count) broken("the file ends too early");
  }
  void read_bytes(size_t count) {
    bytes_.resize(count);
    read_bytes(bytes_.data(), count);
  }

  void read_samples() {
    const size_t width = size_t(size().width), count = width * samples_;
    row_.resize(count);
    if (kind_ < '4') {
      for (uint32_t& sample : row_) sample = text_sample();
    } else if (kind_ == '4') {
      read_bytes((width + 7) / 8);
      for (size_t i = 0; i < count; ++i) row_[i] = (bytes_[i / 8] >> (7 - i % 8) & 1) == 0;
    } else if (most_ < 256) {
      read_bytes(count);
      row_.assign(bytes_.begin(), bytes_.end());
    } else {
      read_bytes(2 * count);
      for (size_t i = 0; i < count; ++i) row_[i] = bytes_[2 * i] * 256u + bytes_[2 * i + 1];
    }
  }

  // Samples reach from 0 to the greatest of 8 or of 16 bits.
  void next_row(uint8_t* row) override {
    if (kind_ > '4' && most_ == 255 && samples_ != 2) return read_bytes(row, row_bytes());
    read_samples();
    const uint32_t white = most_ < 256 ? 255 : 65535;
    size_t at = 0;
    const auto put = [&](uint32_t sample) {
      if (sample > most_) broken("a value exceeds the greatest one");
      const auto scaled = uint16_t((sample * white + most_ / 2) / most_);
      if (most_ < 256) {
        row[at++] = uint8_t(scaled);
      } else {
        std::memcpy(row + 2 * at++, &scaled, sizeof scaled);
      }
    };
    for (size_t i = 0; i < row_.size(); ++i) {
      const bool grey_of_two = samples_ == 2 && i % 2 == 0;
      for (int copies = grey_of_two ? 3 : 1; copies > 0; --copies) put(row_[i]);
    }
  }

  File file_;
  std::string name_;
  int kind_ = 0;
  uint32_t most_ = 0;
  size_t samples_ = 0;
  Bytes bytes_;
  std::vector<uint32_t> row_;
};

class PnmWriter : public RowWriter {
 public:
  PnmWriter(std::FILE* file, std::string name, RoiSize size, PixelFormat format,
            const std::string& header)
      : file_(file),
        name_(std::move(name)),
        bytes_(size_t(size.width) * format.bytes()),
        swaps_(format.bits == 16 && std::endian::native == std::endian::little) {
    put(header.data(), header.size());
  }

  void write(const uint8_t* row) override {
    if (swaps_) {
      greater_first_.resize(bytes_);
      for (size_t i = 0; i < bytes_; ++i) greater_first_[i] = row[i ^ 1];
      row = greater_first_.data();
    }
    put(row, bytes_);
  }
  void finish() override {}

 private:
  void put(const void* bytes, size_t count) {
    if (std::fwrite(bytes, 1, count, file_) != count) fail_on_file(name_, "written");
  }

  std::FILE* file_;
  std::string name_;
  size_t bytes_;  // of a row
  bool swaps_;
  Bytes greater_first_;
};

std::string greatest(PixelFormat format) { return format.bits == 16 ? "65535" : "255"; }

}  // namespace

std::unique_ptr<RowReader> read_pnm(File file, const std::string& name) {
  return std::make_unique<PnmReader>(std::move(file), name);
}

std::unique_ptr<RowWriter> write_map(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format) {
  const std::string header = std::string(format.channels == 1 ? "P5" : "P6") + "\n" +
                             std::to_string(size.width) + " " + std::to_string(size.height) + "\n" +
                             greatest(format) + "\n";
  return std::make_unique<PnmWriter>(file, name, size, format, header);
}

std::unique_ptr<RowWriter> write_pam(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format) {
  const std::string header = "P7\nWIDTH " + std::to_string(size.width) + "\nHEIGHT " +
                             std::to_string(size.height) + "\nDEPTH " +
                             std::to_string(format.channels) + "\nMAXVAL " + greatest(format) +
                             "\nTUPLTYPE " +
                             (format.channels == 1   ? "GRAYSCALE"
                              : format.channels == 3 ? "RGB"
                                                     : "RGB_ALPHA") +
                             "\nENDHDR\n";
  return std::make_unique<PnmWriter>(file, name, size, format, header);
}

}  // namespace tools

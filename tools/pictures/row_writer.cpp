// Pictures as sinks of rows: files by their ending, and pictures from memory.
#include "pictures/row_writer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <new>

#include "failure.h"
#include "report.h"

namespace tools {
namespace {

using MakeWriter = std::unique_ptr<RowWriter>(std::FILE* file, const std::string& name,
                                              RoiSize size, PixelFormat format);

struct FileKind {
  const char* ending;
  const char* name;
  MakeWriter* make;
  PixelFormat most;  // that it can hold
};
constexpr FileKind kKinds[] = {
    {".png", "PNG", write_png, {4, 16}},   {".jpg", "JPEG", write_jpeg, {3, 8}},
    {".jpeg", "JPEG", write_jpeg, {3, 8}}, {".pgm", "PNM", write_map, {3, 16}},
    {".ppm", "PNM", write_map, {3, 16}},   {".pnm", "PNM", write_map, {3, 16}},
    {".pam", "PAM", write_pam, {4, 16}},
};

const FileKind& kind_of(const std::string& path) {
  if (path == kStandardStream) return kKinds[0];
  std::string endings;
  for (const FileKind& kind : kKinds) {
    if (ends_with(path, kind.ending)) return kind;
    endings += (endings.empty() ? "" : &kind == std::end(kKinds) - 1 ? " or " : ", ");
    endings += kind.ending;
  }
  throw UserError(path + ": cannot be written: its ending must be " + endings);
}

class PictureFile : public RowWriter {
 public:
  PictureFile(const std::string& path, RoiSize size, PixelFormat given)
      : file_(path), width_(size_t(size.width)), given_(given) {
    const FileKind& kind = kind_of(path);
    format_ = {std::min(given.channels, kind.most.channels), std::min(given.bits, kind.most.bits)};
    const std::string name = path + ": " + kind.name;
    if (format_.channels < given.channels) {
      print_note(name + " keeps no alpha, the picture is laid over white");
    }
    if (format_.bits < given.bits) print_note(name + " keeps 8 bits, 16 are rounded");
    rows_ = kind.make(file_.stream(), path, size, format_);
  }

  void write(const uint8_t* row) override {
    if (format_ != given_) {
      converted_.resize(width_ * format_.bytes());
      convert(row, given_, width_, converted_.data(), format_);
      row = converted_.data();
    }
    rows_->write(row);
  }
  void finish() override {
    rows_->finish();
    file_.commit();
  }

 private:
  OutputFile file_;
  size_t width_;
  PixelFormat given_, format_{};
  std::unique_ptr<RowWriter> rows_;
  Bytes converted_;
};

template <class T>
void write_rows(RowWriter& rows, const PictureOf<T>& picture) {
  const size_t row = picture.row_samples();
  for (size_t at = 0; at < picture.pixels.size(); at += row) {
    write_row(rows, picture.pixels.data() + at, row);
  }
  rows.finish();
}

struct Memory {
  ~Memory() { std::free(bytes); }

  char* bytes = nullptr;
  size_t length = 0;
};

Bytes encoded(const Picture& picture, const std::string& name, MakeWriter* make) {
  Memory memory;
  File file(open_memstream(&memory.bytes, &memory.length));
  if (!file) throw std::bad_alloc();
  write_rows(*make(file.get(), name, picture.size, {picture.channels, 8}), picture);
  file.reset();
  return Bytes(memory.bytes, memory.bytes + memory.length);
}

}  // namespace

bool ends_with(const std::string& path, const std::string& ending) {
  if (path.size() <= ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), path.end() - ptrdiff_t(ending.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<uint8_t>(b)); });
}

void write_row(RowWriter& rows, const float* row, size_t count) {
  Bytes bytes(2 * count);
  from_floats(row, count, bytes.data());
  rows.write(bytes.data());
}

void check_picture_output(const std::string& path) {
  (void)kind_of(path);
  if (path != kStandardStream) check_folder_of(path);
}

std::unique_ptr<RowWriter> create_picture(const std::string& path, RoiSize size,
                                          PixelFormat format) {
  return std::make_unique<PictureFile>(path, size, format);
}

template <class T>
void write_picture(const std::string& path, const PictureOf<T>& picture) {
  const PixelFormat format = {picture.channels, kBits<T>};
  write_rows(*create_picture(path, picture.size, format), picture);
}
template void write_picture(const std::string&, const Picture&);
template void write_picture(const std::string&, const PictureOf<float>&);

Bytes encode_png(const Picture& picture, const std::string& name) {
  return encoded(picture, name, write_png);
}

Bytes encode_jpeg(const Picture& picture, const std::string& name) {
  return encoded(picture, name, write_jpeg);
}

}  // namespace tools

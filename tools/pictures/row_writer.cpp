// Pictures as sinks of rows: files by their ending, and pictures from memory.
#include "pictures/row_writer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <new>

#include "failure.h"

namespace tools {
namespace {

constexpr const char* kPnmEndings[] = {".pgm", ".ppm", ".pnm"};

bool is_pnm(const std::string& path) {
  return std::any_of(std::begin(kPnmEndings), std::end(kPnmEndings),
                     [&](const char* ending) { return ends_with(path, ending); });
}

bool is_png(const std::string& path) { return path == kStandardStream || ends_with(path, ".png"); }

class PictureFile : public RowWriter {
 public:
  PictureFile(const std::string& path, RoiSize size, int channels, int depth) : file_(path) {
    rows_ = is_png(path)   ? write_png(file_.stream(), path, size, channels, depth)
            : is_pnm(path) ? write_pnm(file_.stream(), path, size, channels)
                           : write_jpeg(file_.stream(), path, size, channels);
  }

  void write(const uint8_t* row) override { rows_->write(row); }
  void finish() override {
    rows_->finish();
    file_.commit();
  }

 private:
  OutputFile file_;
  std::unique_ptr<RowWriter> rows_;
};

void write_rows(RowWriter& rows, const Picture& picture) {
  const size_t row_bytes = size_t(picture.size.width) * size_t(picture.channels);
  for (size_t at = 0; at < picture.pixels.size(); at += row_bytes) {
    rows.write(picture.pixels.data() + at);
  }
  rows.finish();
}

struct Memory {
  ~Memory() { std::free(bytes); }

  char* bytes = nullptr;
  size_t length = 0;
};

template <class Writer>
Bytes encoded(const Picture& picture, const Writer& writer_to) {
  Memory memory;
  File file(open_memstream(&memory.bytes, &memory.length));
  if (!file) throw std::bad_alloc();
  write_rows(*writer_to(file.get()), picture);
  file.reset();
  return Bytes(memory.bytes, memory.bytes + memory.length);
}

}  // namespace

bool ends_with(const std::string& path, const std::string& ending) {
  if (path.size() <= ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), path.end() - ptrdiff_t(ending.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<uint8_t>(b)); });
}

void check_ending(const std::string& path) {
  if (is_png(path) || is_pnm(path) || ends_with(path, ".jpg") || ends_with(path, ".jpeg")) return;
  throw UserError(path +
                  ": cannot be written: its ending must be .png, .jpg, .jpeg, .pgm, .ppm or "
                  ".pnm");
}

std::unique_ptr<RowWriter> create_picture(const std::string& path, RoiSize size, int channels) {
  check_ending(path);
  return std::make_unique<PictureFile>(path, size, channels, 8);
}

std::unique_ptr<RowWriter> create_png16(const std::string& path, RoiSize size) {
  if (!is_png(path)) throw UserError(path + ": cannot be written: its ending must be .png");
  return std::make_unique<PictureFile>(path, size, 1, 16);
}

void write_picture(const std::string& path, const Picture& picture) {
  write_rows(*create_picture(path, picture.size, picture.channels), picture);
}

Bytes encode_png(const Picture& picture, const std::string& name) {
  return encoded(picture, [&](std::FILE* file) {
    return write_png(file, name, picture.size, picture.channels);
  });
}

Bytes encode_jpeg(const Picture& picture, const std::string& name) {
  return encoded(picture, [&](std::FILE* file) {
    return write_jpeg(file, name, picture.size, picture.channels);
  });
}

}  // namespace tools

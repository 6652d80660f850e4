// PNG files, by libpng: palettes, grey, colour, 1 to 16 bits, with and without alpha, interlaced.
// Reading avoids libpng's simplified interface: version 1.6.39 breaks interlaced pictures of 16 bits.
#include <png.h>

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "failure.h"
#include "pictures/row_reader.h"
#include "pictures/row_writer.h"

namespace tools {
namespace {

// libpng's two objects, and what must survive its jump out of a function.
struct Handle {
  png_structp png = nullptr;
  png_infop info = nullptr;
  char message[200] = "";

  // Runs libpng's calls, which own nothing that a jump would leak. False: see `message`.
  template <class Calls>
  bool succeeds(const Calls& calls) {
    if (setjmp(png_jmpbuf(png))) return false;
    calls();
    return true;
  }
};

struct ReadHandle : Handle {
  ReadHandle() = default;
  ReadHandle(const ReadHandle&) = delete;
  ReadHandle& operator=(const ReadHandle&) = delete;
  ~ReadHandle() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct WriteHandle : Handle {
  WriteHandle() = default;
  WriteHandle(const WriteHandle&) = delete;
  WriteHandle& operator=(const WriteHandle&) = delete;
  ~WriteHandle() { png_destroy_write_struct(&png, &info); }
};

[[noreturn]] void on_error(png_structp png, png_const_charp message) {
  auto* handle = static_cast<Handle*>(png_get_error_ptr(png));
  std::snprintf(handle->message, sizeof handle->message, "%s", message);
  png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

void next_bytes(png_structp png, png_bytep target, size_t count) {
  auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
  if (std::fread(target, 1, count, file) == count) return;
  png_error(png, std::ferror(file) ? std::strerror(errno) : "the file ends too early");
}

void put_bytes(png_structp png, png_bytep bytes, size_t count) {
  auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
  if (std::fwrite(bytes, 1, count, file) != count) png_error(png, std::strerror(errno));
}

void flush(png_structp) {}

class PngReader : public RowReader {
 public:
  PngReader(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {
    handle_.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, static_cast<Handle*>(&handle_),
                                         on_error, on_warning);
    if (handle_.png == nullptr) throw std::bad_alloc();
    guarded([&] { read_header(); });
    const uint32_t width = png_get_image_width(handle_.png, handle_.info);
    const uint32_t height = png_get_image_height(handle_.png, handle_.info);
    check_sides(width, height, name_);
    guarded([&] { choose_layout(); });
    set_shape({int32_t(width), int32_t(height)}, {png_get_channels(handle_.png, handle_.info),
                                                  png_get_bit_depth(handle_.png, handle_.info)});
    if (passes_ > 1) check_size(width, height, name_);
  }

  int orientation() const { return orientation_; }

 private:
  template <class Calls>
  void guarded(const Calls& calls) {
    if (handle_.succeeds(calls)) return;
    throw UserError(name_ + ": is a broken PNG picture: " + handle_.message);
  }

  void read_header() {
    handle_.info = png_create_info_struct(handle_.png);
    png_set_read_fn(handle_.png, file_.get(), next_bytes);
    png_set_user_limits(handle_.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // check_sides has ours
    png_read_info(handle_.png, handle_.info);
    png_bytep exif = nullptr;
    png_uint_32 length = 0;
    if (png_get_eXIf_1(handle_.png, handle_.info, &length, &exif) != 0) {
      orientation_ = exif_orientation(exif, length);
    }
  }

  // Every kind becomes grey, colour, or colour and alpha, of 8 or 16 bits.
  void choose_layout() {
    png_structp png = handle_.png;
    const bool alpha = (png_get_color_type(png, handle_.info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                       png_get_valid(png, handle_.info, PNG_INFO_tRNS) != 0;
    png_set_expand(png);
    if (std::endian::native == std::endian::little) png_set_swap(png);
    if (alpha) png_set_gray_to_rgb(png);
    passes_ = png_set_interlace_handling(png);
    png_read_update_info(png, handle_.info);
    const PixelFormat pixel = {png_get_channels(png, handle_.info),
                               png_get_bit_depth(png, handle_.info)};
    if (png_get_rowbytes(png, handle_.info) !=
        png_get_image_width(png, handle_.info) * pixel.bytes()) {
      png_error(png, "its pixels have an unknown layout");
    }
  }

  void next_row(uint8_t* row) override {
    if (passes_ == 1) return guarded([&] { png_read_row(handle_.png, row, nullptr); });
    if (whole_.empty()) read_passes();
    std::memcpy(row, whole_.data() + at_, row_bytes());
    at_ += row_bytes();
  }
  // Of an interlaced picture, each completes rows that the ones before began.
  void read_passes() {
    whole_.resize(row_bytes() * size_t(size().height));
    guarded([&] {
      for (int pass = 0; pass < passes_; ++pass) {
        for (size_t at = 0; at < whole_.size(); at += row_bytes()) {
          png_read_row(handle_.png, whole_.data() + at, nullptr);
        }
      }
    });
  }
  void finish() override {
    guarded([&] { png_read_end(handle_.png, nullptr); });
  }

  File file_;
  std::string name_;
  ReadHandle handle_;
  int passes_ = 1, orientation_ = 1;
  Bytes whole_;  // of an interlaced picture
  size_t at_ = 0;
};

// Level 1 with one filter takes a seventeenth of libpng's own choice for a photograph, for files a sixth
// larger.
int compression = 1;

int colour_type_of(int channels) {
  return channels == 1   ? PNG_COLOR_TYPE_GRAY
         : channels == 3 ? PNG_COLOR_TYPE_RGB
                         : PNG_COLOR_TYPE_RGB_ALPHA;
}

class PngWriter : public RowWriter {
 public:
  PngWriter(std::FILE* file, std::string name, RoiSize size, PixelFormat format)
      : name_(std::move(name)) {
    handle_.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, static_cast<Handle*>(&handle_),
                                          on_error, on_warning);
    if (handle_.png == nullptr) throw std::bad_alloc();
    guarded([&] {
      handle_.info = png_create_info_struct(handle_.png);
      png_set_write_fn(handle_.png, file, put_bytes, flush);
      png_set_IHDR(handle_.png, handle_.info, uint32_t(size.width), uint32_t(size.height),
                   format.bits, colour_type_of(format.channels), PNG_INTERLACE_NONE,
                   PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
      png_set_compression_level(handle_.png, compression);
      png_set_filter(handle_.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
      png_write_info(handle_.png, handle_.info);
      if (std::endian::native == std::endian::little) png_set_swap(handle_.png);
    });
  }

  void write(const uint8_t* row) override {
    guarded([&] { png_write_row(handle_.png, row); });
  }
  void finish() override {
    guarded([&] { png_write_end(handle_.png, nullptr); });
  }

 private:
  template <class Calls>
  void guarded(const Calls& calls) {
    if (handle_.succeeds(calls)) return;
    throw UserError(name_ + ": cannot be written: " + handle_.message);
  }

  std::string name_;
  WriteHandle handle_;
};

}  // namespace

void set_png_compression(int level) { compression = level; }

std::unique_ptr<RowReader> read_png(File file, const std::string& name) {
  auto rows = std::make_unique<PngReader>(std::move(file), name);
  const int orientation = rows->orientation();
  return upright(std::move(rows), orientation, name);
}

std::unique_ptr<RowWriter> write_png(std::FILE* file, const std::string& name, RoiSize size,
                                     PixelFormat format) {
  return std::make_unique<PngWriter>(file, name, size, format);
}

}  // namespace tools

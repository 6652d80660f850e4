// JPEG files, by libjpeg: baseline and progressive, grey, colour and CMYK.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

#include <cerrno>
#include <cstring>

#include "failure.h"
#include "pictures/row_reader.h"
#include "pictures/row_writer.h"
#include "report.h"

namespace tools {
namespace {

constexpr int kQuality = 92;
constexpr char kExif[] = "Exif\0";  // with two zeros in all

// libjpeg reports an error by a function that must not return; it jumps back to `escape`.
struct ErrorManager {
  jpeg_error_mgr base;  // first, so that libjpeg's pointer to it is a pointer to this
  std::jmp_buf escape;
  char message[JMSG_LENGTH_MAX];

  // Runs libjpeg's calls, which own nothing that a jump would leak. False: see `message`.
  template <class Calls>
  bool succeeds(const Calls& calls) {
    if (setjmp(escape)) return false;
    calls();
    return true;
  }
};

[[noreturn]] void on_error(j_common_ptr info) {
  auto* errors = reinterpret_cast<ErrorManager*>(info->err);
  errors->base.format_message(info, errors->message);
  std::longjmp(errors->escape, 1);
}

void on_warning(j_common_ptr info, int level) {
  if (level >= 0) return;  // a trace message
  auto* errors = reinterpret_cast<ErrorManager*>(info->err);
  if (errors->base.msg_code == JWRN_JPEG_EOF) on_error(info);  // libjpeg would go on in grey
  if (errors->base.num_warnings++ == 0) errors->base.format_message(info, errors->message);
}

jpeg_error_mgr* set_up(ErrorManager& errors) {
  jpeg_std_error(&errors.base);
  errors.base.error_exit = on_error;
  errors.base.emit_message = on_warning;
  return &errors.base;
}

// A file of Adobe's programs stores CMYK inverted.
void rgb_of_cmyk(const uint8_t* cmyk, uint8_t* rgb, int width, bool inverted) {
  const int flip = inverted ? 0 : 255;
  for (int x = 0; x < width; ++x, cmyk += 4, rgb += 3) {
    for (int c = 0; c < 3; ++c) {
      rgb[c] = uint8_t(((cmyk[c] ^ flip) * (cmyk[3] ^ flip) + 127) / 255);
    }
  }
}

class JpegReader : public RowReader {
 public:
  JpegReader(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {
    info().err = set_up(errors_);
    guarded([&] { read_header(); });
    check_sides(info().image_width, info().image_height, name_);
    if (jpeg_has_multiple_scans(&info())) {  // libjpeg collects all of them
      check_size(info().image_width, info().image_height, name_);
    }
    guarded([&] { start(); });
    if (four_) cmyk_.resize(size_t{4} * info().output_width);
    set_shape({int32_t(info().output_width), int32_t(info().output_height)},
              {four_ ? 3 : info().output_components, 8});
  }

  int orientation() const { return orientation_; }

 private:
  struct Decompressor {
    jpeg_decompress_struct info{};

    Decompressor() = default;
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;
    ~Decompressor() { jpeg_destroy_decompress(&info); }
  };

  jpeg_decompress_struct& info() { return decompressor_.info; }

  template <class Calls>
  void guarded(const Calls& calls) {
    if (errors_.succeeds(calls)) return;
    throw UserError(name_ + ": is a broken JPEG picture: " + errors_.message);
  }

  void read_header() {
    jpeg_create_decompress(&info());
    jpeg_stdio_src(&info(), file_.get());
    jpeg_save_markers(&info(), JPEG_APP0 + 1, 0xFFFF);
    jpeg_read_header(&info(), TRUE);
    for (const jpeg_marker_struct* m = info().marker_list; m != nullptr; m = m->next) {
      if (m->data_length < sizeof kExif || std::memcmp(m->data, kExif, sizeof kExif) != 0) continue;
      const int orientation =
          exif_orientation(m->data + sizeof kExif, m->data_length - sizeof kExif);
      if (orientation != 1) orientation_ = orientation;
    }
  }

  void start() {
    const J_COLOR_SPACE stored = info().jpeg_color_space;
    four_ = stored == JCS_CMYK || stored == JCS_YCCK;
    info().out_color_space = four_ ? JCS_CMYK : stored == JCS_GRAYSCALE ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&info());
  }

  void next_row(uint8_t* row) override {
    guarded([&] {
      uint8_t* target = four_ ? cmyk_.data() : row;
      jpeg_read_scanlines(&info(), &target, 1);
      if (four_) rgb_of_cmyk(target, row, size().width, info().saw_Adobe_marker != 0);
    });
  }

  void finish() override {
    guarded([&] { jpeg_finish_decompress(&info()); });
    if (errors_.base.num_warnings > 0) print_note(name_ + ": " + errors_.message);
  }

  File file_;
  std::string name_;
  ErrorManager errors_{};
  Decompressor decompressor_;
  Bytes cmyk_;
  bool four_ = false;
  int orientation_ = 1;
};

class JpegWriter : public RowWriter {
 public:
  JpegWriter(std::FILE* file, std::string name, RoiSize size, int channels)  // 1 or 3
      : file_(file), name_(std::move(name)) {
    info().err = set_up(errors_);
    guarded([&] {
      jpeg_create_compress(&info());
      jpeg_stdio_dest(&info(), file);
      info().image_width = JDIMENSION(size.width);
      info().image_height = JDIMENSION(size.height);
      info().input_components = channels;
      info().in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
      jpeg_set_defaults(&info());
      jpeg_set_quality(&info(), kQuality, TRUE);
      jpeg_start_compress(&info(), TRUE);
    });
  }

  void write(const uint8_t* row) override {
    auto* rows = const_cast<uint8_t*>(row);  // libjpeg only reads it
    guarded([&] { jpeg_write_scanlines(&info(), &rows, 1); });
  }

  void finish() override {
    guarded([&] { jpeg_finish_compress(&info()); });
  }

 private:
  struct Compressor {
    jpeg_compress_struct info{};

    Compressor() = default;
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { jpeg_destroy_compress(&info); }
  };

  jpeg_compress_struct& info() { return compressor_.info; }

  template <class Calls>
  void guarded(const Calls& calls) {
    if (errors_.succeeds(calls)) return;
    if (std::ferror(file_)) fail_on_file(name_, "written");
    throw UserError(name_ + ": cannot be written as JPEG: " + errors_.message);
  }

  std::FILE* file_;
  std::string name_;
  ErrorManager errors_{};
  Compressor compressor_;
};

}  // namespace

std::unique_ptr<RowReader> read_jpeg(File file, const std::string& name) {
  auto rows = std::make_unique<JpegReader>(std::move(file), name);
  const int orientation = rows->orientation();
  return upright(std::move(rows), orientation, name);
}

std::unique_ptr<RowWriter> write_jpeg(std::FILE* file, const std::string& name, RoiSize size,
                                      PixelFormat format) {
  return std::make_unique<JpegWriter>(file, name, size, format.channels);
}

}  // namespace tools

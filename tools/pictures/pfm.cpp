// Float pictures as PFM files.
#include "pictures/pfm.h"

#include <bit>

namespace tools {

// Text lines tell the kind, the size and, by the sign of a scale, the byte order: negative is
// little-endian.
PfmWriter::PfmWriter(const std::string& path, RoiSize size)
    : path_(path), size_(size), file_(path) {
  const bool little = std::endian::native == std::endian::little;
  const int length = std::fprintf(file_.stream(), "Pf\n%d %d\n%s\n", size.width, size.height,
                                  little ? "-1.0" : "1.0");
  if (length < 0) fail_on_file(path, "written");
  header_ = size_t(length);
}

void PfmWriter::write(const float* row) {
  const size_t width = size_t(size_.width);
  const size_t at = header_ + width * sizeof(float) * size_t(size_.height - ++written_);
  if (fseeko(file_.stream(), off_t(at), SEEK_SET) != 0 ||
      std::fwrite(row, sizeof(float), width, file_.stream()) != width) {
    fail_on_file(path_, "written");
  }
}

void PfmWriter::finish() { file_.commit(); }

void write_pfm(const std::string& path, const Plane<float>& plane) {
  PfmWriter file(path, plane.size);
  for (int32_t y = 0; y < plane.size.height; ++y) {
    file.write(plane.data() + size_t(y) * size_t(plane.size.width));
  }
  file.finish();
}

}  // namespace tools

// Float pictures as PFM files: single-precision numbers as they are.
#pragma once

#include <string>

#include "pictures/file.h"
#include "pictures/picture.h"

namespace tools {

// The rows of one channel, from above to below, in this machine's byte order. The file holds them from
// below to above, so that it must be one that takes jumps. Throws UserError.
class PfmWriter {
 public:
  PfmWriter(const std::string& path, RoiSize size);
  void write(const float* row);
  void finish();  // after the last row

 private:
  std::string path_;
  RoiSize size_;
  OutputFile file_;
  int32_t written_ = 0;
  size_t header_;
};

void write_pfm(const std::string& path, const Plane<float>& plane);

}  // namespace tools

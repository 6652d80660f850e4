// Whole files as bytes.
#include "file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "failure.h"

namespace tools {
namespace {

[[noreturn]] void fail(const std::string& path, const char* what) {
  throw UserError(path + ": cannot be " + what + ": " + std::strerror(errno));
}

}  // namespace

std::vector<uint8_t> read_file(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) fail(path, "read");
  std::vector<uint8_t> bytes;
  uint8_t block[1 << 16];
  while (const size_t count = std::fread(block, 1, sizeof block, file)) {
    bytes.insert(bytes.end(), block, block + count);
  }
  const int error = std::ferror(file) ? errno : 0;
  std::fclose(file);
  errno = error;
  if (error != 0) fail(path, "read");
  return bytes;
}

void write_file(const std::string& path, const void* bytes, size_t count) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) fail(path, "written");
  const bool written = std::fwrite(bytes, 1, count, file) == count;
  const int error = errno;
  const bool closed = std::fclose(file) == 0;  // a full disk may show only here
  if (!written) errno = error;
  if (!written || !closed) fail(path, "written");
}

}  // namespace tools

// Files: reading, and writing such that a file is whole or not there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace tools {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// All of these throw UserError that names the file and the reason, which stands in errno.
[[noreturn]] void fail_on_file(const std::string& path, const char* what);  // "read", "written"
File open_input(const std::string& path);
std::vector<uint8_t> read_rest(const File& file, const std::string& path);
std::vector<uint8_t> read_file(const std::string& path);
void write_file(const std::string& path, const void* bytes, size_t count);

bool is_regular_file(const std::string& path);

// A file written under another name in the same folder: commit() gives it its own. Until then, and
// for ever where it is not called or a signal ends the program, a file of that name stays as it was. What is there and no regular
// file, a device or a pipe, is written directly.
class OutputFile {
 public:
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* stream() const { return file_.get(); }
  void commit();

 private:
  void open_beside();

  std::string path_, temporary_;  // no temporary name: written directly
  File file_;
};

}  // namespace tools

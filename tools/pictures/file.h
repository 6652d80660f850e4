// Files: reading, and writing such that a file is whole or not there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct stat;

namespace tools {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// All of these throw UserError that names the file and the reason, which stands in errno.
[[noreturn]] void fail_on_file(const std::string& path, const char* what);  // "read", "written"
File open_input(const std::string& path);                                   // "-" is stdin, once
std::vector<uint8_t> read_rest(const File& file, const std::string& path);
std::vector<uint8_t> read_file(const std::string& path);
void write_file(const std::string& path, const void* bytes, size_t count);

// The path of standard input and output.
inline constexpr char kStandardStream[] = "-";

bool is_regular_file(const std::string& path);

// Throws UserError where two of them would be one file. Empty ones say nothing; devices may repeat.
void check_outputs_differ(const std::vector<std::string>& paths);

// Throws UserError where the folder in which a file would be is missing.
void check_folder_of(const std::string& path);

// A file written under another name in the same folder: commit() gives it its own. Until then, and
// for ever where it is not called or a signal ends the program, a file of that name stays as it was. It
// keeps the mode of the one that it replaces, and symbolic links stay: what they lead to is replaced.
// What is there and no regular file, a device or a pipe, is written directly; "-" is stdout.
class OutputFile {
 public:
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* stream() const { return file_.get(); }
  void commit();

 private:
  void open_target();
  void open_beside(const struct stat* old);

  std::string path_, target_;  // what the path leads to
  std::string temporary_;      // empty: written directly
  int slot_ = -1;              // among the files that signals remove
  File file_;
};

}  // namespace tools

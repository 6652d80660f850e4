// Files: reading, and writing such that a file is whole or not there.
#include "pictures/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include "failure.h"

namespace tools {
namespace {

// The last file that has no name of its own yet: what a signal's handler removes.
char unfinished[PATH_MAX];

extern "C" void remove_and_end(int number) {
  unlink(unfinished);
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void remove_on_signals(const std::string& path) {
  for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
    if (std::signal(number, remove_and_end) == SIG_IGN) std::signal(number, SIG_IGN);
  }
  std::snprintf(unfinished, sizeof unfinished, "%s", path.c_str());
}

}  // namespace

void fail_on_file(const std::string& path, const char* what) {
  throw UserError(path + ": cannot be " + what + ": " + std::strerror(errno));
}

File open_input(const std::string& path) {
  File file(std::fopen(path.c_str(), "rb"));
  if (!file) fail_on_file(path, "read");
  return file;
}

std::vector<uint8_t> read_file(const std::string& path) {
  return read_rest(open_input(path), path);
}

std::vector<uint8_t> read_rest(const File& file, const std::string& path) {
  std::vector<uint8_t> bytes;
  uint8_t block[1 << 16];
  while (const size_t count = std::fread(block, 1, sizeof block, file.get())) {
    bytes.insert(bytes.end(), block, block + count);
  }
  if (std::ferror(file.get())) fail_on_file(path, "read");
  return bytes;
}

void write_file(const std::string& path, const void* bytes, size_t count) {
  OutputFile file(path);
  if (std::fwrite(bytes, 1, count, file.stream()) != count) fail_on_file(path, "written");
  file.commit();
}

bool is_regular_file(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  const bool exists = access(path_.c_str(), F_OK) == 0;
  if (exists && !is_regular_file(path_)) {
    file_.reset(std::fopen(path_.c_str(), "wb"));
  } else if (!exists || access(path_.c_str(), W_OK) == 0) {
    open_beside();
  }
  if (!file_) fail_on_file(path_, "written");
}

OutputFile::~OutputFile() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

// A name that no file has: other processes may write into the same folder.
void OutputFile::open_beside() {
  const std::string folder = path_.substr(0, path_.find_last_of('/') + 1);
  int descriptor = -1;
  for (int i = 0; descriptor < 0 && (i == 0 || errno == EEXIST); ++i) {
    temporary_ = folder + ".nuqi-" + std::to_string(getpid()) + "-" + std::to_string(i);
    descriptor = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  }
  if (descriptor < 0) {
    temporary_.clear();
    return;
  }
  remove_on_signals(temporary_);
  file_.reset(fdopen(descriptor, "wb"));
}

void OutputFile::commit() {
  if (std::fclose(file_.release()) != 0) fail_on_file(path_, "written");  // a full disk shows here
  if (temporary_.empty()) return;
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail_on_file(path_, "written");
  temporary_.clear();
}

}  // namespace tools

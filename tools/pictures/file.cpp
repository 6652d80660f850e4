// Files: reading, and writing such that a file is whole or not there.
#include "pictures/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <utility>

#include "failure.h"
#include "report.h"

namespace tools {
namespace {

constexpr int kSlots = 8;  // more files than any command writes at a time

// The files that have no name of their own yet: what a signal's handler removes.
char unfinished[kSlots][PATH_MAX];

extern "C" void remove_and_end(int number) {
  for (const char* path : unfinished) {
    if (path[0] != 0) unlink(path);
  }
  std::signal(number, SIG_DFL);
  std::raise(number);
}

int remove_on_signals(const std::string& path) {
  for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
    if (std::signal(number, remove_and_end) == SIG_IGN) std::signal(number, SIG_IGN);
  }
  for (int slot = 0; slot < kSlots; ++slot) {
    if (unfinished[slot][0] != 0) continue;
    std::snprintf(unfinished[slot], PATH_MAX, "%s", path.c_str());
    return slot;
  }
  return -1;
}

void keep_on_signals(int slot) {
  if (slot >= 0) unfinished[slot][0] = 0;
}

// Where the links end, even if nothing is there yet.
std::string link_target(std::string path) {
  namespace fs = std::filesystem;
  std::error_code error;
  for (int links = 0; links < 40 && fs::is_symlink(path, error); ++links) {
    const fs::path next = fs::read_symlink(path, error);
    path = (fs::path(path).parent_path() / next).string();
  }
  return path;
}

bool is_one_file(const std::string& a, const std::string& b) {
  if (a == kStandardStream || b == kStandardStream) return a == b;
  std::error_code error;
  const auto place = [&](const std::string& path) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(link_target(path)), error);
  };
  return place(a) == place(b) && (is_regular_file(a) || access(a.c_str(), F_OK) != 0);
}

}  // namespace

void fail_on_file(const std::string& path, const char* what) {
  throw UserError(path + ": cannot be " + what + ": " + std::strerror(errno));
}

File open_input(const std::string& path) {
  static bool stdin_is_taken = false;
  const bool standard = path == kStandardStream;
  if (standard && std::exchange(stdin_is_taken, true)) {
    throw UserError("-: standard input can be read only once");
  }
  File file(standard ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(path.c_str(), "rb"));
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
  return path != kStandardStream && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void check_outputs_differ(const std::vector<std::string>& paths) {
  for (size_t i = 0; i < paths.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (paths[i].empty() || paths[j].empty() || !is_one_file(paths[j], paths[i])) continue;
      throw UserError(paths[i] + ": is named for two outputs");
    }
  }
}

void check_folder_of(const std::string& path) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(link_target(path)).parent_path();
  std::error_code error;
  const fs::file_type type = fs::status(folder.empty() ? "." : folder, error).type();
  if (type != fs::file_type::not_found && type != fs::file_type::regular) return;
  throw UserError(path + ": cannot be written: there is no folder " + folder.string());
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  if (path_ == kStandardStream) {
    if (isatty(STDOUT_FILENO) != 0) {
      throw UserError("-: standard output is a terminal: redirect it, or name a file");
    }
    leave_stdout_to_files();
    file_.reset(fdopen(dup(STDOUT_FILENO), "wb"));
  } else {
    open_target();
  }
  if (!file_) fail_on_file(path_, "written");
}

OutputFile::~OutputFile() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
  keep_on_signals(slot_);
}

void OutputFile::open_target() {
  check_folder_of(path_);
  target_ = link_target(path_);
  struct stat old {};
  const bool exists = stat(target_.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return;
  if (exists && !S_ISREG(old.st_mode)) {
    file_.reset(std::fopen(target_.c_str(), "wb"));
  } else if (!exists || access(target_.c_str(), W_OK) == 0) {
    open_beside(exists ? &old : nullptr);
  }
}

// A name that no file has: other processes may write into the same folder.
void OutputFile::open_beside(const struct stat* old) {
  const std::string folder = target_.substr(0, target_.find_last_of('/') + 1);
  const mode_t mode = old == nullptr ? 0666 : 0600;  // a private file is never public
  int descriptor = -1;
  for (int i = 0; descriptor < 0 && (i == 0 || errno == EEXIST); ++i) {
    temporary_ = folder + ".nuqi-" + std::to_string(getpid()) + "-" + std::to_string(i);
    descriptor = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  }
  if (descriptor < 0) {
    temporary_.clear();
    return;
  }
  slot_ = remove_on_signals(temporary_);
  file_.reset(fdopen(descriptor, "wb"));
  if (old == nullptr) return;
  // Only root may give files away, and some file systems have no modes: both may fail.
  if (fchown(descriptor, old->st_uid, old->st_gid) == 0 || errno == EPERM) {
    (void)fchmod(descriptor, old->st_mode & 07777);
  }
}

void OutputFile::commit() {
  if (std::fclose(file_.release()) != 0) fail_on_file(path_, "written");  // a full disk shows here
  if (temporary_.empty()) return;
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail_on_file(path_, "written");
  temporary_.clear();
}

}  // namespace tools

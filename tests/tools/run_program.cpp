// Runs the program as a user would, in a folder that vanishes with the test.
#include "run_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "pictures/file.h"

namespace tools::test {

ProgramTest::ProgramTest() {
  std::string pattern = (std::filesystem::temp_directory_path() / "nuqi-test-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
}

ProgramTest::~ProgramTest() { std::filesystem::remove_all(folder_); }

Outcome ProgramTest::run(const std::vector<std::string>& arguments) const {
  return spawn(NUQI_PROGRAM, arguments);
}

Outcome ProgramTest::run_by_shell(const std::vector<std::string>& arguments,
                                  const std::string& redirections) const {
  std::vector<std::string> all = {"-c", "\"$0\" \"$@\" " + redirections, NUQI_PROGRAM};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return spawn("/bin/sh", all);
}

Outcome ProgramTest::spawn(const char* program, const std::vector<std::string>& arguments) const {
  std::vector<char*> argv = {const_cast<char*>(program)};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  const std::string out = path("stdout.txt"), err = path("stderr.txt");
  const int flags = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), flags, 0600);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), flags, 0600);
  pid_t child = 0;
  const int spawned = posix_spawn(&child, program, &files, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  if (spawned != 0) return {};
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_text("stdout.txt"),
          read_text("stderr.txt"), usage.ru_maxrss};
}

void ProgramTest::expect_refused(const std::vector<std::string>& arguments,
                                 const std::vector<std::string>& words) const {
  const Outcome outcome = run(arguments);
  std::string command;
  for (const std::string& argument : arguments) command += " " + argument;
  EXPECT_EQ(outcome.code, 2) << command << "\n" << outcome.err;
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  for (const std::string& word : words) {
    EXPECT_NE(outcome.err.find(word), std::string::npos)
        << word << " is missing in: " << outcome.err;
  }
}

std::set<std::string> ProgramTest::files() const {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    names.insert(entry.path().filename().string());
  }
  names.erase("stdout.txt");
  names.erase("stderr.txt");
  return names;
}

void ProgramTest::write_text(const std::string& name, const std::string& text) const {
  write_file(path(name), text.data(), text.size());
}

std::string ProgramTest::read_text(const std::string& name) const {
  const Bytes bytes = read_file(path(name));
  return std::string(bytes.begin(), bytes.end());
}

std::string ProgramTest::write_grey(const std::string& name, RoiSize size,
                                    const std::vector<uint8_t>& pixels) const {
  Picture picture(size, 1);
  picture.pixels = pixels;
  write_picture(path(name), picture);
  return path(name);
}

std::vector<uint8_t> ProgramTest::read_grey(const std::string& name) const {
  return grey_of(read_picture(path(name))).values;
}

}  // namespace tools::test

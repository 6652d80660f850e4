// Runs the program as a user would, in a folder that vanishes with the test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools::test {

struct Outcome {
  int code = -1;
  std::string out, err;
  long peak = 0;  // of its memory, in KiB
};

class ProgramTest : public testing::Test {
 protected:
  ProgramTest();
  ~ProgramTest() override;

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  Outcome run(const std::vector<std::string>& arguments) const;

  // The same by a shell, with redirections after the arguments; `out` is what goes to stdout all the same.
  Outcome run_by_shell(const std::vector<std::string>& arguments,
                       const std::string& redirections) const;

  Outcome run_bash(const std::string& script) const { return spawn("/bin/bash", {"-c", script}); }

  // Exit code 2 and one line on stderr that holds every word.
  void expect_refused(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& words) const;

  // The names of all files, what the program printed left out.
  std::set<std::string> files() const;

  void write_text(const std::string& name, const std::string& text) const;
  std::string read_text(const std::string& name) const;
  std::string write_grey(const std::string& name, RoiSize size,
                         const std::vector<uint8_t>& pixels) const;
  std::vector<uint8_t> read_grey(const std::string& name) const;

 private:
  Outcome spawn(const char* program, const std::vector<std::string>& arguments) const;

  std::filesystem::path folder_;
};

}  // namespace tools::test

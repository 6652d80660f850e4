// The commands background and info, and every mistake a user can make with them.
#include <algorithm>
#include <fstream>

#include "run_program.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

class Background : public ProgramTest {};

TEST_F(Background, MeanAndVarianceOfFrames) {
  Strings arguments = {"background", path("mean.png"), "--variance", path("variance.png")};
  for (const int grey : {10, 20, 30, 40}) {  // the second pixel stands still, the third leaps
    const std::string name = std::to_string(grey) + ".png";
    arguments.push_back(
        write_grey(name, {3, 1}, {uint8_t(grey), 77, uint8_t(grey == 40 ? 255 : 1)}));
  }
  const Outcome outcome = run(arguments);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{25, 77, 65}));  // 64.5 rounds up
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{125, 0, 255}));
  EXPECT_NE(outcome.err.find("4 of 4 frames"), std::string::npos) << outcome.err;
}

TEST_F(Background, ManyFramesLoseNothing) {
  // Squares of 1201 frames exceed what single precision holds exactly.
  const std::string even = write_grey("even.png", {2, 1}, {255, 251});
  const std::string odd = write_grey("odd.png", {2, 1}, {251, 251});
  Strings arguments = {"background", path("mean.png"), "--variance", path("variance.png"), even};
  for (int i = 0; i < 600; ++i) {
    arguments.push_back(even);
    arguments.push_back(odd);
  }
  const Outcome outcome = run(arguments);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{253, 251}));
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{4, 0}));
  EXPECT_LE(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 10) << outcome.err;
}

TEST_F(Background, ExponentialAverageStartsAsTheFirstFrame) {
  const std::string low = write_grey("low.png", {2, 1}, {100, 60});
  const std::string high = write_grey("high.png", {2, 1}, {116, 60});
  ASSERT_EQ(run({"background", path("mean.png"), low, high, high, "--alpha", "0.5", "--variance",
                 path("variance.png")})
                .code,
            0);
  EXPECT_EQ(read_grey("mean.png"), (std::vector<uint8_t>{112, 60}));
  EXPECT_EQ(read_grey("variance.png"), (std::vector<uint8_t>{48, 0}));  // 1/4 of 12^2, 3/4 of 4^2
}

TEST_F(Background, FramesMustBeOfOneSize) {
  const std::string a = write_grey("a.png", {2, 1}, {1, 2});
  const std::string b = write_grey("b.png", {1, 2}, {1, 2});
  const Outcome outcome = run({"background", path("mean.png"), a, b});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "1 of 2 frames\nnuqi: " + b + ": is 1x2, but " + a + " is 2x1\n");
  EXPECT_FALSE(std::filesystem::exists(path("mean.png")));
}

class Mistakes : public ProgramTest {};

TEST_F(Mistakes, FilesThatAreNoPictures) {
  const std::string good = write_grey("good.png", {2, 2}, {1, 2, 3, 4});
  write_text("text.png", "This is no picture.\n");
  write_text("empty.jpg", "");
  write_text("cut.png", read_text("good.png").substr(0, 40));
  write_text("cut.jpg", "\xFF\xD8\xFF\xE0");
  const std::vector<std::pair<std::string, std::string>> files = {
      {"text.png", "neither a PNG nor a JPEG"},
      {"empty.jpg", "neither a PNG nor a JPEG"},
      {"cut.png", "broken PNG"},
      {"cut.jpg", "broken JPEG"},
      {"missing.png", "No such file"},
      {"", "Is a directory"}};
  for (const auto& [name, reason] : files) {
    expect_refused({"edges", path(name), path("out.png")}, {path(name), reason});
    expect_refused({"background", path("out.png"), path(name)}, {path(name), reason});
    expect_refused({"tour", path(name), "--out", path("page")}, {path(name), reason});
  }
  EXPECT_FALSE(std::filesystem::exists(path("out.png")));
  EXPECT_FALSE(std::filesystem::exists(path("page")));
}

TEST_F(Mistakes, OutputsThatCannotBeWritten) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4});
  std::filesystem::create_directory(path("folder.png"));
  expect_refused({"edges", in, path("none/out.png")}, {"none/out.png", "No such file"});
  expect_refused({"edges", in, path("folder.png")}, {"folder.png", "Is a directory"});
  expect_refused({"edges", in, path("out.gif")}, {"out.gif", ".png"});
  expect_refused({"background", path("out"), in}, {"/out:", ".png"});
  expect_refused({"background", path("out.png"), in, "--variance", path("v.tif")}, {"v.tif"});
  expect_refused({"tour", in, "--out", in}, {"in.png", "folder"});
}

TEST_F(Mistakes, Arguments) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  expect_refused({}, {"nuqi --help"});
  expect_refused({"fly"}, {"fly"});
  expect_refused({"edges", in}, {"OUT"});
  expect_refused({"edges", in, out, "--operator", "roberts"}, {"roberts"});
  expect_refused({"edges", in, out, "--low", "many"}, {"many"});
  expect_refused({"edges", in, out, "--low", "-0.5"}, {"--low"});
  expect_refused({"edges", in, out, "--low", "nan"}, {"--low"});
  expect_refused({"edges", in, out, "--low", "300", "--high", "200"}, {"--high"});
  expect_refused({"edges", in, out, "--high", "nan"}, {"--high:"});
  expect_refused({"background", out, in, "--alpha", "0"}, {"--alpha"});
  expect_refused({"background", out, in, "--alpha", "1.5"}, {"--alpha"});
  expect_refused({"background", out}, {"FRAME"});
}

class Info : public ProgramTest {};

TEST_F(Info, ListsTheHeadersFunctions) {
  std::ifstream header(NUQI_HEADER);
  const std::string info = run({"info", "--names"}).out;
  int functions = 0;
  for (std::string line; std::getline(header, line);) {
    if (line.rfind("NUQI_API ", 0) != 0) continue;
    ++functions;
    const size_t begin = line.find("nuqi"), end = line.find('(');
    const std::string name = line.substr(begin, end - begin);
    EXPECT_NE(info.find(" " + name + "\n"), std::string::npos) << name;
  }
  EXPECT_GT(functions, 0);
  EXPECT_NE(info.find("functions        " + std::to_string(functions) + "\n"), std::string::npos);
  EXPECT_NE(info.find("  24  Accumulation\n"), std::string::npos) << info;
}

TEST_F(Info, HelpAndVersionSucceed) {
  for (const char* command :
       {"tour",  "edges",  "corners", "distance", "background", "blur",    "sobel", "laplace",
        "erode", "dilate", "open",    "close",    "gradient",   "pyramid", "fill",  "regions",
        "stats", "diff",   "split",   "join",     "profile",    "motion",  "match", "info"}) {
    const Outcome outcome = run({command, "--help"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find(command), std::string::npos);
  }
  EXPECT_NE(run({"--help"}).out.find("Exit codes: 0 success, 2 "), std::string::npos);
  EXPECT_EQ(run({"--version"}).out, "0.1.0\n");
}

}  // namespace
}  // namespace tools::test

// The commands edges, background and info, and every mistake a user can make with them.
#include <algorithm>
#include <fstream>
#include <numeric>
#include <sstream>

#include "run_program.h"
#include "sample_pictures.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

class Edges : public ProgramTest {
 protected:
  // Dark, one column in the middle, bright: the gradient is strongest in that column alone.
  static std::vector<uint8_t> ramp(int width, int height) {
    std::vector<uint8_t> pixels;
    for (int i = 0; i < width * height; ++i) {
      const int x = i % width;
      pixels.push_back(x < width / 2 ? 0 : x == width / 2 ? 128 : 255);
    }
    return pixels;
  }
  static std::vector<uint8_t> column(int width, int height) {
    std::vector<uint8_t> pixels = ramp(width, height);
    for (uint8_t& value : pixels) value = value == 128 ? 255 : 0;
    return pixels;
  }
};

TEST_F(Edges, FindsAColumnInPicturesOfManyShapes) {
  for (const RoiSize size : {RoiSize{21, 9}, {64, 2}, {33, 1}, {1000, 1}}) {
    for (const char* name : {"sobel", "scharr"}) {
      SCOPED_TRACE(size_text(size) + " " + name);
      write_grey("in.png", size, ramp(size.width, size.height));
      const Outcome outcome = run({"edges", path("in.png"), path("out.png"), "--operator", name});
      ASSERT_EQ(outcome.code, 0) << outcome.err;
      EXPECT_NE(outcome.out.find(size_text(size)), std::string::npos) << outcome.out;
      EXPECT_EQ(read_grey("out.png"), column(size.width, size.height));
    }
  }
}

TEST_F(Edges, OnePixelHasNone) {
  write_grey("in.png", {1, 1}, {200});
  ASSERT_EQ(run({"edges", path("in.png"), path("out.png"), "--low", "0"}).code, 0);
  EXPECT_EQ(read_grey("out.png"), std::vector<uint8_t>{0});
}

TEST_F(Edges, ThresholdsBoundTheStrength) {
  write_grey("in.png", {21, 9}, ramp(21, 9));  // 1020 in the column's middle
  const auto count = [&](const Strings& thresholds) {
    Strings arguments = {"edges", path("in.png"), path("out.png")};
    arguments.insert(arguments.end(), thresholds.begin(), thresholds.end());
    EXPECT_EQ(run(arguments).code, 0);
    const std::vector<uint8_t> edges = read_grey("out.png");
    return std::count(edges.begin(), edges.end(), 255);
  };
  EXPECT_EQ(count({"--high", "1019"}), 9);
  EXPECT_EQ(count({"--high", "1020"}), 0);
  EXPECT_EQ(count({"--low", "509"}), 9);  // high is twice low
  EXPECT_EQ(count({"--low", "510"}), 0);
  EXPECT_EQ(count({"--low", "0", "--high", "inf"}), 0);
}

TEST_F(Edges, ColourAndAlphaAreSeenOverWhite) {
  // Opaque and dark on the left, dark but transparent on the right: a viewer sees an edge.
  const auto half_clear = [](int x, int) {
    return Rgba{0, 0, 0, x < 10 ? 255 : x == 10 ? 127 : 0};
  };
  const Bytes png = png_of({"", 6, 8}, {21, 9}, half_clear);
  write_text("in.png", std::string(png.begin(), png.end()));
  ASSERT_EQ(run({"edges", path("in.png"), path("out.png")}).code, 0);
  EXPECT_EQ(read_grey("out.png"), column(21, 9));
}

TEST_F(Edges, LargePictureAndJpeg) {
  write_grey("in.png", {5000, 3000}, ramp(5000, 3000));
  ASSERT_EQ(run({"edges", path("in.png"), path("out.PNG")}).code, 0);
  EXPECT_EQ(read_grey("out.PNG"), column(5000, 3000));
  ASSERT_EQ(run({"edges", path("out.PNG"), path("out.jpeg")}).code, 0);
  EXPECT_EQ(read_picture(path("out.jpeg")).size.width, 5000);
}

TEST_F(Edges, EveryInstructionSetGivesTheSamePicture) {
  std::vector<uint8_t> noise(97 * 61);
  std::iota(noise.begin(), noise.end(), uint8_t{0});
  for (size_t i = 0; i < noise.size(); ++i) noise[i] = uint8_t(noise[i] * noise[i] * 31 >> 3);
  write_grey("in.png", {97, 61}, noise);
  ASSERT_EQ(run({"edges", path("in.png"), path("best.png")}).code, 0);
  const std::string info = run({"info"}).out;
  const size_t line = info.find("available ");
  ASSERT_NE(line, std::string::npos);
  std::istringstream words(info.substr(line, info.find('\n', line) - line));
  std::string level;
  words >> level;
  int levels = 0;
  for (; words >> level; ++levels) {
    const Outcome outcome = run({"--isa", level, "edges", path("in.png"), path("out.png")});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find(" with " + level), std::string::npos) << outcome.out;
    EXPECT_EQ(read_text("out.png"), read_text("best.png")) << level;
  }
  EXPECT_GE(levels, 1);
  expect_refused({"--isa", "abacus", "info"}, {"abacus"});
}

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
  expect_refused({"edges", in, out, "--high", "nan"}, {"--"});
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

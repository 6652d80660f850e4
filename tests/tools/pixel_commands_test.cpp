// The commands diff, split, join, profile and motion.
#include <algorithm>
#include <cstdlib>

#include "run_program.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

class Pixels : public ProgramTest {
 protected:
  std::string write_colours(const std::string& name, RoiSize size,
                            const std::vector<uint8_t>& pixels) const {
    Picture picture(size, 3);
    picture.pixels = pixels;
    write_picture(path(name), picture);
    return path(name);
  }
};

TEST_F(Pixels, DiffOfEachChannel) {
  const std::string a = write_colours("a.png", {3, 1}, {0, 10, 255, 7, 7, 7, 1, 2, 3});
  const std::string b = write_colours("b.png", {3, 1}, {255, 4, 250, 7, 7, 7, 1, 2, 4});
  const Outcome outcome = run({"diff", a, b, path("out.png")});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, path("out.png") + ": 3x1, 2 pixels differ, by at most 255\n");
  EXPECT_EQ(read_picture(path("out.png")).pixels,
            (std::vector<uint8_t>{255, 6, 5, 0, 0, 0, 0, 0, 1}));
}

TEST_F(Pixels, SplitAndJoinAreInverse) {
  const RoiSize size{37, 3};
  std::vector<uint8_t> pixels;
  for (int i = 0; i < 3 * 37 * 3; ++i) pixels.push_back(uint8_t(i * i * 7 + i % 3));
  const std::string in = write_colours("in.png", size, pixels);
  const Strings parts = {path("r.png"), path("g.png"), path("b.png")};
  ASSERT_EQ(run({"split", in, parts[0], parts[1], parts[2]}).code, 0);
  for (size_t c = 0; c < 3; ++c) {
    const std::vector<uint8_t> channel = grey_of(read_picture(parts[c])).values;
    for (size_t i = 0; i < channel.size(); ++i) ASSERT_EQ(channel[i], pixels[3 * i + c]);
  }
  ASSERT_EQ(run({"join", parts[0], parts[1], parts[2], path("out.png")}).code, 0);
  EXPECT_EQ(read_picture(path("out.png")).pixels, pixels);
}

TEST_F(Pixels, ProfilePrintsTheLine) {
  std::vector<uint8_t> pixels;
  for (int i = 0; i < 5 * 2; ++i) {  // red is x, green is y
    const uint8_t x = uint8_t(i % 5), y = uint8_t(i / 5);
    pixels.insert(pixels.end(), {x, y, 200});
  }
  const std::string in = write_colours("in.png", {5, 2}, pixels);
  const Outcome outcome = run({"profile", in, "4,1", "0,0"});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "x,y,red,green,blue,grey\n"
            "4,1,4,1,200,24\n3,1,3,1,200,24\n2,1,2,1,200,24\n1,0,1,0,200,23\n0,0,0,0,200,23\n");
  EXPECT_EQ(run({"profile", in, "2,1", "2,1"}).out, "x,y,red,green,blue,grey\n2,1,2,1,200,24\n");
}

TEST_F(Pixels, PositionsAreThoseOfTheSamples) {
  constexpr int kSide = 40;
  std::vector<uint8_t> pixels;
  for (int i = 0; i < kSide * kSide; ++i) {
    pixels.insert(pixels.end(), {uint8_t(i % kSide), uint8_t(i / kSide), 0});
  }
  const std::string in = write_colours("in.png", {kSide, kSide}, pixels);
  for (const char* end : {"39,0", "39,7", "39,38", "39,39", "38,39", "3,39", "0,39", "22,11"}) {
    for (const bool back : {false, true}) {
      const Outcome outcome = run({"profile", in, back ? end : "0,0", back ? "0,0" : end});
      int x = 0, y = 0, red = 0, green = 0, lines = 0;
      size_t at = 0;
      while ((at = outcome.out.find('\n', at) + 1) < outcome.out.size()) {
        ASSERT_EQ(std::sscanf(outcome.out.c_str() + at, "%d,%d,%d,%d", &x, &y, &red, &green), 4);
        ASSERT_EQ(x, red) << end;
        ASSERT_EQ(y, green) << end;
        ++lines;
      }
      EXPECT_GE(lines, 23) << end;
    }
  }
}

TEST_F(Pixels, ProfileIsDrawn) {
  std::vector<uint8_t> pixels;
  for (int i = 0; i < 300; ++i) pixels.insert(pixels.end(), {255, 0, 0});
  const std::string in = write_colours("in.png", {300, 1}, pixels);
  for (const char* end : {"299,0", "1,0", "0,0"}) {  // also a single pixel
    ASSERT_EQ(run({"profile", in, "0,0", end, "--plot", path("plot.png")}).code, 0) << end;
    const Picture plot = read_picture(path("plot.png"));
    int red_top = plot.size.height;  // red is at the top, the other channels at the bottom
    for (size_t i = 0; i < plot.pixels.size(); i += 3) {
      const uint8_t* rgb = &plot.pixels[i];
      if (rgb[0] > 200 && rgb[1] < 100) red_top = std::min(red_top, int(i / 3) / plot.size.width);
    }
    EXPECT_LT(red_top, plot.size.height / 10) << end;
  }
}

class MotionCommand : public Pixels {
 protected:
  static constexpr int kSide = 64;
  // A bright square of 24 pixels, its upper left corner at (x, y).
  std::string write_square(const std::string& name, int x, int y) const {
    std::vector<uint8_t> pixels;
    for (int i = 0; i < kSide * kSide; ++i) {
      const int u = i % kSide - x, v = i / kSide - y;
      pixels.push_back(u >= 0 && u < 24 && v >= 0 && v < 24 ? 200 : 60);
    }
    return write_grey(name, {kSide, kSide}, pixels);
  }
};

TEST_F(MotionCommand, TheHueIsTheDirection) {
  struct Way {
    int dx, dy, peak;  // the largest channel of the hue; -1: green and blue alike
    std::string text;
  };
  for (const Way& way : {Way{4, 0, 0, "mostly right ("},
                         {0, 4, 1, "mostly down (90 degrees)"},
                         {-4, 0, -1, "mostly left (180 degrees)"},
                         {0, -4, 2, "mostly up (270"}}) {
    SCOPED_TRACE(way.text);
    Strings arguments = {"motion", path("out.png")};
    for (int i = 0; i < 6; ++i) {
      arguments.push_back(
          write_square(std::to_string(i) + ".png", 20 + (i - 3) * way.dx, 20 + (i - 3) * way.dy));
    }
    const Outcome outcome = run(arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find(way.text), std::string::npos) << outcome.out;
    const Picture picture = read_picture(path("out.png"));
    EXPECT_EQ(std::vector<uint8_t>(picture.pixels.begin(), picture.pixels.begin() + 3),
              (std::vector<uint8_t>{20, 20, 20}));  // nothing moved: a third of the grey level
    // The middle of the way's leading edge, over its last three steps.
    const int x = 32 + way.dx * 2 + way.dx / 4 * 8, y = 32 + way.dy * 2 + way.dy / 4 * 8;
    const uint8_t* rgb = &picture.pixels[3 * size_t(y * kSide + x)];
    const int most = int(std::max_element(rgb, rgb + 3) - rgb);
    if (way.peak >= 0) {
      EXPECT_EQ(most, way.peak);
      EXPECT_LT(std::min({rgb[0], rgb[1], rgb[2]}), rgb[most] / 4);
    } else {
      EXPECT_LT(int(rgb[0]), 10);
      EXPECT_NEAR(int(rgb[1]), int(rgb[2]), 60);
      EXPECT_GT(int(rgb[1]), 120);
    }
  }
}

TEST_F(MotionCommand, ThresholdAndDuration) {
  Strings arguments = {"motion", path("out.png")};
  for (const int grey : {10, 60, 60, 60, 70}) {  // one pixel leaps, later steps
    const std::string name = std::to_string(arguments.size()) + ".png";
    arguments.push_back(write_grey(name, {2, 1}, {uint8_t(grey), 90}));
  }
  const auto first_pixel = [&](const Strings& options) {
    Strings all = arguments;
    all.insert(all.end(), options.begin(), options.end());
    const Outcome outcome = run(all);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const std::vector<uint8_t> pixels = read_grey("out.png");
    EXPECT_EQ(pixels.size(), 2u);
    EXPECT_EQ(pixels[1], 30);
    return int(pixels[0]);
  };
  EXPECT_EQ(first_pixel({}), 133);                    // 3 of 4 frames ago
  EXPECT_EQ(first_pixel({"--threshold", "9"}), 230);  // the step from 60 to 70 too
  EXPECT_EQ(first_pixel({"--threshold", "50"}), 23);  // not even the leap
  EXPECT_EQ(first_pixel({"--duration", "3"}), 109);   // not yet forgotten
  EXPECT_EQ(first_pixel({"--duration", "2"}), 23);
}

TEST_F(Pixels, Mistakes) {
  const std::string a = write_grey("a.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  const std::string b = write_grey("b.png", {1, 2}, {1, 2});
  const std::string sizes = b + ": is 1x2, but " + a + " is 2x2";
  expect_refused({"diff", a, b, out}, {sizes});
  expect_refused({"diff", a, path("none.png"), out}, {"none.png", "No such file"});
  expect_refused({"join", a, a, b, out}, {sizes});
  expect_refused({"split", a, out, out, path("out.tif")}, {"out.tif", ".png"});
  expect_refused({"split", a, out, out}, {"OUT_B"});
  expect_refused({"motion", out, a}, {a, "two frames"});
  expect_refused({"motion", out, path("none.png"), a}, {"none.png"});
  expect_refused({"motion", out, a, a, "--threshold", "255"}, {"--threshold"});
  expect_refused({"motion", out, a, a, "--duration", "0"}, {"--duration"});
  expect_refused({"profile", a, "0,0", "2,0"}, {"2,0: lies outside " + a + ", which is 2x2"});
  expect_refused({"profile", a, "0,-1", "1,0"}, {"0,-1: lies outside"});
  expect_refused({"profile", a, "0;1", "1,0"}, {"0;1", "x,y"});
  expect_refused({"profile", a, "0,1", "1,0 "}, {"x,y"});
  expect_refused({"profile", a, "0,1", "1,0", "--plot", path("p.gif")}, {"p.gif"});
  EXPECT_FALSE(std::filesystem::exists(out));
  const Outcome outcome = run({"motion", out, a, b});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "nuqi: " + sizes + "\n");
}

}  // namespace
}  // namespace tools::test

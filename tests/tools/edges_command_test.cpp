// The command edges: outlines of shapes, thresholds, pictures of many kinds and shapes.
#include <algorithm>
#include <cstdlib>
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

// What of the edges can be reached from the upper left pixel by steps to four neighbours, edges aside.
std::vector<bool> outside_of(const std::vector<uint8_t>& edges, int side) {
  std::vector<bool> seen(edges.size());
  std::vector<int> open = {0};
  while (!open.empty()) {
    const int at = open.back(), x = at % side;
    open.pop_back();
    if (seen[size_t(at)] || edges[size_t(at)] != 0) continue;
    seen[size_t(at)] = true;
    if (x > 0) open.push_back(at - 1);
    if (x + 1 < side) open.push_back(at + 1);
    if (at >= side) open.push_back(at - side);
    if (at + side < side * side) open.push_back(at + side);
  }
  return seen;
}

TEST_F(Edges, ASquareHasAClosedOutline) {
  constexpr int kSide = 40;
  for (const auto& [left, top] : {std::pair{9, 9}, {10, 9}, {9, 12}, {10, 12}}) {
    for (const char* name : {"sobel", "scharr"}) {
      SCOPED_TRACE(std::to_string(left) + "," + std::to_string(top) + " " + name);
      const int right = left + 14, bottom = top + 17;  // beyond it
      std::vector<uint8_t> pixels;
      for (int i = 0; i < kSide * kSide; ++i) {
        const int x = i % kSide, y = i / kSide;
        pixels.push_back(x >= left && x < right && y >= top && y < bottom ? 255 : 0);
      }
      write_grey("in.png", {kSide, kSide}, pixels);
      ASSERT_EQ(run({"edges", path("in.png"), path("out.png"), "--operator", name}).code, 0);
      const std::vector<uint8_t> edges = read_grey("out.png");
      const std::vector<bool> outside = outside_of(edges, kSide);
      int count = 0;
      for (int i = 0; i < kSide * kSide; ++i) {
        const int x = i % kSide, y = i / kSide;
        const bool inside = x > left && x < right - 1 && y > top && y < bottom - 1;
        const bool beyond = x < left - 1 || x > right || y < top - 1 || y > bottom;
        if (inside && edges[size_t(i)] == 0) {
          EXPECT_FALSE(outside[size_t(i)]) << x << " " << y;
        }
        if (beyond) {
          EXPECT_TRUE(outside[size_t(i)]) << x << " " << y;
        }
        count += edges[size_t(i)] != 0;
      }
      EXPECT_LE(count, 2 * (14 + 17) + 4);  // one pixel thin
    }
  }
}

TEST_F(Edges, AChessboardHasAllItsLines) {
  constexpr int kField = 7, kSide = 8 * kField;  // lines beside odd and even columns
  std::vector<uint8_t> pixels;
  for (int i = 0; i < kSide * kSide; ++i) {
    pixels.push_back((i % kSide / kField + i / kSide / kField) % 2 == 0 ? 0 : 255);
  }
  write_grey("in.png", {kSide, kSide}, pixels);
  ASSERT_EQ(run({"edges", path("in.png"), path("out.png")}).code, 0);
  const std::vector<uint8_t> edges = read_grey("out.png");
  const auto edge = [&](int x, int y) { return edges[size_t(y * kSide + x)] != 0; };
  for (int line = kField; line < kSide; line += kField) {
    for (int at = 0; at < kSide; ++at) {
      const int place = at % kField;
      if (place < 2 || place >= kField - 2) continue;  // near a crossing
      EXPECT_NE(edge(line - 1, at), edge(line, at)) << line << " " << at;
      EXPECT_NE(edge(at, line - 1), edge(at, line)) << line << " " << at;
    }
  }
  for (int y = kField / 2; y < kSide; y += kField) {
    for (int x = kField / 2; x < kSide; x += kField) EXPECT_FALSE(edge(x, y));
  }
}

// Breaking ties moves no pixel across a threshold and no pixel before a stronger one.
TEST_F(Edges, BrokenTiesKeepTheOrderOfStrengths) {
  constexpr int kSide = 61, kHigh = 200;
  std::vector<uint8_t> pixels;
  for (uint32_t i = 0, state = 7; i < kSide * kSide; ++i) {
    pixels.push_back(uint8_t((state = state * 1664525u + 1013904223u) >> 26));  // many equal
  }
  const auto pixel = [&](int x, int y) {
    return int(pixels[size_t(std::clamp(y, 0, kSide - 1) * kSide + std::clamp(x, 0, kSide - 1))]);
  };
  const auto strength = [&](int x, int y) {
    int dx = 0, dy = 0;
    for (const int k : {-1, 0, 1}) {
      dx += (2 - k * k) * (pixel(x + 1, y + k) - pixel(x - 1, y + k));
      dy += (2 - k * k) * (pixel(x + k, y + 1) - pixel(x + k, y - 1));
    }
    return std::abs(dx) + std::abs(dy);
  };
  write_grey("in.png", {kSide, kSide}, pixels);
  const std::string high = std::to_string(kHigh) + ".75";
  ASSERT_EQ(run({"edges", path("in.png"), path("out.png"), "--low", high, "--high", high}).code, 0);
  const std::vector<uint8_t> edges = read_grey("out.png");
  int maxima = 0, just_above = 0;
  for (int y = 1; y + 1 < kSide; ++y) {
    for (int x = 1; x + 1 < kSide; ++x) {
      const int here = strength(x, y);
      int others = 0;
      for (int i = 0; i < 9; ++i) {
        if (i != 4) others = std::max(others, strength(x + i % 3 - 1, y + i / 3 - 1));
      }
      const bool edge = edges[size_t(y * kSide + x)] != 0;
      const bool maximum = here > kHigh && here > others;
      EXPECT_TRUE(edge ? here > kHigh : !maximum) << x << " " << y;
      maxima += maximum;
      just_above += edge && here <= kHigh + 4;
    }
  }
  EXPECT_GT(maxima, 20);
  EXPECT_GT(just_above, 0);
}

TEST_F(Edges, ThresholdsAreChosenFromThePicture) {
  // Faint texture everywhere: fixed thresholds would find nothing or everything.
  std::vector<uint8_t> pixels;
  for (uint32_t i = 0, state = 1; i < 200 * 100; ++i) {
    state = state * 1664525u + 1013904223u;
    pixels.push_back(uint8_t(100 + (state >> 28)));
  }
  const std::string in = write_grey("in.png", {200, 100}, pixels);
  for (const char* name : {"sobel", "scharr"}) {
    const Outcome outcome = run({"edges", in, path("out.png"), "--operator", name});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const std::vector<uint8_t> edges = read_grey("out.png");
    const auto count = std::count(edges.begin(), edges.end(), 255);
    EXPECT_GT(count, 200 * 100 / 50) << outcome.out;
    EXPECT_LT(count, 200 * 100 / 5) << outcome.out;
  }
  write_grey("in.png", {9, 9}, std::vector<uint8_t>(81, 50));
  EXPECT_NE(run({"edges", in, path("out.png")}).out.find(" 0.0 % edges (sobel, low 0, high 0)"),
            std::string::npos);
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

}  // namespace
}  // namespace tools::test

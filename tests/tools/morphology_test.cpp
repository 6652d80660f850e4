// The commands erode, dilate, open, close and gradient against sets of pixels.
#include <algorithm>
#include <nuqi/nuqi.hpp>

#include "pictures/row_writer.h"
#include "run_program.h"
#include "sample_pictures.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

// An element as a set of offsets from the anchor.
struct Offsets {
  std::vector<PixelPoint> points;

  Offsets turned() const {
    Offsets result;
    for (const PixelPoint p : points) result.points.push_back({-p.x, -p.y});
    return result;
  }
};

Offsets offsets_of(const std::string& rows, PixelPoint anchor) {
  Offsets offsets;
  int32_t x = 0, y = 0;
  for (const char c : rows) {
    if (c == '1') offsets.points.push_back({x - anchor.x, y - anchor.y});
    x = c == '\n' ? 0 : x + 1;
    y += c == '\n';
  }
  return offsets;
}

// Pixels beyond an edge equal the edge pixel; alpha, the fourth channel, stays.
Picture extremum(const Picture& in, const Offsets& offsets, bool greatest) {
  Picture out = in;
  const auto [width, height] = in.size;
  size_t i = 0;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      for (int c = 0; c < in.channels; ++c, ++i) {
        if (c == 3) continue;
        uint8_t value = greatest ? 0 : 255;
        for (const PixelPoint p : offsets.points) {
          const int32_t u = std::clamp(x + p.x, 0, width - 1);
          const int32_t v = std::clamp(y + p.y, 0, height - 1);
          const uint8_t other = in.pixels[size_t((v * width + u) * in.channels + c)];
          value = greatest ? std::max(value, other) : std::min(value, other);
        }
        out.pixels[i] = value;
      }
    }
  }
  return out;
}

Picture expected_of(const std::string& command, const Picture& in, const Offsets& offsets,
                    int times) {
  const auto repeated = [&](Picture picture, const Offsets& element, bool greatest) {
    for (int i = 0; i < times; ++i) picture = extremum(picture, element, greatest);
    return picture;
  };
  if (command == "erode") return repeated(in, offsets, false);
  if (command == "dilate") return repeated(in, offsets, true);
  if (command == "open") return repeated(repeated(in, offsets, false), offsets.turned(), true);
  if (command == "close") return repeated(repeated(in, offsets, true), offsets.turned(), false);
  Picture result = repeated(in, offsets, true);
  const Picture least = repeated(in, offsets, false);
  for (size_t i = 0; i < result.pixels.size(); ++i) {
    const bool alpha = in.channels == 4 && i % 4 == 3;
    if (!alpha) result.pixels[i] = uint8_t(result.pixels[i] - least.pixels[i]);
  }
  return result;
}

Picture noise(RoiSize size, int channels) {
  Picture picture(size, channels);
  uint32_t bits = 1;
  for (uint8_t& value : picture.pixels) {
    bits = bits * 1664525u + 1013904223u;
    value = uint8_t(bits >> 24);
  }
  return picture;
}

constexpr char kAskew[] = "0110\n1000\n0001\n";

class MorphologyCommands : public ProgramTest {
 protected:
  Picture result_of(const std::string& command, const Picture& in, Strings arguments) const {
    write_picture(path("in.png"), in);
    arguments.insert(arguments.begin(), {command, path("in.png"), path("out.png")});
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.code == 0
               ? whole_picture<uint8_t>(*open_rows(path("out.png"), Form::stored), "out")
               : Picture();
  }
};

// Heights of one strip and of several, elements lower and higher than a strip.
TEST_F(MorphologyCommands, GiveTheExtremaOfTheElement) {
  write_text("askew.txt", kAskew);
  std::string column;
  for (int i = 0; i < 80; ++i) column += "1\n";
  const struct {
    Strings arguments;
    Offsets offsets;
  } elements[] = {
      {{}, offsets_of("111\n111\n111\n", {1, 1})},
      {{"--element", "cross", "--size", "4x3", "--anchor", "3,0"},
       offsets_of("1111\n0001\n0001\n", {3, 0})},
      {{"--element", "ellipse", "--size", "5x5", "--anchor", "0,4"},
       offsets_of("01110\n11111\n11111\n11111\n01110\n", {0, 4})},
      {{"--element", path("askew.txt")}, offsets_of(kAskew, {2, 1})},
      {{"--size", "4x1"}, offsets_of("1111\n", {2, 0})},
      {{"--size", "1x80", "--anchor", "0,10"}, offsets_of(column, {0, 10})},
  };
  const RoiSize sizes[] = {{9, 1}, {23, 64}, {17, 193}};
  int round = 0;
  for (const char* command : {"erode", "dilate", "open", "close", "gradient"}) {
    for (const auto& element : elements) {
      for (const RoiSize size : sizes) {
        static constexpr int kChannels[] = {1, 3, 4};
        const int channels = kChannels[round % 3], times = 1 + round / 3 % 3;
        ++round;
        Strings arguments = element.arguments;
        arguments.insert(arguments.end(), {"--times", std::to_string(times)});
        SCOPED_TRACE(std::string(command) + " " + size_text(size) + ", element " +
                     std::to_string(&element - elements) + ", channels " +
                     std::to_string(channels) + ", times " + std::to_string(times));
        const Picture in = noise(size, channels);
        const Picture out = result_of(command, in, arguments);
        ASSERT_EQ(out.channels, channels);
        ASSERT_TRUE(out.pixels == expected_of(command, in, element.offsets, times).pixels);
      }
    }
  }
}

TEST_F(MorphologyCommands, OpeningAndClosingTwiceChangeNothingMore) {
  write_text("askew.txt", kAskew);
  constexpr int32_t kSide = 60, kRim = 12;
  for (const char* command : {"open", "close"}) {
    const Strings element = {"--element", path("askew.txt"), "--anchor", "3,0"};
    const Picture once = result_of(command, noise({kSide, kSide}, 1), element);
    const Picture twice = result_of(command, once, element);
    for (int32_t y = kRim; y < kSide - kRim; ++y) {
      for (int32_t x = kRim; x < kSide - kRim; ++x) {
        const size_t i = size_t(y * kSide + x);
        ASSERT_EQ(int(twice.pixels[i]), int(once.pixels[i])) << command << " " << x << "," << y;
      }
    }
  }
}

TEST_F(MorphologyCommands, EllipsesAreFilled) {
  const auto text_of = [](RoiSize size) {
    std::string text;
    const nuqi::Element element = nuqi::Element::ellipse(size.width, size.height);
    for (const int32_t inside : element.mask()) text += char('0' + inside);
    return text;
  };
  EXPECT_EQ(text_of({1, 1}), "1");
  EXPECT_EQ(text_of({2, 2}), "1111");
  EXPECT_EQ(text_of({3, 3}),
            "010"
            "111"
            "010");
  EXPECT_EQ(text_of({7, 1}), "1111111");
  EXPECT_EQ(text_of({6, 4}),
            "011110"
            "111111"
            "111111"
            "011110");
  EXPECT_EQ(text_of({7, 7}),
            "0011100"
            "0111110"
            "1111111"
            "1111111"
            "1111111"
            "0111110"
            "0011100");
}

TEST_F(MorphologyCommands, AMaskIsAPictureOrAText) {
  write_grey("mask.png", {4, 3}, {0, 128, 255, 127, 200, 0, 0, 0, 9, 1, 0, 130});
  write_text("mask.txt", "0, 1, 1, 0\r\n\n1 0\t0 0\n0001");
  const Picture in = noise({20, 20}, 1);
  const Picture expected = extremum(in, offsets_of(kAskew, {2, 1}), true);
  for (const char* mask : {"mask.png", "mask.txt"}) {
    EXPECT_TRUE(result_of("dilate", in, {"--element", path(mask)}).pixels == expected.pixels);
  }
}

TEST_F(MorphologyCommands, GreyWithAlphaAndJpegKeepWhatTheyCan) {
  const auto clear = [](int x, int y) { return Rgba{100 + x, 0, 0, 10 * y}; };
  const Bytes png = png_of({"", 4, 8}, {9, 9}, clear);
  write_text("grey.png", std::string(png.begin(), png.end()));
  ASSERT_EQ(run({"dilate", path("grey.png"), path("out.png")}).code, 0);
  ASSERT_EQ(run({"dilate", path("grey.png"), path("out.jpg")}).code, 0);
  const Picture out = whole_picture<uint8_t>(*open_rows(path("out.png"), Form::stored), "out");
  ASSERT_EQ(out.channels, 4);
  for (int i = 0; i < 81; ++i) {
    EXPECT_EQ(int(out.pixels[size_t(4 * i)]), std::min(100 + i % 9 + 1, 108));
    EXPECT_EQ(int(out.pixels[size_t(4 * i + 3)]), 10 * (i / 9));
  }
  EXPECT_GT(int(read_picture(path("out.jpg")).pixels[0]), 240);  // transparent over white
}

// Ten times as high, the picture takes no more memory.
TEST_F(MorphologyCommands, PicturesMayBeLargerThanMemory) {
#ifdef NUQI_SANITIZED
  GTEST_SKIP() << "the sanitizer keeps freed memory";
#endif
  const auto open_of_height = [&](int32_t height) {
    constexpr int32_t kWidth = 40000;
    const auto rows = create_picture(path("in.png"), {kWidth, height}, {1, 8});
    for (int32_t y = 0; y < height; ++y) rows->write(Bytes(kWidth, uint8_t(y)).data());
    rows->finish();
    return run({"open", path("in.png"), path("out.png"), "--size", "15x15"});
  };
  const Outcome low = open_of_height(60), high = open_of_height(600);
  ASSERT_EQ(high.code, 0) << high.err;
  EXPECT_LT(high.peak - low.peak, 4 << 10);  // the whole picture has 23 MiB
}

TEST_F(MorphologyCommands, Mistakes) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  const std::string black = write_grey("black.png", {2, 2}, {0, 0, 0, 0});
  write_text("words.txt", "0 1 two\n");
  write_text("ragged.txt", "011\n01\n");
  write_text("empty.txt", "\n");
  const std::vector<std::pair<Strings, Strings>> mistakes = {
      {{"--size", "3"}, {"--size 3", "WxH"}},
      {{"--size", "0x3"}, {"--size", "0x3"}},
      {{"--size", "3x1001"}, {"--size", "1000"}},
      {{"--anchor", "3,0"}, {"--anchor 3,0", "3x3"}},
      {{"--anchor", "1"}, {"--anchor 1", "X,Y"}},
      {{"--times", "0"}, {"--times"}},
      {{"--element", "disc"}, {"disc", "No such file"}},
      {{"--element", path("words.txt")}, {"words.txt", "0 and 1"}},
      {{"--element", path("ragged.txt")}, {"ragged.txt", "length"}},
      {{"--element", path("empty.txt")}, {"empty.txt", "0x0"}},
      {{"--element", black}, {"black.png", "no pixel"}},
      {{"--element", black, "--size", "2x2"}, {"--size", "black.png"}},
  };
  for (const auto& [arguments, words] : mistakes) {
    Strings all = {"open", in, out};
    all.insert(all.end(), arguments.begin(), arguments.end());
    expect_refused(all, words);
  }
  expect_refused({"erode", path("none.png"), out}, {"none.png", "No such file"});
  expect_refused({"gradient", in, path("out.gif")}, {"out.gif", ".png"});
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace tools::test

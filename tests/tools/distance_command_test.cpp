// The command distance: its metrics, its files, and mistakes with it.
#include <algorithm>
#include <cstring>

#include "run_program.h"

namespace tools::test {
namespace {

using Strings = std::vector<std::string>;

class DistanceCommand : public ProgramTest {
 protected:
  static constexpr RoiSize kSize{21, 15};
  static constexpr int kX = 8, kY = 5;

  DistanceCommand() {
    std::vector<uint8_t> pixels(size_t(kSize.width * kSize.height), 200);
    pixels[size_t(kY * kSize.width + kX)] = 100;
    in_ = write_grey("in.png", kSize, pixels);
  }

  // The numbers of a PFM file, row after row from the top.
  std::vector<float> read_pfm(const std::string& name, const std::string& header) const {
    const std::string text = read_text(name);
    EXPECT_EQ(text.substr(0, header.size()), header);
    std::vector<float> rows((text.size() - header.size()) / sizeof(float));
    std::memcpy(rows.data(), text.data() + header.size(), rows.size() * sizeof(float));
    std::vector<float> turned;
    for (int y = kSize.height - 1; y >= 0; --y) {
      const auto row = rows.begin() + y * kSize.width;
      turned.insert(turned.end(), row, row + kSize.width);
    }
    return turned;
  }
  // The distance at (dx, dy) from the only dark pixel.
  float distance(const std::string& metric, int dx, int dy) const {
    const Outcome outcome =
        run({"distance", in_, path("out.png"), "--metric", metric, "--float", path("out.pfm")});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const auto all = read_pfm("out.pfm", "Pf\n21 15\n-1.0\n");
    EXPECT_EQ(all.size(), size_t(kSize.width * kSize.height));
    return all.at(size_t((kY + dy) * kSize.width + kX + dx));
  }

  std::string in_;
};

TEST_F(DistanceCommand, MetricsAndTheirNumbers) {
  EXPECT_EQ(distance("chessboard", 7, -5), 7);
  EXPECT_EQ(distance("city", 7, -5), 12);
  EXPECT_EQ(distance("euclid3", 1, 1), 1.3693008422851562f);
  EXPECT_EQ(distance("euclid5", 0, 9), 9);
  EXPECT_EQ(distance("euclid5", 2, 1), 575904 * 0x1p-18f);
}

// Black where distances start, the palest colour farthest away; below lies the scale.
TEST_F(DistanceCommand, PictureAndScale) {
  const Outcome outcome = run({"distance", in_, path("out.png"), "--metric", "city"});
  EXPECT_NE(outcome.out.find("21x15, 0.3 % dark, city distances to 21, "), std::string::npos)
      << outcome.out;
  const Picture picture = read_picture(path("out.png"));
  ASSERT_GE(picture.size.width, 320);
  ASSERT_GT(picture.size.height, kSize.height);
  const auto at = [&](int x, int y) {
    const uint8_t* rgb = &picture.pixels[3 * size_t(y * picture.size.width + x)];
    return std::vector<int>(rgb, rgb + 3);
  };
  const std::vector<int> zero = {6, 6, 18}, most = {252, 255, 180};
  EXPECT_EQ(at(kX, kY), zero);
  EXPECT_EQ(at(20, 14), most);
  const int row = kSize.height + 10;
  int left = 0, right = picture.size.width - 1;
  while (left < right && at(left, row) != zero) ++left;
  while (left < right && at(right, row) != most) --right;
  EXPECT_GT(right - left, 250);
}

// At 5, 10, 15 and 20: the first pixels beyond. The line through the dark pixel crosses two of them.
TEST_F(DistanceCommand, Contours) {
  ASSERT_EQ(run({"distance", in_, path("plain.png"), "--metric", "city"}).code, 0);
  ASSERT_EQ(run({"distance", in_, path("lines.png"), "--metric", "city", "--contours"}).code, 0);
  const Picture plain = read_picture(path("plain.png")), lines = read_picture(path("lines.png"));
  ASSERT_EQ(plain.pixels.size(), lines.pixels.size());
  std::vector<int> drawn;
  for (int x = 0; x < kSize.width; ++x) {
    const ptrdiff_t pixel = 3 * (ptrdiff_t(kY) * plain.size.width + x);
    if (!std::equal(plain.pixels.begin() + pixel, plain.pixels.begin() + pixel + 3,
                    lines.pixels.begin() + pixel)) {
      drawn.push_back(x - kX);
    }
  }
  EXPECT_EQ(drawn, (std::vector<int>{-5, 5, 10}));
}

TEST_F(DistanceCommand, ThresholdAndInvert) {
  const auto share = [&](Strings options) {
    Strings arguments = {"distance", in_, path("out.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments).out;
  };
  EXPECT_NE(share({"--threshold", "101"}).find("0.3 % dark"), std::string::npos);
  EXPECT_NE(share({"--invert"}).find("99.7 % light, euclid5 distances to 1, "), std::string::npos);
  EXPECT_NE(share({"--threshold", "200", "--invert"}).find("99.7 % light"), std::string::npos);
  EXPECT_NE(share({"--threshold", "100"}).find("all distances are 4096\n"), std::string::npos);
  EXPECT_NE(share({"--threshold", "201"}).find("100.0 % dark, euclid5 distances to 1, "),
            std::string::npos);
}

TEST_F(DistanceCommand, Mistakes) {
  const std::string out = path("out.png");
  expect_refused({"distance", in_}, {"OUT"});
  expect_refused({"distance", in_, out, "--metric", "euclid"}, {"euclid"});
  expect_refused({"distance", in_, out, "--threshold", "0"}, {"--threshold"});
  expect_refused({"distance", in_, out, "--threshold", "256"}, {"--threshold"});
  expect_refused({"distance", in_, path("out.gif")}, {"out.gif"});
  expect_refused({"distance", in_, out, "--float", path("none/out.pfm")}, {"none/out.pfm"});
}

}  // namespace
}  // namespace tools::test

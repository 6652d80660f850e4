// The command pyramid: sheets, files, and pictures rebuilt from their differences.
#include <algorithm>

#include "pictures/pyramid_picture.h"
#include "run_program.h"

namespace tools::test {
namespace {

class Pyramid : public ProgramTest {
 protected:
  // A picture whose channels differ from each other and from pixel to pixel.
  Picture write_sample(RoiSize size) const {
    Picture picture(size, 3);
    uint32_t state = 1;
    for (uint8_t& value : picture.pixels) {
      value = uint8_t((state = state * 1664525u + 1013904223u) >> 24);
    }
    write_picture(path("in.png"), picture);
    return picture;
  }
  std::string out_of(const std::vector<std::string>& options) const {
    std::vector<std::string> all = {"pyramid", path("in.png"), path("out.png")};
    all.insert(all.end(), options.begin(), options.end());
    const Outcome outcome = run(all);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.out;
  }
};

TEST_F(Pyramid, LevelsAreSmoothedAndHalved) {
  Picture picture({4, 2}, 3);
  picture.pixels = {0, 9, 255, 0, 9, 255, 64, 9, 255, 128, 9, 255,
                    0, 9, 255, 0, 9, 255, 64, 9, 255, 128, 9, 255};
  write_picture(path("in.png"), picture);
  EXPECT_NE(out_of({"--levels", "2"}).find("4x2 and 2 levels down to 1x1,"), std::string::npos);
  const Picture sheet = read_picture(path("out.png"));
  ASSERT_EQ(size_text(sheet.size), "4x3");
  // (6 * 0 + 8 * 0 + 2 * 64) / 16 and (0 + 4 * (0 + 128) + 7 * 64) / 16, then, of two columns and
  // one row twice, their mean.
  const std::vector<uint8_t> row(sheet.pixels.begin() + 24, sheet.pixels.end());
  EXPECT_EQ(row, (std::vector<uint8_t>{8, 9, 255, 60, 9, 255, 34, 9, 255, 255, 255, 255}));
}

// Odd sizes: the last column or row counts once more.
TEST_F(Pyramid, OddSizesAreRepeatedFirst) {
  Picture odd = write_sample({5, 3}), even({6, 4}, 3);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 6; ++x)
      for (int c = 0; c < 3; ++c)
        even.pixels[size_t((y * 6 + x) * 3 + c)] =
            odd.pixels[size_t((std::min(y, 2) * 5 + std::min(x, 4)) * 3 + c)];
  EXPECT_EQ(made_even(odd).pixels, even.pixels);
  EXPECT_NE(out_of({"--levels", "3"}).find("5x3 and 3 levels down to 1x1,"), std::string::npos);
}

TEST_F(Pyramid, RebuildsEveryPicture) {
  for (const RoiSize size : {RoiSize{2, 1}, {1, 9}, {33, 20}, {70, 71}}) {
    write_sample(size);
    const std::string levels = std::to_string(most_levels(size));
    EXPECT_NE(out_of({"--levels", levels, "--laplacian"}).find("a largest deviation of 0,"),
              std::string::npos);
  }
}

// The differences leave the range of bytes in both directions, and are shown around mid-grey.
TEST_F(Pyramid, DifferencesHave16Bits) {
  Picture picture({8, 8}, 3);
  for (size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = i / 3 % 2 ? 255 : 0;
  write_picture(path("in.png"), picture);
  out_of({"--levels", "1", "--laplacian"});
  Stopwatch calls;
  const auto levels = levels_of(picture, 1, calls);
  const Differences differences = differences_of(levels[0], levels[1]);
  EXPECT_LT(*std::min_element(differences.begin(), differences.end()), -100);
  EXPECT_GT(*std::max_element(differences.begin(), differences.end()), 100);
  EXPECT_EQ(rebuilt_level(differences, levels[1], picture.size).pixels, picture.pixels);
  const Picture sheet = read_picture(path("out.png"));
  EXPECT_EQ(sheet.pixels[0], std::max(0, 128 + differences[0]));
}

TEST_F(Pyramid, WritesAFileForEachLevel) {
  const Picture picture = write_sample({10, 7});
  const std::string in = path("in.png"), out = path("level%d.png");
  ASSERT_EQ(run({"pyramid", in, out, "--levels", "2"}).code, 0);
  Stopwatch calls;
  const auto levels = levels_of(picture, 2, calls);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(read_picture(path("level" + std::to_string(i) + ".png")).pixels, levels[i].pixels);
  }
}

TEST_F(Pyramid, Mistakes) {
  write_sample({5, 3});
  const std::string in = path("in.png"), out = path("out.png");
  expect_refused({"pyramid", in, out, "--levels", "4"}, {"--levels 4", "5x3", "at most 3"});
  expect_refused({"pyramid", in, out, "--levels", "0"}, {"--levels"});
  expect_refused({"pyramid", in, out}, {"--levels"});
  expect_refused({"pyramid", in, path("out%d.gif"), "--levels", "1"}, {"out%d.gif", ".png"});
  expect_refused({"pyramid", path("none.png"), out, "--levels", "1"}, {"none.png"});
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace tools::test

// The command corners on pictures whose corners are plain to see.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "pictures/corner_points.h"
#include "run_program.h"

namespace tools::test {
namespace {

class Corners : public ProgramTest {
 protected:
  // Runs the command on in.png; gives the lines of the list.
  std::string list(std::vector<std::string> options) const {
    options.insert(options.begin(),
                   {"corners", path("in.png"), path("out.png"), "--csv", path("list.csv")});
    const Outcome outcome = run(options);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return read_text("list.csv");
  }
  // A bright rectangle, ends included, on black.
  void write_rectangle(RoiSize size, int left, int top, int right, int bottom) const {
    std::vector<uint8_t> grey;
    for (int y = 0; y < size.height; ++y)
      for (int x = 0; x < size.width; ++x)
        grey.push_back(x >= left && x <= right && y >= top && y <= bottom ? 255 : 0);
    write_grey("in.png", size, grey);
  }
  // The list's places, without strengths.
  static std::vector<std::pair<int, int>> places(const std::string& list) {
    std::vector<std::pair<int, int>> result;
    for (size_t at = list.find('\n') + 1; at < list.size(); at = list.find('\n', at) + 1) {
      int x = 0, y = 0;
      EXPECT_EQ(std::sscanf(list.c_str() + at, "%d,%d,", &x, &y), 2);
      result.emplace_back(x, y);
    }
    return result;
  }
};

using Places = std::vector<std::pair<int, int>>;

TEST_F(Corners, OfARectangleInOrder) {
  write_rectangle({60, 50}, 15, 10, 44, 39);
  const std::string all = list({"--top", "10"});
  EXPECT_EQ(all.find("x,y,strength\n"), 0u);
  EXPECT_EQ(places(all), (Places{{15, 10}, {44, 10}, {15, 39}, {44, 39}}));
  EXPECT_EQ(places(list({"--top", "2"})), (Places{{15, 10}, {44, 10}}));
  // 29 pixels apart along the sides, 41 along the diagonals.
  EXPECT_EQ(places(list({"--distance", "29"})).size(), 4u);
  EXPECT_EQ(places(list({"--distance", "29.5"})), (Places{{15, 10}, {44, 39}}));
  EXPECT_EQ(places(list({"--distance", "1e9"})), (Places{{15, 10}}));
}

TEST_F(Corners, AreTheSameOnEveryInstructionSet) {
  std::vector<uint8_t> noise;
  for (uint32_t i = 0, state = 1; i < 90 * 70; ++i)
    noise.push_back(uint8_t((state = state * 1664525u + 1013904223u) >> 24));
  write_grey("in.png", {90, 70}, noise);
  const std::string best = list({"--aperture", "5", "--block", "7", "--distance", "3"});
  EXPECT_GT(places(best).size(), 40u);
  for (const char* level : {"sse2", "avx2", "avx512", "neon", "plain"}) {
    if (run({"--isa", level, "info"}).code != 0) continue;  // not on this machine
    EXPECT_EQ(list({"--isa", level, "--aperture", "5", "--block", "7", "--distance", "3"}), best)
        << level;
  }
}

TEST_F(Corners, RingsStandAroundThem) {
  write_rectangle({40, 40}, 20, 20, 39, 39);
  ASSERT_EQ(places(list({})), (Places{{20, 20}}));
  const Picture before = read_picture(path("in.png")), after = read_picture(path("out.png"));
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 40; ++x) {
      const size_t at = 3 * (40u * unsigned(y) + unsigned(x));
      const bool same = std::equal(&before.pixels[at], &before.pixels[at] + 3, &after.pixels[at]);
      const double distance = std::hypot(x - 20, y - 20);
      const bool ringed = distance > 2.6 && distance < 4.4;
      const bool left_alone = distance < 2 || distance > 5;
      EXPECT_FALSE(ringed && same) << x << " " << y;
      EXPECT_FALSE(left_alone && !same) << x << " " << y;
    }
}

TEST_F(Corners, FlatPicturesHaveNone) {
  write_rectangle({9, 7}, 0, 0, 8, 6);
  const Outcome outcome = run({"corners", path("in.png"), path("out.png")});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find(" 0 corners ("), std::string::npos) << outcome.out;
}

TEST_F(Corners, Mistakes) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  expect_refused({"corners", in, out, "--aperture", "4"}, {"--aperture"});
  expect_refused({"corners", in, out, "--block", "9"}, {"--block"});
  expect_refused({"corners", in, out, "--top", "0"}, {"--top"});
  expect_refused({"corners", in, out, "--distance", "-1"}, {"--distance"});
  expect_refused({"corners", in, path("out.gif")}, {"out.gif", ".png"});
  expect_refused({"corners", path("none.png"), out}, {"none.png", "No such file"});
  EXPECT_FALSE(std::filesystem::exists(out));
  expect_refused({"corners", in, out, "--csv", path("no/list.csv")}, {"no/list.csv"});
}

Plane<float> plane_of(RoiSize size, const std::vector<float>& values) {
  Plane<float> plane(size);
  plane.values = values;
  return plane;
}

// A bent plateau counts once, by its first pixel; one beside a higher pixel not at all.
TEST(StrongestCorners, OfPlateaus) {
  const auto corners = strongest_corners(plane_of({7, 5}, {0, 0, 5, 0, 0, 0, 0,  //
                                                           5, 0, 5, 0, 3, 3, 0,  //
                                                           5, 0, 5, 0, 0, 3, 0,  //
                                                           0, 5, 0, 0, 0, 0, 4,  //
                                                           0, 0, 0, 0, 0, 0, 0}),
                                         9, 0);
  ASSERT_EQ(corners.size(), 2u);
  EXPECT_EQ((std::pair{corners[0].x, corners[0].y}), (std::pair{2, 0}));
  EXPECT_EQ((std::pair{corners[1].x, corners[1].y}), (std::pair{6, 3}));
}

TEST(StrongestCorners, StrongestFirstThenUpperThenLeft) {
  const auto corners =
      strongest_corners(plane_of({5, 3}, {1, 0, 2, 0, 2, 0, 0, 0, 0, 0, 2, 0, 7, 0, -1}), 4, 1);
  ASSERT_EQ(corners.size(), 4u);
  const Places expected = {{2, 2}, {2, 0}, {4, 0}, {0, 2}};
  for (size_t i = 0; i < 4; ++i)
    EXPECT_EQ((std::pair{int(corners[i].x), int(corners[i].y)}), expected[i]) << i;
}

}  // namespace
}  // namespace tools::test

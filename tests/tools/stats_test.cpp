// The command stats: numbers that a reader can check by hand.
#include "run_program.h"

namespace tools::test {
namespace {

class Stats : public ProgramTest {
 protected:
  std::string write_colours(const std::string& name) const {
    Picture picture({2, 2}, 3);
    picture.pixels = {10, 0, 255, 20, 0, 255, 30, 4, 255, 60, 0, 255};
    write_picture(path(name), picture);
    return path(name);
  }
  // The rest of the line that begins with `name`.
  static std::string value_of(const Outcome& outcome, const std::string& name) {
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const std::string text = "\n" + outcome.out;
    const size_t at = text.find("\n" + name + " ");
    if (at == std::string::npos) return "no " + name;
    const size_t begin = text.find_first_not_of(' ', at + 1 + name.size());
    return text.substr(begin, text.find('\n', begin) - begin);
  }
};

TEST_F(Stats, MeanAndDeviationOfGreyLevels) {
  const Outcome outcome = run({"stats", write_grey("in.png", {2, 2}, {1, 3, 5, 7})});
  EXPECT_EQ(value_of(outcome, "picture"), path("in.png") + ", 2x2, grey levels");
  EXPECT_EQ(value_of(outcome, "pixels"), "4");
  EXPECT_EQ(value_of(outcome, "mean"), "4.0000");
  EXPECT_EQ(value_of(outcome, "standard deviation"), "2.2361");
}

TEST_F(Stats, OneChannel) {
  const std::string in = write_colours("in.png");
  const char* means[] = {"30.0000", "1.0000", "255.0000"};
  const char* deviations[] = {"18.7083", "1.7321", "0.0000"};
  for (const int channel : {1, 2, 3}) {
    const Outcome outcome = run({"stats", in, "--channel", std::to_string(channel)});
    EXPECT_EQ(value_of(outcome, "mean"), means[channel - 1]);
    EXPECT_EQ(value_of(outcome, "standard deviation"), deviations[channel - 1]);
  }
}

TEST_F(Stats, AMaskSelects) {
  const std::string mask = write_grey("mask.png", {2, 2}, {0, 1, 0, 255});
  const std::string grey = write_grey("grey.png", {2, 2}, {1, 3, 5, 7});
  const Outcome outcome = run({"stats", grey, "--mask", mask});
  EXPECT_EQ(value_of(outcome, "pixels"), "2");
  EXPECT_EQ(value_of(outcome, "mean"), "5.0000");
  EXPECT_EQ(value_of(outcome, "standard deviation"), "2.0000");
  const Outcome red = run({"stats", write_colours("colours.png"), "--mask", mask, "--channel=1"});
  EXPECT_EQ(value_of(red, "mean"), "40.0000");
  EXPECT_EQ(value_of(red, "standard deviation"), "20.0000");
}

TEST_F(Stats, LargeBrightPicturesDoNotWrap) {
  std::vector<uint8_t> bright(4200 * 4100, 255);
  bright[4200 * 4100 - 1] = 0;
  const Outcome outcome = run({"stats", write_grey("in.png", {4200, 4100}, bright)});
  EXPECT_EQ(value_of(outcome, "pixels"), "17220000");
  EXPECT_EQ(value_of(outcome, "mean"), "255.0000");
  EXPECT_EQ(value_of(outcome, "standard deviation"), "0.0615");
  EXPECT_EQ(value_of(outcome, "norm L1"), "4391099745");
  EXPECT_EQ(value_of(outcome, "minimum"), "0 at 4199,4099");
}

TEST_F(Stats, ExtremaAreTheFirstSelected) {
  const std::string in = write_grey("in.png", {3, 2}, {9, 5, 200, 200, 5, 0});
  const Outcome all = run({"stats", in});
  EXPECT_EQ(value_of(all, "minimum"), "0 at 2,1");
  EXPECT_EQ(value_of(all, "maximum"), "200 at 2,0");
  const std::string mask = write_grey("mask.png", {3, 2}, {1, 1, 0, 1, 1, 0});
  const Outcome some = run({"stats", in, "--mask", mask});
  EXPECT_EQ(value_of(some, "minimum"), "5 at 1,0");
  EXPECT_EQ(value_of(some, "maximum"), "200 at 0,1");
  const Outcome green = run({"stats", write_colours("colours.png"), "--channel", "2"});
  EXPECT_EQ(value_of(green, "minimum"), "0 at 0,0");
  EXPECT_EQ(value_of(green, "maximum"), "4 at 0,1");
}

TEST_F(Stats, NormsOfOneAndOfTwo) {
  const std::string a = write_grey("a.png", {2, 2}, {3, 4, 0, 12});
  const std::string b = write_grey("b.png", {2, 2}, {0, 8, 0, 12});
  const Outcome outcome = run({"stats", a, b});
  const std::pair<const char*, const char*> values[] = {
      {"norm Inf", "12"},           {"norm L1", "19"},           {"norm L2", "13.0000"},
      {"difference Inf", "4"},      {"difference L1", "7"},      {"difference L2", "5.0000"},
      {"relative Inf", "0.333333"}, {"relative L1", "0.350000"}, {"relative L2", "0.346688"}};
  for (const auto& [name, value] : values) EXPECT_EQ(value_of(outcome, name), value) << name;
  EXPECT_EQ(run({"stats", a}).out.find("difference"), std::string::npos);

  const std::string black = write_grey("black.png", {2, 2}, {0, 0, 0, 0});
  EXPECT_EQ(value_of(run({"stats", a, black}), "relative L1"), "inf");
  EXPECT_EQ(value_of(run({"stats", black, black}), "relative L2"), "0.000000");

  const Outcome red = run({"stats", write_colours("c.png"), write_colours("d.png"), "--channel=1"});
  EXPECT_EQ(value_of(red, "norm L1"), "120");
  EXPECT_EQ(value_of(red, "difference Inf"), "0");
}

TEST_F(Stats, HistogramAsTableAndPicture) {
  const std::string in = write_grey("in.png", {4, 2}, {0, 15, 16, 255, 255, 240, 239, 128});
  const std::string mask = write_grey("mask.png", {4, 2}, {1, 1, 1, 1, 1, 1, 1, 0});
  const Outcome outcome = run({"stats", in, "--mask", mask, "--histogram", path("h.png")});
  EXPECT_EQ(value_of(outcome, "levels 0 to 15").substr(0, 2), "2 ");
  EXPECT_EQ(value_of(outcome, "levels 16 to 31").substr(0, 2), "1 ");
  EXPECT_EQ(value_of(outcome, "levels 128 to 143").substr(0, 2), "0 ");
  EXPECT_EQ(value_of(outcome, "levels 224 to 239").substr(0, 2), "1 ");
  EXPECT_EQ(value_of(outcome, "levels 240 to 255"), "3           " + std::string(40, '#'));
  EXPECT_EQ(value_of(run({"stats", in, "--bins", "1"}), "levels 0 to 255").substr(0, 2), "8 ");
  const Outcome fine = run({"stats", in, "--bins", "256"});
  EXPECT_EQ(value_of(fine, "levels 255 to 255").substr(0, 2), "2 ");
  EXPECT_EQ(value_of(fine, "levels 254 to 254").substr(0, 2), "0 ");

  // The bar of 255, at the right, is the highest; beside it a small one of 240.
  const Picture picture = read_picture(path("h.png"));
  const auto dark = [&](int x, int y) {
    return picture.pixels[3 * size_t(y * picture.size.width + x)] < 100;
  };
  int columns = 0, highest = 0;
  for (int x = 100; x < picture.size.width; ++x) {
    int height = 0;
    for (int y = 0; y < 320; ++y) height += dark(x, y);
    columns += height > 100;
    highest = std::max(highest, height);
  }
  EXPECT_GE(highest, 300);
  EXPECT_GE(columns, 3 * 2);
}

TEST_F(Stats, Mistakes) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4});
  const std::string wide = write_grey("wide.png", {3, 2}, {1, 2, 3, 4, 5, 6});
  const std::string black = write_grey("black.png", {2, 2}, {0, 0, 0, 0});
  expect_refused({"stats"}, {"IN"});
  expect_refused({"stats", path("none.png")}, {"none.png", "No such file"});
  expect_refused({"stats", in, "--channel", "4"}, {"--channel"});
  expect_refused({"stats", in, "--mask", wide}, {wide + ": is 3x2, but " + in + " is 2x2"});
  expect_refused({"stats", in, "--mask", black}, {black, "selects no pixel"});
  expect_refused({"stats", in, wide}, {wide + ": is 3x2, but " + in + " is 2x2"});
  expect_refused({"stats", in, "--bins", "0"}, {"--bins"});
  expect_refused({"stats", in, "--bins", "257"}, {"--bins"});
  expect_refused({"stats", in, "--histogram", path("h.txt")}, {"h.txt", ".png"});
}

}  // namespace
}  // namespace tools::test

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
}

}  // namespace
}  // namespace tools::test

// The commands fill and regions.
#include "run_program.h"

namespace tools::test {
namespace {

class RegionCommands : public ProgramTest {
 protected:
  // Two diagonal neighbours of 9, a ramp, and 200 elsewhere.
  std::string picture() const {
    return write_grey("in.png", {5, 3},
                      {9, 200, 200, 200, 200,  //
                       200, 9, 200, 200, 200,  //
                       200, 200, 10, 12, 14});
  }
};

TEST_F(RegionCommands, FillPaintsEqualPixels) {
  ASSERT_EQ(run({"fill", picture(), path("out.png"), "0,0", "--value", "50"}).code, 0);
  EXPECT_EQ(read_grey("out.png"), (std::vector<uint8_t>{50, 200, 200, 200, 200, 200, 9, 200, 200,
                                                        200, 200, 200, 10, 12, 14}));
  const Outcome outcome = run({"fill", picture(), path("out.png"), "0,0", "--connect", "8",
                               "--region", path("region.png")});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("2 pixels painted with 255, 2x2 from 0,0"), std::string::npos)
      << outcome.out;
  EXPECT_EQ(read_grey("region.png"),
            (std::vector<uint8_t>{255, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(RegionCommands, FillFollowsAGradient) {
  const Outcome outcome = run({"fill", picture(), path("out.png"), "0,0", "--connect", "8",
                               "--upper", "2", "--value", "10"});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(read_grey("out.png"), (std::vector<uint8_t>{10, 200, 200, 200, 200, 200, 10, 200, 200,
                                                        200, 200, 200, 10, 10, 10}));
  EXPECT_NE(outcome.out.find(" 5 pixels "), std::string::npos) << outcome.out;
}

TEST_F(RegionCommands, FillSaysWhatItCannotDo) {
  const std::string in = picture();
  EXPECT_NE(run({"fill", in, path("out.png"), "1,0", "--value", "200"}).out.find("already"),
            std::string::npos);
  expect_refused({"fill", in, path("out.png"), "5,0"}, {"5,0", "outside", "5x3"});
  expect_refused({"fill", in, path("out.png"), "here"}, {"here", "x,y"});
  expect_refused({"fill", in, path("out.png"), "0,0", "--lower", "200", "--upper", "56"}, {"255"});
  expect_refused({"fill", in, path("out.png"), "0,0", "--connect", "6"}, {"--connect"});
}

TEST_F(RegionCommands, RegionsAreCountedAndListed) {
  const Outcome outcome =
      run({"regions", picture(), path("out.png"), "--csv", path("regions.csv")});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("7 regions, 7 of them shown"), std::string::npos) << outcome.out;
  EXPECT_EQ(read_text("regions.csv"),
            "level,area,x,y,width,height,first_x,first_y\n"
            "9,1,0,0,1,1,0,0\n200,7,1,0,4,2,1,0\n200,3,0,1,2,2,0,1\n9,1,1,1,1,1,1,1\n"
            "10,1,2,2,1,1,2,2\n12,1,3,2,1,1,3,2\n14,1,4,2,1,1,4,2\n");
  const Outcome large = run({"regions", picture(), path("out.png"), "--connect", "8", "--smallest",
                             "2", "--csv", path("regions.csv")});
  ASSERT_EQ(large.code, 0) << large.err;
  EXPECT_EQ(read_text("regions.csv"),
            "level,area,x,y,width,height,first_x,first_y\n"
            "9,2,0,0,2,2,0,0\n200,10,0,0,5,3,1,0\n");
  const Picture colours = read_picture(path("out.png"));
  const auto pixel = [&](size_t i) {
    return std::vector<uint8_t>(&colours.pixels[3 * i], &colours.pixels[3 * i] + 3);
  };
  EXPECT_EQ(pixel(0), pixel(6));                          // one region
  EXPECT_NE(pixel(0), pixel(1));                          // two
  EXPECT_EQ(pixel(14), (std::vector<uint8_t>{0, 0, 0}));  // too small
}

}  // namespace
}  // namespace tools::test

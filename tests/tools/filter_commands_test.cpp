// The commands blur, sobel and laplace on pictures small enough to filter by hand.
#include <png.h>

#include <algorithm>
#include <cstring>
#include <nuqi/nuqi.hpp>

#include "pictures/colours.h"
#include "pictures/file.h"
#include "run_program.h"

namespace tools::test {
namespace {

// The values of a grey PNG file of 16 bits.
std::vector<int> read_png16(const std::string& file) {
  std::vector<int> values;
  File stream(fmemopen(const_cast<char*>(file.data()), file.size(), "rb"));
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, stream.get());
  png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  EXPECT_EQ(png_get_bit_depth(png, info), 16);
  EXPECT_EQ(png_get_color_type(png, info), PNG_COLOR_TYPE_GRAY);
  const png_bytepp rows = png_get_rows(png, info);
  for (png_uint_32 y = 0; y < png_get_image_height(png, info); ++y)
    for (png_uint_32 x = 0; x < png_get_image_width(png, info); ++x)
      values.push_back(rows[y][2 * x] << 8 | rows[y][2 * x + 1]);
  png_destroy_read_struct(&png, &info, nullptr);
  return values;
}

class Filters : public ProgramTest {
 protected:
  // Runs a command that writes out.png and compares that with the values in colours.
  void expect_values(std::vector<std::string> arguments, RoiSize size,
                     const std::vector<int16_t>& values) const {
    arguments.insert(arguments.begin() + 1, {path("in.png"), path("out.png"), "--range", "100"});
    const Outcome outcome = run(arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    Plane<int16_t> expected(size);
    expected.values = values;
    EXPECT_EQ(read_picture(path("out.png")).pixels, signed_colours(expected, 100).pixels);
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    const std::string extremes = std::to_string(*low) + " to " + std::to_string(*high);
    EXPECT_NE(outcome.out.find("values " + extremes + ","), std::string::npos) << outcome.out;
  }
};

TEST_F(Filters, BlurTakesTheMeanInEachChannel) {
  Picture picture({3, 1}, 3);
  picture.pixels = {0, 0, 255, 90, 2, 255, 255, 0, 255};
  write_picture(path("in.png"), picture);
  const Outcome outcome = run({"blur", path("in.png"), path("out.png")});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("3x1, means of 3x3 pixels"), std::string::npos) << outcome.out;
  EXPECT_EQ(read_picture(path("out.png")).pixels,
            (std::vector<uint8_t>{30, 1, 255, 115, 1, 255, 200, 1, 255}));
}

TEST_F(Filters, BlurReachesAsFarAsItsSize) {
  std::vector<uint8_t> spot(15 * 15, 0);
  spot[7 * 15 + 7] = 245;
  write_grey("in.png", {15, 15}, spot);
  for (const int size : {3, 5, 7}) {
    ASSERT_EQ(run({"blur", path("in.png"), path("out.png"), "--size", std::to_string(size)}).code,
              0);
    const std::vector<uint8_t> out = read_grey("out.png");
    const int level = (245 + size * size / 2) / (size * size);
    EXPECT_EQ(std::count(out.begin(), out.end(), level), size * size) << size;
    EXPECT_EQ(std::count(out.begin(), out.end(), 0), 15 * 15 - size * size) << size;
  }
}

TEST_F(Filters, SobelOfAStep) {
  write_grey("in.png", {5, 1}, {10, 10, 20, 20, 20});
  expect_values({"sobel"}, {5, 1}, {0, 40, 40, 0, 0});
  expect_values({"sobel", "--size", "5"}, {5, 1}, {160, 480, 480, 160, 0});
  expect_values({"sobel", "--xorder", "2"}, {5, 1}, {0, 40, -40, 0, 0});
  expect_values({"sobel", "--xorder", "0", "--yorder", "1"}, {5, 1}, {0, 0, 0, 0, 0});
  write_grey("in.png", {1, 5}, {10, 10, 20, 20, 20});
  expect_values({"sobel", "--xorder", "0", "--yorder", "1"}, {1, 5}, {0, 40, 40, 0, 0});
}

TEST_F(Filters, NumbersAreWrittenAsTheyAre) {
  const std::string in = write_grey("in.png", {3, 2}, {10, 10, 20, 10, 10, 20}),
                    out = path("out.png");
  ASSERT_EQ(run({"sobel", in, out, "--numbers", path("n.png"), "--xorder", "2"}).code, 0);
  ASSERT_EQ(run({"sobel", in, out, "--numbers", path("n.pfm"), "--xorder", "2"}).code, 0);
  EXPECT_EQ(read_png16(read_text("n.png")),
            (std::vector<int>{32768, 32768 + 40, 32768 - 40, 32768, 32768 + 40, 32768 - 40}));
  const std::vector<float> row = {0, 40, -40, 0, 40, -40};
  const std::string pfm = read_text("n.pfm"), header = "Pf\n3 2\n-1.0\n";
  EXPECT_EQ(pfm, header + std::string(reinterpret_cast<const char*>(row.data()), 24));
  write_grey("in.png", {1, 3}, {0, 0, 5});  // rows from below to above
  ASSERT_EQ(run({"laplace", in, out, "--numbers", path("n.pfm")}).code, 0);
  ASSERT_EQ(run({"laplace", in, out, "--numbers", path("n.png")}).code, 0);
  float rows[3] = {};
  const std::string tall = read_text("n.pfm");
  ASSERT_EQ(tall.size(), 12 + sizeof rows);
  std::memcpy(rows, tall.data() + 12, sizeof rows);
  const std::vector<int> png = read_png16(read_text("n.png"));
  EXPECT_LT(rows[0], 0);
  for (size_t y = 0; y < 3; ++y) EXPECT_EQ(rows[2 - y], float(png[y] - 32768));
  expect_refused({"sobel", in, out, "--numbers", path("n.jpg")}, {"n.jpg", ".png or .pfm"});
  expect_refused({"sobel", in, out, "--numbers", out}, {"two outputs"});
}

TEST_F(Filters, LaplaceOfASpot) {
  std::vector<uint8_t> spot(25, 50);
  spot[12] = 60;
  write_grey("in.png", {5, 5}, spot);
  std::vector<int16_t> values(25, 0);
  values[12] = -80;
  for (const size_t corner : {6, 8, 16, 18}) values[corner] = 20;
  expect_values({"laplace"}, {5, 5}, values);
  write_grey("in.png", {2, 1}, {0, 1});
  expect_values({"laplace", "--size", "7"}, {2, 1}, {2 * 64, -2 * 64});
}

// Tall enough for several strips; the heights end a strip early, in time and a row late.
TEST_F(Filters, StripsGiveTheWholePicturesResult) {
  for (const int32_t height : {2, 191, 192, 193}) {
    const RoiSize size{37, height};
    Picture picture(size, 3);
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
      picture.pixels[i] = uint8_t((i * 2654435761u >> 13) ^ i / 7);
    }
    write_picture(path("in.png"), picture);
    const Plane<uint8_t> grey = grey_of(picture);
    for (const int32_t aperture : {3, 5, 7}) {
      SCOPED_TRACE(size_text(size) + ", " + std::to_string(aperture));
      const std::string side = std::to_string(aperture);
      Plane<int16_t> values(size);
      nuqi::sobel(grey, values, 1, 1, aperture);
      expect_values({"sobel", "--size", side, "--xorder", "1", "--yorder", "1"}, size,
                    values.values);
      nuqi::laplace(grey, values, aperture);
      expect_values({"laplace", "--size", side}, size, values.values);

      ASSERT_EQ(run({"blur", path("in.png"), path("out.png"), "--size", side}).code, 0);
      const Picture blurred = read_picture(path("out.png"));
      const int area = aperture * aperture;
      for (size_t c = 0; c < 3; ++c) {
        Plane<uint8_t> channel(size);
        for (size_t i = 0; i < channel.values.size(); ++i) {
          channel.values[i] = picture.pixels[3 * i + c];
        }
        nuqi::box_sum(channel, values, aperture);
        for (size_t i = 0; i < values.values.size(); ++i) {
          ASSERT_EQ(int(blurred.pixels[3 * i + c]), (values.values[i] + area / 2) / area);
        }
      }
    }
  }
}

TEST_F(Filters, WithoutARangeFewValuesArePalest) {
  std::vector<uint8_t> ramp(200);  // one steep place among gentle ones
  for (size_t i = 0; i < ramp.size(); ++i) ramp[i] = uint8_t(i < 199 ? i / 2 : 255);
  write_grey("in.png", {200, 1}, ramp);
  const Outcome outcome = run({"sobel", path("in.png"), path("out.png")});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("shown to 4,"), std::string::npos) << outcome.out;
}

TEST_F(Filters, Mistakes) {
  const std::string in = write_grey("in.png", {2, 2}, {1, 2, 3, 4}), out = path("out.png");
  for (const char* command : {"blur", "sobel", "laplace"}) {
    expect_refused({command, in, out, "--size", "4"}, {"--size", "4"});
    expect_refused({command, path("none.png"), out}, {"none.png", "No such file"});
    expect_refused({command, in, path("out.gif")}, {"out.gif", ".png"});
    expect_refused({command, in}, {"OUT"});
  }
  expect_refused({"sobel", in, out, "--xorder", "3"}, {"--xorder", "0 to 2"});
  expect_refused({"sobel", in, out, "--size", "7", "--yorder", "7"}, {"--yorder", "0 to 6"});
  expect_refused({"sobel", in, out, "--yorder", "-1"}, {"--yorder"});
  expect_refused({"sobel", in, out, "--range", "0"}, {"--range"});
  expect_refused({"laplace", in, out, "--range", "nan"}, {"--range"});
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace tools::test

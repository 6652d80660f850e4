// Every kind of PNG and JPEG file reads as the picture it shows; broken files are refused.
#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>

#include "failure.h"
#include "pictures/picture.h"
#include "sample_pictures.h"

namespace tools::test {
namespace {

constexpr PngKind kPngKinds[] = {
    {"grey", PNG_COLOR_TYPE_GRAY, 8},
    {"grey, 16 bits", PNG_COLOR_TYPE_GRAY, 16},
    {"grey and alpha", PNG_COLOR_TYPE_GRAY_ALPHA, 8},
    {"grey and alpha, 16 bits", PNG_COLOR_TYPE_GRAY_ALPHA, 16},
    {"colour", PNG_COLOR_TYPE_RGB, 8},
    {"colour, 16 bits", PNG_COLOR_TYPE_RGB, 16},
    {"colour, interlaced", PNG_COLOR_TYPE_RGB, 8, true},
    {"colour and alpha", PNG_COLOR_TYPE_RGB_ALPHA, 8},
    {"colour and alpha, 16 bits, interlaced", PNG_COLOR_TYPE_RGB_ALPHA, 16, true},
    {"grey, 16 bits, interlaced", PNG_COLOR_TYPE_GRAY, 16, true},
    {"palette", PNG_COLOR_TYPE_PALETTE, 8},
    {"palette with alpha", PNG_COLOR_TYPE_PALETTE, 8, false, true},
};

Rgba scattered(int x, int y) {
  return {(37 * x + 11 * y) & 255, (91 * x + 53 * y + 7) & 255, (13 * x + 201 * y) & 255,
          (x + y) % 3 == 0 ? 255 : (60 * x + 17 * y) & 255};
}

TEST(Pictures, EveryKindOfPngShowsItsPixels) {
  const RoiSize size{13, 11};
  for (const PngKind& kind : kPngKinds) {
    SCOPED_TRACE(kind.name);
    const Picture picture = picture_of_bytes(png_of(kind, size, scattered), "sample");
    ASSERT_EQ(picture.size.width, size.width);
    ASSERT_EQ(picture.size.height, size.height);
    const bool grey = (kind.colour_type & PNG_COLOR_MASK_COLOR) == 0;
    const bool alpha = (kind.colour_type & PNG_COLOR_MASK_ALPHA) != 0 || kind.alpha_table;
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
      const Rgba pixel = scattered(int(i / 3) % size.width, int(i / 3) / size.width);
      const int opacity = alpha ? pixel[3] : 255;
      const int value = pixel[grey ? 0 : i % 3];
      const int expected = (value * opacity + 255 * (255 - opacity) + 127) / 255;
      ASSERT_EQ(int(picture.pixels[i]), expected) << "value " << i;
    }
  }
}

// Samples of 16 bits.
PictureOf<float> wide_picture_of(const Bytes& file) {
  File stream(fmemopen(const_cast<uint8_t*>(file.data()), file.size(), "rb"));
  return whole_picture<float>(*open_rows(std::move(stream), "wide", Form::stored, Depth::stored),
                              "wide");
}

TEST(Pictures, RowsHaveTheChannelsThatAreAskedFor) {
  const RoiSize size{5, 3};
  for (const PngKind& kind : kPngKinds) {
    SCOPED_TRACE(kind.name);
    const bool grey = (kind.colour_type & PNG_COLOR_MASK_COLOR) == 0;
    const bool alpha = (kind.colour_type & PNG_COLOR_MASK_ALPHA) != 0 || kind.alpha_table;
    const Bytes file = png_of(kind, size, scattered);
    const Picture colour = picture_of_bytes(file, "sample");
    const Picture stored = picture_of_bytes(file, "sample", Form::stored);
    const Picture opaque = picture_of_bytes(file, "sample", Form::opaque);
    ASSERT_EQ(stored.channels, alpha ? 4 : grey ? 1 : 3);
    ASSERT_EQ(opaque.channels, grey && !alpha ? 1 : 3);
    EXPECT_EQ(picture_of_bytes(file, "sample", Form::grey).pixels, grey_of(colour).values);
    const PictureOf<float> wide = wide_picture_of(file);
    ASSERT_EQ(wide.pixels.size(), stored.pixels.size());
    for (size_t i = 0; i < wide.pixels.size(); ++i) {
      EXPECT_EQ(wide.pixels[i], 257 * stored.pixels[i]);
    }
    for (size_t i = 0; i < colour.pixels.size(); ++i) {
      const size_t pixel = i / 3, c = i % 3;
      EXPECT_EQ(opaque.pixels[opaque.channels == 1 ? pixel : i], colour.pixels[i]);
      const Rgba expected = scattered(int(pixel) % size.width, int(pixel) / size.width);
      const size_t at = pixel * size_t(stored.channels) + (stored.channels == 1 ? 0 : c);
      EXPECT_EQ(int(stored.pixels[at]), expected[grey ? 0 : c]);
      if (alpha) {
        EXPECT_EQ(int(stored.pixels[4 * pixel + 3]), expected[3]);
      }
    }
  }
}

TEST(Pictures, EveryKindOfJpegShowsItsPixels) {
  // Smooth, so that compression changes little; three quarters opaque for the ink of CMYK.
  const auto smooth = [](int x, int y) { return Rgba{40 + 2 * x, 200 - 2 * y, 90 + x + y, 192}; };
  const RoiSize size{40, 30};
  for (const JpegKind kind : {JpegKind::grey, JpegKind::colour, JpegKind::progressive,
                              JpegKind::cmyk, JpegKind::adobe_cmyk}) {
    SCOPED_TRACE(int(kind));
    const Picture picture = picture_of_bytes(jpeg_of(kind, size, smooth), "sample");
    ASSERT_EQ(picture.pixels.size(), size_t{3 * 40 * 30});
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
      const Rgba pixel = smooth(int(i / 3) % size.width, int(i / 3) / size.width);
      int expected = pixel[kind == JpegKind::grey ? 0 : i % 3];
      if (kind == JpegKind::cmyk || kind == JpegKind::adobe_cmyk) expected = expected * 192 / 255;
      ASSERT_NEAR(int(picture.pixels[i]), expected, 8) << "value " << i;
    }
  }
}

TEST(Pictures, CamerasOrientationIsApplied) {
  // The sensor's 3x2 picture is numbered row by row; a viewer shows it as listed.
  const std::vector<uint8_t> shown[] = {{1, 2, 3, 4, 5, 6}, {3, 2, 1, 6, 5, 4}, {6, 5, 4, 3, 2, 1},
                                        {4, 5, 6, 1, 2, 3}, {1, 4, 2, 5, 3, 6}, {4, 1, 5, 2, 6, 3},
                                        {6, 3, 5, 2, 4, 1}, {3, 6, 2, 5, 1, 4}};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    Picture sensor({3, 2}, 1);
    sensor.pixels = shown[0];
    const Picture upright = turned_upright(sensor, orientation);
    EXPECT_EQ(upright.size.width, orientation < 5 ? 3 : 2) << orientation;
    EXPECT_EQ(upright.pixels, shown[orientation - 1]) << orientation;
  }
  const auto dark_left = [](int x, int) { return x < 16 ? Rgba{9, 9, 9} : Rgba{230, 230, 230}; };
  for (const bool big_endian : {false, true}) {  // 6: the sensor's left side is up
    const Picture picture =
        picture_of_bytes(jpeg_of(JpegKind::colour, {32, 16}, dark_left, 6, big_endian), "sample");
    ASSERT_EQ(picture.size.height, 32);
    EXPECT_LT(picture.pixels.front(), 60);
    EXPECT_GT(picture.pixels.back(), 200);
  }
}

TEST(Pictures, PngsOrientationIsApplied) {
  const auto dark_left = [](int x, int) {
    return x < 2 ? Rgba{9, 9, 9, 255} : Rgba{230, 230, 230, 255};
  };
  for (const int depth : {8, 16}) {
    for (const bool interlaced : {false, true}) {
      PngKind kind{"", PNG_COLOR_TYPE_GRAY, depth, interlaced};
      kind.orientation = 6;
      const Bytes file = png_of(kind, {4, 3}, dark_left);
      const Picture picture = picture_of_bytes(file, "sample", Form::stored);
      EXPECT_EQ(size_text(picture.size), "3x4");
      EXPECT_EQ(picture.pixels,
                (std::vector<uint8_t>{9, 9, 9, 9, 9, 9, 230, 230, 230, 230, 230, 230}));
      EXPECT_EQ(wide_picture_of(file).pixels[6], 257.0f * 230);
    }
  }
}

TEST(Pictures, EveryKindOfPnmShowsItsPixels) {
  const auto pixels = [](const std::string& text, const char* name = "sample") {
    return picture_of_bytes(Bytes(text.begin(), text.end()), name, Form::stored).pixels;
  };
  using Values = std::vector<uint8_t>;
  EXPECT_EQ(pixels("P2 # a comment\n3 1\n# another\n255\n0 7\n255"), (Values{0, 7, 255}));
  EXPECT_EQ(pixels("P3\n1 2 15 0 1 15 3 0 0"), (Values{0, 17, 255, 51, 0, 0}));
  // Binary pixels may look like comments and white space.
  EXPECT_EQ(pixels("P5\n2 2\n255\n#A \n"), (Values{'#', 'A', ' ', '\n'}));
  EXPECT_EQ(pixels("P6 1 1 127 \x7F@\x01"), (Values{255, 129, 2}));
  testing::internal::CaptureStderr();
  EXPECT_EQ(pixels("P5 3 1 65535 \x01\x01\x01\x82\xFF\xFF", "wide"), (Values{1, 2, 255}));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("wide: its 16 bits are rounded to 8"),
            std::string::npos);
  // In bitmaps 1 is black; rows of bits end with a byte.
  EXPECT_EQ(pixels("P1\n# bits\n3 2\n011\n1 0 0"), (Values{255, 0, 0, 0, 255, 255}));
  EXPECT_EQ(pixels("P4 9 2 \x80\x80\x7F\x7F"),
            (Values{0, 255, 255, 255, 255, 255, 255, 255, 0, 255, 0, 0, 0, 0, 0, 0, 0, 255}));
  const auto pam = [&](const std::string& depth_and_most, const std::string& samples) {
    return pixels("P7\nWIDTH 1\n# any order\nHEIGHT 1\n" + depth_and_most + "\nENDHDR\n" + samples);
  };
  EXPECT_EQ(pam("DEPTH 1\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE", "\x01"), (Values{255}));
  EXPECT_EQ(pam("MAXVAL 255\nDEPTH 2\nTUPLTYPE GRAYSCALE_ALPHA", "\x07@"), (Values{7, 7, 7, 64}));
  EXPECT_EQ(pam("DEPTH 4\nMAXVAL 255", "\x01\x02\x03\x04"), (Values{1, 2, 3, 4}));
  for (const char* broken :
       {"P5 2 2 255 abc", "P2 1 1 255", "P2 1 1 15 16", "P4 9 1 a", "P1 1 1 2", "P5 0 1 255 a",
        "P5 1 1 0 a", "P5 1 1 65536 ab", "P5 99999999999 1 255 a", "P", "P8 1 1 255 a",
        "P7 WIDTH 1 HEIGHT 1 DEPTH 1 MAXVAL 255", "P7 WIDTH 1 HEIGHT 1 MAXVAL 255 ENDHDR a",
        "P7 WIDTH 1 HEIGHT 1 DEPTH 5 MAXVAL 255 ENDHDR abcde",
        "P7 WIDTH 1 HEIGHT 1 DEPTH 4 MAXVAL 255 TUPLTYPE CMYK ENDHDR abcd"}) {
    EXPECT_THROW(pixels(broken), UserError) << broken;
  }
}

TEST(Pictures, ColourBecomesGreyByTheWrittenFormula) {
  Picture picture({3, 2}, 3);
  picture.pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 10, 200, 31};
  EXPECT_EQ(grey_of(picture).values, (std::vector<uint8_t>{77, 149, 29, 255, 0, 124}));
}

// Reads a damaged file: a picture or a UserError, never anything else.
bool refused(const Bytes& bytes) {
  try {
    picture_of_bytes(bytes, "damaged");
    return false;
  } catch (const UserError&) {
    return true;
  }
}

TEST(Pictures, DamagedFilesNeverCrash) {
  const Bytes png = png_of(kPngKinds[7], {23, 17}, scattered);
  const Bytes jpeg = jpeg_of(JpegKind::progressive, {23, 17}, scattered, 6);
  testing::internal::CaptureStderr();  // a damaged JPEG may be shown, with a note
  for (size_t length = 0; length < png.size(); ++length) {
    const bool whole = length + 12 >= png.size();  // the closing block says nothing
    EXPECT_TRUE(whole || refused(Bytes(png.begin(), png.begin() + long(length))))
        << length << " bytes of " << png.size();
  }
  for (size_t length = 0; length < jpeg.size(); ++length) {
    const bool no_header = length < 100;
    EXPECT_TRUE(refused(Bytes(jpeg.begin(), jpeg.begin() + long(length))) || !no_header)
        << length << " bytes of " << jpeg.size();
  }
  std::srand(1);
  for (int round = 0; round < 2000; ++round) {
    Bytes broken_png = png, broken_jpeg = jpeg;
    broken_png[size_t(std::rand()) % png.size()] = uint8_t(std::rand());
    broken_jpeg[size_t(std::rand()) % jpeg.size()] = uint8_t(std::rand());
    refused(broken_png);
    refused(broken_jpeg);
  }
  EXPECT_NE(testing::internal::GetCapturedStderr().find("damaged: "), std::string::npos);
}

TEST(Pictures, TooLargeIsRefusedBeforeMemoryIsTaken) {
  EXPECT_NO_THROW(check_size(13375, 13375, "large"));
  EXPECT_THROW(check_size(13376, 13376, "large"), UserError);
  EXPECT_THROW(check_size(0xFFFFFFFF, 0xFFFFFFFF, "large"), UserError);
  EXPECT_THROW(check_size(0, 5, "empty"), UserError);
  EXPECT_NO_THROW(check_sides(1000000, 1000000, "long"));
  EXPECT_THROW(check_sides(1, 1000001, "too long"), UserError);
}

}  // namespace
}  // namespace tools::test

// Tests of the flood fills of both kinds.
#include <gtest/gtest.h>

#include <limits>

#include "fill/fill_fixture.h"
#include "fill/fill_pictures.h"
#include "fill/fill_words.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

PixelPoint any_pixel(RoiSize roi, Random& random) {
  return {random.between(0, roi.width - 1), random.between(0, roi.height - 1)};
}

// What a binary picture's pixels are painted with, so that both rules tell 0 from 1.
template <class T>
Painter<T> painter_of(const BinaryPicture& picture) {
  return [&](int x, int y) { return static_cast<T>(picture.at(x, y) ? 200 : 7); };
}

class FloodFill : public EveryIsa {};
NUQI_FOR_EVERY_ISA(FloodFill);

// Few values, so that regions grow large, smooth ones, and any at all.
template <class T>
void fill_pictures_of(const FillMember<T>& member, const Case& c, Random& random) {
  const auto few = [&](int, int) { return static_cast<T>(random.between(0, 3) != 0); };
  const int slope_x = random.between(-2, 2), slope_y = random.between(-2, 2);
  const auto smooth = [&](int x, int y) {
    return static_cast<T>(128 + (x * slope_x + y * slope_y) % 100 + random.between(-2, 2));
  };
  const auto any = [&](int, int) { return random.value<T>(); };
  const int odd = random.between(0, 3);
  const auto value = [&] { return static_cast<double>(random.between(0, 2)); };
  {
    FillFixture<T> fixture(member, c, few, odd);
    fixture.expect_agreement(any_pixel(c.roi, random), value(), 0, random.between(0, 1));
    fixture.expect_agreement(any_pixel(c.roi, random), value());
  }
  {
    FillFixture<T> fixture(member, c, smooth, odd);
    const int lower = random.between(0, 4),
              upper = random.bits() % 2 ? lower : random.between(0, 4);
    fixture.expect_agreement(any_pixel(c.roi, random), 130, lower, upper);
  }
  FillFixture<T> fixture(member, c, any, odd);
  const int lower = random.between(0, 255), upper = random.between(0, 255 - lower);
  fixture.expect_agreement(any_pixel(c.roi, random), 9, lower, upper);
}

TEST_P(FloodFill, AgreesWithTheReference) {
  std::vector<RoiSize> more;
  for (int width = 71; width <= 140; ++width) more.push_back({width, 1 + width * 7 % 19});
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    Random random(1);
    const auto check = [&](const Case& c) { fill_pictures_of(member, c, random); };
    for_each_case(member.name, 1, check, more);
  });
}

constexpr RoiSize kBufferSizes[] = {
    {1, 70},  {2, 70},  {3, 90},   {5, 80},   {7, 90},    {8, 90},   {9, 80},   {17, 70}, {24, 90},
    {40, 80}, {64, 64}, {100, 70}, {130, 67}, {159, 150}, {450, 30}, {1300, 9}, {70, 1},  {90, 2}};

// The buffer is as large as the queries say, on whatever winds, and however narrow the image is.
TEST_P(FloodFill, StaysInTheBuffer) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    for (const NamedPicture& named : kWindingPictures)
      for (RoiSize roi : kBufferSizes) {
        SCOPED_TRACE(testing::Message() << named.name << " " << roi.width << "x" << roi.height);
        const BinaryPicture picture = named.make(roi);
        for (Wall wall : {Wall::after, Wall::before}) {
          FillFixture<T> fixture(member, {roi, wall}, painter_of<T>(picture), roi.width % 4);
          fixture.expect_agreement({0, 0}, 99, 5, 3);
          if (testing::Test::HasFatalFailure()) return;
        }
      }
  });
}

// Rows of many words: rectangles of both kinds, so that wide regions part, meet and turn back.
TEST_P(FloodFill, WideRegions) {
  constexpr RoiSize kRoi = {470, 50};
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    Random random(6);
    for (int round = 0; round < 25; ++round) {
      BinaryPicture picture(kRoi, 1);
      const int longest = random.between(2, 300), count = random.between(5, 150);
      for (int i = 0; i < count; ++i) {
        const PixelPoint corner = any_pixel(kRoi, random);
        const int right = std::min(kRoi.width, corner.x + random.between(1, longest));
        const int bottom = std::min(kRoi.height, corner.y + random.between(1, 6));
        const uint8_t value = random.between(0, 2) == 0;
        for (int y = corner.y; y < bottom; ++y)
          for (int x = corner.x; x < right; ++x) picture.at(x, y) = value;
      }
      PixelPoint seed = any_pixel(kRoi, random);
      while (picture.at(seed.x, seed.y) == 0) seed = any_pixel(kRoi, random);
      FillFixture<T> fixture(member, Case{kRoi}, painter_of<T>(picture), round % 4);
      fixture.expect_agreement(seed, 99, 5, 3);
      ASSERT_FALSE(testing::Test::HasFatalFailure()) << round;
    }
  });
}

// Wide rows, some of them walls: what leads on lies at the ends of words.
TEST_P(FloodFill, WaysAtTheEndsOfWords) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    Random random(7);
    BinaryPicture picture({330, 9}, 1);
    FillFixture<T> fixture(member, Case{picture.roi}, painter_of<T>(picture));
    for (int round = 0; round < 200; ++round) {
      const int dense = random.between(1, 3);
      for (int y = 0; y < picture.roi.height; ++y)
        for (int x = 0, open = 1; x < picture.roi.width; ++x) {
          if (x % 64 == 0)
            open = y % 2 == 0 ? random.between(0, 7) != 0 : random.between(0, 9) == 0;
          const bool end = (x + 1) % 64 < 2;
          picture.at(x, y) = static_cast<uint8_t>(end ? random.between(0, 3) < dense : open);
        }
      picture.at(100, 4) = 1;
      fixture.paint(painter_of<T>(picture));
      fixture.expect_agreement({100, 4}, 99, 5, 3);
      ASSERT_FALSE(testing::Test::HasFatalFailure()) << round;
    }
  });
}

// Rows are swept downwards past a pixel at a word's end that is reached from below alone, over a corner.
TEST_P(FloodFill, BackOverTheCornerOfAWord) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    for (const int end : {127, 128}) {
      BinaryPicture picture({330, 5}, 1);
      for (int y = 1; y < 3; ++y)
        for (int x = 124; x < 132; ++x) picture.at(x, y) = 0;
      for (int x = 126; x < 130; ++x) picture.at(x, 3) = x / 64 != end / 64;
      picture.at(end, 2) = 1;
      FillFixture<T> fixture(member, Case{picture.roi}, painter_of<T>(picture));
      fixture.expect_agreement({20, 0}, 99, 5, 3);
    }
  });
}

// The seed is the only pixel of its word, and is reached again from a wide row.
TEST_P(FloodFill, SeedAloneInItsWord) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    const auto painter = [](int x, int y) { return static_cast<T>(y > 0 || x == 64 ? 200 : 7); };
    FillFixture<T> fixture(member, Case{{65, 3}}, painter);
    fixture.expect_agreement({64, 0}, 99, 5, 3);
  });
}

// All binary pictures of 4x4 pixels, alone and around the border of two words of 64 pixels.
TEST_P(FloodFill, EveryPictureOf4x4) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    for (const int left : {0, 62}) {
      const RoiSize roi = {left == 0 ? 4 : 67, 4};
      int bits = 0;
      const Painter<T> painter = [&](int x, int y) {
        return static_cast<T>(x >= left && x < left + 4 ? bits >> (4 * y + x - left) & 1 : 2);
      };
      FillFixture<T> fixture(member, Case{roi}, painter);
      // The wide one, whose pixels take longer, on each 37th.
      for (bits = 0; bits < 1 << 16; bits += left == 0 ? 1 : 37) {
        fixture.paint(painter);
        fixture.expect_agreement({left + bits % 4, bits / 4 % 4}, 5);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << bits;
      }
    }
  });
}

TEST_P(FloodFill, EverySeedOfTheSmallestImages) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    for (RoiSize roi :
         {RoiSize{1, 1}, {2, 1}, {3, 1}, {1, 2}, {2, 2}, {3, 2}, {1, 3}, {2, 3}, {3, 3}}) {
      int bits = 0;
      const Painter<T> painter = [&](int x, int y) {
        return static_cast<T>(bits >> (roi.width * y + x) & 1);
      };
      FillFixture<T> fixture(member, Case{roi}, painter);
      for (bits = 0; bits < 1 << roi.width * roi.height; ++bits)
        for (int seed = 0; seed < roi.width * roi.height; ++seed) {
          fixture.paint(painter);
          fixture.expect_agreement({seed % roi.width, seed / roi.width}, 5);
          ASSERT_FALSE(testing::Test::HasFatalFailure()) << bits;
        }
    }
  });
}

// ---- Values

// Oddity: NaN pixels equal any seed, a NaN seed or new value returns at once, and a formula in doubles tells
// what is within the deltas.
TEST_P(FloodFill, FloatsOfEveryKind) {
  constexpr RoiSize kRoi = {70, 9};
  constexpr std::array<float, 9> kValues = {0.0f, -0.0f,  kInfinity, -kInfinity, kNaN,
                                            1.0f, 1e-45f, 3.4e38f,   -1.0f};
  constexpr std::array<float, 8> kDeltas = {0.0f,   -0.0f, kInfinity, kNaN,
                                            1e-45f, 1.0f,  3.4e38f,   1e-3f};
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    if constexpr (std::is_same_v<T, float>) {
      Random random(2);
      // A new value that equals the seed, one that is NaN, a NaN in the picture: all occur.
      for (int round = 0; round < 400; ++round) {
        const int kinds = random.between(2, 9);
        FillFixture<float> fixture(member, Case{kRoi},
                                   [&](int, int) { return kValues[random.between(0, kinds - 1)]; });
        const double value = random.one_of(kValues), lower = random.one_of(kDeltas);
        const double upper = random.bits() % 2 ? random.one_of(kDeltas) : lower;
        fixture.expect_agreement(any_pixel(kRoi, random), value, lower, upper);
        ASSERT_FALSE(testing::Test::HasFatalFailure());
      }
    }
  });
}

// Differences that are close to the deltas: in single precision they round to them.
TEST_P(FloodFill, DifferencesBesideTheDeltas) {
  constexpr RoiSize kRoi = {90, 20};
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    if constexpr (std::is_same_v<T, float>) {
      Random random(3);
      for (int round = 0; round < 60; ++round) {
        const float delta = random.bits() % 2 ? 1.0f : 0.1f + 0.001f * random.between(0, 99);
        const float other = random.bits() % 2 ? delta : delta * random.between(0, 3);
        const auto painter = [&](int x, int y) {
          const float near = random.between(-2, 2) * (random.bits() % 2 ? 1e-8f : 1e-20f);
          return delta * static_cast<float>((x + y) % 2) + near;
        };
        FillFixture<float> fixture(member, Case{kRoi}, painter);
        fixture.expect_agreement(any_pixel(kRoi, random), 7, delta, other);
        ASSERT_FALSE(testing::Test::HasFatalFailure());
      }
    }
  });
}

// Bytes do not wrap: 250 is not two steps from 0.
TEST_P(FloodFill, EveryPairOfBytesWithEveryDelta) {
  constexpr RoiSize kRoi = {128, 2};
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    if constexpr (std::is_same_v<T, uint8_t>) {
      if (!member.gradient) return;
      Random random(4);
      for (int lower = 0; lower <= 255; lower += 5)
        for (int upper : {0, lower, 255 - lower}) {
          if (lower + upper > 255) continue;
          FillFixture<uint8_t> fixture(member, Case{kRoi}, [&](int, int) {
            return static_cast<uint8_t>(random.bits() % 4 ? random.between(0, 1) * 250
                                                          : random.bits());
          });
          fixture.expect_agreement(any_pixel(kRoi, random), 1, lower, upper);
          ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
  });
}

// A ramp joins from its low end with deltas 0 and 1, and from its high end nothing does.
TEST_P(FloodFill, StepsMayLeadOneWayAlone) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    if (!member.gradient) return;
    const auto ramp = [](int x, int) { return static_cast<T>(x); };
    FillFixture<T> fixture(member, Case{{200, 3}}, ramp);
    fixture.expect_agreement({199, 1}, 199, 0, 1);
    EXPECT_EQ(fixture.region.area, 3) << member.name;
    fixture.expect_agreement({0, 1}, 5, 0, 1);
    EXPECT_EQ(fixture.region.area, 600) << member.name;
  });
}

TEST(FloodFillBuffer, HoldsAllItsParts) {
  const auto check = [](int64_t width, int64_t height) {
    const RoiSize roi = {static_cast<int32_t>(width), static_cast<int32_t>(height)};
    ASSERT_LE(plan_fill(roi).end, 6 * width * height) << width << "x" << height;
  };
  for (int width = kFillNarrow; width <= 300; ++width)
    for (int height : {1, 2, 3, 1000, INT32_MAX}) check(width, height);
  check(INT32_MAX, 1);
  check(INT32_MAX, INT32_MAX / 8);
}

// Oddity: a seed that has the new value already leaves the record as it was; a gradient fill writes it.
TEST_P(FloodFill, SeedWithTheNewValueWritesNoRecord) {
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    FillFixture<T> fixture(member, Case{{10, 4}}, [](int, int) { return T{3}; });
    ASSERT_EQ(member.call(fixture.args({1, 1}, 3)), StatusOk);
    EXPECT_EQ(fixture.region.area, member.gradient ? 40 : kUntouched.area) << member.name;
  });
}

TEST_P(FloodFill, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_flood_fill([&]<class T>(const FillMember<T>& member) {
    Random random(5);
    for (RoiSize roi : {RoiSize{1, 9}, {6, 20}, {65, 11}, {200, 33}}) {
      FillFixture<T> fixture(member, Case{roi}, [&](int x, int) {
        return static_cast<T>(x + random.between(0, 9) / 4);
      });
      ASSERT_EQ(member.call(fixture.args(any_pixel(roi, random), 77, 2, 1)), StatusOk);
      hash.add(fixture.image.pixels());
      hash.add(bits_of_region(fixture.region));
    }
  });
  EXPECT_TRUE(same_hash(0x915A85311849EA7F, hash));
}

}  // namespace
}  // namespace nuqi::test

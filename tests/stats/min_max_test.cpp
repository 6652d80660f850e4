// Tests of the extrema.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

#include "stats/min_max_members.h"
#include "stats/min_max_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {

namespace {

// The bits of all four results: a NaN is reported with its own.
std::vector<uint32_t> words_of(const MinMaxResult& r) {
  return {std::bit_cast<uint32_t>(r.min),    std::bit_cast<uint32_t>(r.max),
          static_cast<uint32_t>(r.min_at.x), static_cast<uint32_t>(r.min_at.y),
          static_cast<uint32_t>(r.max_at.x), static_cast<uint32_t>(r.max_at.y)};
}

constexpr float kInf = std::numeric_limits<float>::infinity();

// What images look like: noise; a handful of values, so that most are met again; values that rise or
// fall from pixel to pixel, so that each is a new extreme; floats of one sign.
enum class Picture { noise, few, rising, falling, positive, negative };
constexpr Picture kPictures[] = {Picture::noise,   Picture::few,      Picture::rising,
                                 Picture::falling, Picture::positive, Picture::negative};

template <class T>
T pixel_of(Picture picture, Random& random, int index, int pixels) {
  const int from_middle = index - pixels / 2;
  if constexpr (std::is_same_v<T, float>) {
    const auto with_sign = [&](uint32_t sign) {
      return std::bit_cast<float>((static_cast<uint32_t>(random.bits()) & 0x7FFFFFFF) | sign);
    };
    switch (picture) {
      case Picture::noise: return random.any_float();
      case Picture::few: return random.one_of(std::array<float, 5>{-0.0f, 0.0f, 1, -1, kInf});
      case Picture::rising: return static_cast<float>(from_middle);
      case Picture::falling: return static_cast<float>(-from_middle);
      case Picture::positive: return with_sign(0);
      case Picture::negative: return with_sign(0x80000000);
    }
  }
  switch (picture) {
    case Picture::few: return static_cast<T>(random.between(100, 102));
    case Picture::rising: return static_cast<T>(from_middle * 127 / pixels);
    case Picture::falling: return static_cast<T>(-from_middle * 127 / pixels);
    default: return random.integer<T>();
  }
}

template <class T>
struct Fixture {
  Fixture(const Case& c, int channels_, Picture picture, uint64_t seed)
      : roi(c.roi), channels(channels_), src("source", c, 0, channels), mask("mask", c, 1) {
    Random random(seed);
    const int pixels = roi.width * roi.height * channels;
    int index = 0;
    src.fill([&] { return pixel_of<T>(picture, random, index++, pixels); });
    const int share = seed % 2 == 0 ? 2 : 40;
    mask.fill([&] { return random.between(1, share) == 1 ? random.mask() | 4 : 0; });
    channel = random.between(1, channels);
  }
  MinMaxArgs<T> args() {
    return {src.data(), src.step(),  mask.data(), mask.step(),    roi,
            channel,    &result.min, &result.max, &result.min_at, &result.max_at};
  }
  MinMaxResult expected(const MinMaxMember<T>& member) {
    std::vector<T> one;
    const std::vector<T> all = src.pixels();
    for (size_t i = channel - 1; i < all.size(); i += channels) one.push_back(all[i]);
    return min_max_reference(one, member.masked ? mask.pixels() : std::vector<uint8_t>{},
                             roi.width);
  }

  RoiSize roi;
  int channels;
  WalledImage<T> src;
  WalledImage<uint8_t> mask;
  int channel;
  MinMaxResult result = {-7, -7, {-7, -7}, {-7, -7}};
};

class MinMax : public EveryIsa {};
NUQI_FOR_EVERY_ISA(MinMax);

TEST_P(MinMax, AgreesWithTheReference) {
  for_each_min_max([]<class T>(const MinMaxMember<T>& member) {
    int number = 0;
    for_each_case(member.name, 2, [&](const Case& c) {
      for (int i = 0; i < 3; ++i) {
        const Picture picture = kPictures[(number + i) % std::size(kPictures)];
        Fixture<T> fixture(c, member.channels, picture, static_cast<uint64_t>(number));
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        ASSERT_EQ(words_of(fixture.result), words_of(fixture.expected(member)))
            << "channel " << fixture.channel << " picture " << static_cast<int>(picture);
      }
      ++number;
    });
  });
}

// One pixel unlike the others, which have the other sign, or are all alike, at both ends of stretches.
TEST_P(MinMax, TheExtremeMayComeAtAnyPlace) {
  constexpr int kWidth = 4500;
  std::vector<float> row(kWidth);
  std::vector<uint8_t> bytes(kWidth, 100);
  for (int at : {0, 1, 1023, 1024, 1025, 2047, 4480, kWidth - 1}) {
    for (float odd : {-3.0f, -0.0f, 0.0f, 3.0f}) {
      std::fill(row.begin(), row.end(), std::signbit(odd) ? 1.0f : -1.0f);
      row[at] = odd;
      row[kWidth - 1] = odd;
      const MinMaxResult expected = min_max_reference(row, {}, kWidth);
      MinMaxResult r;
      ASSERT_EQ(nuqiMinMaxIndx_32f_C1R(row.data(), kWidth * 4, {kWidth, 1}, &r.min, &r.max,
                                       &r.min_at, &r.max_at),
                StatusOk);
      ASSERT_EQ(words_of(r), words_of(expected)) << odd << " at " << at;
    }
    for (uint8_t odd : {0, 99, 101, 255}) {
      std::vector<uint8_t> image = bytes;
      image[at] = odd;
      const MinMaxResult expected = min_max_reference(image, {}, kWidth);
      MinMaxResult r;
      ASSERT_EQ(nuqiMinMaxIndx_8u_C1R(image.data(), kWidth, {kWidth, 1}, &r.min, &r.max, &r.min_at,
                                      &r.max_at),
                StatusOk);
      ASSERT_EQ(words_of(r), words_of(expected)) << +odd << " at " << at;
    }
  }
}

// Oddity: the minimum is looked for below +infinity, the maximum above -infinity, and where one of them
// is not found neither counts.
TEST_P(MinMax, InfinitiesAndNaNsBeyondThemAreNoExtremes) {
  const float nan = std::bit_cast<float>(0x7FA00000),
              negative_nan = std::bit_cast<float>(0xFFA00000);
  const auto find = [](std::vector<float> row) {
    const int32_t width = static_cast<int32_t>(row.size());
    MinMaxResult r = {-7, -7, {-7, -7}, {-7, -7}};
    EXPECT_EQ(nuqiMinMaxIndx_32f_C1R(row.data(), width * 4, {width, 1}, &r.min, &r.max, &r.min_at,
                                     &r.max_at),
              StatusOk);
    return words_of(r);
  };
  const auto nothing = words_of({});
  EXPECT_EQ(find({kInf, kInf}), nothing);
  EXPECT_EQ(find({-kInf, -kInf, -kInf}), nothing);
  EXPECT_EQ(find({kInf, nan}), nothing);
  EXPECT_EQ(find({negative_nan, -kInf}), nothing);
  EXPECT_EQ(find({kInf, -kInf}), words_of({-kInf, kInf, {1, 0}, {0, 0}}));
  EXPECT_EQ(find({nan, 2, negative_nan, 1}), words_of({negative_nan, nan, {2, 0}, {0, 0}}));
  EXPECT_EQ(find({-0.0f, 0.0f}), words_of({-0.0f, 0.0f, {0, 0}, {1, 0}}));
  EXPECT_EQ(find({kInf, 5}), words_of({5, kInf, {1, 0}, {0, 0}}));
}

TEST_P(MinMax, WithoutPixelsAllIsZero) {
  for_each_min_max([]<class T>(const MinMaxMember<T>& member) {
    for (RoiSize roi : {RoiSize{0, 3}, RoiSize{3, 0}, RoiSize{50, 3}}) {
      if (roi.width == 50 && !member.masked) continue;
      Fixture<T> fixture({{50, 3}}, member.channels, Picture::noise, 2);
      fixture.mask.fill([] { return uint8_t{0}; });
      fixture.roi = roi;
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      EXPECT_EQ(words_of(fixture.result), words_of({})) << member.name << " " << roi.width;
    }
  });
}

TEST_P(MinMax, NullResultsAreNotWritten) {
  for_each_min_max([]<class T>(const MinMaxMember<T>& member) {
    for (int null = 0; null < 16; ++null) {
      Fixture<T> fixture({{20, 3}}, member.channels, Picture::noise, 2);
      const MinMaxResult unwritten = fixture.result;
      MinMaxResult expected = fixture.expected(member);
      MinMaxArgs<T> args = fixture.args();
      if (null & 1) args.min = nullptr, expected.min = unwritten.min;
      if (null & 2) args.max = nullptr, expected.max = unwritten.max;
      if (null & 4) args.minAt = nullptr, expected.min_at = unwritten.min_at;
      if (null & 8) args.maxAt = nullptr, expected.max_at = unwritten.max_at;
      ASSERT_EQ(member.call(args), StatusOk);
      ASSERT_EQ(words_of(fixture.result), words_of(expected)) << member.name << " " << null;
    }
  });
}

// Each row spoils two arguments, where it can, and names the status that must win.
TEST(MinMaxStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_min_max([]<class T>(const MinMaxMember<T>& member) {
    const int row = 12 * member.channels * int{sizeof(T)};
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture({{12, 4}}, member.channels, Picture::noise, 7);
      const auto before = words_of(fixture.result);
      MinMaxArgs<T> args = fixture.args();
      spoil(args);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(words_of(fixture.result) == before, status != StatusOk)
          << member.name << ": " << what;
    };
    expect("null source, negative width", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -1; });
    expect("negative width, step 0", StatusBadSize,
           [](auto& a) { a.roi.width = -1, a.srcStep = 0; });
    expect("negative height, bad channel", StatusBadSize,
           [](auto& a) { a.roi.height = -1, a.channel = 0; });
    expect("short step, bad channel", StatusBadStep,
           [&](auto& a) { a.srcStep = row - int{sizeof(T)}, a.channel = 4; });
    expect("short step, no rows", StatusBadStep,
           [&](auto& a) { a.srcStep = row - int{sizeof(T)}, a.roi.height = 0; });
    expect("a width whose row overflows an int",
           member.channels * sizeof(T) == 1 ? StatusOk : StatusBadStep, [](auto& a) {
             a.roi = {INT32_MAX - 3, 0}, a.srcStep = a.maskStep = INT32_MAX - 3;
           });
    if (sizeof(T) == 4) expect("uneven step", StatusBadStep, [&](auto& a) { a.srcStep = row + 2; });
    if (member.masked) {
      expect("null mask, negative width", StatusNullPtr,
             [](auto& a) { a.mask = nullptr, a.roi.width = -1; });
      expect("short mask, bad channel", StatusBadStep,
             [](auto& a) { a.maskStep = 11, a.channel = 4; });
    }
    if (member.channels == 3)
      for (int channel : {0, 4})
        expect("bad channel, no pixels", StatusBadCoi,
               [&](auto& a) { a.channel = channel, a.roi.width = 0; });
  });
}

TEST_P(MinMax, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_min_max([&]<class T>(const MinMaxMember<T>& member) {
    for (Picture picture : kPictures)
      for (int width : {1, 7, 16, 37, 130, 400}) {
        Fixture<T> fixture({{width, 5}}, member.channels, picture, width);
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        hash.add(words_of(fixture.result));
      }
  });
  EXPECT_TRUE(same_hash(0xBE6BA9663C437B8B, hash));
}

}  // namespace
}  // namespace nuqi::test

// Tests of the means and deviations.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "stats/mean_members.h"
#include "stats/mean_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

constexpr double kUntouched = 4711.5;

// Numbers of very different size: sums of them round at every addition.
template <class T>
T summand(Random& random) {
  if constexpr (std::is_same_v<T, float>) {
    const int exponent = random.between(-25, 25);
    return std::ldexp(random.plain_float(), exponent);
  } else {
    return random.integer<T>();
  }
}

// One call: an image, its mask, and what lies in neither the channel nor the selection is anything.
template <class T>
struct Fixture {
  Fixture(const MeanMember<T>& member, const Case& c, int channel, uint64_t seed)
      : member(member),
        roi(c.roi),
        coi(channel),
        src("source", c, 0, member.channels),
        mask("mask", c, 1) {
    Random random(seed);
    pixels = {static_cast<size_t>(roi.width), static_cast<size_t>(roi.height), {}, {}};
    mask.fill([&] {
      const uint8_t m = random.mask();
      pixels.selected.push_back(!member.masked || m != 0);
      return m;
    });
    int i = 0;
    src.fill([&] {
      const int pixel = i / member.channels, c = i++ % member.channels;
      const bool chosen = member.channels == 1 || c == coi - 1;
      const T value = chosen && pixels.selected[pixel] ? summand<T>(random) : random.value<T>();
      if (chosen) pixels.values.push_back(value);
      return value;
    });
    back_to_back = c.padding[0] == 0 && c.padding[1] == 0;
  }
  MeanArgs<T> args() {
    return {src.data(), src.step(), mask.data(), mask.step(), roi, coi, &mean, &deviation};
  }
  MeanAndDeviation expected() const {
    if (member.deviation) return deviation_reference(pixels);
    return {mean_reference(pixels, member.channels, back_to_back), kUntouched};
  }

  const MeanMember<T>& member;
  RoiSize roi;
  int32_t coi;
  WalledImage<T> src;
  WalledImage<uint8_t> mask;
  MeanPixels<T> pixels;
  bool back_to_back;
  double mean = kUntouched, deviation = kUntouched;
};

class Mean : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Mean);

template <class T>
void expect_agreement(Fixture<T>& fixture) {
  const MeanAndDeviation expected = fixture.expected();
  ASSERT_EQ(fixture.member.call(fixture.args()), StatusOk);
  ASSERT_TRUE(
      same_bits<double>({expected.mean, expected.deviation}, {fixture.mean, fixture.deviation}))
      << "channel " << fixture.coi;
}

TEST_P(Mean, AgreesWithTheReference) {
  for_each_mean([]<class T>(const MeanMember<T>& member) {
    for_each_case(member.name, 2, [&](const Case& c) {
      Fixture<T> fixture(member, c, 1 + c.roi.width % 3, static_cast<uint64_t>(c.roi.width));
      expect_agreement(fixture);
    });
  });
}

TEST_P(Mean, AnEmptySelectionGivesZero) {
  for_each_mean([]<class T>(const MeanMember<T>& member) {
    if (!member.masked) return;
    Fixture<T> fixture(member, {{37, 3}}, 2, 1);
    fixture.src.fill([] { return std::numeric_limits<T>::max(); });
    fixture.mask.fill([] { return uint8_t{0}; });
    ASSERT_EQ(member.call(fixture.args()), StatusOk);
    EXPECT_EQ(bits_of(fixture.mean), bits_of(0.0)) << member.name;
    EXPECT_EQ(bits_of(fixture.deviation), bits_of(member.deviation ? 0.0 : kUntouched))
        << member.name;
  });
}

TEST_P(Mean, SelectedInfinitiesAndNaNsShow) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  for_each_mean([]<class T>(const MeanMember<T>& member) {
    if constexpr (std::is_same_v<T, float>) {
      for (float special : {inf, -inf, std::nanf("")}) {
        Fixture<T> fixture(member, {{35, 2}}, 1, 1);
        fixture.src.fill([&] { return special; });
        fixture.mask.fill([] { return uint8_t{1}; });
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        EXPECT_EQ(bits_of(fixture.mean), bits_of(double{special})) << member.name;
        EXPECT_EQ(std::isnan(fixture.deviation), member.deviation) << member.name;
      }
    }
  });
}

// Oddity: sums of bytes wrap at 32 bits and are read as signed. The squares do not wrap, whether they
// come in one row or in many.
TEST_P(Mean, SumsOfBytesWrap) {
  const std::vector<uint8_t> image(16843009, 255);
  const uint8_t* src = image.data();
  double mean = 0, deviation = 0;
  for (RoiSize roi : {RoiSize{16843009, 1}, RoiSize{257, 65537}}) {
    ASSERT_EQ(nuqiMean_8u_C1MR(src, roi.width, src, roi.width, roi, &mean), StatusOk);
    EXPECT_EQ(mean, -1.0 / 16843009);
    ASSERT_EQ(nuqiMean_StdDev_8u_C1R(src, roi.width, roi, &mean, &deviation), StatusOk);
    EXPECT_EQ(mean, -(1.0 / 16843009));
    EXPECT_EQ(deviation, std::sqrt(65025.0 * 16843009 * (1.0 / 16843009) - mean * mean));
  }
  const RoiSize narrow = {256, 65537};  // 2^32 + 2^16 pixels less one 256th
  const int32_t count = narrow.width * narrow.height;
  const double share = 1.0 / count;
  for (int8_t value : {int8_t{-1}, int8_t{-128}, int8_t{127}}) {
    const std::vector<int8_t> bytes(image.size(), value);
    const int64_t sum = int64_t{value} * count;
    const double expected = wrapped(static_cast<uint64_t>(sum)) * share;
    const double squares = static_cast<double>(int64_t{value} * value * count);
    ASSERT_EQ(nuqiMean_StdDev_8s_C1R(bytes.data(), 257, narrow, &mean, &deviation), StatusOk);
    EXPECT_EQ(mean, expected);
    EXPECT_EQ(bits_of(deviation), bits_of(std::sqrt(squares * share - expected * expected)));
  }
  ASSERT_EQ(nuqiMean_StdDev_8u_C1MR(src, 257, src, 257, narrow, &mean, &deviation), StatusOk);
  const double expected = wrapped(uint64_t{255} * static_cast<uint64_t>(count)) * share;
  EXPECT_EQ(mean, expected);
  EXPECT_EQ(deviation, std::sqrt(65025.0 * count * share - expected * expected));
}

// Oddity: back-to-back rows are one row to nuqiMean_32f_C1MR. 2^24 + 1 is lost in single precision.
TEST_P(Mean, BackToBackRowsAreOneRowOfBlocksOfEight) {
  const float src[9] = {16777216, 1, 1, 1, 1, 1, 1, 1, 1};
  const uint8_t mask[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  double mean = 0;
  // One row of nine: lane 0 takes pixels 0, 4 and 8.
  ASSERT_EQ(nuqiMean_32f_C1MR(src, 12, mask, 3, {3, 3}, &mean), StatusOk);
  EXPECT_EQ(mean, (16777216.0 + 2 + 2 + 2) / 9);
  // Three rows of three: lane 0 takes them all.
  const float apart[11] = {16777216, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1};
  ASSERT_EQ(nuqiMean_32f_C1MR(apart, 16, mask, 3, {3, 3}, &mean), StatusOk);
  EXPECT_EQ(mean, 16777216.0 / 9);
}

// Oddity: a difference that rounding makes negative is not clamped.
TEST_P(Mean, ANegativeVarianceIsNaN) {
  const std::vector<float> image(53, 0.1f);
  double mean = 0, deviation = 0;
  ASSERT_EQ(nuqiMean_StdDev_32f_C1R(image.data(), 212, {53, 1}, &mean, &deviation), StatusOk);
  EXPECT_NEAR(mean, 0.1f, 1e-15);
  EXPECT_TRUE(std::isnan(deviation)) << deviation;
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(MeanStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_mean([]<class T>(const MeanMember<T>& member) {
    const bool floats = sizeof(T) == 4, three = member.channels == 3;
    const int32_t row = 10 * member.channels * int{sizeof(T)};
    // Oddities: what a bad step and a bad channel are called.
    const StatusCode bad_step =
        three && member.masked && member.deviation ? StatusBadSize : StatusBadStep;
    const StatusCode bad_channel = member.deviation ? StatusBadArg : StatusBadCoi;
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture(member, {{10, 4}}, 1, 7);
      MeanArgs<T> args = fixture.args();
      spoil(args);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      if (status != StatusOk) {
        EXPECT_EQ(fixture.mean, kUntouched) << member.name << ": " << what;
        EXPECT_EQ(fixture.deviation, kUntouched) << member.name << ": " << what;
      }
    };
    expect("null source, negative width", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -1; });
    expect("null mean, short step", StatusNullPtr,
           [](auto& a) { a.mean = nullptr, a.srcStep = 0; });
    if (member.deviation)
      expect("null deviation, short step", StatusNullPtr,
             [](auto& a) { a.deviation = nullptr, a.srcStep = 0; });
    expect("negative width, short step", StatusBadSize,
           [](auto& a) { a.roi.width = -1, a.srcStep = -8; });
    expect("negative height, channel 0", StatusBadSize,
           [](auto& a) { a.roi.height = -1, a.coi = 0; });
    expect("short row, channel 4", bad_step, [&](auto& a) { a.srcStep = row - 4, a.coi = 4; });
    expect("a width whose row overflows an int", bad_step, [](auto& a) {
      a.roi = {INT32_MAX, 1}, a.maskStep = INT32_MAX, a.srcStep = INT32_MAX - 1;
    });
    if (floats)
      expect("uneven step, channel 0", bad_step, [&](auto& a) { a.srcStep = row + 2, a.coi = 0; });
    if (member.masked) {
      expect("null mask, negative width", StatusNullPtr,
             [](auto& a) { a.mask = nullptr, a.roi.width = -1; });
      expect("short mask row, channel 0", bad_step, [](auto& a) { a.maskStep = 9, a.coi = 0; });
    }
    // Oddity: the means take an empty region, and still look at steps and channel; deviations do not.
    const StatusCode empty = member.deviation ? StatusBadSize : StatusOk;
    expect("width 0", empty, [](auto& a) { a.roi.width = 0; });
    expect("height 0", empty, [](auto& a) { a.roi.height = 0; });
    expect("height 0, short row", member.deviation ? StatusBadSize : bad_step,
           [](auto& a) { a.roi.height = 0, a.srcStep = 4; });
    if (three) {
      expect("channel 0", bad_channel, [](auto& a) { a.coi = 0; });
      expect("channel 4", bad_channel, [](auto& a) { a.coi = 4; });
      expect("height 0, channel -1", member.deviation ? StatusBadSize : bad_channel,
             [](auto& a) { a.roi.height = 0, a.coi = -1; });
    }
  });
}

TEST(MeanStatus, TheMeanOfAnEmptyRegionIsZero) {
  for_each_mean([]<class T>(const MeanMember<T>& member) {
    if (member.deviation) return;
    for (RoiSize roi : {RoiSize{0, 5}, RoiSize{5, 0}}) {
      Fixture<T> fixture(member, {{5, 5}}, 1, 7);
      MeanArgs<T> args = fixture.args();
      args.roi = roi;
      ASSERT_EQ(member.call(args), StatusOk) << member.name;
      EXPECT_EQ(fixture.mean, 0.0) << member.name;
    }
  });
}

TEST_P(Mean, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_mean([&]<class T>(const MeanMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130, 700}) {
      // Rows back to back and apart: it shows in nuqiMean_32f_C1MR.
      const Case c = {{width, 5}, Wall::after, {width % 3, width % 2}};
      Fixture<T> fixture(member, c, 1 + width % 3, width);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(std::vector<double>{fixture.mean, fixture.deviation});
    }
  });
  EXPECT_TRUE(same_hash(0xB3AF99C3307273F9, hash));
}

}  // namespace
}  // namespace nuqi::test

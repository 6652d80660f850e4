// Tests of the norm family.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "stats/norm_members.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

constexpr double kUnwritten = -7.25;

// Whether float images hold infinities and NaNs everywhere, or in unselected pixels only.
enum class Values { any, plain };

template <class T>
T value_of(Random& random, Values values) {
  if constexpr (std::is_same_v<T, float>)
    return values == Values::any ? random.any_float() : random.plain_float();
  else
    return random.integer<T>();
}

// The images of one call.
template <class T>
struct Fixture {
  Fixture(const Case& c, int channels_, uint64_t seed, Values values = Values::plain)
      : roi(c.roi),
        channels(channels_),
        src("source", c, 0, channels),
        src2("second source", c, 1, channels),
        mask("mask", c, 2) {
    Random random(seed);
    mask.fill([&] { return random.mask(); });
    src.fill([&] { return value_of<T>(random, values); });
    src2.fill([&] { return value_of<T>(random, values); });
    channel = random.between(1, channels);
  }
  NormArgs<T> args() {
    return {src.data(),  src.step(), src2.data(), src2.step(), mask.data(),
            mask.step(), roi,        channel,     &result};
  }
  std::vector<T> one_channel(WalledImage<T>& image) {
    std::vector<T> one;
    const std::vector<T> all = image.pixels();
    for (size_t i = channel - 1; i < all.size(); i += channels) one.push_back(all[i]);
    return one;
  }
  double expected(const NormMember<T>& member) {
    return norm_reference(member.kind, member.order, one_channel(src), one_channel(src2),
                          mask.pixels(), roi.width);
  }

  RoiSize roi;
  int channels;
  WalledImage<T> src, src2;
  WalledImage<uint8_t> mask;
  int channel;
  double result = kUnwritten;
};

class Norm : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Norm);

template <class T>
void expect_agreement(const NormMember<T>& member, Fixture<T>& fixture) {
  ASSERT_EQ(member.call(fixture.args()), StatusOk);
  ASSERT_EQ(bits_of(fixture.result), bits_of(fixture.expected(member)))
      << member.name << " channel " << fixture.channel << ": " << fixture.result << ", not "
      << fixture.expected(member);
}

TEST_P(Norm, AgreesWithTheReference) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    for_each_case(member.name, 3, [&](const Case& c) {
      const Values values = c.roi.width % 5 == 0 ? Values::any : Values::plain;
      Fixture<T> fixture(c, member.channels, static_cast<uint64_t>(c.roi.width), values);
      expect_agreement(member, fixture);
    });
  });
}

// Oddity: steps are held against the width in pixels: rows of floats and of three channels may overlap.
TEST_P(Norm, RowsMayOverlap) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    const int bytes = member.channels * int{sizeof(T)};
    if (bytes == 1) return;
    const int padding = 36 / int{sizeof(T)} - 36 * member.channels;
    Fixture<T> fixture({{36, 4}, Wall::after, {padding, padding}}, member.channels, 3);
    ASSERT_EQ(fixture.src.step(), 36);
    expect_agreement(member, fixture);
  });
}

TEST_P(Norm, EveryPairOfBytes) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    if (sizeof(T) != 1 || member.channels != 1) return;
    Fixture<T> fixture({{256, 1}}, 1, 1);
    fixture.mask.fill([] { return uint8_t{1}; });
    int x = 0;
    fixture.src2.fill([&] { return static_cast<T>(x++); });
    for (int value = 0; value < 256; ++value) {
      fixture.src.fill([&] { return static_cast<T>(value); });
      expect_agreement(member, fixture);
    }
  });
}

// As many squares as fill the lanes that first take them, several times over.
TEST_P(Norm, SumsOfSquaresHave64Bits) {
  const int32_t width = 6000000;
  const std::vector<uint8_t> bright(2 * width, 255);
  for (RoiSize roi : {RoiSize{2 * width, 1}, RoiSize{width - 1, 2}}) {
    double norm = 0;
    const int32_t step = roi.height == 1 ? roi.width : width;
    ASSERT_EQ(nuqiNorm_L2_8u_C1MR(bright.data(), step, bright.data(), step, roi, &norm), StatusOk);
    EXPECT_EQ(norm, std::sqrt(65025.0 * roi.width * roi.height));
  }
}

TEST_P(Norm, AnEmptyMaskGivesZero) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    Fixture<T> fixture({{50, 3}}, member.channels, 2, Values::any);
    fixture.mask.fill([] { return uint8_t{0}; });
    ASSERT_EQ(member.call(fixture.args()), StatusOk);
    EXPECT_EQ(bits_of(fixture.result), bits_of(0.0)) << member.name;
  });
}

TEST_P(Norm, AZeroDenominatorCountsAs2ToTheMinus52) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    if (member.kind != NormKind::relative) return;
    Fixture<T> fixture({{5, 1}}, member.channels, 2);
    fixture.mask.fill([] { return uint8_t{1}; });
    fixture.src.fill([] { return T(3); });
    fixture.src2.fill([] { return T(0); });
    ASSERT_EQ(member.call(fixture.args()), StatusOk);
    const double numerator = member.order == NormOrder::inf  ? 3
                             : member.order == NormOrder::l1 ? 15
                                                             : 45;
    const double quotient = numerator / std::numeric_limits<double>::epsilon();
    EXPECT_EQ(fixture.result, member.order == NormOrder::l2 ? std::sqrt(quotient) : quotient)
        << member.name;
  });
}

TEST_P(Norm, SumsOfBytesWrapAt32BitsAndAreSigned) {
  const RoiSize roi = {8421505, 1};  // times 255 is 2^31 + 127
  const std::vector<uint8_t> bright(roi.width, 255);
  double norm = 0;
  ASSERT_EQ(nuqiNorm_L1_8u_C1MR(bright.data(), roi.width, bright.data(), roi.width, roi, &norm),
            StatusOk);
  EXPECT_EQ(norm, -2147483521.0);
}

TEST_P(Norm, ADenominatorOf2ToThe32IsZero) {
  const RoiSize roi = {16843010, 1};
  const int32_t step = roi.width;
  std::vector<uint8_t> bright(roi.width + 1, 255);
  bright[roi.width - 1] =
      1;  // 255 * 16843009 + 1 is 2^32; one pixel to the right, 255 * 16843010 - 254
  double norm = 0;
  ASSERT_EQ(nuqiNormRel_L1_8u_C1MR(bright.data() + 1, step, bright.data(), step, bright.data(),
                                   step, roi, &norm),
            StatusOk);
  EXPECT_EQ(norm, (254.0 + 254.0) * 4503599627370496.0);
}

TEST_P(Norm, ASumOfSquaresIsZeroIn64BitsOnly) {
  const RoiSize roi = {512, 512};
  const std::vector<uint8_t> a(512 * 512, 127), b(512 * 512, 128);  // 128^2 * 512^2 is 2^32
  double norm = 0;
  ASSERT_EQ(nuqiNormRel_L2_8u_C1MR(a.data(), 512, b.data(), 512, b.data(), 512, roi, &norm),
            StatusOk);
  EXPECT_EQ(norm, 1.0 / 128);
}

TEST_P(Norm, ANaNCountsInSumsOnly) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  const float src[3] = {nan, -2, nan};
  const uint8_t mask[3] = {1, 1, 0};
  double inf = 0, l1 = 0, l2 = 0;
  ASSERT_EQ(nuqiNorm_Inf_32f_C1MR(src, 12, mask, 3, {3, 1}, &inf), StatusOk);
  ASSERT_EQ(nuqiNorm_L1_32f_C1MR(src, 12, mask, 3, {3, 1}, &l1), StatusOk);
  ASSERT_EQ(nuqiNorm_L2_32f_C1MR(src, 12, mask, 3, {3, 1}, &l2), StatusOk);
  EXPECT_EQ(inf, 2);
  EXPECT_TRUE(std::isnan(l1));
  EXPECT_TRUE(std::isnan(l2));
}

// Each row spoils two arguments, where it can, and names the status that must win.
TEST(NormStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_norm([]<class T>(const NormMember<T>& member) {
    const bool two = member.kind != NormKind::image, three = member.channels == 3;
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture({{12, 4}}, member.channels, 7);
      NormArgs<T> args = fixture.args();
      spoil(args);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(fixture.result == kUnwritten, status != StatusOk) << member.name << ": " << what;
    };
    expect("null source, step 0", StatusNullPtr, [](auto& a) { a.src = nullptr, a.srcStep = 0; });
    expect("null mask, bad channel", StatusNullPtr,
           [](auto& a) { a.mask = nullptr, a.channel = 0; });
    expect("null result, negative width", StatusNullPtr,
           [](auto& a) { a.norm = nullptr, a.roi.width = -1; });
    // Oddity: steps below 1 are tested before the channel and the sizes.
    expect("step 0, bad channel", StatusBadStep, [](auto& a) { a.srcStep = 0, a.channel = 4; });
    expect("negative mask step, no pixels", StatusBadStep, [](auto& a) {
      a.maskStep = -12, a.roi = {0, 0};
    });
    expect("bad channel, width 0", three ? StatusBadCoi : StatusBadSize,
           [](auto& a) { a.channel = 4, a.roi.width = 0; });
    expect("channel 0, short step", three ? StatusBadCoi : StatusBadSize,
           [](auto& a) { a.channel = 0, a.maskStep = 11; });
    expect("width 0", StatusBadSize, [](auto& a) { a.roi.width = 0; });
    expect("height 0", StatusBadSize, [](auto& a) { a.roi.height = 0; });
    expect("negative height", StatusBadSize, [](auto& a) { a.roi.height = -1; });
    // Oddity: a short step is a bad size in this family, and short only where below the width.
    expect("step below the width", StatusBadSize, [](auto& a) { a.srcStep = 8; });
    expect("step of the width", StatusOk, [](auto& a) { a.srcStep = 12; });
    expect("mask step below the width", StatusBadSize, [](auto& a) { a.maskStep = 11; });
    if (sizeof(T) == 4) expect("uneven step", StatusBadSize, [](auto& a) { a.srcStep = 50; });
    if (two) {
      expect("null second source, step 0", StatusNullPtr,
             [](auto& a) { a.src2 = nullptr, a.srcStep = 0; });
      expect("second step 0, width 0", StatusBadStep,
             [](auto& a) { a.src2Step = 0, a.roi.width = 0; });
      expect("second step below the width", StatusBadSize, [](auto& a) { a.src2Step = 8; });
      if (sizeof(T) == 4)
        expect("uneven second step", StatusBadSize, [](auto& a) { a.src2Step = 50; });
    }
  });
}

TEST_P(Norm, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_norm([&]<class T>(const NormMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130, 400}) {
      Fixture<T> fixture({{width, 5}}, member.channels, width);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(bits_of(fixture.result));
    }
  });
  EXPECT_TRUE(same_hash(0xA64CBB607D35C17F, hash));
}

}  // namespace
}  // namespace nuqi::test

// Tests of the absolute-difference family.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "arith/abs_diff_members.h"
#include "arith/abs_diff_reference.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// The images of one call.
template <class T>
struct Fixture {
  Fixture(const Case& c, uint64_t seed)
      : roi(c.roi), src("source", c, 0), src2("second source", c, 1), dst("destination", c, 2) {
    Random random(seed);
    src.fill([&] { return random.value<T>(); });
    src2.fill([&] { return random.value<T>(); });
    if constexpr (sizeof(T) == 1)
      value = random.between(-7, 300);
    else
      value = random.any_float();
  }
  AbsDiffArgs<T> args() {
    return {src.data(), src.step(), src2.data(), src2.step(), dst.data(), dst.step(), roi, value};
  }
  std::vector<T> expected(const AbsDiffMember<T>& member) {
    return abs_diff_reference(src.pixels(), member.of_images ? src2.pixels() : std::vector<T>{},
                              value);
  }
  WalledImage<T>& output() { return dst; }

  RoiSize roi;
  WalledImage<T> src, src2, dst;
  typename AbsDiffArgs<T>::Value value;
};

class AbsDiff : public EveryIsa {};
NUQI_FOR_EVERY_ISA(AbsDiff);

TEST_P(AbsDiff, AgreesWithTheReference) {
  for_each_abs_diff([]<class T>(const AbsDiffMember<T>& member) {
    for_each_case(member.name, 3, [&](const Case& c) {
      Fixture<T> fixture(c, static_cast<uint64_t>(c.roi.width));
      expect_agreement(member, fixture);
    });
  });
}

TEST_P(AbsDiff, EveryPairOfBytes) {
  std::vector<uint8_t> a(65536), b(65536), dst(65536);
  for (int i = 0; i < 65536; ++i)
    a[i] = static_cast<uint8_t>(i), b[i] = static_cast<uint8_t>(i >> 8);
  ASSERT_EQ(nuqiAbsDiff_8u_C1R(a.data(), 256, b.data(), 256, dst.data(), 256, {256, 256}),
            StatusOk);
  ASSERT_TRUE(same_bits(abs_diff_reference(a, b, 0), dst));
}

TEST_P(AbsDiff, ConstantIsLimitedToBytes) {
  const uint8_t src[3] = {0, 100, 255};
  uint8_t high[3], low[3];
  ASSERT_EQ(nuqiAbsDiffC_8u_C1R(src, 3, high, 3, {3, 1}, 300), StatusOk);
  ASSERT_EQ(nuqiAbsDiffC_8u_C1R(src, 3, low, 3, {3, 1}, INT32_MIN), StatusOk);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(high[i], 255 - src[i]);
    EXPECT_EQ(low[i], src[i]);
  }
}

TEST_P(AbsDiff, ClearsTheSignOfNaNAndZero) {
  using Limits = std::numeric_limits<float>;
  constexpr float inf = Limits::infinity(), nan = Limits::quiet_NaN();
  const float a[4] = {inf, -nan, -0.0f, -inf}, b[4] = {inf, 1.0f, 0.0f, inf};
  float dst[4];
  ASSERT_EQ(nuqiAbsDiff_32f_C1R(a, 16, b, 16, dst, 16, {4, 1}), StatusOk);
  for (float value : dst) EXPECT_FALSE(std::signbit(value));
  EXPECT_TRUE(std::isnan(dst[0]));
  EXPECT_TRUE(std::isnan(dst[1]));
  EXPECT_EQ(dst[3], inf);
}

TEST_P(AbsDiff, DestinationMayBeASource) {
  for_each_abs_diff([]<class T>(const AbsDiffMember<T>& member) {
    for (int padding : {0, 1})
      for (auto source : {&Fixture<T>::src, &Fixture<T>::src2}) {
        if (source == &Fixture<T>::src2 && !member.of_images) continue;
        Fixture<T> fixture({{177, 2}, Wall::after, {padding, padding, padding}}, 5);
        const std::vector<T> expected = fixture.expected(member);
        WalledImage<T>& image = fixture.*source;
        AbsDiffArgs<T> args = fixture.args();
        args.dst = image.data(), args.dstStep = image.step();
        ASSERT_EQ(member.call(args), StatusOk);
        EXPECT_TRUE(same_bits(expected, image.pixels())) << member.name;
      }
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(AbsDiffStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_abs_diff([]<class T>(const AbsDiffMember<T>& member) {
    const bool floats = sizeof(T) == 4;
    const int32_t row = 10 * int{sizeof(T)};
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_status(member, Fixture<T>({{10, 4}}, 7), what, status, spoil);
    };
    expect("null source, width 0", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = 0; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.srcStep = 0; });
    expect("width 0", StatusBadSize, [](auto& a) { a.roi.width = 0; });
    expect("height 0", StatusBadSize, [](auto& a) { a.roi.height = 0; });
    expect("negative height", StatusBadSize, [](auto& a) { a.roi.height = -1; });
    expect("short source row", StatusBadSize, [](auto& a) { a.srcStep = 9, a.roi.height = 1; });
    expect("short destination row", StatusBadSize,
           [](auto& a) { a.dstStep = 9, a.roi.height = 1; });
    if (floats) {
      expect("uneven source step", StatusBadSize, [&](auto& a) { a.srcStep = row + 2; });
      expect("uneven destination step", StatusBadSize, [&](auto& a) { a.dstStep = row + 2; });
    }
    if (member.of_images) {
      expect("null second source, width 0", StatusNullPtr,
             [](auto& a) { a.src2 = nullptr, a.roi.width = 0; });
      expect("short source row by an element", StatusBadSize,
             [&](auto& a) { a.srcStep = row - int{sizeof(T)}; });
      expect("short second row by an element", StatusBadSize,
             [&](auto& a) { a.src2Step = row - int{sizeof(T)}; });
      expect("short destination row by an element", StatusBadSize,
             [&](auto& a) { a.dstStep = row - int{sizeof(T)}; });
      if (floats) {
        expect("uneven second step", StatusBadSize, [&](auto& a) { a.src2Step = row + 2; });
        expect("a width whose row overflows an int", StatusBadSize, [](auto& a) {
          a.roi.width = 1 << 30, a.srcStep = a.src2Step = a.dstStep = INT32_MAX - 3;
        });
      }
    }
  });
}

// Oddity: nuqiAbsDiffC_32f_C1R holds its steps against the width in pixels: rows may overlap.
TEST_P(AbsDiff, AbsDiffC32fTakesOverlappingRows) {
  const std::vector<float> src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  std::vector<float> dst(20, -1.0f);
  ASSERT_EQ(nuqiAbsDiffC_32f_C1R(src.data(), 12, dst.data(), 40, {10, 2}, 3.0f), StatusOk);
  for (int x = 0; x < 10; ++x) {
    EXPECT_EQ(dst[x], std::fabs(src[x] - 3.0f));
    EXPECT_EQ(dst[10 + x], std::fabs(src[3 + x] - 3.0f));
  }
  // The lower row wins where destination rows overlap.
  ASSERT_EQ(nuqiAbsDiffC_32f_C1R(src.data(), 20, dst.data(), 8, {5, 2}, 0.0f), StatusOk);
  EXPECT_EQ(std::vector<float>(dst.begin(), dst.begin() + 7),
            (std::vector<float>{1, 2, 6, 7, 8, 9, 10}));
  EXPECT_EQ(nuqiAbsDiffC_32f_C1R(src.data(), 4, dst.data(), 20, {5, 2}, 0.0f), StatusBadSize);
  EXPECT_EQ(nuqiAbsDiffC_32f_C1R(src.data(), 20, dst.data(), 4, {5, 2}, 0.0f), StatusBadSize);
}

TEST_P(AbsDiff, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_abs_diff([&]<class T>(const AbsDiffMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture<T> fixture({{width, 5}}, width);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(fixture.dst.pixels());
    }
  });
  EXPECT_TRUE(same_hash(0xAC7E7C2EBC280D46, hash));
}

}  // namespace
}  // namespace nuqi::test

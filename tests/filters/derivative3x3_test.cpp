// Tests of the fixed 3x3 derivatives.
#include <gtest/gtest.h>

#include "filters/derivative3x3_members.h"
#include "library/same_bits.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/values.h"
#include "support/walls.h"

namespace nuqi::test {
namespace {

// The images of one call. Source rows get `padding` elements, destination rows as many.
template <class T>
struct Fixture {
  using R = DerivativeResult<T>;

  Fixture(RoiSize size, int padding, Wall wall, uint64_t seed)
      : roi(size),
        src(roi, padding * int{sizeof(T)}, wall),
        dst(roi, padding * int{sizeof(R)}, wall) {
    Random random(seed);
    src.fill([&] { return random.value<T>(); });
  }
  DerivativeArgs<T> args(int32_t bottom_up, int32_t shift) {
    return {src.data(), src.step(), dst.data(), dst.step(), bottom_up, roi, shift};
  }

  RoiSize roi;
  WalledImage<T> src;
  WalledImage<R> dst;
};

class Derivative3x3 : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Derivative3x3);

template <class T>
void expect_agreement(const DerivativeMember<T>& member, Fixture<T>& fixture, int32_t bottom_up,
                      int32_t shift) {
  if (!member.has_bottom_up) bottom_up = 0;
  if (!member.has_shift) shift = 0;
  SCOPED_TRACE(testing::Message() << member.name << " " << fixture.roi.width << "x"
                                  << fixture.roi.height << " src step " << fixture.src.step()
                                  << " bottomUp " << bottom_up << " shift " << shift);
  const auto expected =
      derivative_reference(member.kind, fixture.src.pixels(), fixture.roi, bottom_up, shift);
  ASSERT_EQ(member.call(fixture.args(bottom_up, shift)), StatusOk);
  ASSERT_TRUE(same_bits(expected, fixture.dst.pixels()));
  ASSERT_TRUE(fixture.dst.padding_untouched());
}

TEST_P(Derivative3x3, AgreesWithTheReference) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    for (Wall wall : {Wall::after, Wall::before}) {
      const auto expect = [&](RoiSize roi, int padding, int32_t bottom_up, int32_t shift) {
        Fixture<T> fixture(roi, padding, wall, static_cast<uint64_t>(roi.width) * 100 + roi.height);
        expect_agreement(member, fixture, bottom_up, shift);
      };
      for (int width = 1; width <= 70; ++width)
        expect({width, 3 + width % 3}, width % 4, width % 2, width % 5);
      for (int height : {2, 3, 8, 9, 17, 33}) expect({37, height}, 1, height % 2, 1);
      expect({641, 19}, 0, 1, 3);
      expect({1023, 9}, 3, 0, 0);
    }
  });
}

TEST_P(Derivative3x3, EveryShift) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    if (!member.has_shift) return;
    Fixture<T> fixture({35, 6}, 0, Wall::after, 5);
    for (int32_t bottom_up : {0, 1}) {
      for (int32_t shift = 0; shift <= 34; ++shift)
        expect_agreement(member, fixture, bottom_up, shift);
      for (int32_t shift : {126, 127, 128, 129, 160, INT32_MAX})
        expect_agreement(member, fixture, bottom_up, shift);
    }
  });
}

// Oddity: with bottomUp 1 the end of the last row is shifted first and negated then.
TEST_P(Derivative3x3, ScharrDy8uRoundsTheEndOfTheLastRowTheOtherWay) {
  for (int width : {1, 8, 9, 16, 17}) {
    // Row terms 16 * 0, 16 * 0 and 16 * 1: unnegated sums of 16 in the last two rows.
    const std::vector<uint8_t> src8u = [&] {
      std::vector<uint8_t> pixels(3 * width, 0);
      for (int x = 0; x < width; ++x) pixels[2 * width + x] = 1;
      return pixels;
    }();
    std::vector<int16_t> dst(3 * width);
    ASSERT_EQ(nuqiScharr_Dy_8u16s_C1R(src8u.data(), width, dst.data(), 2 * width, 1, {width, 3}, 5),
              StatusOk);
    for (int x = 0; x < width; ++x) {
      EXPECT_EQ(dst[width + x], -1) << width << " column " << x;
      EXPECT_EQ(dst[2 * width + x], x < 8 * ((width - 1) / 8) ? -1 : 0) << width << " column " << x;
    }
    ASSERT_EQ(nuqiScharr_Dy_8s16s_C1R(reinterpret_cast<const int8_t*>(src8u.data()), width,
                                      dst.data(), 2 * width, 1, {width, 3}, 5),
              StatusOk);
    for (int x = 0; x < width; ++x) EXPECT_EQ(dst[2 * width + x], -1) << width << " column " << x;
  }
}

// Oddity: nuqiSobel3x3_Dx_8u16s_C1R takes an empty row for a row of one pixel.
TEST(Derivative3x3Status, SobelDx8uOfWidth0WritesTheFirstColumn) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    const bool odd = member.kind == DerivativeKind::dx && std::is_same_v<T, uint8_t>;
    Fixture<T> fixture({2, 3}, 0, Wall::after, 1);
    const auto before = fixture.dst.pixels();
    auto expected = before;
    if (odd) expected[0] = expected[2] = expected[4] = 0;
    DerivativeArgs<T> args = fixture.args(0, 0);
    args.roi.width = 0;
    args.srcStep = 0;
    EXPECT_EQ(member.call(args), StatusOk);
    EXPECT_TRUE(same_bits(expected, fixture.dst.pixels())) << member.name;
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(Derivative3x3Status, FirstFailureWinsAndNothingIsWritten) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    const int32_t element = sizeof(T), result = sizeof(DerivativeResult<T>);
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture({10, 4}, 2, Wall::after, 7);
      const auto before = fixture.dst.all_bytes();
      DerivativeArgs<T> args = fixture.args(0, 0);
      spoil(args);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before, fixture.dst.all_bytes()) << member.name << ": " << what;
    };
    expect("null source, height 1", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.height = 1; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.dstStep = 0; });
    expect("negative width", StatusBadSize, [](auto& a) { a.roi.width = -1; });
    expect("height 1", StatusBadSize, [](auto& a) { a.roi.height = 1; });
    expect("height 1, width 0", StatusBadSize, [](auto& a) { a.roi = {0, 1}; });
    expect("short source row", StatusBadSize, [&](auto& a) { a.srcStep = 9 * element; });
    expect("short destination row", StatusBadSize, [&](auto& a) { a.dstStep = 9 * result; });
    expect("uneven destination step", StatusBadSize, [&](auto& a) { a.dstStep = 10 * result + 1; });
    expect("a width whose row overflows an int", StatusBadSize,
           [](auto& a) { a.roi.width = 1 << 30, a.srcStep = INT32_MAX; });
    if (element == 4) {
      expect("half-even source step", StatusBadSize, [](auto& a) { a.srcStep = 42; });
      expect("half-even destination step", StatusBadSize, [](auto& a) { a.dstStep = 42; });
    }
    if (member.has_bottom_up) {
      expect("bottomUp 2, null source", StatusUnsupported,
             [](auto& a) { a.bottomUp = 2, a.src = nullptr; });
      expect("bottomUp -1, height 1", StatusUnsupported,
             [](auto& a) { a.bottomUp = -1, a.roi.height = 1; });
    }
    if (member.has_shift)
      expect("shift -1, null source", StatusUnsupported,
             [](auto& a) { a.shift = -1, a.src = nullptr; });
  });
}

// A large factor's absence: pixels of weight 0 are not multiplied, and a small factor keeps large
// values finite.
TEST_P(Derivative3x3, FloatsOfWeightZeroDoNotCount) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  constexpr float max = std::numeric_limits<float>::max();
  // The middle row counts for no derivative in y of its own pixels, nor the middle column in x.
  const float src[9] = {1, 1, 1, inf, inf, inf, 1, 1, 1};
  const float turned[9] = {1, inf, 1, 1, inf, 1, 1, inf, 1};
  const float large[9] = {max, max, max, max, max, max, max, max, max};
  float dst[9];
  for (int32_t shift : {4, 200}) {
    ASSERT_EQ(nuqiScharr_Dy_32f_C1R(src, 12, dst, 12, 0, {3, 3}, shift), StatusOk);
    EXPECT_EQ(bits_of(dst[4]), bits_of(0.0f));
    ASSERT_EQ(nuqiScharr_Dx_32f_C1R(turned, 12, dst, 12, {3, 3}, shift), StatusOk);
    EXPECT_EQ(bits_of(dst[4]), bits_of(0.0f));
    ASSERT_EQ(nuqiScharr_Dy_32f_C1R(large, 12, dst, 12, 1, {3, 3}, shift), StatusOk);
    EXPECT_EQ(bits_of(dst[4]), bits_of(0.0f));
  }
}

}  // namespace

void hash_derivative3x3(Hash& hash) {
  for_each_derivative([&]<class T>(const DerivativeMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture<T> fixture({width, 11}, width % 3, Wall::after, width);
      ASSERT_EQ(member.call(fixture.args(width % 2, width % 4)), StatusOk);
      hash.add(fixture.dst.pixels());
    }
  });
}

}  // namespace nuqi::test

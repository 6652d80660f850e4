// Tests of the fixed 3x3 derivatives.
#include <gtest/gtest.h>

#include <limits>

#include "filters/derivative3x3_members.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// The images and numbers of one call.
template <class T>
struct Fixture {
  using Result = DerivativeResult<T>;

  Fixture(const Case& c, uint64_t seed, int32_t bottom_up_ = 0, int32_t shift_ = 0)
      : roi(c.roi),
        src("source", c, 0),
        dst("destination", c, 1),
        bottom_up(bottom_up_),
        shift(shift_) {
    Random random(seed);
    src.fill([&] { return random.value<T>(); });
  }
  DerivativeArgs<T> args() {
    return {src.data(), src.step(), dst.data(), dst.step(), bottom_up, roi, shift};
  }
  std::vector<Result> expected(const DerivativeMember<T>& member) {
    return derivative_reference(member.kind, src.pixels(), roi,
                                member.has_bottom_up ? bottom_up : 0, member.has_shift ? shift : 0);
  }
  WalledImage<Result>& output() { return dst; }

  RoiSize roi;
  WalledImage<T> src;
  WalledImage<Result> dst;
  int32_t bottom_up, shift;
};

class Derivative3x3 : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Derivative3x3);

TEST_P(Derivative3x3, AgreesWithTheReference) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    const auto check = [&](const Case& c) {
      if (c.roi.height < 2) return;
      const int32_t bottom_up = c.roi.width / 2 % 2, shift = c.roi.width % 5;
      SCOPED_TRACE(testing::Message() << "bottomUp " << bottom_up << " shift " << shift);
      Fixture<T> fixture(c, static_cast<uint64_t>(c.roi.width), bottom_up, shift);
      expect_agreement(member, fixture);
    };
    // Every remainder of the rows, and images wide enough to be walked in bands of 8 and 16 rows.
    for_each_case(member.name, 2, check,
                  {{129, 6}, {129, 7}, {131, 8}, {131, 9}, {701, 33}, {1023, 10}});
  });
}

TEST_P(Derivative3x3, EveryShift) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    if (!member.has_shift) return;
    SCOPED_TRACE(member.name);
    Fixture<T> fixture({{35, 6}}, 5);
    const auto check = [&](int32_t shift) {
      for (int32_t bottom_up : {0, 1}) {
        fixture.bottom_up = bottom_up, fixture.shift = shift;
        expect_agreement(member, fixture);
      }
    };
    for (int32_t shift = 0; shift <= 34; ++shift) check(shift);
    for (int32_t shift : {126, 127, 128, 129, 160, INT32_MAX}) check(shift);
  });
}

TEST_P(Derivative3x3, PointersNeedNoAlignment) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    using Result = DerivativeResult<T>;
    for (int width : {5, 71}) {
      Fixture<T> fixture({{width, 3}}, width, 0, 1);
      const auto src = fixture.src.all_bytes();
      std::vector<uint8_t> moved_src(src.size() + 1), moved_dst(fixture.dst.all_bytes().size() + 1);
      std::copy(src.begin(), src.end(), moved_src.begin() + 1);
      DerivativeArgs<T> args = fixture.args();
      args.src = reinterpret_cast<const T*>(moved_src.data() + 1);
      args.dst = reinterpret_cast<Result*>(moved_dst.data() + 1);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      ASSERT_EQ(member.call(args), StatusOk);
      EXPECT_EQ(fixture.dst.all_bytes(),
                std::vector<uint8_t>(moved_dst.begin() + 1, moved_dst.end()))
          << member.name << " " << width;
    }
  });
}

// Oddity: nuqiScharr_Dy_8u16s_C1R with bottomUp 1 shifts first and negates then in the last row,
// from column 8 * ((width - 1) / 8) on.
TEST_P(Derivative3x3, ScharrDy8uRoundsTheEndOfTheLastRowTheOtherWay) {
  for (int width : {1, 8, 9, 16, 17}) {
    // Two rows of 0 and one of 1: 16 is negated and divided by 32 in the last two rows.
    std::vector<uint8_t> src(3 * width, 0);
    std::fill(src.end() - width, src.end(), 1);
    std::vector<int16_t> from_8u(3 * width, 0), from_8s(3 * width, 0);
    ASSERT_EQ(
        nuqiScharr_Dy_8u16s_C1R(src.data(), width, from_8u.data(), 2 * width, 1, {width, 3}, 5),
        StatusOk);
    ASSERT_EQ(nuqiScharr_Dy_8s16s_C1R(reinterpret_cast<const int8_t*>(src.data()), width,
                                      from_8s.data(), 2 * width, 1, {width, 3}, 5),
              StatusOk);
    for (int x = 0; x < width; ++x) {
      const int first_odd = width < 9 ? 0 : width < 17 ? 8 : 16;
      EXPECT_EQ(from_8u[width + x], -1) << "width " << width << " column " << x;
      EXPECT_EQ(from_8u[2 * width + x], x < first_odd ? -1 : 0)
          << "width " << width << " column " << x;
      EXPECT_EQ(from_8s[2 * width + x], -1) << "width " << width << " column " << x;
    }
  }
}

TEST_P(Derivative3x3, InfinitiesDoNotReachWeightsOfZero) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  const float row[9] = {1, 1, 1, inf, inf, inf, 1, 1, 1};
  const float column[9] = {1, inf, 1, 1, inf, 1, 1, inf, 1};
  float dst[9];
  for (int32_t shift : {0, 200}) {
    ASSERT_EQ(nuqiScharr_Dy_32f_C1R(row, 12, dst, 12, 0, {3, 3}, shift), StatusOk);
    EXPECT_EQ(bits_of(dst[4]), bits_of(0.0f));
    ASSERT_EQ(nuqiScharr_Dx_32f_C1R(column, 12, dst, 12, {3, 3}, shift), StatusOk);
    EXPECT_EQ(bits_of(dst[4]), bits_of(0.0f));
  }
}

// Of large values too, since the weights hold the factor.
TEST_P(Derivative3x3, ScharrOfAConstantIsZero) {
  const std::vector<float> src(9, std::numeric_limits<float>::max());
  for (int32_t shift : {4, 127, 128}) {
    std::vector<float> dst(9, 5.0f);
    ASSERT_EQ(nuqiScharr_Dy_32f_C1R(src.data(), 12, dst.data(), 12, 1, {3, 3}, shift), StatusOk);
    EXPECT_TRUE(same_bits(std::vector<float>(9, 0.0f), dst)) << "shift " << shift;
  }
}

// Oddity: nuqiSobel3x3_Dx_8u16s_C1R takes an empty row for a row of one pixel.
TEST(Derivative3x3Status, SobelDx8uOfWidth0WritesTheFirstElementOfEveryRow) {
  for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    const bool odd = member.kind == DerivativeKind::dx && std::is_same_v<T, uint8_t>;
    Fixture<T> fixture({{2, 3}}, 1);
    auto expected = fixture.dst.pixels();
    if (odd) expected[0] = expected[2] = expected[4] = 0;
    DerivativeArgs<T> args = fixture.args();
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
      expect_status(member, Fixture<T>({{10, 4}}, 7), what, status, spoil);
    };
    if (member.has_shift) {
      expect("shift -1, null source", StatusUnsupported,
             [](auto& a) { a.shift = -1, a.src = nullptr; });
      expect("lowest shift, height 1", StatusUnsupported,
             [](auto& a) { a.shift = INT32_MIN, a.roi.height = 1; });
    }
    if (member.has_bottom_up) {
      expect("bottomUp 2, null source", StatusUnsupported,
             [](auto& a) { a.bottomUp = 2, a.src = nullptr; });
      expect("bottomUp -1, height 1", StatusUnsupported,
             [](auto& a) { a.bottomUp = -1, a.roi.height = 1; });
    }
    expect("null source, height 1", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.height = 1; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.dstStep = 0; });
    expect("negative width", StatusBadSize, [](auto& a) { a.roi.width = -1; });
    expect("height 1, width 0", StatusBadSize, [](auto& a) { a.roi = {0, 1}; });
    expect("short source row", StatusBadSize, [&](auto& a) { a.srcStep = 9 * element; });
    expect("short destination row", StatusBadSize, [&](auto& a) { a.dstStep = 9 * result; });
    expect("odd destination step", StatusBadSize, [&](auto& a) { a.dstStep = 11 * result + 1; });
    expect("width 0, negative step", StatusBadSize,
           [](auto& a) { a.roi.width = 0, a.srcStep = -4; });
    expect("a width whose row overflows an int", StatusBadSize,
           [](auto& a) { a.roi.width = 1 << 30, a.srcStep = INT32_MAX / 4 * 4, a.dstStep = 0; });
    if (element == 4) {
      expect("source step of half an element", StatusBadSize, [](auto& a) { a.srcStep = 42; });
      expect("destination step of half an element", StatusBadSize, [](auto& a) { a.dstStep = 42; });
    }
  });
}

TEST_P(Derivative3x3, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_derivative([&]<class T>(const DerivativeMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture<T> fixture({{width, 11}}, width, width % 2, width % 4);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(fixture.dst.pixels());
    }
  });
  EXPECT_TRUE(same_hash(0xBF126CE115CA5C46, hash));
}

}  // namespace
}  // namespace nuqi::test

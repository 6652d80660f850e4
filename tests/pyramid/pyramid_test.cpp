// Tests of the Gaussian pyramid.
#include <gtest/gtest.h>

#include "pyramid/pyramid_members.h"
#include "pyramid/pyramid_reference.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

Case with_roi(Case c, RoiSize roi) {
  c.roi = roi;
  return c;
}

// The images of one call. The case's ROI is the smaller one's: of the result down, of the source up.
// The buffer has the queried size; with `odd` it starts at an odd address before its wall.
template <class T>
class Fixture {
 public:
  Fixture(const PyramidMember<T>& member, const Case& c, int odd = 0)
      : roi_(member.up ? c.roi : RoiSize{2 * c.roi.width, 2 * c.roi.height}),
        src_("source", with_roi(c, roi_), 0, member.channels),
        dst_("destination", with_roi(c, member.result(roi_)), 1, member.channels),
        buffer_(buffer_size(member, roi_) + odd, c.wall, "buffer"),
        odd_(odd) {}

  static size_t buffer_size(const PyramidMember<T>& member, RoiSize roi) {
    int32_t size = 0;
    EXPECT_EQ(member.query(roi.width, &size), StatusOk);
    return static_cast<size_t>(size);
  }

  template <class Generate>
  void fill(const Generate& generate) {
    src_.fill(generate);
  }
  PyramidArgs<T> args() {
    return {src_.data(), src_.step(), dst_.data(), dst_.step(), roi_, buffer_.data() + odd_};
  }
  std::vector<T> expected(const PyramidMember<T>& member) {
    return pyramid_reference(src_.pixels(), roi_, member.channels, member.up);
  }
  WalledImage<T>& output() { return dst_; }

 private:
  RoiSize roi_;
  WalledImage<T> src_, dst_;
  WalledBytes buffer_;
  int odd_;
};

class Pyramid : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Pyramid);

// Small values show the order of additions of floats; extremes show sums that wrap, infinities and NaN.
TEST_P(Pyramid, AgreesWithTheReference) {
  Random random(1);
  for_each_pyramid([&]<class T>(const PyramidMember<T>& member) {
    const auto check = [&](const Case& c) {
      Fixture<T> fixture(member, c, c.roi.width % 4);
      fixture.fill([&] { return random.value<T>(); });
      expect_agreement(member, fixture);
      if constexpr (std::is_same_v<T, float>) {
        fixture.fill([&] { return random.plain_float(); });
        expect_agreement(member, fixture);
      }
    };
    // Heights around those of the bands that kernels walk.
    std::vector<RoiSize> more = {{33, 16}, {34, 17}, {2, 33}, {1, 1}, {1, 2}, {65, 9}};
    for (int width = 71; width <= 134; width += 3) more.push_back({width, 2});
    for_each_case(member.name, 2, check, more);
  });
}

// All weights add up to a power of two, those of the edges too.
TEST_P(Pyramid, ConstantImageStaysConstant) {
  for_each_pyramid([]<class T>(const PyramidMember<T>& member) {
    using Limits = std::numeric_limits<T>;
    for (T value : {Limits::lowest(), Limits::max(), T{1}}) {
      if (std::is_same_v<T, float>) value = value < 0 ? -0x1p100f : 0x1p-100f;  // sums are exact
      for (RoiSize roi : {RoiSize{1, 1}, {2, 5}, {40, 3}}) {
        Fixture<T> fixture(member, Case{roi});
        fixture.fill([&] { return value; });
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        for (T pixel : fixture.output().pixels()) ASSERT_EQ(pixel, value) << member.name;
      }
    }
  });
}

// Oddity: up mirrors at the left and the top, and repeats the last pixel at the right and the bottom.
TEST_P(Pyramid, UpTreatsItsEdgesDifferently) {
  const uint8_t line[3] = {0, 64, 128};
  const std::vector<uint8_t> along = {16, 32, 64, 96, 120, 128};
  uint8_t result[12], buffer[3 * 128];
  ASSERT_EQ(nuqiPyrUp_Gauss5x5_8u_C1R(line, 3, result, 6, {3, 1}, buffer), StatusOk);
  EXPECT_EQ(std::vector<uint8_t>(result, result + 6), along);
  ASSERT_EQ(nuqiPyrUp_Gauss5x5_8u_C1R(line, 1, result, 2, {1, 3}, buffer), StatusOk);
  for (size_t y = 0; y < 6; ++y) EXPECT_EQ(result[2 * y], along[y]);
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(PyramidStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_pyramid([]<class T>(const PyramidMember<T>& member) {
    constexpr int e = sizeof(T);
    const int n = member.channels;
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_status(member, Fixture<T>(member, Case{{10, 4}}), what, status, spoil);
    };
    expect("null source, negative width", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -2; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.srcStep = 0; });
    expect("null buffer, negative height", StatusNullPtr,
           [](auto& a) { a.buffer = nullptr, a.roi.height = -2; });
    expect("null buffer, empty ROI", StatusNullPtr,
           [](auto& a) { a.buffer = nullptr, a.roi.height = 0; });
    expect("negative width, height 0", StatusBadSize, [](auto& a) { a.roi = {-2, 0}; });
    expect("negative height, width 0", StatusBadSize, [](auto& a) { a.roi = {0, -2}; });
    // A bad step is a bad size, and comes before the empty ROI.
    expect("short source row, height 0", StatusBadSize,
           [&](auto& a) { a.srcStep = a.roi.width * n * e - e, a.roi.height = 0; });
    expect("short destination row, height 0", StatusBadSize,
           [&](auto& a) { a.dstStep = member.result(a.roi).width * n * e - e, a.roi.height = 0; });
    expect("negative step, width 0", StatusBadSize,
           [](auto& a) { a.srcStep = -4, a.roi.width = 0; });
    expect("a width whose row overflows an int", StatusBadSize, [&](auto& a) {
      a.roi.width = n * e == 1 ? INT32_MAX - 1 : INT32_MAX / (2 * n * e) * 2 + 2;
      a.srcStep = a.dstStep = INT32_MAX - 3;
    });
    expect("width 0", StatusOk, [](auto& a) { a.roi.width = 0; });
    expect("height 0", StatusOk, [](auto& a) { a.roi.height = 0; });
    if (e == 4) {
      expect("uneven source step, width 0", StatusBadSize,
             [](auto& a) { a.srcStep += 2, a.roi.width = 0; });
      expect("uneven destination step, width 0", StatusBadSize,
             [](auto& a) { a.dstStep += 2, a.roi.width = 0; });
    }
    if (!member.up) {
      expect("odd width, height 0", StatusBadSize,
             [](auto& a) { a.roi.width = 9, a.roi.height = 0; });
      expect("odd height, width 0", StatusBadSize,
             [](auto& a) { a.roi.height = 3, a.roi.width = 0; });
    }
  });
}

// Oddity: all failures but the first store 0.
TEST(PyramidStatus, FirstFailureWinsAndSizeIs0) {
  const auto expect = [](auto query, int32_t width, int32_t type, int32_t channels,
                         StatusCode status, int32_t expected) {
    int32_t size = 77;
    EXPECT_EQ(query(width, type, channels, &size), status);
    EXPECT_EQ(size, expected) << width << " type " << type << " channels " << channels;
  };
  const auto down = nuqiPyrDownGetBufSize_Gauss5x5, up = nuqiPyrUpGetBufSize_Gauss5x5;
  for (auto query : {down, up}) {
    EXPECT_EQ(query(-1, 0, 0, nullptr), StatusNullPtr);
    expect(query, -2, 9, 2, StatusBadSize, 0);
    expect(query, INT32_MIN, 0, 0, StatusBadSize, 0);
    for (int channels : {-1, 0, 2, 4}) expect(query, 8, 5, channels, StatusBadChannels, 0);
    for (int type : {-1, 0, 3, 8, 10}) expect(query, 8, type, 3, StatusBadDataType, 0);
    expect(query, INT32_MAX - 1, 1, 4, StatusBadChannels, 0);
    expect(query, INT32_MAX - 1, 5, 3, StatusBadDataType, 0);
    for (int type : {1, 2, 9}) expect(query, INT32_MAX - 1, type, 3, StatusBadSize, 0);
  }
  expect(down, 9, 5, 2, StatusBadSize, 0);
  expect(up, 9, 1, 2, StatusBadChannels, 0);

  // The largest sizes that an int can tell, and what lies beyond.
  expect(down, 357913888, 1, 1, StatusOk, 2147483616);
  expect(down, 357913890, 1, 1, StatusBadSize, 0);
  expect(up, 89478472, 9, 1, StatusOk, 2147483616);
  expect(up, 89478473, 9, 1, StatusBadSize, 0);

  for (int channels : {1, 3})
    for (int width = 0; width <= 400; ++width) {
      const auto up16 = [](int bytes) { return (bytes + 15) / 16 * 16; };
      for (int type : {1, 2, 9}) {
        expect(up, width, type, channels, StatusOk, 3 * up16(channels * (width * 8 + 96)));
        if (width % 2 != 0) continue;
        const int half = width / 2, row = type == 9 ? half * 4 + 96 : half * 2 + 48;
        expect(down, width, type, channels, StatusOk, 6 * up16(channels * row));
      }
    }
}

TEST_P(Pyramid, GivesTheSameBitsEverywhere) {
  Hash hash;
  Random random(2);
  for_each_pyramid([&]<class T>(const PyramidMember<T>& member) {
    for (int width : {1, 2, 7, 16, 37, 130}) {
      Fixture<T> fixture(member, Case{{width, 18}}, width % 2);
      fixture.fill([&] { return random.value<T>(); });
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(fixture.output().pixels());
    }
  });
  EXPECT_TRUE(same_hash(0xDCC794BC1FE8C7C, hash));
}

}  // namespace
}  // namespace nuqi::test

// Tests of Canny.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>

#include "features/canny.h"
#include "features/canny_members.h"
#include "features/canny_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

int32_t buffer_size(RoiSize roi) {
  int32_t size = 0;
  EXPECT_EQ(nuqiCannyGetSize(roi, &size), StatusOk);
  return size;
}

// The images of one call, and a buffer of the queried size that ends, or starts, at a wall. With
// `odd` it starts at an odd address before that wall.
struct Fixture {
  explicit Fixture(const Case& c, int odd = 0)
      : roi(c.roi),
        dx("dx", c, 0),
        dy("dy", c, 0),  // walked by each other's steps
        dst("destination", c, 1),
        buffer(static_cast<size_t>(buffer_size(roi)) + odd, c.wall, "buffer"),
        odd(odd) {
    std::memset(buffer.data(), 0xA5, buffer.size());
  }
  CannyArgs args(float low, float high) {
    return {dx.data(),  dx.step(), dy.data(), dy.step(), dst.data(),
            dst.step(), roi,       low,       high,      buffer.data() + odd};
  }
  std::vector<uint8_t> expected(float low, float high) {
    return canny_reference(dx.data(), dx.step(), dy.data(), dy.step(), roi, low, high);
  }
  void expect_agreement(float low, float high, const char* image) {
    SCOPED_TRACE(testing::Message() << image << " thresholds " << low << " " << high);
    const Running now("nuqiCanny_16s8u_C1R", roi);
    ASSERT_EQ(call_canny(args(low, high)), StatusOk);
    ASSERT_TRUE(same_bits(expected(low, high), dst.pixels()));
    ASSERT_TRUE(dst.padding_untouched());
  }

  RoiSize roi;
  WalledImage<int16_t> dx, dy;
  WalledImage<uint8_t> dst;
  WalledBytes buffer;
  int odd;
};

// Pairs of derivatives: any values; few values, so that neighbours tie; mostly flat ones. Between the
// thresholds lie weak pixels and strong ones.
struct Picture {
  const char* name;
  int16_t (*value)(Random&);
  float low, high;
};
const Picture kPictures[] = {
    {"extremes", [](Random& random) { return random.integer<int16_t>(); }, 100, 32766},
    {"ties", [](Random& random) { return static_cast<int16_t>(random.between(-3, 3)); }, 0.5f, 4},
    {"sparse",
     [](Random& random) {
       return static_cast<int16_t>(random.between(0, 2) ? 0 : random.between(-300, 300));
     },
     10, 400},
};
constexpr float kThresholds[][2] = {{0, 0},
                                    {0.9f, 0.9f},
                                    {1, 2.5f},
                                    {50, 250},
                                    {100, 40000},
                                    {0, 30000},
                                    {32766, 32766.5f},
                                    {32767, 1e9f},
                                    {kInfinity, kInfinity}};

class Canny : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Canny);

TEST_P(Canny, AgreesWithTheReference) {
  Random random(1);
  const auto check = [&](const Case& c) {
    for (const Picture& picture : kPictures) {
      Fixture fixture(c, c.roi.width % 4);
      fixture.dx.fill([&] { return picture.value(random); });
      fixture.dy.fill([&] { return picture.value(random); });
      const auto& thresholds = kThresholds[random.between(0, std::size(kThresholds) - 1)];
      fixture.expect_agreement(0, 0, picture.name);
      fixture.expect_agreement(picture.low, picture.high, picture.name);
      fixture.expect_agreement(thresholds[0], thresholds[1], picture.name);
    }
  };
  std::vector<RoiSize> more = {{1, 500}, {333, 40}, {1030, 12}};
  for (int width = 71; width <= 140; ++width) more.push_back({width, 1 + width * 7 % 9});
  for_each_case("nuqiCanny_16s8u_C1R", 2, check, more);
}

// For every |dx| the values of |dy| at and beside both slopes.
TEST_P(Canny, EveryDirectionTest) {
  constexpr int kSpots = 512;  // spots of 3x3 pixels a row
  constexpr int kMost = 32768;
  const RoiSize roi = {3 * kSpots, 3 * ((kMost + 1) * 6 / kSpots + 1)};
  struct Offset {
    int x, y;
  };
  for (const Offset beside : {Offset{1, 0}, {1, 1}, {0, 1}, {-1, 1}}) {
    Fixture fixture(Case{roi});
    std::vector<int16_t> dx(static_cast<size_t>(roi.width) * roi.height), dy = dx;
    Random random(2);
    int spot = 0;
    for (int64_t size = 0; size <= kMost; ++size)
      for (int slope : {1697, 9889})
        for (int side : {-1, 0, 1}) {
          const int64_t other = std::clamp<int64_t>(size * slope / 4096 + side, 0, kMost);
          const auto sign = [&](int64_t value) {
            const bool minus = value == kMost || (value != 0 && random.bits() % 2);
            return static_cast<int16_t>(minus ? -value : value);
          };
          const int x = 3 * (spot % kSpots) + 1, y = 3 * (spot / kSpots) + 1;
          const size_t at = static_cast<size_t>(y) * roi.width + x;
          dx[at] = sign(size);
          dy[at] = sign(other);
          dx[at + beside.y * roi.width + beside.x] = INT16_MAX;
          ++spot;
        }
    fixture.dx.fill([&, i = 0]() mutable { return dx[i++]; });
    fixture.dy.fill([&, i = 0]() mutable { return dy[i++]; });
    fixture.expect_agreement(0, 0, "spots");
  }
}

// A strong row at either end of a weak line that winds through the whole image. The line takes an even
// row but for its ends and one pixel of an odd row, right and left by turns, so that all of it stays.
TEST_P(Canny, FollowsALineToItsEnd) {
  constexpr int kHeight = 41;
  for (int width : {20, 63, 64, 65, 128, 130, 700})
    for (int strong_row : {0, kHeight - 1}) {
      Fixture fixture(Case{{width, kHeight}});
      std::vector<int16_t> dx, dy;
      std::vector<uint8_t> line;
      for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < width; ++x) {
          const auto turn = [&](int row) { return row % 4 == 1 ? width - 1 : 0; };
          const bool odd = y % 2 == 1;
          const bool on_line = odd ? x == turn(y) : x != turn(y + 1) && x != turn(y + 3);
          dx.push_back(on_line && odd ? 100 : 0);
          dy.push_back(on_line && !odd ? (y == strong_row ? 200 : 100) : 0);
          line.push_back(on_line ? 255 : 0);
        }
      fixture.dx.fill([&, i = 0]() mutable { return dx[i++]; });
      fixture.dy.fill([&, i = 0]() mutable { return dy[i++]; });
      ASSERT_EQ(call_canny(fixture.args(50, 150)), StatusOk);
      ASSERT_TRUE(same_bits(line, fixture.dst.pixels())) << width << " from row " << strong_row;
    }
}

// The narrowest rows leave the least room: nothing is spare in a buffer for one column, where every
// pixel stays.
TEST_P(Canny, FillsTheStackAndStaysInTheBuffer) {
  for (int height : {1, 2, 41, 1000}) {
    for (Wall wall : {Wall::after, Wall::before}) {
      Fixture fixture(Case{{1, height}, wall});
      fixture.dx.fill([] { return int16_t{9}; });
      fixture.dy.fill([] { return int16_t{0}; });
      ASSERT_EQ(call_canny(fixture.args(1, 2)), StatusOk);
      ASSERT_EQ(fixture.dst.pixels(), std::vector<uint8_t>(height, 255));
    }
  }
}

TEST(CannyBuffer, HoldsAllItsParts) {
  for (int width = 1; width <= 300; ++width)
    for (int height = 1; height <= 300; ++height) {
      CannyPlan plan = {};
      ASSERT_TRUE(plan_canny({width, height}, plan));
      ASSERT_LE(plan.end, plan.size) << width << "x" << height;
      ASSERT_EQ(plan.size, buffer_size({width, height}));
      ASSERT_EQ(plan.size, 12 * (width + 2) * (height + 2));
    }
}

// Oddity: the magnitude pass walks each derivative image by the step of the other.
TEST_P(Canny, MagnitudesTakeStepsCrosswise) {
  for (int width : {5, 40, 90}) {
    const RoiSize wide = {width + 7, 12}, roi = {width, 12};
    Fixture fixture(Case{wide});
    Random random(3);
    fixture.dx.fill([&] { return static_cast<int16_t>(random.between(-300, 300)); });
    fixture.dy.fill([&] { return static_cast<int16_t>(random.between(-300, 300)); });
    CannyArgs args = fixture.args(100, 200);
    args.roi = roi;
    args.dxStep = 2 * roi.width + 4;
    WalledImage<uint8_t> dst("destination", Case{roi, Wall::after, {1}});
    args.dst = dst.data(), args.dstStep = dst.step();
    ASSERT_EQ(call_canny(args), StatusOk);
    const auto expected =
        canny_reference(args.dx, args.dxStep, args.dy, args.dyStep, roi, args.low, args.high);
    ASSERT_TRUE(same_bits(expected, dst.pixels()));
    const auto plain =
        canny_reference(args.dx, args.dxStep, args.dy, args.dxStep, roi, args.low, args.high);
    ASSERT_NE(expected, plain) << "the picture does not tell";
  }
}

// Oddity: two equal magnitudes suppress each other; of 1, however the marks are stored.
TEST_P(Canny, OfTwoEqualNeighboursNeitherIsAnEdge) {
  const auto edges = [](int16_t left, int16_t right) {
    const int16_t dx[4] = {0, left, right, 0}, dy[4] = {};
    uint8_t dst[4] = {7, 7, 7, 7}, buffer[12 * 6 * 3];
    EXPECT_EQ(nuqiCanny_16s8u_C1R(dx, 8, dy, 8, dst, 4, {4, 1}, 0.9f, 0.9f, buffer), StatusOk);
    return std::vector<uint8_t>(dst, dst + 4);
  };
  EXPECT_EQ(edges(1, 1), (std::vector<uint8_t>{0, 0, 0, 0}));
  EXPECT_EQ(edges(1020, 1020), (std::vector<uint8_t>{0, 0, 0, 0}));
  EXPECT_EQ(edges(1020, 1021), (std::vector<uint8_t>{0, 0, 255, 0}));
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(CannyStatus, FirstFailureWinsAndNothingIsWritten) {
  const auto expect = [](const char* what, StatusCode status, auto spoil) {
    Fixture fixture(Case{{10, 4}});
    fixture.dx.fill([] { return int16_t{100}; });
    fixture.dy.fill([] { return int16_t{0}; });
    const auto bytes = [&] {
      auto all = fixture.dst.all_bytes();
      all.insert(all.end(), fixture.buffer.data(), fixture.buffer.data() + fixture.buffer.size());
      return all;
    };
    const auto before = bytes();
    CannyArgs args = fixture.args(10, 20);
    spoil(args);
    EXPECT_EQ(call_canny(args), status) << what;
    EXPECT_EQ(before == bytes(), status != StatusOk) << what;
  };
  expect("null dx, width 0", StatusNullPtr, [](auto& a) { a.dx = nullptr, a.roi.width = 0; });
  expect("null dy, short step", StatusNullPtr, [](auto& a) { a.dy = nullptr, a.dxStep = 0; });
  expect("null destination, low -1", StatusNullPtr, [](auto& a) { a.dst = nullptr, a.low = -1; });
  expect("null buffer, height 0", StatusNullPtr,
         [](auto& a) { a.buffer = nullptr, a.roi.height = 0; });
  expect("width 0, low -1", StatusBadSize, [](auto& a) { a.roi.width = 0, a.low = -1; });
  expect("height 0, low -1", StatusBadSize, [](auto& a) { a.roi.height = 0, a.low = -1; });
  expect("negative width, high NaN", StatusBadSize,
         [](auto& a) { a.roi.width = -1, a.high = kNaN; });
  expect("short dx row, low -1", StatusBadSize, [](auto& a) { a.dxStep = 18, a.low = -1; });
  expect("short dy row, low -1", StatusBadSize, [](auto& a) { a.dyStep = 18, a.low = -1; });
  expect("short destination row, low -1", StatusBadSize,
         [](auto& a) { a.dstStep = 9, a.low = -1; });
  expect("odd dx step, high below low", StatusBadSize, [](auto& a) { a.dxStep = 21, a.high = 9; });
  expect("odd dy step, high below low", StatusBadSize, [](auto& a) { a.dyStep = 21, a.high = 9; });
  expect("a ROI whose buffer exceeds an int, low -1", StatusBadSize, [](auto& a) {
    a.roi = {59652322, 1}, a.low = -1;
    a.dxStep = a.dyStep = a.dstStep = 2 * a.roi.width;
  });
  expect("a width whose row overflows an int", StatusBadSize, [](auto& a) {
    a.roi = {1 << 30, 1 << 30}, a.dxStep = a.dyStep = a.dstStep = INT32_MAX - 1;
  });
  expect("low -1", StatusUnsupported, [](auto& a) { a.low = -1; });
  expect("low -0.5, which would truncate to 0", StatusUnsupported, [](auto& a) { a.low = -0.5f; });
  expect("low NaN", StatusUnsupported, [](auto& a) { a.low = kNaN; });
  expect("high NaN", StatusUnsupported, [](auto& a) { a.high = kNaN; });
  expect("high below low, where both truncate to 10", StatusUnsupported,
         [](auto& a) { a.low = 10.5f, a.high = 10.25f; });
  expect("low equal to high", StatusOk, [](auto& a) { a.high = a.low; });
  expect("low -0.0", StatusOk, [](auto& a) { a.low = -0.0f; });
  expect("high infinite", StatusOk, [](auto& a) { a.high = kInfinity; });
}

// Oddity: the query tests the size before the pointer.
TEST(CannyStatus, QueryTestsTheSizeFirst) {
  EXPECT_EQ(nuqiCannyGetSize({0, 5}, nullptr), StatusBadSize);
  EXPECT_EQ(nuqiCannyGetSize({5, 0}, nullptr), StatusBadSize);
  EXPECT_EQ(nuqiCannyGetSize({INT32_MAX, INT32_MAX}, nullptr), StatusBadSize);
  EXPECT_EQ(nuqiCannyGetSize({5, 5}, nullptr), StatusNullPtr);
}

TEST(CannyStatus, QueryRefusesWhatAnIntCannotTell) {
  constexpr int32_t kWraps = (1u << 31) - 2;  // 12 * (width + 2) * (height + 2) is 0 in 64 bits
  int32_t size = 77;
  EXPECT_EQ(nuqiCannyGetSize({59652322, 1}, &size), StatusBadSize);
  EXPECT_EQ(nuqiCannyGetSize({kWraps, kWraps}, &size), StatusBadSize);
  EXPECT_EQ(nuqiCannyGetSize({-1, 1}, &size), StatusBadSize);
  EXPECT_EQ(size, 77);
  EXPECT_EQ(nuqiCannyGetSize({59652321, 1}, &size), StatusOk);
  EXPECT_EQ(size, 2147483628);
}

TEST_P(Canny, GivesTheSameBitsEverywhere) {
  Hash hash;
  Random random(4);
  for (const Picture& picture : kPictures)
    for (int width : {1, 7, 16, 37, 64, 130}) {
      Fixture fixture(Case{{width, 11}}, width % 2);
      fixture.dx.fill([&] { return picture.value(random); });
      fixture.dy.fill([&] { return picture.value(random); });
      ASSERT_EQ(call_canny(fixture.args(picture.low, picture.high)), StatusOk);
      hash.add(fixture.dst.pixels());
    }
  EXPECT_TRUE(same_hash(0x61A768FE55610C05, hash));
}

}  // namespace
}  // namespace nuqi::test

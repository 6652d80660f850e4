// Tests of the distance transforms.
#include <gtest/gtest.h>

#include <bit>
#include <limits>

#include "features/distance_transform_members.h"
#include "features/distance_transform_reference.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// The images of a call, and its weights at an odd address before a wall: no more of them than a member
// reads.
struct Fixture {
  Fixture(const DistanceMember& member, const Case& c)
      : roi(c.roi),
        weights(member.weights, 1.0f),
        src("source", c, 0),
        dst("destination", c, 1),
        room(sizeof(float) * member.weights + 1, Wall::after, "metrics") {}

  DistanceArgs args() {
    // A wall ends an odd number of bytes that starts at an odd address.
    std::memcpy(room.data() + 1, weights.data(), room.size() - 1);
    return {src.data(), src.step(), dst.data(),
            dst.step(), roi,        reinterpret_cast<const float*>(room.data() + 1)};
  }
  std::vector<float> expected(const DistanceMember&) {
    return distance_reference(src.pixels(), roi, weights);
  }
  WalledImage<float>& output() { return dst; }

  RoiSize roi;
  std::vector<float> weights;
  WalledImage<uint8_t> src;
  WalledImage<float> dst;
  WalledBytes room;
};

// Sets of three; the 3x3 transform takes the first two. Largest and smallest weights, weights that make
// ways around corners or knight's moves cheapest, sums that end just below and above the largest distance.
constexpr float kTie = 1 + 0x1p-19f;  // halfway between two units
constexpr float kWeights[][3] = {
    {0.955f, 1.3693f, 2.1969f},
    {1, 1.4f, 2.1969f},
    {4096, 4096, 4096},
    {1, 4096, 4096},
    {4096, 4096, 0x1p-18f},
    {1, 1.4f, 0x1p-18f},
    {0, 0, 0},
    {4096, 0.5f, 4096},
    {5, 4096, 4096},
    {5, 0.25f, 4096},
    {4095.99f, 1, 0.01f},
    {2047.9f, 2048.1f, 3000},
    {kTie, kTie + 0x1p-18f, 3},
    {63.99f, 64.01f, 99},
    {0x1p-18f, 0, 1},
    {100, 200, 0.125f},
};

// The share of features, in 1/1000; the others are set to any other value.
void draw(Fixture& fixture, int features, Random& random) {
  fixture.src.fill([&] {
    return static_cast<uint8_t>(random.between(1, 1000) <= features ? 0 : random.between(1, 255));
  });
}

class DistanceTransform : public EveryIsa {};
NUQI_FOR_EVERY_ISA(DistanceTransform);

TEST_P(DistanceTransform, AgreesWithTheReference) {
  // Rows that end with a block, shortly before and behind it, for every number of lanes.
  std::vector<RoiSize> more = {{8, 300}, {400, 40}};
  for (int width : {255, 259, 260, 261, 519, 527, 528, 529, 1023, 1024, 1039, 1040, 1041, 1055,
                    1056, 1057, 2080, 2081})
    more.push_back({width, 1 + width % 4});
  for (const DistanceMember& member : kDistanceTransforms) {
    Random random(1);
    const auto check = [&](const Case& c) {
      Fixture fixture(member, c);
      for (int features : {300, 15, 1}) {
        draw(fixture, features, random);
        const auto& weights = kWeights[random.between(0, std::size(kWeights) - 1)];
        fixture.weights.assign(weights, weights + member.weights);
        SCOPED_TRACE(testing::Message() << weights[0] << ", " << weights[1] << ", " << weights[2]);
        expect_agreement(member, fixture);
      }
    };
    for_each_case(member.name, 2, check, more);
  }
}

// All weights on one picture with few features.
TEST_P(DistanceTransform, EveryWeight) {
  for (const DistanceMember& member : kDistanceTransforms)
    for (const auto& weights : kWeights)
      for (int width : {5, 37, 150, 1057, 2081}) {
        Random random(2);
        Fixture fixture(member, Case{{width, 21}});
        draw(fixture, width < 100 ? 10 : 2, random);
        fixture.weights.assign(weights, weights + member.weights);
        SCOPED_TRACE(testing::Message() << weights[0] << ", " << weights[1] << ", " << weights[2]);
        expect_agreement(member, fixture);
      }
}

// A lone feature anywhere, in a row cut into several blocks and in a narrow one.
TEST_P(DistanceTransform, EveryPlaceOfAFeature) {
  for (const DistanceMember& member : kDistanceTransforms)
    for (const RoiSize roi : {RoiSize{1100, 1}, {300, 2}, {37, 7}, {3, 5}})
      for (int place = 0; place < roi.width * roi.height; ++place) {
        Fixture fixture(member, Case{roi});
        fixture.src.fill([&, i = 0]() mutable { return i++ == place ? 0 : 255; });
        SCOPED_TRACE(place);
        ASSERT_NO_FATAL_FAILURE(expect_agreement(member, fixture));
      }
}

TEST_P(DistanceTransform, NoFeaturesAndNothingElse) {
  for (const DistanceMember& member : kDistanceTransforms)
    for (int width : {1, 20, 700})
      for (uint8_t value : {0, 255}) {
        Fixture fixture(member, Case{{width, 4}});
        fixture.src.fill([&] { return value; });
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        EXPECT_EQ(fixture.dst.pixels(), std::vector<float>(width * 4, value == 0 ? 0.0f : 4096.0f));
      }
}

// Around a lone feature, what the metrics are named after; and to the last bit.
TEST_P(DistanceTransform, Metrics) {
  const auto distances = [](int32_t type) {
    const DistanceMember& member = kDistanceTransforms[type == 52];
    Fixture fixture(member, Case{{41, 41}});
    fixture.src.fill([&, i = 0]() mutable { return i++ == 20 * 41 + 20 ? 0 : 255; });
    EXPECT_EQ(nuqiGetDistanceTransformMask(type, fixture.weights.data()), StatusOk);
    EXPECT_EQ(member.call(fixture.args()), StatusOk);
    return fixture.dst.pixels();
  };
  const auto chessboard = distances(30), city = distances(31);
  for (int i = 0; i < 41 * 41; ++i) {
    const int dx = std::abs(i % 41 - 20), dy = std::abs(i / 41 - 20);
    ASSERT_EQ(chessboard[i], std::max(dx, dy));
    ASSERT_EQ(city[i], dx + dy);
  }
  EXPECT_EQ(distances(32)[21 * 41 + 21], 1.3693008422851562f);
  EXPECT_EQ(distances(52)[22 * 41 + 21], 575904 * 0x1p-18f);
}

// Beyond the supported weights any distances may come, but nothing is undefined.
TEST_P(DistanceTransform, AnyFloatIsAWeight) {
  Random random(3);
  for (const DistanceMember& member : kDistanceTransforms)
    for (int i = 0; i < 100; ++i) {
      Fixture fixture(member, Case{{random.between(1, 90), 5}});
      draw(fixture, 50, random);
      for (float& weight : fixture.weights) weight = random.any_float() * 10000;
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      for (float distance : fixture.dst.pixels()) ASSERT_TRUE(distance >= 0 && distance <= 4096);
    }
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(DistanceTransformStatus, FirstFailureWinsAndNothingIsWritten) {
  for (const DistanceMember& member : kDistanceTransforms) {
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_status(member, Fixture(member, Case{{10, 4}}), what, status, spoil);
    };
    expect("null source, width -1", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -1; });
    expect("null destination, short source row", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.srcStep = 9; });
    expect("null metrics, empty", StatusNullPtr,
           [](auto& a) { a.metrics = nullptr, a.roi.height = 0; });
    expect("width -1", StatusBadSize, [](auto& a) { a.roi.width = -1; });
    expect("height -1, width 0", StatusBadSize, [](auto& a) { a.roi = {0, -1}; });
    expect("short source row", StatusBadSize, [](auto& a) { a.srcStep = 9; });
    expect("short destination row", StatusBadSize, [](auto& a) { a.dstStep = 36; });
    expect("uneven destination step", StatusBadSize, [](auto& a) { a.dstStep = 42; });
    expect("uneven destination step, empty", StatusBadSize,
           [](auto& a) { a.dstStep = 42, a.roi.height = 0; });
    expect("a width whose row overflows an int", StatusBadSize,
           [](auto& a) { a.roi.width = 1 << 30, a.srcStep = INT32_MAX, a.dstStep = 0; });
    expect("empty", StatusOk, [](auto& a) { a.roi.height = 0; });
  }
}

TEST(DistanceTransformStatus, MaskTypes) {
  const auto bits = [](int32_t type) {
    float weights[4] = {-1, -1, -1, -1};
    EXPECT_EQ(nuqiGetDistanceTransformMask(type, weights), StatusOk);
    std::vector<uint32_t> all;
    for (float weight : weights) all.push_back(std::bit_cast<uint32_t>(weight));
    return all;
  };
  constexpr uint32_t kOne = 0x3F800000, kTwo = 0x40000000, kLeft = 0xBF800000;
  EXPECT_EQ(bits(30), (std::vector<uint32_t>{kOne, kOne, kLeft, kLeft}));
  EXPECT_EQ(bits(31), (std::vector<uint32_t>{kOne, kTwo, kLeft, kLeft}));
  EXPECT_EQ(bits(32), (std::vector<uint32_t>{0x3F747AE1, 0x3FAF4539, kLeft, kLeft}));
  EXPECT_EQ(bits(52), (std::vector<uint32_t>{kOne, 0x3FB33333, 0x400C9A02, kLeft}));

  float weights[3] = {7, 7, 7};
  for (int32_t type : {-1, 0, 3, 29, 33, 50, 51, 53, 99, INT32_MAX})
    EXPECT_EQ(nuqiGetDistanceTransformMask(type, weights), StatusBadArg) << type;
  EXPECT_EQ(std::vector<float>(weights, weights + 3), std::vector<float>(3, 7.0f));
  EXPECT_EQ(nuqiGetDistanceTransformMask(99, nullptr), StatusNullPtr);
}

TEST_P(DistanceTransform, GivesTheSameBitsEverywhere) {
  Hash hash;
  Random random(4);
  for (const DistanceMember& member : kDistanceTransforms)
    for (const auto& weights : kWeights)
      for (int width : {1, 7, 16, 37, 64, 130, 1111}) {
        Fixture fixture(member, Case{{width, 5}});
        draw(fixture, 20, random);
        fixture.weights.assign(weights, weights + member.weights);
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        hash.add(fixture.dst.pixels());
      }
  EXPECT_TRUE(same_hash(0xC115B9A422998065, hash));
}

}  // namespace
}  // namespace nuqi::test

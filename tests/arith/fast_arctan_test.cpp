// Tests of the fast arctangent.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "arith/fast_arctan_reference.h"
#include "nuqi/nuqi.h"
#include "support/comparison.h"
#include "support/crash.h"
#include "support/every_isa.h"
#include "support/values.h"
#include "support/walls.h"

namespace nuqi::test {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kSpecial[] = {0.0f,  1.0f,   0.5f,  1e-30f, 1e-45f, 1e-8f, 9.99999993922529e-09f,
                              3e-9f, 255.0f, 1e30f, 3e38f,  kInf,   kNaN,  0.99999994f};

// Every pair of special values and signs, then noise.
struct Vectors {
  explicit Vectors(size_t noise) {
    for (float a : kSpecial)
      for (float b : kSpecial)
        for (float sign_y : {1.0f, -1.0f})
          for (float sign_x : {1.0f, -1.0f}) y.push_back(sign_y * a), x.push_back(sign_x * b);
    Random random(3);
    for (size_t i = 0; i < noise; ++i) {
      y.push_back(random.plain_float());
      x.push_back(random.plain_float());
    }
  }
  std::vector<float> y, x;
};

class FastArctan : public EveryIsa {};
NUQI_FOR_EVERY_ISA(FastArctan);

TEST_P(FastArctan, AgreesWithTheReference) {
  const Vectors v(1000);
  std::vector<float> expected, angle(v.y.size());
  for (size_t i = 0; i < v.y.size(); ++i) expected.push_back(fast_arctan_reference(v.y[i], v.x[i]));
  ASSERT_EQ(nuqibFastArctan_32f(v.y.data(), v.x.data(), angle.data(), int(angle.size())), StatusOk);
  ASSERT_TRUE(same_bits(expected, angle));
}

// At any address; and nothing is touched beyond the length.
TEST_P(FastArctan, EveryLengthAndAlignment) {
  const Vectors v(0);
  for (Wall wall : {Wall::after, Wall::before}) {
    for (int length = 0; length <= 70; ++length) {
      const size_t size = length * sizeof(float), odd = wall == Wall::before ? length % 4 : 0;
      const Running now("nuqibFastArctan_32f", {length, 1});
      WalledBytes y(size + odd, wall, "y"), x(size + odd, wall, "x"),
          angle(size + odd, wall, "angle");
      if (length != 0) {
        std::memcpy(y.data() + odd, v.y.data() + length, size);
        std::memcpy(x.data() + odd, v.x.data() + length, size);
      }
      const auto floats = [&](WalledBytes& bytes) {
        return reinterpret_cast<float*>(bytes.data() + odd);
      };
      ASSERT_EQ(nuqibFastArctan_32f(floats(y), floats(x), floats(angle), length), StatusOk);
      std::vector<float> expected, actual(length);
      for (int i = 0; i < length; ++i)
        expected.push_back(fast_arctan_reference(v.y[length + i], v.x[length + i]));
      if (length != 0) std::memcpy(actual.data(), angle.data() + odd, size);
      ASSERT_TRUE(same_bits(expected, actual)) << "length " << length;
    }
  }
}

TEST_P(FastArctan, StaysNearTheTrueAngle) {
  for (int i = 0; i < 36000; ++i) {
    const double true_angle = i / 100.0, radians = true_angle * std::acos(-1.0) / 180.0;
    const float y = static_cast<float>(100.0 * std::sin(radians));
    const float x = static_cast<float>(100.0 * std::cos(radians));
    float angle = 0;
    ASSERT_EQ(nuqibFastArctan_32f(&y, &x, &angle, 1), StatusOk);
    ASSERT_LT(std::fabs(std::remainder(angle - true_angle, 360.0)), 0.1406) << true_angle;
  }
}

TEST_P(FastArctan, NaNAsTheOrderOfOperandsHasIt) {
  const float y[6] = {1.0f, -1.0f, 0.0f, kNaN, kInf, 1.0f},
              x[6] = {kNaN, kNaN, kNaN, 1.0f, kInf, kInf};
  float angle[6];
  ASSERT_EQ(nuqibFastArctan_32f(y, x, angle, 6), StatusOk);
  EXPECT_NEAR(angle[0], 45.1405f, 1e-3f);
  EXPECT_NEAR(angle[1], 314.8595f, 1e-3f);
  EXPECT_EQ(angle[2], -0.14050041139125824f);
  EXPECT_TRUE(std::isnan(angle[3]));
  EXPECT_TRUE(std::isnan(angle[4]));
  EXPECT_EQ(angle[5], -0.14050041139125824f);
}

TEST_P(FastArctan, AnglesMayReplaceAnInput) {
  const Vectors v(100);
  const int length = int(v.y.size());
  std::vector<float> expected(length), y = v.y, x = v.x;
  ASSERT_EQ(nuqibFastArctan_32f(v.y.data(), v.x.data(), expected.data(), length), StatusOk);
  ASSERT_EQ(nuqibFastArctan_32f(y.data(), v.x.data(), y.data(), length), StatusOk);
  ASSERT_EQ(nuqibFastArctan_32f(v.y.data(), x.data(), x.data(), length), StatusOk);
  EXPECT_TRUE(same_bits(expected, y));
  EXPECT_TRUE(same_bits(expected, x));
}

TEST(FastArctanStatus, FirstFailureWinsAndNothingIsWritten) {
  float y = 1, x = 2, angle = 7;
  EXPECT_EQ(nuqibFastArctan_32f(nullptr, &x, &angle, -1), StatusNullPtr);
  EXPECT_EQ(nuqibFastArctan_32f(&y, nullptr, &angle, -1), StatusNullPtr);
  EXPECT_EQ(nuqibFastArctan_32f(&y, &x, nullptr, -1), StatusNullPtr);
  EXPECT_EQ(nuqibFastArctan_32f(&y, &x, &angle, -1), StatusBadSize);
  EXPECT_EQ(nuqibFastArctan_32f(&y, &x, &angle, 0), StatusOk);
  EXPECT_EQ(angle, 7.0f);
}

TEST_P(FastArctan, GivesTheSameBitsEverywhere) {
  Hash hash;
  const Vectors v(500);
  for (size_t length : {size_t{1}, size_t{7}, size_t{16}, size_t{37}, v.y.size()}) {
    std::vector<float> angle(length);
    ASSERT_EQ(nuqibFastArctan_32f(v.y.data(), v.x.data(), angle.data(), int(length)), StatusOk);
    hash.add(angle);
  }
  EXPECT_TRUE(same_hash(0x783CFF63BA99D58E, hash));
}

}  // namespace
}  // namespace nuqi::test

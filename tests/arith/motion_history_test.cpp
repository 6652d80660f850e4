// Tests of the motion history.
#include <gtest/gtest.h>

#include <limits>

#include "arith/motion_history_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::bit_cast<float>(0x7FC12345u);
const float kSignalling = std::bit_cast<float>(0xFF812345u);

struct Times {
  float timestamp, duration;
};
// Thresholds of both signs, both zeros, both infinities, and NaN of every origin.
const Times kTimes[] = {{10.0f, 5.0f},  {5.0f, 5.0f},  {-0.0f, 0.0f}, {3.0f, 7.5f},
                        {10.0f, -0.0f}, {kInf, 1.0f},  {kInf, kInf},  {1.0f, kInf},
                        {-kInf, kInf},  {kNaN, 1.0f},  {-kNaN, kInf}, {kSignalling, 2.0f},
                        {1e-45f, 0.0f}, {0.0f, 1e-45f}};

struct Fixture {
  Fixture(const Case& c, Times t, uint64_t seed)
      : roi(c.roi), times(t), silhouette("silhouette", c, 0), history("history", c, 1) {
    Random random(seed);
    silhouette.fill([&] { return random.mask(); });
    const uint32_t threshold = motion_threshold_reference(t.timestamp, t.duration);
    history.fill([&] {
      if (random.bits() % 4 == 0) return static_cast<uint32_t>(random.bits());
      return random.one_of(std::array<uint32_t, 13>{
          0, 0x80000000, 1, 0x80000001, 0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000, 0xFFC00001,
          threshold, threshold - 1, threshold + 1, threshold ^ 0x80000000});
    });
  }
  StatusCode call() {
    return nuqiUpdateMotionHistory_8u32f_C1IR(silhouette.data(), silhouette.step(), floats(),
                                              history.step(), roi, times.timestamp, times.duration);
  }
  float* floats() { return reinterpret_cast<float*>(history.data()); }

  RoiSize roi;
  Times times;
  WalledImage<uint8_t> silhouette;
  WalledImage<uint32_t> history;
};

class MotionHistory : public EveryIsa {};
NUQI_FOR_EVERY_ISA(MotionHistory);

void expect_agreement(const Case& c, Times times) {
  SCOPED_TRACE(testing::Message() << "timestamp " << times.timestamp << " duration "
                                  << times.duration);
  Fixture f(c, times, static_cast<uint64_t>(c.roi.width));
  std::vector<uint32_t> expected = f.history.pixels();
  motion_history_reference(f.silhouette.pixels(), expected, times.timestamp, times.duration);
  ASSERT_EQ(f.call(), StatusOk);
  ASSERT_TRUE(same_bits(expected, f.history.pixels()));
  ASSERT_TRUE(f.history.padding_untouched());
}

TEST_P(MotionHistory, AgreesWithTheReference) {
  for (const Times& times : kTimes)
    for_each_case("nuqiUpdateMotionHistory_8u32f_C1IR", 2,
                  [&](const Case& c) { expect_agreement(c, times); });
}

TEST_P(MotionHistory, ForgetsWhatIsOlderThanTheDuration) {
  const uint8_t silhouette[4] = {0, 0, 9, 0};
  float history[4] = {4.9f, 5.0f, 4.9f, -3.0f};
  ASSERT_EQ(nuqiUpdateMotionHistory_8u32f_C1IR(silhouette, 4, history, 16, {4, 1}, 10.0f, 5.0f),
            StatusOk);
  const float expected[4] = {0.0f, 5.0f, 10.0f, 0.0f};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(history[i], expected[i]);
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(MotionHistoryStatus, FirstFailureWinsAndNothingIsWritten) {
  struct Args {
    const uint8_t* silhouette;
    int32_t silhouetteStep;
    float* history;
    int32_t historyStep;
    RoiSize roi;
    float timestamp, duration;
  };
  const auto expect = [&](const char* what, StatusCode status, auto spoil) {
    Fixture f({{10, 4}}, {10.0f, 5.0f}, 7);
    const auto before = f.history.all_bytes();
    Args a = {
        f.silhouette.data(), f.silhouette.step(), f.floats(), f.history.step(), f.roi, 10.0f, 5.0f};
    spoil(a);
    EXPECT_EQ(nuqiUpdateMotionHistory_8u32f_C1IR(a.silhouette, a.silhouetteStep, a.history,
                                                 a.historyStep, a.roi, a.timestamp, a.duration),
              status)
        << what;
    EXPECT_EQ(before, f.history.all_bytes()) << what;
  };
  expect("null silhouette, negative width", StatusNullPtr,
         [](Args& a) { a.silhouette = nullptr, a.roi.width = -1; });
  expect("null history, bad duration", StatusNullPtr,
         [](Args& a) { a.history = nullptr, a.duration = -1.0f; });
  expect("negative height, bad duration", StatusBadSize,
         [](Args& a) { a.roi.height = -1, a.duration = -1.0f; });
  expect("negative width", StatusBadSize, [](Args& a) { a.roi.width = -1; });
  expect("short silhouette row, bad duration", StatusBadSize,
         [](Args& a) { a.silhouetteStep = 9, a.roi.height = 0, a.duration = kNaN; });
  expect("short history row", StatusBadSize, [](Args& a) { a.historyStep = 36; });
  expect("uneven history step, bad duration", StatusBadSize,
         [](Args& a) { a.historyStep = 42, a.duration = -1.0f; });
  expect("a width whose row overflows an int", StatusBadSize,
         [](Args& a) { a.roi.width = 1 << 30, a.silhouetteStep = INT32_MAX; });
  // Deliberate: a bad duration beats an empty ROI.
  expect("negative duration, width 0", StatusBadArg,
         [](Args& a) { a.duration = -1.0f, a.roi.width = 0; });
  expect("NaN duration", StatusBadArg, [](Args& a) { a.duration = kNaN; });
  expect("duration -0.0, width 0", StatusOk, [](Args& a) { a.duration = -0.0f, a.roi.width = 0; });
  expect("height 0", StatusOk, [](Args& a) { a.roi.height = 0; });
}

TEST_P(MotionHistory, GivesTheSameBitsEverywhere) {
  Hash hash;
  for (const Times& times : kTimes) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture f({{width, 5}}, times, width);
      ASSERT_EQ(f.call(), StatusOk);
      hash.add(f.history.pixels());
    }
  }
  EXPECT_TRUE(same_hash(0x4BE6A9CE1B60009C, hash));
}

}  // namespace
}  // namespace nuqi::test

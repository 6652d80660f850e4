// Tests of the histograms. Only the joint one has a kernel.
#include <gtest/gtest.h>

#include <algorithm>

#include "stats/histogram_reference.h"
#include "support/comparison.h"
#include "support/every_isa.h"
#include "support/shapes.h"

namespace nuqi::test {
namespace {

using Levels = std::vector<int32_t>;

// ---- One channel

// Noise with long runs of one value.
void fill(WalledImage<uint8_t>& image, uint64_t seed) {
  Random random(seed);
  uint8_t run = 0;
  int left = 0;
  image.fill([&] {
    if (left == 0 && random.bits() % 32 == 0)
      left = random.between(1, 40), run = random.integer<uint8_t>();
    if (left != 0) return --left, run;
    return random.integer<uint8_t>();
  });
}

void expect_histogram(const Case& c, const std::vector<uint8_t>& levels) {
  SCOPED_TRACE(testing::Message() << levels.size() << " levels");
  WalledImage<uint8_t> src("source", c, 0);
  fill(src, static_cast<uint64_t>(c.roi.width));
  const std::vector<int32_t> expected = histogram_reference(src.pixels(), levels);
  WalledBytes hist(expected.size() * 4, Wall::after, "histogram");
  WalledBytes walled(levels.size(), Wall::after, "levels");
  std::memcpy(walled.data(), levels.data(), levels.size());
  auto* bins = reinterpret_cast<int32_t*>(hist.data());
  ASSERT_EQ(nuqiCalcHist_8u_C1R(src.data(), src.step(), c.roi, bins,
                                static_cast<int>(levels.size()), walled.data()),
            StatusOk);
  ASSERT_EQ(expected, std::vector<int32_t>(bins, bins + expected.size()));
}

TEST(Histogram, AgreesWithTheReference) {
  std::vector<uint8_t> all(256);
  for (int i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
  const std::vector<uint8_t> levels[] = {all,       {0, 128, 255},      {17, 255},
                                         {9, 9, 7}, {200, 100, 50, 60}, {255, 0, 255}};
  for_each_case("nuqiCalcHist_8u_C1R", 1,
                [&](const Case& c) { expect_histogram(c, levels[c.roi.width % 6]); });
}

// More pixels than counters of 16 bits count, in one row and in several, of one value.
TEST(Histogram, CountsManyPixelsOfOneValue) {
  for (RoiSize roi : {RoiSize{140000, 1}, RoiSize{300, 500}, RoiSize{70000, 2}})
    for (int padding : {0, 3}) {
      WalledImage<uint8_t> src("source", Case{roi, Wall::after, {padding}});
      src.fill([] { return uint8_t{77}; });
      const uint8_t levels[3] = {0, 77, 78};
      int32_t bins[2] = {-1, -1};
      ASSERT_EQ(nuqiCalcHist_8u_C1R(src.data(), src.step(), roi, bins, 3, levels), StatusOk);
      EXPECT_EQ(bins[0], 0);
      EXPECT_EQ(bins[1], roi.width * roi.height);
    }
}

// Oddity: with the highest level that a byte can tell, 255 is counted nowhere.
TEST(Histogram, TheLastLevelIsExclusive) {
  const uint8_t src[5] = {253, 254, 254, 255, 255}, levels[3] = {0, 254, 255};
  int32_t bins[2];
  ASSERT_EQ(nuqiCalcHist_8u_C1R(src, 5, {5, 1}, bins, 3, levels), StatusOk);
  EXPECT_EQ(bins[0], 1);
  EXPECT_EQ(bins[1], 2);
}

// Oddity: one level makes a bin, too. The level beyond is not read: the list ends at a wall.
TEST(Histogram, OneLevelMakesABinWithoutUpperEnd) {
  for (uint8_t level : {0, 100, 255}) expect_histogram({{50, 4}}, {level});
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(HistogramStatus, FirstFailureWinsAndNothingIsWritten) {
  const auto expect = [](const char* what, StatusCode status, auto spoil) {
    struct {
      std::vector<uint8_t> image = std::vector<uint8_t>(40), list = {0, 9, 20};
      std::vector<int32_t> bins = {-7, -7};
      const uint8_t *src = image.data(), *levels = list.data();
      int32_t step = 10, *hist = bins.data(), count = 3;
      RoiSize roi = {10, 4};
    } a;
    spoil(a);
    EXPECT_EQ(nuqiCalcHist_8u_C1R(a.src, a.step, a.roi, a.hist, a.count, a.levels), status) << what;
    EXPECT_EQ(a.bins, (std::vector<int32_t>{-7, -7})) << what;
  };
  expect("null source, width 0", StatusNullPtr, [](auto& a) { a.src = nullptr, a.roi.width = 0; });
  expect("null histogram, short step", StatusNullPtr,
         [](auto& a) { a.hist = nullptr, a.step = 9; });
  expect("null levels, no level", StatusNullPtr, [](auto& a) { a.levels = nullptr, a.count = 0; });
  expect("width 0, short step", StatusBadSize, [](auto& a) { a.roi.width = 0, a.step = -1; });
  expect("height 0", StatusBadSize, [](auto& a) { a.roi.height = 0; });
  expect("no level, short step", StatusBadSize, [](auto& a) { a.count = 0, a.step = 9; });
  expect("short step", StatusBadStep, [](auto& a) { a.step = 9; });
}

// ---- Two channels

void expect_joint(const Case& c, const Levels& across, const Levels& down, int32_t step) {
  SCOPED_TRACE(testing::Message() << "histogram step " << step);
  WalledImage<uint8_t> src("source", c, 0, 2);
  fill(src, static_cast<uint64_t>(c.roi.width) + 1);
  const int32_t counts[2] = {static_cast<int>(across.size()) - 1,
                             static_cast<int>(down.size()) - 1};
  Levels levels = across;
  levels.insert(levels.end(), down.begin(), down.end());
  // All counters that are cleared, and all rows; what neither touches stays.
  const int64_t rows_end = int64_t{std::max(step, 0)} * (counts[1] - 1) + counts[0] * 4;
  const size_t size = std::max<int64_t>(rows_end, int64_t(across.size() * down.size()) * 4);
  const Running now("nuqiCalcHist_8u_C2R", c.roi);
  WalledBytes hist(size, Wall::after, "histogram");
  std::memset(hist.data(), 0x11, size);
  std::vector<uint8_t> expected(hist.data(), hist.data() + size);
  joint_histogram_reference(src.pixels(), across, down, step, expected);
  ASSERT_EQ(
      nuqiCalcHist_8u_C2R(src.data(), src.step(), c.roi, reinterpret_cast<int32_t*>(hist.data()),
                          step, counts, levels.data()),
      StatusOk);
  ASSERT_EQ(expected, std::vector<uint8_t>(hist.data(), hist.data() + size));
}

class JointHistogram : public EveryIsa {};
NUQI_FOR_EVERY_ISA(JointHistogram);

Levels every(int step, int until = 256) {
  Levels levels;
  for (int i = 0; i <= until; i += step) levels.push_back(i);
  return levels;
}

TEST_P(JointHistogram, AgreesWithTheReference) {
  const Levels fine = every(1), coarse = {0, 64, 128, 192, 256};
  const Case wide = {{300, 20}};
  for_each_case("nuqiCalcHist_8u_C2R", 1, [&](const Case& c) {
    expect_joint(c, coarse, {10, 20, 240}, 16);
    expect_joint(c, {-1000, 5, 100000}, coarse, 12);
  });
  expect_joint(wide, fine, fine, 1024);
  expect_joint(wide, {50, 60}, {0, 200}, 4);
  // Several levels at one value: the bins between them stay empty.
  expect_joint(wide, {0, 7, 7, 7, 200}, {3, 3, 90, 90}, 20);
  // Levels that descend: the number of those not above a value.
  expect_joint(wide, {0, 90, 30, 60, 256}, {0, 128, 256}, 16);
}

// Levels at and beyond the ends of the bytes, first, last or between: 255 is outside of bins that end
// there, and counting outside of the histogram would die at its wall.
TEST_P(JointHistogram, LevelsAtTheEndsOfBytes) {
  const Levels ends[] = {{0, 256},      {0, 255},        {1, 256},    {0, 100, 255}, {-1, 255},
                         {-9, -5, 256}, {-5, 0, 0, 300}, {-2, -1, 0}, {256, 300},    {0, -7, 256}};
  for (const Levels& across : ends)
    for (const Levels& down : ends)
      expect_joint({{300, 20}}, across, down, static_cast<int32_t>(across.size()) * 4);
}

// As many bins as small tables hold, one more, and more than a byte numbers.
TEST_P(JointHistogram, CountsInManyBins) {
  const Levels repeated(300, 90);
  for (const Levels& across : {every(8), every(4), every(2), every(2, 250), every(16), repeated})
    for (const Levels& down : {every(8), every(16), every(32), every(37), Levels{0, 256}, repeated})
      expect_joint({{150, 20}, Wall::after, {1}}, across, down,
                   static_cast<int32_t>(across.size() - 1) * 4);
}

TEST_P(JointHistogram, CountsManyPixelsOfOneValue) {
  for (RoiSize roi : {RoiSize{140000, 1}, RoiSize{300, 500}, RoiSize{70000, 2}}) {
    WalledImage<uint8_t> src("source", Case{roi, Wall::after, {2}}, 0, 2);
    src.fill([] { return uint8_t{77}; });
    const int32_t counts[2] = {1, 2}, levels[5] = {0, 256, 0, 77, 256};
    int32_t bins[6] = {};
    ASSERT_EQ(nuqiCalcHist_8u_C2R(src.data(), src.step(), roi, bins, 4, counts, levels), StatusOk);
    EXPECT_EQ(bins[0], 0);
    EXPECT_EQ(bins[1], roi.width * roi.height);
  }
}

// Rows of counters that no pixel belongs to may lie where no memory is.
TEST_P(JointHistogram, TouchesNoOtherCounters) {
  const Case c = {{60, 5}};
  WalledImage<uint8_t> src("source", c, 0, 2);
  fill(src, 3);
  const int32_t counts[2] = {1, 2}, levels[5] = {0, 256, 0, 256, 300};
  for (int32_t step : {1 << 28, -(1 << 28), INT32_MIN}) {
    WalledBytes hist(6 * 4, Wall::after, "histogram");
    auto* bins = reinterpret_cast<int32_t*>(hist.data());
    ASSERT_EQ(nuqiCalcHist_8u_C2R(src.data(), src.step(), c.roi, bins, step, counts, levels),
              StatusOk);
    EXPECT_EQ(std::vector<int32_t>(bins, bins + 6), (std::vector<int32_t>{300, 0, 0, 0, 0, 0}));
  }
}

// Oddity: (K + 1) * (L + 1) counters from the start are cleared, not the rows.
TEST_P(JointHistogram, ClearsByCountNotByRows) {
  // Beyond: added to what is there. All rows are one. Rows that overlap, by counters and by bytes.
  for (int32_t step : {64, 0, 4, 6})
    expect_joint({{60, 5}}, {0, 128, 256}, {0, 100, 200, 256}, step);
}

// Where counters overlap, the order of pixels shows as soon as one overflows: the upper half of counter
// (1, 0) is the lower half of counter (0, 1) here.
TEST_P(JointHistogram, OverlappingCountersCountInTheOrderOfPixels) {
  const std::vector<uint8_t> lower = {50, 150}, upper = {200, 50}, other = {50, 220};
  std::vector<uint8_t> src;
  const auto add = [&](int count, const std::vector<uint8_t>& pixel) {
    for (int i = 0; i < count; ++i) src.insert(src.end(), pixel.begin(), pixel.end());
  };
  add(65534, lower), add(65535, upper), add(1, other), add(1, lower), add(1, upper);
  const Levels across = {0, 128, 256}, down = {0, 100, 200, 256};
  const int32_t counts[2] = {2, 3}, levels[7] = {0, 128, 256, 0, 100, 200, 256};
  const int width = static_cast<int>(src.size() / 2);
  std::vector<uint8_t> hist(48, 0x11), expected = hist;
  joint_histogram_reference(src, across, down, 6, expected);
  ASSERT_EQ(nuqiCalcHist_8u_C2R(src.data(), 2 * width, {width, 1},
                                reinterpret_cast<int32_t*>(hist.data()), 6, counts, levels),
            StatusOk);
  EXPECT_EQ(expected, hist);
}

TEST_P(JointHistogram, RowsOfCountersMayLieFarApart) {
  if (!far_rows_fit()) GTEST_SKIP() << "no room for rows 2^31 bytes apart";
  WalledImage<int32_t> hist("histogram", Case{{2, 4}, Wall::before, {kFarApart}});
  hist.fill([] { return 0; });
  const uint8_t src[8] = {0, 0, 200, 100, 0, 255, 1, 250};
  const int32_t counts[2] = {1, 4}, levels[7] = {0, 256, 0, 50, 150, 240, 256};
  ASSERT_EQ(nuqiCalcHist_8u_C2R(src, 8, {4, 1}, hist.data(), hist.step(), counts, levels),
            StatusOk);
  EXPECT_EQ(hist.pixels(), (std::vector<int32_t>{1, 0, 1, 0, 0, 0, 2, 0}));
}

TEST(JointHistogramStatus, FirstFailureWinsAndNothingIsWritten) {
  const auto expect = [](const char* what, StatusCode status, auto spoil) {
    struct {
      std::vector<uint8_t> image = std::vector<uint8_t>(80);
      std::vector<int32_t> bins = std::vector<int32_t>(12, -7), list = {0, 9, 20, 0, 5, 9, 20};
      int32_t pair[2] = {2, 3};
      const uint8_t* src = image.data();
      const int32_t *counts = pair, *levels = list.data();
      int32_t step = 20, *hist = bins.data();
      RoiSize roi = {10, 4};
    } a;
    spoil(a);
    EXPECT_EQ(nuqiCalcHist_8u_C2R(a.src, a.step, a.roi, a.hist, 8, a.counts, a.levels), status)
        << what;
    EXPECT_EQ(a.bins, std::vector<int32_t>(12, -7)) << what;
  };
  // Null pointers come before the counts are read.
  expect("null source and counts", StatusNullPtr,
         [](auto& a) { a.src = nullptr, a.counts = nullptr; });
  expect("null histogram, no column", StatusNullPtr,
         [](auto& a) { a.hist = nullptr, a.pair[0] = 0; });
  expect("null levels, width 0", StatusNullPtr,
         [](auto& a) { a.levels = nullptr, a.roi.width = 0; });
  expect("no column, short step", StatusBadSize, [](auto& a) { a.pair[0] = 0, a.step = 19; });
  expect("no row", StatusBadSize, [](auto& a) { a.pair[1] = 0, a.step = 19; });
  expect("width 0, short step", StatusBadSize, [](auto& a) { a.roi.width = 0, a.step = -1; });
  expect("height 0", StatusBadSize, [](auto& a) { a.roi.height = 0; });
  expect("short step", StatusBadStep, [](auto& a) { a.step = 19; });
}

// ---- The total

TEST(ConvertHist, TestsTheTotalAndWritesNothing) {
  const std::vector<int32_t> none = {1, -1}, some = {0, 0, 3};
  const std::vector<int32_t> wraps = {INT32_MIN, INT32_MIN}, large = {INT32_MAX, INT32_MAX, 2};
  float dst[3] = {5, 6, 7};
  for (int flag : {0, 1, -1}) {
    EXPECT_EQ(nuqiConvertHist1D_32s32f(none.data(), dst, 2, flag), StatusDivByZero);
    EXPECT_EQ(nuqiConvertHist1D_32s32f(some.data(), dst, 2, flag), StatusDivByZero);
    EXPECT_EQ(nuqiConvertHist1D_32s32f(some.data(), dst, 3, flag), StatusOk);
  }
  EXPECT_EQ(nuqiConvertHist1D_32s32f(wraps.data(), dst, 2, 0), StatusOk);
  EXPECT_EQ(nuqiConvertHist1D_32s32f(large.data(), dst, 3, 0), StatusOk);
  EXPECT_EQ(nuqiConvertHist1D_32s32f(nullptr, dst, 0, 0), StatusNullPtr);
  EXPECT_EQ(nuqiConvertHist1D_32s32f(some.data(), nullptr, 0, 0), StatusNullPtr);
  EXPECT_EQ(nuqiConvertHist1D_32s32f(none.data(), dst, 0, 0), StatusBadSize);
  EXPECT_TRUE(dst[0] == 5 && dst[1] == 6 && dst[2] == 7);
}

TEST(Histogram, GivesTheSameBitsEverywhere) {
  Hash hash;
  WalledImage<uint8_t> src("source", Case{{130, 6}, Wall::after, {3}}, 0, 2);
  fill(src, 9);
  const uint8_t levels[6] = {0, 3, 90, 91, 200, 255};
  std::vector<int32_t> bins(5), joint(20);
  ASSERT_EQ(nuqiCalcHist_8u_C1R(src.data(), src.step(), {260, 6}, bins.data(), 6, levels),
            StatusOk);
  const int32_t counts[2] = {3, 4}, pairs[9] = {0, 50, 51, 256, 10, 11, 100, 101, 240};
  ASSERT_EQ(nuqiCalcHist_8u_C2R(src.data(), src.step(), {130, 6}, joint.data(), 16, counts, pairs),
            StatusOk);
  hash.add(bins);
  hash.add(joint);
  EXPECT_TRUE(same_hash(0xEEE350EF450C6C67, hash));
}

}  // namespace
}  // namespace nuqi::test

// Statistics against sums that anybody would write, over sizes and values where the C functions are not exact.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "support.h"

namespace {

using nuqi::Image;
using nuqi::Mask;
using namespace nuqi::test;

// The sums that all statistics of bytes are made of.
struct Sums {
  std::int64_t count = 0, sum = 0, squares = 0, size = 0, largest = 0;

  void add(std::int64_t value) {
    ++count;
    sum += value;
    squares += value * value;
    size += std::abs(value);
    largest = std::max<std::int64_t>(largest, std::abs(value));
  }
  double mean() const { return static_cast<double>(sum) / static_cast<double>(count); }
  double deviation() const {
    const auto numerator = static_cast<long double>(squares) * static_cast<long double>(count) -
                           static_cast<long double>(sum) * static_cast<long double>(sum);
    return static_cast<double>(std::sqrt(numerator)) / static_cast<double>(count);
  }
  double l2() const { return std::sqrt(static_cast<double>(squares)); }
};

template <class T, int Channels, class Value>
Sums sums_of(const Image<T, Channels>& image, const Image<std::uint8_t>* mask, Value value) {
  Sums sums;
  each_pixel(image, [&](int x, int y) {
    if (mask == nullptr || (*mask)(x, y) != 0) sums.add(value(x, y));
  });
  return sums;
}

// All that reads one image or two; `selection` is what the sums are over.
template <class T, int Channels, class... Selection>
void expect_statistics(const Image<T, Channels>& a, const Image<T, Channels>& b,
                       const Image<std::uint8_t>* mask, int channel,
                       const Selection&... selection) {
  const Sums of_a = sums_of(a, mask, [&](auto x, auto y) { return a(x, y, channel); });
  const Sums of_b = sums_of(a, mask, [&](auto x, auto y) { return b(x, y, channel); });
  const Sums apart =
      sums_of(a, mask, [&](auto x, auto y) { return a(x, y, channel) - b(x, y, channel); });
  EXPECT_DOUBLE_EQ(nuqi::mean(a, selection...), of_a.mean());
  EXPECT_DOUBLE_EQ(nuqi::mean_std(a, selection...).mean, of_a.mean());
  EXPECT_DOUBLE_EQ(nuqi::mean_std(a, selection...).deviation, of_a.deviation());
  EXPECT_EQ(nuqi::norm_inf(a, selection...), of_a.largest);
  EXPECT_EQ(nuqi::norm_l1(a, selection...), of_a.size);
  EXPECT_EQ(nuqi::norm_l2(a, selection...), of_a.l2());
  EXPECT_EQ(nuqi::norm_diff_inf(a, b, selection...), apart.largest);
  EXPECT_EQ(nuqi::norm_diff_l1(a, b, selection...), apart.size);
  EXPECT_EQ(nuqi::norm_diff_l2(a, b, selection...), apart.l2());
  EXPECT_DOUBLE_EQ(nuqi::norm_rel_inf(a, b, selection...),
                   static_cast<double>(apart.largest) / static_cast<double>(of_b.largest));
  EXPECT_DOUBLE_EQ(nuqi::norm_rel_l1(a, b, selection...),
                   static_cast<double>(apart.size) / static_cast<double>(of_b.size));
  EXPECT_DOUBLE_EQ(nuqi::norm_rel_l2(a, b, selection...), apart.l2() / of_b.l2());
}

// Sizes on both sides of a mask of ones, wider ones too.
template <class T>
void expect_bytes() {
  for (const RoiSize size : {RoiSize{1, 1}, {49, 1}, {640, 37}, {20011, 3}}) {
    const auto random = [&](unsigned seed) {
      return random_image<T>(size.width, size.height, seed);
    };
    const auto colours = [&](unsigned seed) {
      return random_image<T, 3>(size.width, size.height, seed);
    };
    Image<std::uint8_t> mask = random_mask(size.width, size.height, 3);
    mask(0, 0) = 1;
    expect_statistics(random(1), random(2), nullptr, 0);
    expect_statistics(random(1), random(2), &mask, 0, Mask(mask));
    for (int channel = 0; channel < 3; ++channel) {
      expect_statistics(colours(4), colours(5), nullptr, channel, channel);
      expect_statistics(colours(4), colours(5), &mask, channel, Mask(mask), channel);
    }
  }
}
TEST(Statistics, OfBytesAreExact) {
  expect_bytes<std::uint8_t>();
  expect_bytes<std::int8_t>();
}

TEST(Statistics, SumsOfLargeImagesDoNotWrap) {
  const auto white = image_of<std::uint8_t>(6000, 4000, [](int, int) { return 200; });
  const Image<std::uint8_t> mask = random_mask(6000, 4000, 1), black(6000, 4000);
  const double pixels = 24e6;
  EXPECT_EQ(nuqi::mean(white), 200);
  EXPECT_EQ(nuqi::mean(white, Mask(mask)), 200);
  EXPECT_EQ(nuqi::mean_std(white).mean, 200);
  EXPECT_EQ(nuqi::mean_std(white).deviation, 0);
  EXPECT_EQ(nuqi::mean_std(white, Mask(mask)).deviation, 0);
  EXPECT_EQ(nuqi::norm_l1(white), 200 * pixels);
  EXPECT_EQ(nuqi::norm_l1(white, Mask(white)), 200 * pixels);
  EXPECT_EQ(nuqi::norm_l2(white, Mask(white)), std::sqrt(40000 * pixels));
  EXPECT_EQ(nuqi::norm_diff_l1(white, black), 200 * pixels);
  EXPECT_EQ(nuqi::norm_rel_l1(black, white, Mask(white)), 1);
  EXPECT_EQ(nuqi::norm_rel_l2(black, white, Mask(white)), 1);
  EXPECT_EQ(nuqi::norm_l1(black, Mask(white)), 0);
  EXPECT_EQ(nuqi::histogram(white, {0, 200, 201, 256}),
            (std::vector<std::int64_t>{0, 24000000, 0}));
  expect_throws(StatusBadSize, {[&] { (void)nuqi::norm_l1(white, Mask(black)); },
                                [&] { (void)nuqi::mean(white, Mask(black)); }});
}

TEST(Statistics, ConstantBytesDoNotDeviate) {
  int nans = 0;
  for (int pixels = 1; pixels < 200; ++pixels) {
    for (const int value : {1, 77, 200, 255}) {
      const auto image = image_of<std::uint8_t>(pixels, 1, [&](int, int) { return value; });
      const nuqi::MeanStd found = nuqi::mean_std(image);
      EXPECT_EQ(found.mean, value);
      EXPECT_EQ(found.deviation, 0) << pixels << " of " << value;
      EXPECT_EQ(nuqi::mean(image), value);
      EXPECT_EQ(nuqi::mean_std(image, Mask(image)).deviation, 0);
      nuqi::MeanStd by_c{};
      EXPECT_EQ(
          nuqiMean_StdDev_8u_C1R(image.data(), pixels, {pixels, 1}, &by_c.mean, &by_c.deviation),
          StatusOk);
      nans += std::isnan(by_c.deviation) ? 1 : 0;
    }
  }
  EXPECT_GT(nans, 0) << "the C function's oddity, which this is about";
}

TEST(Statistics, OfFloats) {
  const Image<float> image = random_image<float>(301, 40, 1);
  const Image<std::uint8_t> mask = random_mask(301, 40, 2);
  long double sum = 0, squares = 0, count = 0;
  each_pixel(image, [&](int x, int y) {
    if (mask(x, y) == 0) return;
    const long double value = image(x, y);
    sum += value;
    squares += value * value;
    ++count;
  });
  const long double mean = sum / count, variance = squares / count - mean * mean;
  EXPECT_NEAR(nuqi::mean(image, Mask(mask)), static_cast<double>(mean), 1e-11)
      << "single precision would be off by 1e-6";
  EXPECT_NEAR(nuqi::mean_std(image, Mask(mask)).deviation, static_cast<double>(std::sqrt(variance)),
              1e-10);
  EXPECT_NEAR(nuqi::norm_l2(image, Mask(mask)), static_cast<double>(std::sqrt(squares)), 1e-2);
  for (int pixels = 1; pixels < 300; ++pixels) {
    const auto constant = image_of<float>(pixels, 1, [](int, int) { return 0.1F; });
    const double found = nuqi::mean_std(constant).deviation;
    EXPECT_GE(found, 0) << "no NaN";
    EXPECT_LT(found, 1e-8);
  }
  Image<float> nan(3, 3);
  nan(1, 1) = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(std::isnan(nuqi::mean_std(nan).deviation));
  // A million of ones after 2^24: a single-precision sum would stand still.
  const auto steep = image_of<float>(1000, 1001, [](int, int y) { return y == 0 ? 16777216 : 1; });
  const auto all = image_of<std::uint8_t>(1000, 1001, [](int, int) { return 1; });
  EXPECT_DOUBLE_EQ(nuqi::mean(steep, Mask(all)), (16777216000.0 + 1e6) / 1001000);
}

TEST(Statistics, RefuseWhatHoldsNothing) {
  const Image<std::uint8_t> image(9, 9), unselected(9, 9), empty;
  const Image<float> floats(9, 9);
  const Image<std::uint8_t, 3> three(9, 9);
  const Mask none(unselected);
  expect_throws(
      StatusBadSize,
      {[&] { (void)nuqi::mean(empty); }, [&] { (void)nuqi::mean_std(empty); },
       [&] { (void)nuqi::norm_l1(empty); }, [&] { (void)nuqi::min_max(empty); },
       [&] { (void)nuqi::histogram(empty); }, [&] { (void)nuqi::mean(image, none); },
       [&] { (void)nuqi::mean(floats, none); }, [&] { (void)nuqi::mean_std(image, none); },
       [&] { (void)nuqi::mean_std(floats, none); },
       [&] { (void)nuqi::norm_diff_inf(image, image, none); },
       [&] { (void)nuqi::norm_rel_l2(three, three, none, 1); },
       [&] { (void)nuqi::min_max(image, none); },
       [&] { (void)nuqi::norm_diff_l1(image, image.roi(0, 0, 8, 9)); }});
  expect_throws(StatusBadCoi,
                {[&] { (void)nuqi::mean(three, 3); }, [&] { (void)nuqi::mean(three, -1); },
                 [&] { (void)nuqi::mean(three, 1LL << 32); },
                 [&] { (void)nuqi::norm_l1(three, Mask(image), 3); }});
  // Black images have statistics.
  EXPECT_EQ(nuqi::mean(image), 0);
  EXPECT_EQ(nuqi::norm_l2(image), 0);
  EXPECT_EQ(nuqi::norm_rel_l1(image, image), 0);
}

TEST(MinMax, FindsTheFirstOfEqualOnes) {
  Image<std::int8_t> image(20, 10);
  image(5, 3) = image(4, 4) = -100;
  image(19, 0) = image(0, 1) = 50;
  Image<std::uint8_t> mask(20, 10);
  mask(4, 4) = mask(0, 1) = mask(9, 9) = 1;
  const auto all = nuqi::min_max(image);
  static_assert(std::is_same_v<decltype(all.min), std::int8_t>);
  EXPECT_EQ(all.min, -100);
  EXPECT_EQ(all.max, 50);
  EXPECT_EQ(all.min_at.x, 5);
  EXPECT_EQ(all.min_at.y, 3);
  EXPECT_EQ(all.max_at.x, 19);
  const auto some = nuqi::min_max(image, Mask(mask));
  EXPECT_EQ(some.min_at.x, 4);
  EXPECT_EQ(some.max_at.y, 1);
  Image<float, 3> colours(4, 4);
  colours(2, 1, 2) = -3;
  EXPECT_EQ(nuqi::min_max(colours, 2).min_at.x, 2);
  EXPECT_EQ(nuqi::min_max(colours, 1).min, 0);
}

TEST(Histogram, LevelsReach256) {
  const auto image = image_of<std::uint8_t>(256, 3, [](int x, int) { return x; });
  using Counts = std::vector<std::int64_t>;
  EXPECT_EQ(nuqi::histogram(image, {0, 256}), (Counts{768}));
  EXPECT_EQ(nuqi::histogram(image, {10, 256}), (Counts{738}));
  EXPECT_EQ(nuqi::histogram(image, {10, 20, 255}), (Counts{30, 705}));
  EXPECT_EQ(nuqi::histogram(image, {0, 1, 255, 256}), (Counts{3, 762, 3}));
  EXPECT_EQ(nuqi::histogram(image, {255, 256}), (Counts{3}));
  EXPECT_EQ(nuqi::histogram(image), Counts(256, 3));
  for (const std::vector<int>& bad :
       {std::vector<int>{}, {7}, {7, 7}, {9, 7}, {0, 257}, {-1, 5}, {0, 256, 256}})
    expect_throws(StatusBadArg, {[&] { (void)nuqi::histogram(image, bad); }});
}

TEST(Histogram, OfTwoChannels) {
  const Image<std::uint8_t, 2> image = random_image<std::uint8_t, 2>(70, 30, 1);
  const std::vector<int> first = {0, 100, 256}, second = {5, 50, 60, 200};
  const nuqi::JointHistogram found = nuqi::joint_histogram(image, first, second);
  ASSERT_EQ(found.columns, 2);
  ASSERT_EQ(found.rows, 3);
  std::vector<std::int64_t> expected(6);
  const auto lies = [](int value, const std::vector<int>& levels, std::size_t bin) {
    return value >= levels[bin] && value < levels[bin + 1];
  };
  each_pixel(image, [&](int x, int y) {
    for (std::size_t i = 0; i < 6; ++i)
      if (lies(image(x, y), first, i % 2) && lies(image(x, y, 1), second, i / 2)) ++expected[i];
  });
  EXPECT_EQ(found.counts, expected);
  EXPECT_EQ(found(1, 2), expected[5]);
}

TEST(Histogram, WithoutPixelsDividesNothing) {
  const std::int32_t zeros[3] = {}, some[3] = {0, 1, 0};
  nuqi::check_histogram(some, 3);
  expect_throws(StatusDivByZero, {[&] { nuqi::check_histogram(zeros, 3); }});
  expect_throws(StatusBadSize, {[&] { nuqi::check_histogram(some, 0); },
                                [&] { nuqi::check_histogram(some, 1LL << 40); }});
}

}  // namespace

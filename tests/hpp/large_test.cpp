// Images beyond 32 bits: memory that is only reserved until a pixel is written. Bands, or a refusal.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "support.h"

namespace {

using nuqi::Mask;
using nuqi::View;
using namespace nuqi::test;

constexpr std::int64_t kBeyond = (std::int64_t{1} << 31) + 4096;

TEST(Large, StepsMayExceed31Bits) {
  const Reserved memory(3 * kBeyond);
  const Reserved more(3 * kBeyond);
  if (!memory.usable() || !more.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<std::uint8_t>(70, 3, kBeyond);
  const auto mask = more.rows<std::uint8_t>(70, 3, kBeyond);
  image(69, 2) = 210;
  image(3, 1) = 21;
  mask(69, 2) = mask(3, 1) = mask(0, 0) = 1;
  EXPECT_DOUBLE_EQ(nuqi::mean(image), 1.1);
  EXPECT_DOUBLE_EQ(nuqi::mean(image, Mask(mask)), 77);
  EXPECT_EQ(nuqi::norm_l1(image), 231);
  EXPECT_EQ(nuqi::norm_rel_l1(image, image), 0);
  EXPECT_EQ(nuqi::norm_rel_inf(mask, image, Mask(mask)), 209.0 / 210);
  EXPECT_EQ(nuqi::histogram(image, {1, 100, 256}), (std::vector<std::int64_t>{1, 1}));
  const auto found = nuqi::min_max(image, Mask(mask));
  EXPECT_EQ(found.max_at.y, 2);
  EXPECT_EQ(found.max_at.x, 69);
  EXPECT_EQ(found.min_at.x, 0);
  image(0, 0) = 22;
  EXPECT_EQ(nuqi::min_max(image, Mask(mask)).min_at.y, 1);
  mask(0, 0) = 0;
  EXPECT_EQ(nuqi::min_max(image, Mask(mask)).min, 21) << "a band without pixels has no 0";
  mask(0, 0) = 1;

  nuqi::Image<std::uint8_t> dst(70, 3);
  nuqi::abs_diff(image, mask, dst);
  EXPECT_EQ(dst(69, 2), 209);
  nuqi::Image<std::uint8_t, 3> joined(70, 3);
  nuqi::join(image, mask, dst, joined);
  EXPECT_EQ(joined(69, 2, 0), 210);
  EXPECT_EQ(joined(69, 2, 2), 209);
  EXPECT_EQ(nuqi::abs_diff(image, dst, image.roi(0, 0, 69, 3), std::nothrow), StatusBadSize);
}

TEST(Large, FloatsInBands) {
  const Reserved memory(3 * kBeyond);
  if (!memory.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<float, 3>(50, 3, kBeyond);
  for (int x = 0; x < 50; ++x) image(x, 1, 1) = 3;
  image(7, 2, 1) = -2;
  EXPECT_DOUBLE_EQ(nuqi::mean(image, 1), 148.0 / 150);
  EXPECT_DOUBLE_EQ(nuqi::mean_std(image, 1).deviation,
                   std::sqrt(454.0 / 150 - 148.0 / 150 * (148.0 / 150)));
  EXPECT_EQ(nuqi::norm_l2(image, 1), std::sqrt(454.0));
  EXPECT_EQ(nuqi::min_max(image, 1).min_at.y, 2);
}

TEST(Large, RowsMayExceed31Bits) {
  if (std::getenv("NUQI_EMULATOR") != nullptr)
    GTEST_SKIP() << "2^31 pixels take an emulator minutes";
  const Reserved memory(kBeyond);
  if (!memory.usable()) GTEST_SKIP() << "no such addresses";
  const auto image = memory.rows<std::uint8_t>(kBeyond, 1, kBeyond);
  image(kBeyond - 1, 0) = 9;
  const auto found = nuqi::min_max(image);
  EXPECT_EQ(found.max, 9);
  EXPECT_EQ(found.max_at.x, kBeyond - 1);
}

TEST(Large, StepsBeyond32BitsAreRefusedWhereThereAreNoBands) {
  if (sizeof(void*) < 8) GTEST_SKIP() << "there are no such steps";
  constexpr auto kApart = static_cast<std::ptrdiff_t>(std::int64_t{1} << 32);
  // Nobody looks at their pixels.
  const auto far = [](auto* first, std::int64_t width, std::int64_t height) {
    return View<std::remove_pointer_t<decltype(first)>>(first, width, height, kApart);
  };
  alignas(64) static std::uint8_t a[64], b[64];
  alignas(64) static std::int16_t dx[64], dy[64];
  alignas(64) static float scores[64];
  const auto src = far(a, 4, 4), dst = far(b, 4, 4);
  EXPECT_EQ(nuqi::canny(src, dst, 1, 2, nuqi::EdgeOperator::sobel, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::canny_from(far(dx, 4, 4), far(dy, 4, 4), dst, 1, 2, std::nothrow), StatusBadSize);
  EXPECT_EQ(status_of([&] { (void)nuqi::canny_thresholds(src); }), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_down(src, far(b, 2, 2), std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(src, far(b, 8, 8), std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::match_template(src, View<std::uint8_t>(b, 2, 2), far(scores, 3, 3),
                                 nuqi::MatchMethod::corr, std::nothrow),
            StatusBadSize);
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(src, {0, 0}, 1); }), StatusBadSize);
}

}  // namespace

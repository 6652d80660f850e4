// Images beyond 32 bits, which operations refuse that do not take them in bands.
#include <gtest/gtest.h>

#include <cstdint>

#include "support.h"

namespace {

using nuqi::View;

TEST(Limits, StepsBeyond32BitsAreRefused) {
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
  EXPECT_EQ(nuqi::test::status_of([&] { (void)nuqi::canny_thresholds(src); }), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_down(src, far(b, 2, 2), std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(src, far(b, 8, 8), std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::match_template(src, View<std::uint8_t>(b, 2, 2), far(scores, 3, 3),
                                 nuqi::MatchMethod::corr, std::nothrow),
            StatusBadSize);
  EXPECT_EQ(nuqi::test::status_of([&] { nuqi::flood_fill(src, {0, 0}, 1); }), StatusBadSize);
}

}  // namespace

// Levels of a pyramid against the C functions, and odd sizes.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support.h"

namespace {

using nuqi::Image;
using nuqi::test::equal;
using nuqi::test::random_image;
using nuqi::test::roi_of;
using nuqi::test::step;

template <class T, int C, class Down, class Up>
void expect_levels(const Down& down, const Up& up, nuqi::Scratch& scratch) {
  const auto src = random_image<T, C>(26, 18);
  Image<T, C> half(13, 9), expected(13, 9), twice(52, 36), expected_twice(52, 36);
  std::vector<std::uint8_t> buffer(1 << 16);
  ASSERT_EQ(down(src.data(), step(src.step()), expected.data(), step(expected.step()), roi_of(src),
                 buffer.data()),
            StatusOk);
  ASSERT_EQ(up(src.data(), step(src.step()), expected_twice.data(), step(expected_twice.step()),
               roi_of(src), buffer.data()),
            StatusOk);
  nuqi::pyramid_down(src, half, scratch);
  EXPECT_TRUE(equal(half, expected));
  nuqi::pyramid_up(src, twice, scratch);
  EXPECT_TRUE(equal(twice, expected_twice));
}

TEST(Pyramid, LevelsAreThoseOfC) {
  nuqi::Scratch scratch;
  expect_levels<std::uint8_t, 1>(nuqiPyrDown_Gauss5x5_8u_C1R, nuqiPyrUp_Gauss5x5_8u_C1R, scratch);
  expect_levels<std::int8_t, 3>(nuqiPyrDown_Gauss5x5_8s_C3R, nuqiPyrUp_Gauss5x5_8s_C3R, scratch);
  expect_levels<float, 3>(nuqiPyrDown_Gauss5x5_32f_C3R, nuqiPyrUp_Gauss5x5_32f_C3R, scratch);
  EXPECT_GT(scratch.size(), 0u);
}

TEST(Pyramid, OddAndOtherSizesAreRefused) {
  Image<std::uint8_t> odd(25, 18), even(24, 18), half(12, 9), other(13, 9);
  try {
    nuqi::pyramid_down(odd, half);
    FAIL() << "25 columns have no half";
  } catch (const nuqi::Error& error) {
    EXPECT_EQ(error.status(), StatusBadSize);
    EXPECT_NE(std::string(error.what()).find("width and height must be even"), std::string::npos);
  }
  EXPECT_EQ(nuqi::pyramid_down(even, half, std::nothrow), StatusOk);
  EXPECT_EQ(nuqi::pyramid_down(even, other, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(half, even, std::nothrow), StatusOk);
  EXPECT_EQ(nuqi::pyramid_up(half, odd, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(even.roi(0, 0, 12, 9), even, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::pyramid_up(Image<float>(), Image<float>().view(), std::nothrow), StatusBadSize);
}

}  // namespace

// Derivatives, corners, distances, motion: what reaches the C functions, and what is refused before.
#include <gtest/gtest.h>

#include <cstdint>
#include <nuqi/nuqi.hpp>
#include <vector>

#include "support.h"

namespace {

using nuqi::Derivative;
using nuqi::Image;
using nuqi::RowOrder;
using nuqi::test::equal;
using nuqi::test::random_image;
using nuqi::test::status_of;

constexpr RoiSize kRoi = {37, 20};

template <class T>
int step_of(const Image<T>& image) {
  return static_cast<int>(image.step());
}

TEST(Derivatives, AreThoseOfTheirNames) {
  const auto src = random_image<std::uint8_t>(37, 20, 1);
  Image<std::int16_t> expected(37, 20);
  Image<std::int16_t> dst(37, 20);
  std::int16_t* const to = expected.data();
  const int to_step = step_of(expected);
  const int from_step = step_of(src);
  const auto expect = [&](StatusCode status, Derivative which, RowOrder order) {
    EXPECT_EQ(status, StatusOk);
    nuqi::sobel3x3(src, which, dst, order);
    EXPECT_TRUE(equal(dst, expected)) << which.text();
  };
  expect(nuqiSobel3x3_Dx_8u16s_C1R(src.data(), from_step, to, to_step, kRoi), Derivative::dx,
         RowOrder::top_down);
  expect(nuqiSobel3x3_Dy_8u16s_C1R(src.data(), from_step, to, to_step, 0, kRoi), Derivative::dy,
         RowOrder::top_down);
  expect(nuqiSobel3x3_Dy_8u16s_C1R(src.data(), from_step, to, to_step, 1, kRoi), Derivative::dy,
         RowOrder::bottom_up);
  expect(nuqiSobel3x3_D2x_8u16s_C1R(src.data(), from_step, to, to_step, kRoi), Derivative::d2x,
         RowOrder::top_down);
  expect(nuqiSobel3x3_D2y_8u16s_C1R(src.data(), from_step, to, to_step, kRoi), Derivative::d2y,
         RowOrder::top_down);
  expect(nuqiSobel3x3_DxDy_8u16s_C1R(src.data(), from_step, to, to_step, 1, kRoi), Derivative::dxdy,
         RowOrder::bottom_up);

  EXPECT_EQ(nuqiScharr_Dx_8u16s_C1R(src.data(), from_step, to, to_step, kRoi, 2), StatusOk);
  nuqi::scharr(src, Derivative::dx, dst, 2);
  EXPECT_TRUE(equal(dst, expected));
  EXPECT_EQ(nuqiScharr_Dy_8u16s_C1R(src.data(), from_step, to, to_step, 1, kRoi, 1), StatusOk);
  nuqi::scharr(src, Derivative::dy, dst, 1, RowOrder::bottom_up);
  EXPECT_TRUE(equal(dst, expected));

  const auto floats = random_image<float>(37, 20, 2);
  Image<float> slope(37, 20);
  nuqi::sobel3x3(floats, Derivative::dx, slope);
  EXPECT_FLOAT_EQ(slope(5, 0), 3 * (floats(6, 0) - floats(4, 0)) + (floats(6, 1) - floats(4, 1)));
}

TEST(Derivatives, RefuseWhatDoesNotExist) {
  Image<float> floats(8, 8);
  Image<float> slope(8, 8);
  Image<std::uint8_t> bytes(8, 8);
  Image<std::int16_t> dst(8, 8);
  EXPECT_EQ(nuqi::sobel3x3(floats, Derivative(Derivative::d2x), slope, std::nothrow), StatusUnsupported);
  EXPECT_EQ(nuqi::scharr(bytes, Derivative(Derivative::dxdy), dst, std::nothrow), StatusUnsupported);
  EXPECT_EQ(nuqi::scharr(bytes, Derivative::dx, dst, -1, RowOrder::top_down, std::nothrow),
            StatusUnsupported);
  EXPECT_EQ(
      nuqi::sobel3x3(bytes.roi(0, 0, 8, 1), Derivative::dx, dst.roi(0, 0, 8, 1), std::nothrow),
      StatusBadSize);
  EXPECT_EQ(nuqi::sobel3x3(bytes, Derivative::dx, dst.roi(0, 0, 8, 7), std::nothrow),
            StatusBadSize);
  EXPECT_EQ(nuqi::sobel3x3(floats, Derivative::dx, floats, std::nothrow), StatusBadArg);
}

TEST(Corners, AreThoseOfTheLibrary) {
  const auto src = random_image<std::uint8_t>(37, 20, 1);
  Image<float> expected(37, 20);
  std::vector<std::uint8_t> buffer(96 * 37);
  EXPECT_EQ(nuqiMinEigenVal_8u32f_C1R(src.data(), step_of(src), expected.data(), step_of(expected),
                                      kRoi, 5, 3, buffer.data()),
            StatusOk);
  nuqi::Scratch scratch;
  Image<float> dst(37, 20);
  nuqi::min_eigen(src, dst, {5, 3}, scratch);
  EXPECT_TRUE(equal(dst, expected));
  EXPECT_GE(scratch.size(), 96U * 37);
  Image<float> again(37, 20);
  nuqi::min_eigen(src, again, {5, 3});
  EXPECT_TRUE(equal(again, expected));

  Image<float, 6> vectors(37, 20);
  nuqi::eigen_vectors(src, vectors);
  nuqi::min_eigen(src, dst);
  EXPECT_NEAR(vectors(17, 9, 1), dst(17, 9), 1e-4);
  EXPECT_EQ(nuqi::min_eigen(src, dst, {4, 3}, scratch, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::min_eigen(dst, dst, {}, scratch, std::nothrow), StatusBadArg);
}

TEST(Distances, CountSteps) {
  Image<std::uint8_t> src(9, 7);
  for (int y = 0; y < 7; ++y)
    for (int x = 0; x < 9; ++x) src(x, y) = 1;
  src(2, 3) = 0;
  Image<float> dst(9, 7);
  nuqi::distance_transform(src, dst, nuqi::Distance::city_block);
  EXPECT_EQ(dst(5, 5), 5);
  nuqi::distance_transform(src, dst, nuqi::Distance::chessboard);
  EXPECT_EQ(dst(5, 5), 3);
  nuqi::distance_transform(src, dst, {3, 4});
  EXPECT_EQ(dst(5, 5), 11);
  nuqi::distance_transform(src, dst);
  EXPECT_NEAR(dst(4, 4), 2.1969, 1e-4);
  EXPECT_EQ(nuqi::distance_steps(nuqi::Distance::euclidean_3x3).knight, -1);
  EXPECT_EQ(status_of([&] { nuqi::distance_transform(src.roi(0, 0, 9, 6), dst); }), StatusBadSize);
}

TEST(Motion, KeepsTimesAndForgets) {
  Image<std::uint8_t> silhouette(5, 3);
  Image<float> history(5, 3);
  history(0, 0) = 3;
  history(1, 0) = 9;
  silhouette(2, 0) = 1;
  nuqi::motion_history(silhouette, history, 10, 5);
  EXPECT_EQ(history(0, 0), 0);
  EXPECT_EQ(history(1, 0), 9);
  EXPECT_EQ(history(2, 0), 10);
  EXPECT_EQ(nuqi::motion_history(silhouette, history, 10, -1, std::nothrow), StatusBadArg);
}

TEST(Motion, AnglesOfRowsWithAndWithoutGaps) {
  const auto y = random_image<float>(21, 6, 1);  // 64-byte rows leave gaps
  auto x = random_image<float>(21, 6, 2);
  std::vector<float> plain(21 * 6);
  const nuqi::View<float> angle(plain.data(), 21, 6);
  nuqi::arctan(y, x, angle);
  for (int row = 0; row < 6; ++row) {
    std::vector<float> expected(21);
    EXPECT_EQ(nuqibFastArctan_32f(y.row(row), x.row(row), expected.data(), 21), StatusOk);
    EXPECT_EQ(std::memcmp(expected.data(), angle.row(row), 84), 0);
  }
  Image<float> tight(16, 4);
  tight(3, 2) = 1;
  nuqi::arctan(tight, tight, tight);
  EXPECT_NEAR(tight(3, 2), 45, 0.15) << "in place, rows back to back";
  EXPECT_EQ(nuqi::arctan(y, x, x.roi(0, 0, 20, 6), std::nothrow), StatusBadSize);
}

TEST(Motion, SamplesAreThoseOnTheLine) {
  const auto src = random_image<std::uint8_t, 3>(20, 10, 1);
  const std::vector<std::uint8_t> samples = nuqi::sample_line(src, {2, 9}, {9, 2});
  ASSERT_EQ(samples.size(), 24U);
  EXPECT_EQ(samples[0], src(2, 9, 0));
  EXPECT_EQ(samples[3 * 4 + 1], src(6, 5, 1));
  EXPECT_EQ(samples[23], src(9, 2, 2));
  EXPECT_EQ(status_of([&] { (void)nuqi::sample_line(src, {0, 0}, {20, 0}); }), StatusBadArg);
  EXPECT_EQ(status_of([&] {
              (void)nuqi::sample_line(src, {INT32_MIN, 0}, {INT32_MAX, 0});
            }),
            StatusBadArg);
}

}  // namespace

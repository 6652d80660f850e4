// Derivatives, corners, distances, motion: what reaches the C functions, and what is refused before.
#include <cstdint>
#include <vector>

#include "support.h"

namespace {

using nuqi::Derivative;
using nuqi::Image;
using nuqi::RowOrder;
using namespace nuqi::test;

TEST(Derivatives, AreThoseOfTheirNames) {
  const auto src = random_image<std::uint8_t>(37, 20);
  const auto expect = [&](const Image<std::int16_t>& expected, auto which, RowOrder order) {
    Image<std::int16_t> of_constant(37, 20), of_variable(37, 20);
    nuqi::sobel3x3(src, which, of_constant, order);
    nuqi::sobel3x3(src, Derivative(which), of_variable, order);
    EXPECT_TRUE(equal(of_constant, expected)) << Derivative(which).text();
    EXPECT_TRUE(equal(of_variable, expected)) << Derivative(which).text();
  };
  const auto along_rows = [&](auto* function, std::int32_t bottom_up, auto... shift) {
    Image<std::int16_t> dst(37, 20);
    EXPECT_EQ(
        function(src.data(), step(src), dst.data(), step(dst), bottom_up, roi_of(src), shift...),
        StatusOk);
    return dst;
  };
  const auto other = [&](auto* function, auto... shift) {
    return by_c<std::int16_t>(function, src, 37, 20, shift...);
  };
  constexpr auto kDown = RowOrder::top_down, kUp = RowOrder::bottom_up;
  expect(other(nuqiSobel3x3_Dx_8u16s_C1R), Derivative::dx, kDown);
  expect(along_rows(nuqiSobel3x3_Dy_8u16s_C1R, 0), Derivative::dy, kDown);
  expect(along_rows(nuqiSobel3x3_Dy_8u16s_C1R, 1), Derivative::dy, kUp);
  expect(other(nuqiSobel3x3_D2x_8u16s_C1R), Derivative::d2x, kDown);
  expect(other(nuqiSobel3x3_D2y_8u16s_C1R), Derivative::d2y, kDown);
  expect(along_rows(nuqiSobel3x3_DxDy_8u16s_C1R, 1), Derivative::dxdy, kUp);

  Image<std::int16_t> dst(37, 20);
  nuqi::scharr(src, Derivative::dx, dst, 2);
  EXPECT_TRUE(equal(dst, other(nuqiScharr_Dx_8u16s_C1R, 2)));
  nuqi::scharr(src, Derivative::dy, dst, 1, kUp);
  EXPECT_TRUE(equal(dst, along_rows(nuqiScharr_Dy_8u16s_C1R, 1, 1)));
  const auto floats = random_image<float>(37, 20);
  Image<float> slope(37, 20);
  nuqi::sobel3x3(floats, Derivative::dx, slope);
  EXPECT_TRUE(equal(slope, by_c<float>(nuqiSobel3x3_Dx_32f_C1R, floats, 37, 20)));
}

TEST(Derivatives, VariablesMayHoldWhatDoesNotExist) {
  Image<float> floats(8, 8), slope(8, 8);
  Image<std::uint8_t> bytes(8, 8);
  Image<std::int16_t> dst(8, 8);
  const Derivative none = Derivative::Kind{7};
  for (const Derivative which : {Derivative(Derivative::d2x), Derivative(Derivative::dxdy), none}) {
    EXPECT_EQ(nuqi::sobel3x3(floats, which, slope, std::nothrow), StatusUnsupported);
    EXPECT_EQ(nuqi::scharr(bytes, which, dst, std::nothrow), StatusUnsupported);
  }
  EXPECT_EQ(nuqi::scharr(bytes, Derivative::dx, dst, -1, RowOrder::top_down, std::nothrow),
            StatusUnsupported);
  const auto row = bytes.roi(0, 0, 8, 1);
  EXPECT_EQ(nuqi::sobel3x3(row, Derivative::dx, dst.roi(0, 0, 8, 1), std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::sobel3x3(row, Derivative::dx, dst, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::sobel3x3(floats, Derivative::dx, floats, std::nothrow), StatusBadArg);
}

TEST(Corners, AreThoseOfTheLibrary) {
  const auto src = random_image<std::uint8_t>(37, 20);
  std::vector<std::uint8_t> buffer(1 << 20);
  nuqi::Scratch scratch;
  Image<float> dst(37, 20);
  // From one size to another, and back.
  for (const nuqi::CornerSizes sizes : {nuqi::CornerSizes{5, 3}, {7, 5}, {7, 5}, {3, 5}, {7, 5}}) {
    nuqi::min_eigen(src, dst, sizes, scratch);
    EXPECT_TRUE(equal(dst, by_c<float>(nuqiMinEigenVal_8u32f_C1R, src, 37, 20, sizes.aperture,
                                       sizes.block, static_cast<void*>(buffer.data()))));
  }
  Image<float, 6> vectors(37, 20);
  nuqi::eigen_vectors(src, vectors);
  nuqi::min_eigen(src, dst);
  EXPECT_NEAR(vectors(17, 9, 1), dst(17, 9), 1e-4);
  EXPECT_EQ(nuqi::min_eigen(src, dst, {4, 3}, scratch, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::min_eigen(dst, dst, {}, scratch, std::nothrow), StatusBadArg);
}

TEST(Distances, CountSteps) {
  const auto src = image_of<std::uint8_t>(9, 7, [](int x, int y) { return x != 2 || y != 3; });
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
  expect_throws(StatusBadSize, {[&] { nuqi::distance_transform(src.roi(0, 0, 9, 6), dst); }});
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
  std::vector<float> plain(21 * 6), expected(21);
  const nuqi::View<float> angle(plain.data(), 21, 6);
  nuqi::arctan(y, x, angle);
  for (int row = 0; row < 6; ++row) {
    EXPECT_EQ(nuqibFastArctan_32f(y.row(row), x.row(row), expected.data(), 21), StatusOk);
    EXPECT_EQ(std::memcmp(expected.data(), angle.row(row), 84), 0);
  }
  Image<float> tight(16, 4);
  tight(3, 2) = 1;
  nuqi::arctan(tight, tight, tight);
  EXPECT_NEAR(tight(3, 2), 45, 0.15) << "in place, rows back to back";
  EXPECT_EQ(nuqi::arctan(y, x, x.roi(0, 0, 20, 6), std::nothrow), StatusBadSize);
  const nuqi::View<float> later(plain.data() + 1, 20, 6), earlier(plain.data(), 20, 6);
  EXPECT_EQ(nuqi::arctan(earlier, earlier, later, std::nothrow), StatusBadArg);
}

TEST(Motion, SamplesAreThoseOnTheLine) {
  const auto src = random_image<std::uint8_t, 3>(20, 10);
  const std::vector<std::uint8_t> samples = nuqi::sample_line(src, {2, 9}, {9, 2});
  ASSERT_EQ(samples.size(), 24U);
  EXPECT_EQ(samples[0], src(2, 9, 0));
  EXPECT_EQ(samples[3 * 4 + 1], src(6, 5, 1));
  EXPECT_EQ(samples[23], src(9, 2, 2));
  expect_throws(StatusBadArg, {[&] {
                                 (void)nuqi::sample_line(src, {0, 0}, {20, 0});
                               },
                               [&] {
                                 (void)nuqi::sample_line(src, {INT32_MIN, 0}, {INT32_MAX, 0});
                               }});
}

}  // namespace

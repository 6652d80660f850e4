// Views, images and masks.
#include <cstdint>
#include <type_traits>
#include <vector>

#include "support.h"

namespace {

using nuqi::Error;
using nuqi::Image;
using nuqi::kAnyChannels;
using nuqi::View;
using nuqi::test::status_of;

TEST(View, ReachesPixelsByStepsInBytes) {
  std::vector<float> memory(40);
  const View<float, 3> view(memory.data(), 3, 4, 10 * sizeof(float));
  view(2, 3, 1) = 5;
  EXPECT_EQ(memory[3 * 10 + 2 * 3 + 1], 5);
  EXPECT_EQ(view.row(2), memory.data() + 20);
  EXPECT_EQ(view.roi(1, 2, 2, 2)(1, 1, 1), 5);
  EXPECT_EQ(view.size(), 12);
}

TEST(View, OnlyBecomesConst) {
  static_assert(std::is_convertible_v<View<float>, View<const float>>);
  static_assert(!std::is_convertible_v<View<const float>, View<float>>);
  static_assert(!std::is_convertible_v<View<float>, View<const float, 3>>);
  static_assert(std::is_convertible_v<Image<float>&, View<float>>);
  static_assert(std::is_convertible_v<Image<float>&, View<const float>>);
  static_assert(!std::is_convertible_v<const Image<float>&, View<float>>);
  static_assert(!std::is_convertible_v<View<const std::uint8_t>, nuqi::Mask>,
                "masks are made explicitly");
  static_assert(!std::is_copy_constructible_v<Image<float>>, "clone() copies");
}

TEST(View, RefusesImpossibleShapes) {
  float pixel[64] = {};
  const auto made = [&](float* data, std::int64_t width, std::int64_t height, std::ptrdiff_t step) {
    return status_of([&] { View<float>(data, width, height, step); });
  };
  EXPECT_EQ(made(pixel, 4, 4, 16), StatusOk);
  for (const std::ptrdiff_t step : {12, 18, -16}) EXPECT_EQ(made(pixel, 4, 4, step), StatusBadSize);
  EXPECT_EQ(made(pixel, -1, 4, 16), StatusBadSize);
  EXPECT_EQ(made(nullptr, 4, 4, 16), StatusBadSize);
  EXPECT_EQ(made(pixel, 4, INT64_MAX / 2, 16), StatusBadSize);
  EXPECT_EQ(made(pixel, INT64_MAX / 2, 1, 16), StatusBadSize);
  EXPECT_EQ(made(nullptr, 0, 4, 0), StatusOk);
  EXPECT_EQ(made(pixel, 4, 1, 0), StatusOk) << "a single row has no next one";
  EXPECT_EQ(View<float>(pixel, 4, 1, 0).step(), 16);
}

TEST(View, RoiStaysInside) {
  Image<std::uint8_t> image(8, 6);
  const auto cut = [&](std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
    return status_of([&] { (void)image.roi(x, y, width, height); });
  };
  EXPECT_EQ(cut(0, 0, 8, 6), StatusOk);
  EXPECT_EQ(cut(8, 6, 0, 0), StatusOk);
  EXPECT_EQ(cut(1, 0, 8, 6), StatusBadArg);
  EXPECT_EQ(cut(0, 1, 8, 6), StatusBadArg);
  EXPECT_EQ(cut(-1, 0, 2, 2), StatusBadArg);
  EXPECT_EQ(cut(0, 0, -1, 2), StatusBadArg);
  EXPECT_EQ(cut(1, 0, INT64_MAX, 1), StatusBadArg);
}

TEST(View, AsksForChannelsAtRunTime) {
  Image<std::uint8_t, 3> image(4, 2);
  const View<const std::uint8_t, kAnyChannels> any = image.view();
  EXPECT_EQ(any.channels(), 3);
  EXPECT_EQ(any.as<3>().row(1), image.row(1));
  try {
    (void)any.as<1>();
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.status(), StatusBadChannels);
    EXPECT_STREQ(
        error.what(),
        "as(4x2 of uint8_t x 3, 1): the image has another number of channels (StatusBadChannels)");
  }
}

TEST(Image, OwnsAlignedRowsOfZeros) {
  Image<std::int16_t, 3> image(11, 5);
  EXPECT_EQ(image.step(), 128);
  for (int y = 0; y < 5; ++y) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image.row(y)) % 64, 0u);
    for (int x = 0; x < 11; ++x) EXPECT_EQ(image(x, y, 2), 0);
  }
  image(10, 4, 2) = 7;
  Image<std::int16_t, 3> copy = image.clone();
  EXPECT_NE(copy.data(), image.data());
  EXPECT_EQ(copy(10, 4, 2), 7);
  const auto* pixels = copy.data();
  Image<std::int16_t, 3> moved = std::move(copy);
  EXPECT_EQ(moved.data(), pixels);
  moved = Image<std::int16_t, 3>();
  EXPECT_TRUE(moved.empty());
  EXPECT_TRUE((Image<float>(0, 5).clone().empty()));
}

TEST(Image, RefusesWhatCannotBe) {
  const auto made = [](std::int64_t width, std::int64_t height) {
    return status_of([&] { Image<float> image(width, height, nuqi::uninitialised); });
  };
  EXPECT_EQ(made(-1, 4), StatusBadSize);
  EXPECT_EQ(made(4, -1), StatusBadSize);
  EXPECT_EQ(made(INT64_MAX, 1), StatusNoMemory);
  EXPECT_EQ(made(INT64_MAX / 8, INT64_MAX / 8), StatusNoMemory);
}

}  // namespace

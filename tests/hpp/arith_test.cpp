// Accumulation, absolute difference, splitting and joining against plain formulas.
#include <cstdint>

#include "support.h"

namespace {

using nuqi::Image;
using nuqi::Mask;
using namespace nuqi::test;

// acc after an operation, with a mask or without, against the formula of one pixel.
template <class T, class Run, class Formula>
void expect_accumulated(Run run, Formula formula) {
  for (const bool masked : {false, true}) {
    const Image<T> a = random_image<T>(37, 11, 1), b = random_image<T>(37, 11, 2);
    const Image<std::uint8_t> mask = random_mask(37, 11, 3);
    Image<float> acc = random_image<float>(37, 11, 4);
    const Image<float> before = acc.clone();
    masked ? run(a, b, acc, Mask(mask)) : run(a, b, acc);
    each_pixel(acc, [&](int x, int y) {
      const bool taken = !masked || mask(x, y) != 0;
      const float old = before(x, y);
      const auto of_a = static_cast<float>(a(x, y)), of_b = static_cast<float>(b(x, y));
      EXPECT_EQ(acc(x, y), taken ? old + formula(of_a, of_b, old) : old) << x << ", " << y;
    });
  }
}

template <class T>
void expect_all_accumulations() {
  expect_accumulated<T>(
      [](auto& a, auto&, auto& acc, auto... mask) { nuqi::accumulate(a, mask..., acc); },
      [](float a, float, float) { return a; });
  expect_accumulated<T>(
      [](auto& a, auto&, auto& acc, auto... mask) { nuqi::accumulate_square(a, mask..., acc); },
      [](float a, float, float) { return a * a; });
  expect_accumulated<T>([](auto& a, auto& b, auto& acc,
                           auto... mask) { nuqi::accumulate_product(a, b, mask..., acc); },
                        [](float a, float b, float) { return a * b; });
  expect_accumulated<T>([](auto& a, auto&, auto& acc,
                           auto... mask) { nuqi::accumulate_weighted(a, mask..., acc, 0.25F); },
                        [](float a, float, float acc) { return 0.25F * (a - acc); });
}

TEST(Accumulate, FollowsItsFormula) {
  expect_all_accumulations<std::uint8_t>();
  expect_all_accumulations<std::int8_t>();
  expect_all_accumulations<float>();
}

TEST(Accumulate, RefusesOverlapAndUnequalSizes) {
  Image<float> acc(8, 8);
  Image<std::uint8_t> bytes(8, 8);
  EXPECT_EQ(nuqi::accumulate(acc, acc, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::accumulate_weighted(bytes.roi(0, 0, 8, 7), acc, 1, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::accumulate(bytes, Mask(bytes.roi(0, 0, 7, 8)), acc, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::accumulate(bytes.roi(0, 0, 0, 8), acc.roi(0, 0, 0, 8), std::nothrow),
            StatusBadSize);
  expect_throws(StatusBadArg, {[&] { nuqi::accumulate_product(acc, acc, acc); }});
}

TEST(AbsDiff, OfImagesAndNumbers) {
  const auto a = random_image<std::uint8_t>(19, 7, 1);
  auto b = random_image<std::uint8_t>(19, 7, 2);
  Image<std::uint8_t> dst(19, 7);
  nuqi::abs_diff(a, b, dst);
  each_pixel(a, [&](int x, int y) { EXPECT_EQ(dst(x, y), std::abs(a(x, y) - b(x, y))); });
  nuqi::abs_diff(a, b, b);
  EXPECT_TRUE(equal(b, dst)) << "in place";
  const nuqi::View<std::uint8_t> denser(b.data(), 19, 7, 32);
  EXPECT_EQ(nuqi::abs_diff(a, b, denser, std::nothrow), StatusBadArg) << "no pixel but the first";
  nuqi::abs_diff(a, 100, dst);
  EXPECT_EQ(dst(3, 3), std::abs(a(3, 3) - 100));
  nuqi::abs_diff(a, ~0ULL, dst);
  EXPECT_EQ(dst(3, 3), 255 - a(3, 3)) << "held to the range of bytes, not cut to the low bits";
  nuqi::abs_diff(a, -(1LL << 40), dst);
  EXPECT_EQ(dst(3, 3), a(3, 3));

  const auto f = random_image<float>(19, 7, 3);
  Image<float> apart(19, 7);
  nuqi::abs_diff(f, 2, apart);
  EXPECT_EQ(apart(5, 5), std::abs(f(5, 5) - 2));
}

TEST(AbsDiff, TakesRegionsOfOnePicture) {
  Image<std::uint8_t> picture = random_image<std::uint8_t>(24, 8, 1);
  const Image<std::uint8_t> before = picture.clone();
  nuqi::abs_diff(picture.roi(0, 0, 8, 8), picture.roi(8, 0, 8, 8), picture.roi(16, 0, 8, 8));
  EXPECT_EQ(picture(20, 5), std::abs(before(4, 5) - before(12, 5)));
  EXPECT_EQ(nuqi::abs_diff(picture.roi(0, 0, 8, 8), picture.roi(8, 0, 8, 8),
                           picture.roi(15, 0, 8, 8), std::nothrow),
            StatusBadArg);
}

template <class T, int Channels>
void split_and_join() {
  const Image<T, Channels> src = random_image<T, Channels>(21, 6, 1);
  Image<T> wide(200, 12);
  // Planes of one step, and of two.
  for (const bool one_step : {true, false}) {
    Image<T> own(21, 6);
    const auto plane = [&](int i) {
      return i == 2 && !one_step ? own.view() : wide.roi(30 * i, i, 21, 6);
    };
    Image<T, Channels> back(21, 6);
    if constexpr (Channels == 3) {
      nuqi::split(src, plane(0), plane(1), plane(2));
      nuqi::join(plane(0), plane(1), plane(2), back);
      EXPECT_EQ(nuqi::split(src, plane(0), plane(1), plane(0), std::nothrow), StatusBadArg);
      EXPECT_EQ(nuqi::join(plane(0), plane(0), plane(0), back, std::nothrow), StatusOk);
    } else {
      nuqi::split(src, plane(0), plane(1), plane(2), plane(3));
      nuqi::join(plane(0), plane(1), plane(2), plane(3), back);
      EXPECT_EQ(nuqi::split(src, plane(0), plane(1), plane(2), plane(2), std::nothrow),
                StatusBadArg);
    }
    for (int i = 0; i < Channels; ++i) EXPECT_EQ(plane(i)(20, 5), src(20, 5, i));
    EXPECT_TRUE(Channels == 3 || equal(back, src));
    nuqi::split(src, 2, plane(0));
    EXPECT_EQ(plane(0)(7, 3), src(7, 3, 2));
    expect_throws(StatusBadCoi, {[&] { nuqi::split(src, Channels, plane(0)); }});
    EXPECT_EQ(nuqi::split(src, -1, plane(0), std::nothrow), StatusBadCoi);
  }
}

TEST(Channels, SplitAndJoin) {
  split_and_join<std::uint8_t, 3>();
  split_and_join<std::uint8_t, 4>();
  split_and_join<float, 3>();
  split_and_join<float, 4>();
}

}  // namespace

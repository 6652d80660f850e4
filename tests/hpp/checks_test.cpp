// What is found out before a call: sizes, overlap, bands.
#include <cstdint>
#include <set>
#include <vector>

#include "support.h"

namespace {

using nuqi::Image;
using nuqi::View;
namespace detail = nuqi::detail;

std::set<const void*> bytes_of(View<const std::uint8_t> view) {
  std::set<const void*> bytes;
  nuqi::test::each_pixel(view, [&](int x, int y) { bytes.insert(view.row(y) + x); });
  return bytes;
}

TEST(Checks, OverlapIsThatOfBytes) {
  std::vector<std::uint8_t> memory(200);
  std::vector<View<const std::uint8_t>> views;
  for (int step : {5, 7})
    for (int start : {0, 2, 3, 5, 19})
      for (int width : {1, 2, 5})
        for (int height : {1, 4}) views.emplace_back(memory.data() + start, width, height, step);
  int shared = 0;
  for (const auto& a : views) {
    for (const auto& b : views) {
      bool expected = false;
      const std::set<const void*> of_a = bytes_of(a);
      for (const void* byte : bytes_of(b)) expected = expected || of_a.count(byte) != 0;
      EXPECT_EQ(detail::overlap(a, b), expected) << a.text() << " and " << b.text();
      EXPECT_FALSE(expected && detail::side_by_side(a, b)) << a.text() << " and " << b.text();
      shared += expected ? 1 : 0;
    }
  }
  EXPECT_TRUE(detail::side_by_side(View<const std::uint8_t>(memory.data() + 9, 4, 9, 10),
                                   View<const std::uint8_t>(memory.data() + 3, 6, 9, 10)));
  EXPECT_GT(shared, 100);
  EXPECT_LT(shared, static_cast<int>(views.size() * views.size()) - 100);
}

// The one comparison that stands for many.
TEST(Checks, TheCommonCaseIsNoOther) {
  std::uint8_t pixel = 0;
  const auto view = [&](std::int64_t width, std::int64_t height, std::int64_t step) {
    return View<const std::uint8_t>(nuqi::detail::Members{}, &pixel, width, height,
                                    static_cast<std::ptrdiff_t>(step));
  };
  constexpr std::int64_t k = std::int64_t{1} << 31;
  EXPECT_TRUE(detail::ready(view(7, 5, 8), view(7, 5, 9)));
  EXPECT_TRUE(detail::ready(view(k - 1, k - 1, 8)));
  EXPECT_FALSE(detail::ready(view(7, 5, 8), view(8, 5, 8)));
  EXPECT_FALSE(detail::ready(view(7, 5, 8), view(7, 4, 8)));
  EXPECT_FALSE(detail::ready(view(0, 5, 8), view(0, 5, 8)));
  EXPECT_FALSE(detail::ready(view(7, 0, 8)));
  EXPECT_FALSE(detail::ready(view(-1, -1, 0)));
  if (sizeof(void*) == 4) return;
  EXPECT_FALSE(detail::ready(view(k, 5, 8)));
  EXPECT_FALSE(detail::ready(view(7, k, 8)));
  EXPECT_FALSE(detail::ready(view(7, 5, 8), view(7, 5, k)));
}

TEST(Checks, OutputsMayBeInputsOnlyWhole) {
  Image<float> image(8, 8);
  EXPECT_FALSE(detail::check_in_place(image.view(), image.view()).failed());
  EXPECT_TRUE(detail::check_in_place(image.roi(0, 0, 8, 7), image.view()).failed());
  EXPECT_TRUE(detail::check_apart(image.view(), image.view()).failed());
}

// Every pixel of the views must come once, in parts that C can hold.
TEST(Bands, CoverAViewOnce) {
  Image<std::uint8_t, 3> image(23, 9);
  Image<float> other(23, 9);
  for (int pixels : {1, 5, 22, 23, 24, 70, 1000}) {
    const auto outcome = detail::in_bands(
        pixels,
        [&](RoiSize roi, detail::Part<std::uint8_t> part, detail::Part<float> second) {
          EXPECT_LE(roi.width * roi.height, pixels);
          for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) {
              part.data[y * part.step + x * 3 + 2]++;
              second.data[y * second.step / 4 + x]++;
            }
          return StatusOk;
        },
        image.view(), other.view());
    EXPECT_FALSE(outcome.failed());
  }
  nuqi::test::each_pixel(other, [&](int x, int y) {
    EXPECT_EQ(image(x, y, 2), 7);
    EXPECT_EQ(other(x, y), 7);
  });
}

TEST(Bands, EndWithAFailure) {
  Image<std::uint8_t> image(4, 4);
  int calls = 0;
  const auto outcome = detail::in_bands(
      4,
      [&](RoiSize, detail::Part<std::uint8_t>) { return ++calls == 2 ? StatusBadArg : StatusOk; },
      image.view());
  EXPECT_EQ(outcome.status, StatusBadArg);
  EXPECT_EQ(calls, 2);
}

// No memory is touched: these images are as large as addresses are.
TEST(Bands, HoldSizesAndStepsOf31Bits) {
  if (sizeof(void*) == 4) GTEST_SKIP() << "no such addresses";
  const auto pieces = [](std::int64_t width, std::int64_t height, std::int64_t step) {
    float pixel = 0;
    const View<float, 3> view(&pixel, width, height, static_cast<std::ptrdiff_t>(step));
    std::int64_t covered = 0;
    int count = 0;
    (void)detail::in_bands(
        detail::kUnlimited,
        [&](RoiSize roi, detail::Part<float> part) {
          EXPECT_GE(part.step, std::int64_t{12} * roi.width);
          covered += std::int64_t{roi.width} * roi.height;
          ++count;
          return StatusOk;
        },
        view);
    EXPECT_EQ(covered, width * height);
    return count;
  };
  constexpr std::int64_t k = std::int64_t{1} << 31;
  EXPECT_EQ(pieces(100, k - 1, 1200), 1);
  EXPECT_EQ(pieces(100, k, 1200), 2);
  EXPECT_EQ(pieces(100, 5, k - 4), 1);
  EXPECT_EQ(pieces(100, 5, k), 5);
  EXPECT_EQ(pieces(k / 12, 3, k - 8), 1);
  EXPECT_EQ(pieces(k / 12 + 1, 3, k + 8), 6);
}

}  // namespace

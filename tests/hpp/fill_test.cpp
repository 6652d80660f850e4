// Flood fills: both kinds, both connectivities, and what is refused.
#include <gtest/gtest.h>

#include <cstdint>

#include "support.h"

namespace {

using nuqi::Connectivity;
using nuqi::Image;
using nuqi::test::status_of;

// A staircase along the diagonal: 1, 2, 3 ... where neighbours touch at corners alone; 100 elsewhere.
template <class T>
Image<T> staircase() {
  Image<T> image(6, 6);
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 6; ++x) image(x, y) = static_cast<T>(x == y ? x + 1 : 100);
  return image;
}

template <class T>
void expect_fills() {
  auto image = staircase<T>();
  FillRegion region = nuqi::flood_fill(image, {5, 0}, 7);
  EXPECT_EQ(region.area, 15);
  EXPECT_EQ(region.x, 1);
  EXPECT_EQ(region.y, 0);
  EXPECT_EQ(region.width, 5);
  EXPECT_EQ(region.value, 7);
  EXPECT_EQ(image(0, 5), 100);
  EXPECT_EQ(image(1, 0), 7);

  image = staircase<T>();
  EXPECT_EQ(nuqi::flood_fill(image, {5, 0}, 7, Connectivity::eight).area, 30);
  EXPECT_EQ(nuqi::flood_fill(image, {5, 0}, 7, Connectivity::eight).area,
            0);  // they have that value

  // Up the stairs in steps of one, not down.
  nuqi::Scratch scratch;
  image = staircase<T>();
  EXPECT_EQ(nuqi::flood_fill(image, {2, 2}, 9, 0, 1).area, 1);
  image = staircase<T>();
  region = nuqi::flood_fill(image, {2, 2}, 9, 0, 1, Connectivity::eight, scratch);
  EXPECT_EQ(region.area, 4);
  EXPECT_EQ(region.x, 2);
  EXPECT_EQ(image(5, 5), 9);
  EXPECT_EQ(image(1, 1), 2);
  EXPECT_GT(scratch.size(), 0u);
}

TEST(Fill, PaintsConnectedPixels) {
  expect_fills<std::uint8_t>();
  expect_fills<float>();
}

TEST(Fill, Refuses) {
  auto image = staircase<std::uint8_t>();
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(image, {6, 0}, 7); }), StatusBadArg);
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(image, {0, -1}, 7); }), StatusBadArg);
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(image, {0, 0}, 256); }), StatusUnsupported);
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(image, {0, 0}, 7, -1, 3); }), StatusBadArg);
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(image, {0, 0}, 7, 200, 100); }), StatusBadArg);
  Image<float> none;
  EXPECT_EQ(status_of([&] { nuqi::flood_fill(none, {0, 0}, 7); }), StatusBadSize);
}

// The size queries of C compute modulo 2^32.
TEST(Fill, BringsTheBytesThatLargeImagesNeed) {
  using nuqi::detail::fill_bytes;
  EXPECT_EQ(fill_bytes({10, 20}, false), 1200);
  EXPECT_EQ(fill_bytes({10, 20}, true), 1200 + 12 * 22);
  EXPECT_EQ(fill_bytes({20000, 20000}, false), 2400000000);
  EXPECT_EQ(fill_bytes({20000, 20000}, true), 2400000000 + 20002 * 20002);
}

}  // namespace

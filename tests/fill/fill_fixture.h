// One flood fill, and what it must give.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "fill/flood_fill_members.h"
#include "fill/flood_fill_reference.h"
#include "support/comparison.h"
#include "support/crash.h"
#include "support/shapes.h"

namespace nuqi::test {

inline std::vector<uint64_t> bits_of_region(const FillRegion& r) {
  return {bits_of(r.area), bits_of(r.value), bits_of(r.x),
          bits_of(r.y),    bits_of(r.width), bits_of(r.height)};
}
constexpr FillRegion kUntouched = {-7, -7, -7, -7, -7, -7};

// A pixel's value from its place.
template <class T>
using Painter = std::function<T(int x, int y)>;

// The image of a call, and a buffer of exactly the queried size and random contents that ends, or
// starts, at a wall. With `odd` it starts at an odd address before that wall.
template <class T>
struct FillFixture {
  FillFixture(const FillMember<T>& member, const Case& c, const Painter<T>& painter, int odd = 0)
      : member(member),
        roi(c.roi),
        image("image", c),
        buffer(static_cast<size_t>(queried_size()) + odd, c.wall, "buffer"),
        odd(odd) {
    paint(painter);
  }

  // A new picture, and new contents of the buffer.
  void paint(const Painter<T>& painter) {
    image.fill([&, x = 0, y = 0]() mutable {
      const T value = painter(x, y);
      if (++x == roi.width) x = 0, ++y;
      return value;
    });
    uint64_t bits = 0;
    for (size_t i = 0; i < buffer.size(); ++i) {
      bits = i % 8 == 0 ? random.bits() : bits >> 8;
      buffer.data()[i] = static_cast<uint8_t>(bits);
    }
  }
  int32_t queried_size() const {
    int32_t size = 0;
    EXPECT_EQ(member.get_size(roi, &size), StatusOk);
    return size;
  }
  FillArgs<T> args(PixelPoint seed, double value, double lower = 0, double upper = 0) {
    using Value = typename FillArgs<T>::Value;
    return {image.data(),
            image.step(),
            roi,
            seed,
            static_cast<Value>(value),
            static_cast<Value>(lower),
            static_cast<Value>(upper),
            &region,
            buffer.data() + odd};
  }
  // Fills, and holds image and record against the reference.
  void expect_agreement(PixelPoint seed, double value, double lower = 0, double upper = 0) {
    std::vector<T> expected = image.pixels();
    FillRegion expected_region = region = kUntouched;
    const FillRule rule = {member.gradient, member.diagonal, lower, upper};
    fill_reference(rule, expected, roi, seed, static_cast<T>(value), expected_region);
    const Running now(member.name, roi);
    ASSERT_EQ(member.call(args(seed, value, lower, upper)), StatusOk);
    ASSERT_TRUE(same_bits(expected, image.pixels()))
        << member.name << " seed " << seed.x << "," << seed.y << " value " << value << " deltas "
        << lower << " " << upper;
    ASSERT_TRUE(same_bits(bits_of_region(expected_region), bits_of_region(region))) << member.name;
    ASSERT_TRUE(image.padding_untouched());
  }

  const FillMember<T>& member;
  RoiSize roi;
  WalledImage<T> image;
  WalledBytes buffer;
  int odd;
  Random random{1};
  FillRegion region = kUntouched;
};

}  // namespace nuqi::test

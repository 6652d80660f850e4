// Canny's edges: steps of derivatives, ties between neighbours, thresholds from the picture.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support.h"

namespace {

using nuqi::EdgeOperator;
using nuqi::Image;
using nuqi::View;
using namespace nuqi::test;

struct Derivatives {
  Image<std::int16_t> dx, dy;
};

Derivatives derivatives_by(EdgeOperator of, const Image<std::uint8_t>& src) {
  Derivatives d{{src.width(), src.height()}, {src.width(), src.height()}};
  const auto derive = [&](auto which, Image<std::int16_t>& to) {
    of == EdgeOperator::sobel ? nuqi::sobel3x3(src, which, to) : nuqi::scharr(src, which, to);
  };
  derive(nuqi::Derivative::dx, d.dx);
  derive(nuqi::Derivative::dy, d.dy);
  return d;
}

Image<std::uint8_t> canny_by_c(const Derivatives& d, float low, float high) {
  Image<std::uint8_t> dst(d.dx.width(), d.dx.height());
  std::vector<std::uint8_t> buffer(1 << 20);
  EXPECT_EQ(nuqiCanny_16s8u_C1R(d.dx.data(), step(d.dx), d.dy.data(), step(d.dy), dst.data(),
                                step(dst), roi_of(dst), low, high, buffer.data()),
            StatusOk);
  return dst;
}

// Canny's method from its description, with the neighbours' ties decided by parity.
class Reference {
 public:
  Reference(const Derivatives& d, int low, int high)
      : d_(d), low_(low), edges_(d.dx.width(), d.dx.height()) {
    each_pixel(edges_, [&](int x, int y) {
      if (stays(x, y) && strength(x, y) > high) grow(x, y);
    });
  }
  const Image<std::uint8_t>& edges() const { return edges_; }

 private:
  bool inside(int x, int y) const {
    return x >= 0 && y >= 0 && x < edges_.width() && y < edges_.height();
  }
  int strength(int x, int y) const {
    return inside(x, y) ? std::abs(int{d_.dx(x, y)}) + std::abs(int{d_.dy(x, y)}) : 0;
  }
  bool stronger(int x, int y, int x2, int y2) const {
    const int a = strength(x, y), b = strength(x2, y2) > low_ ? strength(x2, y2) : -1;
    return a != b ? a > b : x % 2 + 2 * (y % 2) > x2 % 2 + 2 * (y2 % 2);
  }
  bool stays(int x, int y) const {
    if (strength(x, y) <= low_) return false;
    const int a = std::abs(int{d_.dx(x, y)}), b = std::abs(int{d_.dy(x, y)});
    const bool falling = (d_.dx(x, y) < 0) == (d_.dy(x, y) < 0);
    int u = 0, v = 1;
    if (b * 4096 < a * 1697) {
      u = 1, v = 0;
    } else if (b * 4096 < a * 9889) {
      u = 1, v = falling ? 1 : -1;
    }
    return stronger(x, y, x + u, y + v) && stronger(x, y, x - u, y - v);
  }
  void grow(int x, int y) {
    std::vector<PixelPoint> open = {{x, y}};
    while (!open.empty()) {
      const PixelPoint p = open.back();
      open.pop_back();
      if (!inside(p.x, p.y) || edges_(p.x, p.y) != 0 || !stays(p.x, p.y)) continue;
      edges_(p.x, p.y) = 255;
      for (int v = -1; v <= 1; ++v)
        for (int u = -1; u <= 1; ++u) open.push_back({p.x + u, p.y + v});
    }
  }

  const Derivatives& d_;
  int low_;
  Image<std::uint8_t> edges_;
};

// Few levels: many ties, and derivatives in exact ratios.
Image<std::uint8_t> steps(std::int64_t width, std::int64_t height, std::uint32_t seed) {
  const auto noise = random_image<std::uint8_t>(width, height, seed);
  return image_of<std::uint8_t>(width, height, [&](int x, int y) {
    return (x / 5 + y / 3) % 2 != 0 ? 255 : noise(x, y) % 3 * 127;
  });
}

TEST(Canny, BreaksTiesAndNothingElse) {
  int more = 0;
  for (const EdgeOperator of : {EdgeOperator::sobel, EdgeOperator::scharr}) {
    for (const auto& src :
         {random_image<std::uint8_t>(70, 41), steps(64, 33, 1), steps(7, 50, 2)}) {
      const Derivatives d = derivatives_by(of, src);
      for (const float low : {0.0f, 1.5f, 380.0f, 1020.0f}) {
        for (const float high : {low, low * 2 + 10.75f, 9000.0f}) {
          Image<std::uint8_t> found(src.width(), src.height());
          nuqi::canny(src, found, low, high, of);
          const Reference expected(d, static_cast<int>(low), static_cast<int>(high));
          EXPECT_TRUE(equal(found, expected.edges())) << low << ", " << high;
          const Image<std::uint8_t> plain = canny_by_c(d, low, high);
          each_pixel(src, [&](int x, int y) {
            ASSERT_GE(found(x, y), plain(x, y));
            more += found(x, y) != plain(x, y) ? 1 : 0;
          });
        }
      }
    }
  }
  EXPECT_GT(more, 1000);  // the pictures had ties
}

// Every pair of derivatives that bytes have, of any signs, at all four places: direction and sign stay.
TEST(Canny, BreakingTiesKeepsDirections) {
  const auto direction = [](int dx, int dy) {
    const std::int64_t a = std::abs(dx), b = std::abs(dy);
    const int of = b * 4096 < a * 1697 ? 0 : b * 4096 < a * 9889 ? 1 : 2;
    return 2 * of + ((dx < 0) == (dy < 0) ? 1 : 0);
  };
  for (int a = 0; a <= 4080; a = a < 60 ? a + 1 : a + 67) {
    for (int b = 0; b <= 4080; ++b) {
      const auto u = static_cast<std::int16_t>(b % 3 == 0 ? -a : a);
      const auto v = static_cast<std::int16_t>(b % 5 < 2 ? -b : b);
      std::int16_t dx[2] = {u, u}, dy[2] = {v, v};
      nuqi::detail::break_ties(dx, dy, 2, b / 2 % 2);
      for (int x = 0; x < 2; ++x) {
        ASSERT_EQ(std::abs(dx[x]) + std::abs(dy[x]), 4 * (a + b) + x + b / 2 % 2 * 2);
        ASSERT_TRUE(a + b == 0 || direction(dx[x], dy[x]) == direction(u, v)) << u << ", " << v;
      }
    }
  }
}

Image<std::uint8_t> edges_of(const Image<std::uint8_t>& src) {
  Image<std::uint8_t> edges(src.width(), src.height());
  nuqi::canny(src, edges);
  return edges;
}

// One pixel wide and closed: paint from outside does not reach the middle.
TEST(Canny, AWhiteSquareHasItsOutline) {
  auto edges = edges_of(image_of<std::uint8_t>(
      40, 40, [](int x, int y) { return x >= 10 && x < 30 && y >= 10 && y < 30 ? 255 : 0; }));
  for (int y = 14; y < 26; ++y)
    EXPECT_EQ(std::count(edges.row(y), edges.row(y) + 40, 255), 2) << "row " << y;
  nuqi::flood_fill(edges, {0, 0}, 128);
  EXPECT_EQ(edges(20, 20), 0);
  EXPECT_EQ(edges(39, 39), 128);
}

TEST(Canny, OneRowOrColumnIsAPicture) {
  const auto row = edges_of(image_of<std::uint8_t>(20, 1, [](int x, int) { return x / 10 * 200; }));
  const auto column =
      edges_of(image_of<std::uint8_t>(1, 20, [](int, int y) { return y / 10 * 200; }));
  EXPECT_EQ((row(9, 0) + row(10, 0)) / 255, 1);
  EXPECT_EQ((column(0, 9) + column(0, 10)) / 255, 1);
}

// C walks each derivative by the other's step.
TEST(Canny, StepsOfDerivativesMayDiffer) {
  const auto src = random_image<std::uint8_t>(50, 30);
  const Derivatives d = derivatives_by(EdgeOperator::sobel, src);
  Image<std::int16_t> wide(90, 30);
  const View<std::int16_t> dy = wide.roi(20, 0, 50, 30);
  for (int y = 0; y < 30; ++y) std::copy_n(d.dy.row(y), 50, dy.row(y));
  Image<std::uint8_t> found(50, 30);
  nuqi::Scratch scratch;
  nuqi::canny_from(d.dx, dy, found, 200, 500, scratch);
  EXPECT_TRUE(equal(found, canny_by_c(d, 200, 500)));
  nuqi::canny_from(d.dx, d.dy, found, 100, 300, scratch);
  EXPECT_TRUE(equal(found, canny_by_c(d, 100, 300)));

  EXPECT_EQ(nuqi::canny_from(d.dx, dy, found, 3, 2, std::nothrow), StatusUnsupported);
  EXPECT_EQ(nuqi::canny(src, found, -1, 2, EdgeOperator::sobel, std::nothrow), StatusUnsupported);
  EXPECT_EQ(nuqi::canny(found, found, 1, 2, EdgeOperator::sobel, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::canny_from(d.dx, wide, found, 1, 2, std::nothrow), StatusBadSize);
}

// Of those that have any strength one in ten exceeds the high threshold, one in four the low one, and no greater
// numbers are exceeded by as many. A flat picture has no edge.
TEST(Canny, ThresholdsComeFromThePicture) {
  auto src = random_image<std::uint8_t>(200, 100);
  for (int y = 0; y < 60; ++y) std::fill_n(src.row(y), 200, std::uint8_t{7});  // most is flat
  nuqi::Scratch scratch;
  for (const EdgeOperator of : {EdgeOperator::sobel, EdgeOperator::scharr}) {
    const Derivatives d = derivatives_by(of, src);
    const auto above = [&](float threshold) {
      int count = 0;
      each_pixel(src, [&](int x, int y) {
        const int strength = std::abs(int{d.dx(x, y)}) + std::abs(int{d.dy(x, y)});
        count += static_cast<float>(strength) > threshold ? 1 : 0;
      });
      return count;
    };
    const nuqi::CannyThresholds found = nuqi::canny_thresholds(src, of, 0.1, scratch);
    EXPECT_EQ(nuqi::canny_thresholds(src, of, 0.5, scratch).low, 0);
    EXPECT_GE(10 * above(found.high), above(0));
    EXPECT_LT(10 * above(found.high + 1), above(0));
    EXPECT_GE(4 * above(found.low), above(0));
    EXPECT_LT(4 * above(found.low + 1), above(0));
  }
  const auto none = edges_of(Image<std::uint8_t>(30, 30));
  EXPECT_TRUE(equal(none, Image<std::uint8_t>(30, 30)));
}

}  // namespace

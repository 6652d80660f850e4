// Tests of the stripe protocol for windows of any height, whose middle lies anywhere.
#include "core/stripe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace nuqi::test {
namespace {

// The rows of every window of an image of one column, fed in stripes of these heights.
std::vector<std::vector<int>> windows(const std::vector<int>& image, int above, int below,
                                      const std::vector<int>& heights) {
  std::vector<int> values(above + below, -1);
  std::vector<void*> ring;
  for (int& value : values) ring.push_back(&value);
  std::vector<std::vector<int>> result;
  int y = 0, held = 0;
  for (size_t i = 0; i < heights.size(); ++i) {
    const Stripe stripe = {.height = heights[i],
                           .above = above,
                           .below = below,
                           .first = i == 0,
                           .last = i + 1 == heights.size(),
                           .held = held};
    const Image<const int> src = {image.data() + y, sizeof(int)};
    const StripeRows<int> rows = {.stripe = stripe, .src = src, .ring = ring.data()};
    for (int64_t row = 0; row < stripe.produced(); ++row) {
      result.emplace_back();
      for (int k = 0; k <= stripe.around(); ++k)
        result.back().push_back(*rows[row - stripe.lead() + k]);
    }
    rows.keep(1);
    held = stripe.kept();
    y += heights[i];
  }
  return result;
}

// Stripes lower than the window, too: what they leave is held until a window is complete.
TEST(Stripe, WindowsReachAboveAndBelowWhateverTheStripes) {
  const std::vector<int> image = {10, 11, 12, 13, 14, 15, 16, 17, 18};
  for (int above = 0; above <= 4; ++above)
    for (int below = 0; below <= 4; ++below) {
      std::vector<std::vector<int>> expected;
      for (int row = 0; row < 9; ++row) {
        expected.emplace_back();
        for (int k = row - above; k <= row + below; ++k)
          expected.back().push_back(image[std::clamp(k, 0, 8)]);
      }
      for (const std::vector<int>& heights : {std::vector<int>{9},
                                              {6, 3},
                                              {1, 8},
                                              {4, 1, 1, 3},
                                              {8, 1},
                                              {9, 0},
                                              {1, 2, 6, 0},
                                              {1, 1, 1, 1, 1, 1, 1, 1, 1},
                                              {2, 5, 2}})
        EXPECT_EQ(windows(image, above, below, heights), expected)
            << above << " above, " << below << " below, " << testing::PrintToString(heights);
    }
}

}  // namespace
}  // namespace nuqi::test

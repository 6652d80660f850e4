// Tests of the Sobel filters with selectable aperture.
#include <gtest/gtest.h>

#include <cmath>

#include "filters/sobel_members.h"
#include "filters/sobel_reference.h"
#include "filters/stripe_support.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

class Sobel : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Sobel);

NewState sobel_states(SobelShape s) {
  return [s](int32_t width, int32_t type) {
    ConvolState* state = nullptr;
    EXPECT_EQ(nuqiSobelInitAlloc(width, type, s.size, s.bottomUp, s.xOrder, s.yOrder, &state),
              StatusOk);
    return state;
  };
}

// Every size with orders of every parity, the largest orders and those that saturate.
const SobelShape kShapes[] = {{3, 0, 1, 0}, {3, 1, 0, 1}, {3, 0, 2, 2}, {3, 1, 1, 1}, {5, 0, 0, 0},
                              {5, 0, 1, 0}, {5, 1, 2, 3}, {5, 0, 4, 0}, {5, 0, 3, 1}, {7, 0, 0, 0},
                              {7, 0, 1, 0}, {7, 1, 0, 1}, {7, 0, 6, 0}, {7, 0, 2, 4}, {7, 1, 3, 5}};

TEST_P(Sobel, AgreesWithTheReference) {
  for_each_sobel([]<class T, class D>(const StripeMember<T, D>& member) {
    for (const SobelShape& shape :
         {kShapes[0], kShapes[3], kShapes[4], kShapes[6], kShapes[9], kShapes[13], kShapes[14]})
      expect_agreement(member, sobel_states(shape), [&](const Picture<T>& picture) {
        return sobel_reference(picture.pixels, picture.roi, shape);
      });
  });
}

// Pictures of two values reach the ends of every range, and saturate where 16 bits end.
TEST_P(Sobel, EveryShapeAtItsExtremes) {
  for_each_sobel([]<class T, class D>(const StripeMember<T, D>& member) {
    for (const SobelShape& shape : kShapes) {
      const std::vector<int> kx = x_kernel(shape), ky = y_kernel(shape);
      for (int sign : {-1, 1}) {
        // The middle pixel sees the most it can.
        Picture<T> picture = {{21, 21}, std::vector<T>(441)};
        for (int y = 0; y < 21; ++y)
          for (int x = 0; x < 21; ++x) {
            const int weight = sign * kx[x % shape.size] * ky[y % shape.size];
            using Limits = std::numeric_limits<T>;
            picture.pixels[y * 21 + x] = sizeof(T) == 4
                                             ? static_cast<T>(weight > 0 ? 255.5f : -31.7f)
                                             : (weight > 0 ? Limits::max() : Limits::min());
          }
        SCOPED_TRACE(testing::Message() << member.name << " " << shape.size << " orders "
                                        << shape.xOrder << " " << shape.yOrder);
        ConvolState* state = sobel_states(shape)(21, data_type(T{}));
        ASSERT_TRUE(same_bits(sobel_reference(picture.pixels, picture.roi, shape),
                              whole(member, state, picture)));
      }
    }
  });
}

TEST_P(Sobel, StripesEqualTheWhole) {
  for_each_sobel([](const auto& member) {
    for (const SobelShape& shape : {kShapes[1], kShapes[6], kShapes[14]})
      expect_stripes_equal_the_whole(member, sobel_states(shape), shape.size / 2);
  });
}

TEST_P(Sobel, LowFirstStripeWaits) {
  for_each_sobel([]<class T, class D>(const StripeMember<T, D>& member) {
    for (const SobelShape& shape : {kShapes[5], kShapes[10]})
      expect_low_first_stripe_waits(member, sobel_states(shape)(20, data_type(T{})),
                                    shape.size / 2);
  });
}

TEST(SobelStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_sobel([]<class T, class D>(const StripeMember<T, D>& member) {
    const int32_t type = data_type(T{});
    // Row buffers enough, but no kernels; kernels in the other number format.
    ConvolState* blur = nullptr;
    ASSERT_EQ(nuqiBlurInitAlloc(32, type, 5, &blur), StatusOk);
    ConvolState* other_format = sobel_states(kShapes[5])(32, type == k32f ? k8u : k32f);
    for (ConvolState* wrong : {blur, other_format})
      expect_statuses(member, sobel_states(kShapes[5])(10, type), sobel_states(kShapes[5])(8, type),
                      wrong);
  });
}

// The state's layout does not depend on which bytes it is for; a Laplace state is a Sobel state of
// orders 2 and 0.
TEST_P(Sobel, TakesStatesThatHoldWhatItNeeds) {
  for_each_sobel([]<class T, class D>(const StripeMember<T, D>& member) {
    const Picture<T> picture = random_picture<T>({33, 12}, 4);
    const int32_t type = data_type(T{});
    const SobelShape shape = {7, 0, 2, 0};
    const auto expected = sobel_reference(picture.pixels, picture.roi, shape);
    ConvolState* laplace = nullptr;
    ASSERT_EQ(nuqiLaplaceInitAlloc(33, type, 7, &laplace), StatusOk);
    ConvolState* other = sobel_states(shape)(33, type == k8u ? k8s : type == k8s ? k8u : k32f);
    for (ConvolState* state : {laplace, other})
      EXPECT_TRUE(same_bits(expected, whole(member, state, picture)));
  });
}

TEST_P(Sobel, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_sobel([&]<class T, class D>(const StripeMember<T, D>& member) {
    for (const SobelShape& shape : kShapes)
      for (RoiSize roi : {RoiSize{1, 9}, {7, 2}, {130, 20}})
        hash.add(whole(member, sobel_states(shape)(roi.width, data_type(T{})),
                       random_picture<T>(roi, 6u + roi.width)));
  });
  EXPECT_TRUE(same_hash(0x9D997271001CB10D, hash));
}

}  // namespace
}  // namespace nuqi::test

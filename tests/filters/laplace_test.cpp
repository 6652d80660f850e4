// Tests of the Laplace filters.
#include <gtest/gtest.h>

#include "filters/laplace_members.h"
#include "filters/laplace_reference.h"
#include "filters/stripe_support.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

class Laplace : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Laplace);

NewState laplace_states(int size) {
  return [size](int32_t width, int32_t type) {
    ConvolState* state = nullptr;
    EXPECT_EQ(nuqiLaplaceInitAlloc(width, type, size, &state), StatusOk);
    return state;
  };
}

TEST_P(Laplace, AgreesWithTheReference) {
  for_each_laplace([]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {3, 5, 7})
      expect_agreement(member, laplace_states(size), [&](const Picture<T>& picture) {
        return laplace_reference(picture.pixels, picture.roi, size);
      });
  });
}

// One extreme where the weights are positive, the other elsewhere: the middle pixel sees the most that
// it can. Size 7 saturates.
TEST_P(Laplace, Extremes) {
  for_each_laplace([]<class T, class D>(const StripeMember<T, D>& member) {
    if (sizeof(T) != 1) return;
    using Limits = std::numeric_limits<T>;
    for (int size : {3, 5, 7})
      for (bool bright : {false, true}) {
        Picture<T> picture = {{15, 15}, std::vector<T>(225)};
        picture.pixels[112] = 1;
        const auto weights = laplace_reference(picture.pixels, picture.roi, size);
        for (int i = 0; i < 225; ++i)
          picture.pixels[i] = (weights[i] > 0) == bright ? Limits::max() : Limits::min();
        const auto result = whole(member, laplace_states(size)(15, data_type(T{})), picture);
        ASSERT_TRUE(same_bits(laplace_reference(picture.pixels, picture.roi, size), result));
        if (size == 7) {
          EXPECT_EQ(result[112], bright ? INT16_MAX : INT16_MIN) << member.name;
        }
      }
  });
}

TEST_P(Laplace, StripesEqualTheWhole) {
  for_each_laplace([](const auto& member) {
    for (int size : {3, 5, 7})
      expect_stripes_equal_the_whole(member, laplace_states(size), size / 2);
  });
}

TEST_P(Laplace, LowFirstStripeWaits) {
  for_each_laplace([]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {5, 7})
      expect_low_first_stripe_waits(member, laplace_states(size)(20, data_type(T{})), size / 2);
  });
}

TEST(LaplaceStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_laplace([]<class T, class D>(const StripeMember<T, D>& member) {
    const int32_t type = data_type(T{});
    // Too few row buffers; kernels in the other number format.
    ConvolState *blur = nullptr, *sobel = nullptr;
    ASSERT_EQ(nuqiBlurInitAlloc(32, type, 3, &blur), StatusOk);
    ASSERT_EQ(nuqiSobelInitAlloc(32, type, 3, 0, 2, 0, &sobel), StatusOk);
    ConvolState* other_format = laplace_states(3)(32, type == k32f ? k8u : k32f);
    for (ConvolState* wrong : {blur, sobel, other_format})
      expect_statuses(member, laplace_states(3)(10, type), laplace_states(3)(8, type), wrong);
  });
}

// A picture without detail has none, whatever its brightness.
TEST_P(Laplace, FlatFloatsGiveZero) {
  const StripeMember<float, float> member = NUQI_STRIPE_MEMBER(nuqiLaplace_32f_C1R, float, float);
  for (int size : {3, 5, 7})
    for (float value : {1.1f, -12345.678f, 3e30f}) {
      const Picture<float> picture = {{35, 9}, std::vector<float>(315, value)};
      const auto out = whole(member, laplace_states(size)(35, k32f), picture);
      EXPECT_EQ(out, std::vector<float>(315, 0.0f)) << size << " " << value;
    }
}

TEST_P(Laplace, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_laplace([&]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {3, 5, 7})
      for (RoiSize roi : {RoiSize{1, 9}, {7, 2}, {16, 20}, {130, 40}})
        hash.add(whole(member, laplace_states(size)(roi.width, data_type(T{})),
                       random_picture<T>(roi, 6u + roi.width)));
  });
  EXPECT_TRUE(same_hash(0x2B230AE0BDD37440, hash));
}

}  // namespace
}  // namespace nuqi::test

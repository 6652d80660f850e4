// Tests of the box blurs.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "filters/blur_members.h"
#include "filters/blur_reference.h"
#include "filters/stripe_support.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

class Blur : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Blur);

NewState blur_states(int size) {
  return [size](int32_t width, int32_t type) {
    ConvolState* state = nullptr;
    EXPECT_EQ(nuqiBlurInitAlloc(width, type, size, &state), StatusOk);
    return state;
  };
}

template <class T>
std::vector<std::vector<T>> rows_of(const Picture<T>& picture) {
  std::vector<std::vector<T>> rows;
  for (int y = 0; y < picture.roi.height; ++y) {
    const auto from = picture.pixels.begin() + static_cast<ptrdiff_t>(y) * picture.roi.width;
    rows.emplace_back(from, from + picture.roi.width);
  }
  return rows;
}

template <class D, class Rows>
std::vector<D> joined(const Rows& rows) {
  std::vector<D> all;
  for (const auto& row : rows)
    for (const auto value : row) all.push_back(static_cast<D>(value));
  return all;
}

TEST_P(Blur, AgreesWithTheReference) {
  for_each_blur([]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {3, 5, 7})
      expect_agreement(member, blur_states(size), [&](const Picture<T>& picture) {
        return joined<D>(BlurReference<T>(size).stripe(rows_of(picture), 0));
      });
  });
}

TEST_P(Blur, StripesEqualTheWhole) {
  for_each_blur([](const auto& member) {
    for (int size : {3, 5, 7}) expect_stripes_equal_the_whole(member, blur_states(size), size / 2);
  });
}

// Whatever order of stripes is accepted has a result: after a last stripe the stream of rows, copies
// of the last one included, goes on.
TEST_P(Blur, AnyAcceptedOrderOfStripes) {
  for_each_blur([]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {3, 5, 7}) {
      const int half = size / 2;
      ConvolState* state = blur_states(size)(23, data_type(T{}));
      BlurReference<T> reference(size);
      Random random(static_cast<uint64_t>(size));
      for (int round = 0; round < 40; ++round) {
        const int phase = round == 0 ? 0 : random.one_of(std::array<int, 5>{0, 1, 2, 2, 4});
        const bool first = phase < 2;
        const Picture<T> picture =
            random_picture<T>({23, random.between(first ? half : 1, 12)}, 9u * round);
        const auto expected = reference.stripe(rows_of(picture), phase);
        SCOPED_TRACE(testing::Message()
                     << member.name << ":" << size << " round " << round << " phase " << phase);
        std::vector<D> out;
        run_stripe(member, state, picture, 0, picture.roi.height, phase,
                   static_cast<int>(expected.size()), {}, out);
        ASSERT_TRUE(same_bits(joined<D>(expected), out));
      }
    }
  });
}

TEST(BlurStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_blur([]<class T, class D>(const StripeMember<T, D>& member) {
    ConvolState* sobel = nullptr;
    ASSERT_EQ(nuqiSobelInitAlloc(32, data_type(T{}), 5, 0, 1, 0, &sobel), StatusOk);
    expect_statuses(member, blur_states(5)(10, k32f), blur_states(5)(8, k32f), sobel);
  });
}

TEST_P(Blur, LowFirstStripeWaits) {
  for_each_blur([](const auto& member) {
    for (int size : {5, 7})
      expect_low_first_stripe_waits(member, blur_states(size)(20, k8u), size / 2);
  });
}

// The sums run: what a bright band has rounded away stays lost behind it and below it.
TEST_P(Blur, RoundingOfABrightBandStays) {
  Picture<float> picture = {{40, 40}, std::vector<float>(1600, 1.1f)};
  for (int y = 10; y < 13; ++y)
    for (int x = 10; x < 13; ++x) picture.pixels[y * 40 + x] = 1e9f;
  const StripeMember<float, float> member = NUQI_STRIPE_MEMBER(nuqiBlur_32f_C1R, float, float);
  ConvolState* state = blur_states(3)(40, k32f);
  const std::vector<float> out = whole(member, state, picture);
  EXPECT_FLOAT_EQ(out[5 * 40 + 11], 9 * 1.1f);
  EXPECT_GT(std::abs(out[30 * 40 + 11] - 9 * 1.1f), 1.0f);
  const auto expected = BlurReference<float>(3).stripe(rows_of(picture), 0);
  EXPECT_TRUE(same_bits(joined<float>(expected), out));
}

// A NaN or an infinity spoils what lies to its right and below, until the next first stripe.
TEST_P(Blur, NanAndInfinityStayUntilTheNextImage) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  const StripeMember<float, float> member = NUQI_STRIPE_MEMBER(nuqiBlur_32f_C1R, float, float);
  for (int size : {3, 5, 7}) {
    const int half = size / 2;
    ConvolState* state = blur_states(size)(50, k32f);
    const Picture<float> clean = random_picture<float>({50, 30}, 8);
    const std::vector<float> before = whole(member, state, clean);
    for (float bad : {inf, std::numeric_limits<float>::quiet_NaN()}) {
      Picture<float> spoilt = clean;
      spoilt.pixels[12 * 50 + 20] = bad;
      const std::vector<float> out = whole(member, state, spoilt);
      for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 50; ++x) {
          const float value = out[y * 50 + x];
          if (y < 12 - half || x < 20 - half)
            ASSERT_EQ(bits_of(value), bits_of(before[y * 50 + x])) << x << " " << y;
          else
            ASSERT_FALSE(std::isfinite(value)) << x << " " << y;
        }
      EXPECT_TRUE(same_bits(before, whole(member, state, clean)));
    }
  }
}

// A state made for one element type serves the others, and a Laplace state has the buffers too.
TEST_P(Blur, TakesStatesOfOtherTypes) {
  for_each_blur([]<class T, class D>(const StripeMember<T, D>& member) {
    const Picture<T> picture = random_picture<T>({33, 12}, 4);
    ConvolState* laplace = nullptr;
    ASSERT_EQ(nuqiLaplaceInitAlloc(33, k8u, 7, &laplace), StatusOk);
    const auto expected = joined<D>(BlurReference<T>(7).stripe(rows_of(picture), 0));
    for (ConvolState* state : {blur_states(7)(33, k8u), blur_states(7)(33, k32f), laplace})
      EXPECT_TRUE(same_bits(expected, whole(member, state, picture)));
  });
}

TEST_P(Blur, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_blur([&]<class T, class D>(const StripeMember<T, D>& member) {
    for (int size : {3, 5, 7})
      for (RoiSize roi : {RoiSize{1, 9}, {7, 2}, {16, 20}, {130, 40}})
        hash.add(whole(member, blur_states(size)(roi.width, k8u),
                       random_picture<T>(roi, 6u + roi.width)));
  });
  EXPECT_TRUE(same_hash(0xE36D36248B744E31, hash));
}

}  // namespace
}  // namespace nuqi::test

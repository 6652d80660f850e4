// Template matching: each method is its own, and what it refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "support.h"

namespace {

using nuqi::Image;
using nuqi::MatchMethod;
using nuqi::View;
using nuqi::test::equal;
using nuqi::test::random_image;
using nuqi::test::roi_of;
using nuqi::test::status_of;
using nuqi::test::step;

TEST(Match, MethodsAreThoseOfC) {
  const auto src = random_image<std::uint8_t>(40, 30);
  const auto tpl = src.roi(20, 9, 6, 5);
  Image<float> found(35, 26), expected(35, 26);
  std::vector<std::uint8_t> buffer(1 << 20);
  nuqi::Scratch scratch;
  const auto expect = [&](MatchMethod method, const auto& call) {
    nuqi::match_template(src, tpl, found, method, scratch);
    ASSERT_EQ(call(src.data(), step(src.step()), roi_of(src), tpl.data(), step(tpl.step()),
                   roi_of(tpl), expected.data(), step(expected.step()), buffer.data()),
              StatusOk);
    EXPECT_TRUE(equal(found, expected)) << static_cast<int>(method);
  };
  expect(MatchMethod::sq_diff, nuqiMatchTemplate_SqDiff_8u32f_C1R);
  EXPECT_EQ(found(20, 9), 0);
  expect(MatchMethod::sq_diff_normed, nuqiMatchTemplate_SqDiffNormed_8u32f_C1R);
  expect(MatchMethod::corr, nuqiMatchTemplate_Corr_8u32f_C1R);
  expect(MatchMethod::corr_normed, nuqiMatchTemplate_CorrNormed_8u32f_C1R);
  expect(MatchMethod::coeff, nuqiMatchTemplate_Coeff_8u32f_C1R);
  expect(MatchMethod::coeff_normed, nuqiMatchTemplate_CoeffNormed_8u32f_C1R);
  EXPECT_NEAR(found(20, 9), 1, 1e-5);
}

TEST(Match, FindsFloatsAndSignedBytes) {
  const auto floats = random_image<float>(33, 20);
  const auto chars = random_image<std::int8_t>(33, 20);
  Image<float> scores(26, 14);
  nuqi::match_template(floats, floats.roi(3, 11, 8, 7), scores);
  EXPECT_NEAR(scores(3, 11), 1, 1e-4);
  nuqi::match_template(chars, chars.roi(25, 0, 8, 7), scores);
  EXPECT_NEAR(scores(25, 0), 1, 1e-4);
}

TEST(Match, RefusesWhatCannotBeScored) {
  const auto src = random_image<std::uint8_t>(20, 10);
  Image<float> scores(15, 8);
  const auto status = [&](const auto& tpl, const auto& dst, MatchMethod method) {
    return nuqi::match_template(src, tpl, dst, method, std::nothrow);
  };
  EXPECT_EQ(status(src.roi(0, 0, 6, 3), scores.view(), MatchMethod::corr), StatusOk);
  EXPECT_EQ(status(src.roi(0, 0, 6, 4), scores.view(), MatchMethod::corr), StatusBadSize);
  EXPECT_EQ(status(random_image<std::uint8_t>(21, 3), scores.view(), MatchMethod::corr),
            StatusBadSize);
  EXPECT_EQ(status(src.roi(0, 0, 6, 3), scores.view(), static_cast<MatchMethod>(6)),
            StatusUnsupported);
  // C would keep the template's sum in 32 bits.
  Image<std::uint8_t> bright(2902, 2902);
  for (std::int64_t y = 0; y < bright.height(); ++y)
    for (std::int64_t x = 0; x < bright.width(); ++x) bright(x, y) = 255;
  Image<float> one(1, 1);
  EXPECT_EQ(nuqi::match_template(bright, bright, one, MatchMethod::coeff, std::nothrow),
            StatusBadSize);
  EXPECT_EQ(nuqi::match_template(bright, bright, one, MatchMethod::sq_diff, std::nothrow),
            StatusOk);
  for (std::int64_t x = 0; x < bright.width(); ++x) bright(x, 0) = 0;
  EXPECT_EQ(nuqi::match_template(bright, bright, one, MatchMethod::coeff, std::nothrow), StatusOk);
}

}  // namespace

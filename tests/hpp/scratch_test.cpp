// Operations that need working memory: levels of a pyramid, template matching, flood fills.
#include <cstdint>
#include <string>
#include <vector>

#include "support.h"

namespace {

using nuqi::Connectivity;
using nuqi::Image;
using nuqi::MatchMethod;
using nuqi::View;
using namespace nuqi::test;

// One memory for all, as large as it gets.
void* buffer() {
  static std::vector<std::uint8_t> bytes(1 << 20);
  return bytes.data();
}

TEST(Scratch, GrowsAndIsKept) {
  nuqi::Scratch scratch;
  void* first = scratch.get(1000);
  EXPECT_EQ(scratch.get(10), first);
  EXPECT_EQ(scratch.size(), 1000u);
  static_cast<unsigned char*>(scratch.get(5000))[4999] = 1;
  EXPECT_EQ(scratch.size(), 5000u);
}

// What a call needed is known for the next one like it, and for no other.
TEST(Scratch, KnowsWhatTheLastCallNeeded) {
  nuqi::Scratch scratch;
  int asked = 0;
  const auto get = [&](nuqi::Scratch& from, std::uint64_t size, std::uint64_t more) {
    return from.get_for({nullptr, size, more},
                        [&, size] { return ++asked, static_cast<std::size_t>(size); });
  };
  void* const first = get(scratch, 100, 1);
  EXPECT_EQ(get(scratch, 100, 1), first);
  EXPECT_EQ(asked, 1);
  (void)get(scratch, 100, 2), (void)get(scratch, 90, 2), (void)get(scratch, 100, 1);
  EXPECT_EQ(asked, 4);
  (void)scratch.get(1000);  // what was known is forgotten with the memory
  EXPECT_NE(get(scratch, 100, 1), nullptr);
  EXPECT_EQ(asked, 5);
  nuqi::Scratch moved = std::move(scratch);
  EXPECT_NE(get(scratch, 100, 1), nullptr);
  EXPECT_NE(get(moved, 100, 1), get(scratch, 100, 1));
  EXPECT_EQ(get(scratch, 0, 1), nullptr) << "where nothing is needed there was no answer";
}

// A call differs from the last one in anything that its memory depends on: it gets what it needs.
TEST(Scratch, IsAsLargeAsEachCallNeeds) {
  const auto expect = [](const char* name, auto query, const auto& small, const auto& large) {
    std::int32_t bytes = 0;
    EXPECT_EQ(query(&bytes), StatusOk);
    nuqi::Scratch scratch;
    small(scratch);
    EXPECT_LT(scratch.size(), static_cast<std::size_t>(bytes)) << name;
    large(scratch);
    EXPECT_GE(scratch.size(), static_cast<std::size_t>(bytes)) << name;
  };
  using nuqi::Scratch;
  const auto src = random_image<std::uint8_t>(64, 64);
  const auto floats = random_image<float>(64, 64);
  const auto colours = random_image<std::uint8_t, 3>(64, 64);
  Image<std::int16_t> d(64, 64);
  Image<float> half(32, 32), dst(64, 64);
  Image<std::uint8_t> half_bytes(32, 32), edges(64, 64);
  Image<std::uint8_t, 3> half_colours(32, 32);
  const auto down = [&](Scratch& s) { nuqi::pyramid_down(src, half_bytes, s); };
  expect(
      "channels", [](auto* n) { return nuqiPyrDownGetBufSize_Gauss5x5(64, 1, 3, n); }, down,
      [&](Scratch& s) { nuqi::pyramid_down(colours, half_colours, s); });
  expect(
      "elements", [](auto* n) { return nuqiPyrDownGetBufSize_Gauss5x5(64, 9, 1, n); }, down,
      [&](Scratch& s) { nuqi::pyramid_down(floats, half, s); });
  expect(
      "width", [](auto* n) { return nuqiMinEigenValGetSize(64, 3, 3, n); },
      [&](Scratch& s) {
        nuqi::min_eigen(src.roi(0, 0, 9, 9), dst.roi(0, 0, 9, 9), {3, 3}, s);
      },
      [&](Scratch& s) {
        nuqi::min_eigen(src, dst, {3, 3}, s);
      });
  expect(
      "height",
      [](auto* n) {
        return nuqiCannyGetSize({64, 64}, n);
      },
      [&](Scratch& s) {
        const auto part = d.roi(0, 0, 64, 32);
        nuqi::canny_from(part, part, edges.roi(0, 0, 64, 32), 1, 2, s);
      },
      [&](Scratch& s) { nuqi::canny_from(d, d, edges, 1, 2, s); });
  expect(
      "gradient",
      [](auto* n) {
        return nuqiFloodFillGetSize_Grad({64, 64}, n);
      },
      [&](Scratch& s) {
        nuqi::flood_fill(edges, {0, 0}, 1, Connectivity::four, s);
      },
      [&](Scratch& s) {
        nuqi::flood_fill(edges, {0, 0}, 1, 1, 1, Connectivity::four, s);
      });
}

template <class T, int C, class Down, class Up>
void expect_levels(const Down& down, const Up& up, nuqi::Scratch& scratch) {
  const auto src = random_image<T, C>(26, 18);
  Image<T, C> half(13, 9), twice(52, 36);
  nuqi::pyramid_down(src, half, scratch);
  EXPECT_TRUE(equal(half, (by_c<T, C>(down, src, 13, 9, buffer()))));
  nuqi::pyramid_up(src, twice, scratch);
  EXPECT_TRUE(equal(twice, (by_c<T, C>(up, src, 52, 36, buffer()))));
}

TEST(Pyramid, LevelsAreThoseOfC) {
  nuqi::Scratch scratch;
  expect_levels<std::uint8_t, 1>(nuqiPyrDown_Gauss5x5_8u_C1R, nuqiPyrUp_Gauss5x5_8u_C1R, scratch);
  expect_levels<std::int8_t, 3>(nuqiPyrDown_Gauss5x5_8s_C3R, nuqiPyrUp_Gauss5x5_8s_C3R, scratch);
  expect_levels<float, 3>(nuqiPyrDown_Gauss5x5_32f_C3R, nuqiPyrUp_Gauss5x5_32f_C3R, scratch);
}

TEST(Pyramid, OddAndOtherSizesAreRefused) {
  Image<std::uint8_t> odd(25, 18), even(24, 18), half(12, 9), other(13, 9);
  try {
    nuqi::pyramid_down(odd, half);
    FAIL() << "25 columns have no half";
  } catch (const nuqi::Error& error) {
    EXPECT_EQ(error.status(), StatusBadSize);
    EXPECT_NE(std::string(error.what()).find("width and height must be even"), std::string::npos);
  }
  EXPECT_EQ(nuqi::pyramid_down(even, half, std::nothrow), StatusOk);
  EXPECT_EQ(nuqi::pyramid_down(even, other, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(half, even, std::nothrow), StatusOk);
  EXPECT_EQ(nuqi::pyramid_up(half, odd, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::pyramid_up(even.roi(0, 0, 12, 9), even, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::pyramid_up(Image<float>(), Image<float>().view(), std::nothrow), StatusBadSize);
}

TEST(Match, MethodsAreThoseOfC) {
  const auto src = random_image<std::uint8_t>(40, 30);
  const auto tpl = src.roi(20, 9, 6, 5);
  nuqi::Scratch scratch;
  Image<float> found(35, 26), expected(35, 26);
  const auto expect = [&](MatchMethod method, const auto& call) {
    nuqi::match_template(src, tpl, found, method, scratch);
    ASSERT_EQ(call(src.data(), step(src), roi_of(src), tpl.data(), step(tpl), roi_of(tpl),
                   expected.data(), step(expected), buffer()),
              StatusOk);
    EXPECT_TRUE(equal(found, expected)) << static_cast<int>(method);
  };
  expect(MatchMethod::sq_diff, nuqiMatchTemplate_SqDiff_8u32f_C1R);
  expect(MatchMethod::sq_diff_normed, nuqiMatchTemplate_SqDiffNormed_8u32f_C1R);
  expect(MatchMethod::corr, nuqiMatchTemplate_Corr_8u32f_C1R);
  expect(MatchMethod::corr_normed, nuqiMatchTemplate_CorrNormed_8u32f_C1R);
  expect(MatchMethod::coeff, nuqiMatchTemplate_Coeff_8u32f_C1R);
  expect(MatchMethod::coeff_normed, nuqiMatchTemplate_CoeffNormed_8u32f_C1R);
  const auto find = [](const auto& image) {
    Image<float> scores(35, 26);
    nuqi::match_template(image, image.roi(20, 9, 6, 5), scores);
    return scores(20, 9);
  };
  EXPECT_NEAR(find(src), 1, 1e-4);
  EXPECT_NEAR(find(random_image<std::int8_t>(40, 30)), 1, 1e-4);
  EXPECT_NEAR(find(random_image<float>(40, 30)), 1, 1e-4);
}

TEST(Match, RefusesWhatCannotBeScored) {
  const auto src = random_image<std::uint8_t>(20, 10);
  Image<float> scores(15, 8), one(1, 1);
  const auto status = [&](const auto& tpl, const auto& dst, MatchMethod method) {
    return nuqi::match_template(src, tpl, dst, method, std::nothrow);
  };
  EXPECT_EQ(status(src.roi(0, 0, 6, 3), scores.view(), MatchMethod::corr), StatusOk);
  EXPECT_EQ(status(src.roi(0, 0, 6, 4), scores.view(), MatchMethod::corr), StatusBadSize);
  EXPECT_EQ(status(Image<std::uint8_t>(21, 3), scores.view(), MatchMethod::corr), StatusBadSize);
  EXPECT_EQ(status(src.roi(0, 0, 6, 3), scores.view(), static_cast<MatchMethod>(6)),
            StatusUnsupported);
  // C would keep the template's sum in 32 bits.
  auto bright = image_of<std::uint8_t>(2902, 2902, [](int, int) { return 255; });
  const auto score = [&](MatchMethod method) {
    return nuqi::match_template(bright, bright, one, method, std::nothrow);
  };
  EXPECT_EQ(score(MatchMethod::coeff), StatusBadSize);
  EXPECT_EQ(score(MatchMethod::sq_diff), StatusOk);
  std::memset(bright.row(0), 0, 2902);
  EXPECT_EQ(score(MatchMethod::coeff), StatusOk);
}

// A staircase along the diagonal: 1, 2, 3 ... where neighbours touch at corners alone; 100 elsewhere.
template <class T>
Image<T> staircase() {
  return image_of<T>(6, 6, [](int x, int y) { return x == y ? x + 1 : 100; });
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
  EXPECT_EQ(nuqi::flood_fill(image, {5, 0}, 7, Connectivity::eight).area, 0) << "they have it";

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
}

TEST(Fill, PaintsConnectedPixels) {
  expect_fills<std::uint8_t>();
  expect_fills<float>();
}

TEST(Fill, Refuses) {
  auto image = staircase<std::uint8_t>();
  Image<float> none;
  expect_throws(StatusBadArg, {[&] {
                                 nuqi::flood_fill(image, {6, 0}, 7);
                               },
                               [&] {
                                 nuqi::flood_fill(image, {0, -1}, 7);
                               },
                               [&] {
                                 nuqi::flood_fill(image, {0, 0}, 7, -1, 3);
                               },
                               [&] {
                                 nuqi::flood_fill(image, {0, 0}, 7, 200, 100);
                               }});
  expect_throws(StatusUnsupported, {[&] { nuqi::flood_fill(image, {0, 0}, 256); }});
  expect_throws(StatusBadSize, {[&] { nuqi::flood_fill(none, {0, 0}, 7); }});
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

// Tests of template matching.
#include <gtest/gtest.h>

#include <algorithm>

#include "match/match_template_fixture.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// Kinds of pictures: any values; moderate ones; few; one value alone; the ends of the range.
constexpr int kPictures = 5;
template <class T>
T pixel(int picture, Random& random) {
  using Limits = std::numeric_limits<T>;
  constexpr bool floats = std::is_same_v<T, float>;
  switch (picture) {
    case 0: return floats ? static_cast<T>(random.plain_float()) : static_cast<T>(random.bits());
    case 1: return random.value<T>();
    case 2: return static_cast<T>(random.between(0, 2));
    case 3: return floats ? T(0.1f) : Limits::max();
    default:
      return random.bits() % 2 ? (floats ? T(255) : Limits::max())
                               : (floats ? T(-255) : Limits::min());
  }
}

class MatchTemplate : public EveryIsa {
 protected:
  // Each function on a shape, with a picture after the other.
  void expect_agreement(const Shape& shape) {
    for_each_match([&]<class T>(const MatchMember<T>& member) {
      if (HasFatalFailure()) return;
      ++calls_;
      Fixture<T> fixture(member, shape, calls_ % 40);
      const int picture = calls_ % 3 ? 0 : calls_ / 3 % kPictures;
      fixture.src.fill([&] { return pixel<T>(picture, random_); });
      fixture.tpl.fill([&] { return pixel<T>(picture, random_); });
      fixture.expect_agreement(member);
    });
  }
  Random random_{1};

 private:
  int calls_ = 0;
};
NUQI_FOR_EVERY_ISA(MatchTemplate);

TEST_P(MatchTemplate, AgreesWithTheReference) {
  int number = 0;
  const auto check = [&](RoiSize dst, RoiSize tpl) {
    Shape shape = shape_for(dst, tpl);
    shape.wall = number % 2 ? Wall::before : Wall::after;
    shape.padding = paddings_of(number++ % 7, 3, random_);
    expect_agreement(shape);
  };
  // Every width of a template and of a result, few heights of both; and the other way round.
  for (int size = 1; size <= 70; ++size) {
    const int low = random_.between(1, 5), other = random_.between(1, 9);
    check({random_.between(1, 20), low}, {size, other});
    check({size, random_.between(1, 30)}, {other, low});
    check({other, low}, {random_.between(1, 9), size});
    check({low, size}, {other, random_.between(1, 4)});
  }
  // Results of several blocks, templates of several pieces.
  for (RoiSize dst : {RoiSize{200, 50}, {65, 26}, {129, 7}, {1, 1}, {1, 90}, {300, 1}})
    for (RoiSize tpl : {RoiSize{1, 1}, {2, 2}, {3, 1}, {8, 8}, {5, 12}}) check(dst, tpl);
  for (RoiSize tpl : {RoiSize{64, 64}, {65, 65}, {130, 3}, {3, 130}, {200, 1}, {1, 200}, {67, 129}})
    for (RoiSize dst : {RoiSize{1, 1}, {3, 2}, {17, 7}}) check(dst, tpl);
}

// 32 bits hold the energies of 66,051 pixels and no more, and of changes between columns those of half as
// many rows.
TEST_P(MatchTemplate, LargeTemplatesOfExtremes) {
  for (RoiSize tpl : {RoiSize{369, 179}, {66052, 1}, {1, 66052}, {258, 257}})
    for (int picture : {3, 4})
      for_each_match([&]<class T>(const MatchMember<T>& member) {
        if (HasFatalFailure()) return;
        Fixture<T> fixture(member, shape_for({2, 2}, tpl));
        fixture.src.fill([&] { return pixel<T>(picture, random_); });
        fixture.tpl.fill([&] {
          return std::is_signed_v<T> ? std::numeric_limits<T>::lowest() / T(2)
                                     : pixel<T>(3, random_);
        });
        fixture.expect_agreement(member);
      });
}

// Oddity: the template's sum wraps at 32 bits, the patches' do not.
TEST_P(MatchTemplate, SumOfTheTemplateWraps) {
  const auto check = [](const char*, MatchQuery query, auto call) {
    // 8,421,504 pixels of 255 are the most whose sum 31 bits hold.
    for (int height : {2056, 2057}) {
      const RoiSize roi = {4096, height};
      const double n = 4096.0 * height, sum = 255 * n, products = 255 * sum;
      const std::vector<uint8_t> image(4096 * static_cast<size_t>(height), 255);
      std::vector<uint8_t> buffer(buffer_size(query, roi, roi, 1));
      float result = 0;
      ASSERT_EQ(call(image.data(), 4096, roi, image.data(), 4096, roi, &result, 4, buffer.data()),
                StatusOk);
      const double wrapped = height == 2056 ? sum : sum - 0x1p32;
      EXPECT_EQ(result, static_cast<float>(products - sum * wrapped * (1 / (n + 0x1p-52))));
      EXPECT_EQ(result > 1e6f, height == 2057);
    }
  };
  check("nuqiMatchTemplate_Coeff_8u32f_C1R", nuqiMatchTemplateGetBufSize_Coeff,
        nuqiMatchTemplate_Coeff_8u32f_C1R);
}

// Flat patches and templates give what e alone under the root gives: no NaN, no infinity.
TEST_P(MatchTemplate, FlatPicturesGiveFiniteScores) {
  for_each_match([&]<class T>(const MatchMember<T>& member) {
    for (int kind = 0; kind < 4; ++kind) {
      Fixture<T> fixture(member, shape_for({20, 5}, {6, 7}));
      fixture.src.fill([&] { return kind % 2 ? T(100) : T(0); });
      fixture.tpl.fill([&] { return kind / 2 ? T(100) : T(0); });
      fixture.expect_agreement(member);
      for (float score : fixture.dst.pixels()) ASSERT_TRUE(std::isfinite(score)) << member.name;
    }
  });
}

TEST_P(MatchTemplate, FindsThePlace) {
  for_each_match([&]<class T>(const MatchMember<T>& member) {
    const RoiSize dst = {90, 40}, tpl = {12, 9};
    Fixture<T> fixture(member, shape_for(dst, tpl));
    fixture.src.fill(
        [&] { return static_cast<T>(random_.between(-100, 100) + (T(-1) < T(0) ? 0 : 100)); });
    const PixelPoint place = {71, 33};
    const auto pixels = fixture.src.pixels();
    fixture.tpl.fill([&, i = 0]() mutable {
      const int x = place.x + i % tpl.width, y = place.y + i++ / tpl.width;
      return pixels[y * fixture.shape.src.width + x];
    });
    ASSERT_EQ(member.call(fixture.args()), StatusOk);
    const auto scores = fixture.dst.pixels();
    const bool least = member.measure <= MatchMeasure::sq_diff_normed;
    const auto best = least ? std::min_element(scores.begin(), scores.end())
                            : std::max_element(scores.begin(), scores.end());
    // A product alone is larger where the picture is brighter.
    if (member.measure != MatchMeasure::corr) {
      EXPECT_EQ(best - scores.begin(), place.y * dst.width + place.x) << member.name;
    }
    EXPECT_EQ(*best == 0, least) << member.name;
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(MatchTemplateStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_match([]<class T>(const MatchMember<T>& member) {
    constexpr int e = sizeof(T);
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      Fixture<T> fixture(member, {{20, 9}, {6, 4}});
      fixture.src.fill([] { return T(7); });
      fixture.tpl.fill([] { return T(5); });
      auto args = fixture.args();
      spoil(args);
      const auto before = fixture.written();
      const Running now(member.name, args.srcRoi);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before == fixture.written(), status != StatusOk) << member.name << ": " << what;
    };
    using A = MatchArgs<T>;
    expect("null source, template 0 wide", StatusNullPtr,
           [](A& a) { a.src = nullptr, a.tplRoi.width = 0; });
    expect("null template, short step", StatusNullPtr,
           [](A& a) { a.tpl = nullptr, a.srcStep = 0; });
    expect("null result, too high", StatusNullPtr,
           [](A& a) { a.dst = nullptr, a.tplRoi.height = 10; });
    expect("null buffer, odd step", StatusNullPtr,
           [](A& a) { a.buffer = nullptr, a.dstStep += 2; });
    expect("0 wide, short step", StatusBadSize, [](A& a) { a.tplRoi.width = 0, a.dstStep = 0; });
    expect("0 high, short step", StatusBadSize, [](A& a) { a.tplRoi.height = 0, a.srcStep = 0; });
    expect("negative", StatusBadSize, [](A& a) { a.tplRoi.width = -1, a.tplStep = -9; });
    expect("empty source", StatusBadSize, [](A& a) { a.srcRoi = {0, 0}, a.srcStep = 0; });
    expect("too wide, short step", StatusBadSize, [](A& a) { a.tplRoi.width = 21, a.tplStep = 0; });
    expect("too high, short step", StatusBadSize,
           [](A& a) { a.tplRoi.height = 10, a.tplStep = 0; });
    expect("least sizes", StatusBadSize, [](A& a) {
      a.srcRoi = a.tplRoi = {INT32_MIN, INT32_MIN};
    });
    expect("short template row", StatusBadStep, [](A& a) { a.tplStep = 5 * e; });
    expect("short source row", StatusBadStep, [](A& a) { a.srcStep = 19 * e; });
    expect("short result row", StatusBadStep, [](A& a) { a.dstStep = 14 * 4; });
    expect("a row that overflows an int", StatusBadStep,
           [](A& a) { a.srcRoi.width = INT32_MAX, a.srcStep = INT32_MAX - 3; });
    const StatusCode uneven = e == 4 ? StatusBadStep : StatusOk;
    expect("uneven template step", uneven,
           [](A& a) { a.srcRoi.height = a.tplRoi.height = 1, a.tplStep = 6 * e + 2; });
    expect("uneven source step", uneven,
           [](A& a) { a.srcRoi.height = a.tplRoi.height = 1, a.srcStep = 20 * e + 2; });
    // Of all types: one of 4 alone passes.
    for (int more : {1, 2, 3, 4})
      expect("uneven result step", more == 4 ? StatusOk : StatusBadStep,
             [=](A& a) { a.srcRoi.height = a.tplRoi.height, a.dstStep += more; });
  });
}

constexpr struct {
  MatchQuery call;
  int sums;  // that are kept of each row of results
} kQueries[] = {
    {nuqiMatchTemplateGetBufSize_SqDiff, 0}, {nuqiMatchTemplateGetBufSize_SqDiffNormed, 1},
    {nuqiMatchTemplateGetBufSize_Corr, 0},   {nuqiMatchTemplateGetBufSize_CorrNormed, 1},
    {nuqiMatchTemplateGetBufSize_Coeff, 1},  {nuqiMatchTemplateGetBufSize_CoeffNormed, 2},
};

TEST(MatchTemplateQuery, GivesTheSize) {
  const auto rounded = [](int64_t bytes, int spare) { return (bytes + spare) & ~int64_t{31}; };
  Random random(5);
  for (const auto& query : kQueries)
    for (int i = 0; i < 2000; ++i) {
      const RoiSize tpl = {random.between(1, 90), random.between(1, 90)};
      const RoiSize src = {random.between(tpl.width, 400), random.between(tpl.height, 400)};
      const int type = std::array{1, 2, 9}[i % 3], e = type == 9 ? 4 : 1;
      const int64_t rows = src.height - tpl.height;
      int64_t size = rounded(int64_t{tpl.width} * tpl.height * e, 47) + rounded(rows * 8, 55) + 32 +
                     rounded((int64_t{src.height} * tpl.width + src.width) * e, 47);
      if (query.sums != 0)
        size += 2 * rounded(src.height * 8, 47) + rounded(query.sums * (rows + 1) * 8, 47);
      ASSERT_EQ(buffer_size(query.call, src, tpl, type), size);
    }
  EXPECT_EQ(buffer_size(nuqiMatchTemplateGetBufSize_SqDiff, {100, 80}, {10, 8}, 1), 1664);
  EXPECT_EQ(buffer_size(nuqiMatchTemplateGetBufSize_CoeffNormed, {100, 80}, {10, 8}, 1), 4192);
  EXPECT_EQ(buffer_size(nuqiMatchTemplateGetBufSize_SqDiffNormed, {100, 80}, {10, 8}, 9), 6560);
}

// Oddity: all failures but one store 0.
TEST(MatchTemplateStatus, QueryFailsInOrderAndSizeIs0) {
  for (const auto& query : kQueries) {
    const auto expect = [&](StatusCode status, RoiSize src, RoiSize tpl, int32_t type) {
      int32_t size = 77;
      EXPECT_EQ(query.call(src, tpl, type, &size), status) << tpl.width << " " << type;
      EXPECT_EQ(size == 0, status != StatusOk);
    };
    EXPECT_EQ(query.call({0, 0}, {5, 5}, 3, nullptr), StatusNullPtr);
    expect(StatusBadSize, {9, 9}, {0, 5}, 3);
    expect(StatusBadSize, {9, 9}, {5, 0}, 3);
    expect(StatusBadSize, {9, 9}, {-5, 5}, 9);
    expect(StatusBadSize, {9, 9}, {10, 9}, 1);
    expect(StatusBadSize, {9, 9}, {9, 10}, 3);
    for (int32_t type : {0, 3, 8, 10, -1}) expect(StatusBadDataType, {9, 9}, {9, 9}, type);
    for (int32_t type : {1, 2, 9}) expect(StatusOk, {9, 9}, {9, 9}, type);
    // Of products that an int cannot tell, nor one of 64 bits, the type is looked at first.
    constexpr int32_t most = INT32_MAX;
    expect(StatusBadDataType, {most, most}, {most, most}, 5);
    for (int32_t type : {1, 2, 9}) {
      expect(StatusBadSize, {most, most}, {most, most}, type);
      expect(StatusBadSize, {most, most}, {1, 1}, type);
      expect(StatusBadSize, {65536, 32768}, {65536, 1}, type);
    }
  }
  // The largest size that is told, and the next.
  int32_t size = 0;
  EXPECT_EQ(nuqiMatchTemplateGetBufSize_Corr({2147483503, 1}, {1, 1}, 1, &size), StatusOk);
  EXPECT_EQ(size, 2147483616);
  EXPECT_EQ(nuqiMatchTemplateGetBufSize_Corr({2147483504, 1}, {1, 1}, 1, &size), StatusBadSize);
  EXPECT_EQ(size, 0);
}

TEST_P(MatchTemplate, GivesTheSameBitsEverywhere) {
  Hash hash;
  Random random(4);
  for (RoiSize tpl : {RoiSize{1, 1}, {3, 2}, {8, 8}, {17, 5}, {70, 66}})
    for (RoiSize dst : {RoiSize{5, 3}, {67, 9}})
      for_each_match([&]<class T>(const MatchMember<T>& member) {
        Fixture<T> fixture(member, shape_for(dst, tpl), 5);
        fixture.src.fill([&] { return pixel<T>(0, random); });
        fixture.tpl.fill([&] { return pixel<T>(0, random); });
        ASSERT_EQ(member.call(fixture.args()), StatusOk);
        hash.add(fixture.dst.pixels());
      });
  EXPECT_TRUE(same_hash(0x42BC70EC0A859ECC, hash));
}

}  // namespace
}  // namespace nuqi::test

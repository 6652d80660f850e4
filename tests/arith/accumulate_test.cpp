// Tests of the accumulation family.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "arith/accumulate_members.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// The images of one call.
template <class T>
struct Fixture {
  Fixture(const Case& c, uint64_t seed)
      : roi(c.roi),
        src("source", c, 0),
        src2("second source", c, 1),
        mask("mask", c, 2),
        acc("accumulator", c, 3) {
    Random random(seed);
    src.fill([&] { return random.value<T>(); });
    src2.fill([&] { return random.value<T>(); });
    mask.fill([&] { return random.mask(); });
    acc.fill([&] { return random.any_float(); });
    alpha = random.any_float();
  }
  AccumulateArgs<T> args() {
    return {src.data(),  src.step(), src2.data(), src2.step(), mask.data(),
            mask.step(), acc.data(), acc.step(),  roi,         alpha};
  }
  std::vector<float> expected(const AccumulateMember<T>& member) {
    std::vector<float> result = acc.pixels();
    accumulate_reference(member.term, src.pixels(), src2.pixels(),
                         member.masked ? mask.pixels() : std::vector<uint8_t>{}, alpha, result);
    return result;
  }
  WalledImage<float>& output() { return acc; }

  RoiSize roi;
  WalledImage<T> src, src2;
  WalledImage<uint8_t> mask;
  WalledImage<float> acc;
  float alpha;
};

class Accumulate : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Accumulate);

TEST_P(Accumulate, AgreesWithTheReference) {
  for_each_accumulate([]<class T>(const AccumulateMember<T>& member) {
    for_each_case(member.name, 4, [&](const Case& c) {
      Fixture<T> fixture(c, static_cast<uint64_t>(c.roi.width));
      expect_agreement(member, fixture);
    });
  });
}

TEST_P(Accumulate, EveryProductOfBytes) {
  for_each_accumulate([]<class T>(const AccumulateMember<T>& member) {
    if (sizeof(T) != 1) return;
    Fixture<T> fixture({{256, 256}}, 1);
    int i = 0, j = 0;
    fixture.src.fill([&] { return static_cast<T>(i++ % 256); });
    fixture.src2.fill([&] { return static_cast<T>(j++ / 256); });
    fixture.acc.fill([] { return -0.0f; });  // tells a term of -0.0 from one of +0.0
    SCOPED_TRACE(member.name);
    expect_agreement(member, fixture);
  });
}

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(AccumulateStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_accumulate([]<class T>(const AccumulateMember<T>& member) {
    const bool product = member.term == AccumulateTerm::product;
    const bool floats = sizeof(T) == 4;
    const int32_t row = 10 * int{sizeof(T)};
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_status(member, Fixture<T>({{10, 4}}, 7), what, status, spoil);
    };
    expect("null source, negative width", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -1; });
    expect("null accumulator, short step", StatusNullPtr,
           [](auto& a) { a.acc = nullptr, a.accStep = 0; });
    expect("negative width, short step", StatusBadSize,
           [](auto& a) { a.roi.width = -1, a.srcStep = -4; });
    expect("negative height", StatusBadSize, [](auto& a) { a.roi.height = -1; });
    expect("short source row", product && floats && !member.masked ? StatusOk : StatusBadSize,
           [&](auto& a) { a.srcStep = row - int{sizeof(T)}, a.roi.height = 0; });
    expect("short accumulator row", StatusBadSize, [](auto& a) { a.accStep = 36; });
    expect("uneven accumulator step", StatusBadSize, [](auto& a) { a.accStep = 42; });
    expect("a width whose row overflows an int", StatusBadSize,
           [](auto& a) { a.roi.width = 1 << 30, a.srcStep = a.src2Step = a.maskStep = INT32_MAX; });
    expect("width 0", StatusOk, [](auto& a) { a.roi.width = 0; });
    expect("height 0", StatusOk, [](auto& a) { a.roi.height = 0; });
    if (floats) expect("uneven source step", StatusBadSize, [](auto& a) { a.srcStep = 42; });
    if (product) {
      expect("null second source, negative width", StatusNullPtr,
             [](auto& a) { a.src2 = nullptr, a.roi.width = -1; });
      expect("short second row", floats && !member.masked ? StatusOk : StatusBadSize,
             [&](auto& a) { a.src2Step = row - int{sizeof(T)}, a.roi.height = 0; });
      if (floats) expect("uneven second step", StatusBadSize, [](auto& a) { a.src2Step = 42; });
    }
    if (member.masked) {
      expect("null mask, negative width", StatusNullPtr,
             [](auto& a) { a.mask = nullptr, a.roi.width = -1; });
      expect("short mask row", StatusBadSize, [](auto& a) { a.maskStep = 9; });
    }
  });
}

// Oddity: nuqiAddProduct_32f_C1IR holds source steps against the width in pixels: rows may overlap.
TEST(AccumulateStatus, AddProduct32fTakesOverlappingSourceRows) {
  const std::vector<float> src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  std::vector<float> acc(20, 0.5f);
  const RoiSize roi = {10, 2};
  EXPECT_EQ(nuqiAddProduct_32f_C1IR(src.data(), 8, src.data(), 12, acc.data(), 40, roi),
            StatusBadSize);
  ASSERT_EQ(nuqiAddProduct_32f_C1IR(src.data(), 12, src.data(), 12, acc.data(), 40, roi), StatusOk);
  for (int x = 0; x < 10; ++x) {
    EXPECT_EQ(acc[x], 0.5f + src[x] * src[x]);
    EXPECT_EQ(acc[10 + x], 0.5f + src[3 + x] * src[3 + x]);
  }
}

TEST_P(Accumulate, UnselectedPixelsAreWrittenToo) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  const uint8_t src[4] = {7, 7, 7, 0}, mask[4] = {};
  float sum[4] = {-0.0f, inf, 5.0f, -0.0f}, weighted[4] = {-0.0f, inf, 9.0f, -0.0f};
  ASSERT_EQ(nuqiAdd_8u32f_C1IMR(src, 4, mask, 4, sum, 16, {4, 1}), StatusOk);
  ASSERT_EQ(nuqiAddWeighted_8u32f_C1IMR(src, 4, mask, 4, weighted, 16, {4, 1}, 0.5f), StatusOk);
  EXPECT_EQ(bits_of(sum[0]), bits_of(0.0f));
  EXPECT_EQ(sum[1], inf);
  EXPECT_EQ(sum[2], 5.0f);
  EXPECT_EQ(bits_of(weighted[0]), bits_of(0.0f));
  EXPECT_TRUE(std::isnan(weighted[1]));
  EXPECT_EQ(weighted[2], 9.0f);
}

TEST_P(Accumulate, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_accumulate([&]<class T>(const AccumulateMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture<T> fixture({{width, 5}}, width);
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(fixture.acc.pixels());
    }
  });
  EXPECT_TRUE(same_hash(0x6CF2B18A7F966E37, hash));
}

}  // namespace
}  // namespace nuqi::test

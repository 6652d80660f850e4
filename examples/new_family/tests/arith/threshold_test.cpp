// Tests of the thresholds.
#include <gtest/gtest.h>

#include "arith/threshold_members.h"
#include "arith/threshold_reference.h"
#include "support/agreement.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// The images of one call.
template <class T>
struct Fixture {
  Fixture(const Case& c, uint64_t seed)
      : roi(c.roi), src("source", c, 0), dst("destination", c, 1) {
    Random random(seed);
    src.fill([&] { return random.value<T>(); });
    level = random.value<T>();
    value = random.value<T>();
  }
  ThresholdArgs<T> args() {
    return {src.data(), src.step(), dst.data(), dst.step(), roi, level, value};
  }
  std::vector<T> expected(const ThresholdMember<T>&) {
    return threshold_reference(src.pixels(), level, value);
  }
  WalledImage<T>& output() { return dst; }

  RoiSize roi;
  WalledImage<T> src, dst;
  T level, value;
};

class Threshold : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Threshold);

TEST_P(Threshold, AgreesWithTheReference) {
  for_each_threshold([]<class T>(const ThresholdMember<T>& member) {
    for_each_case(member.name, 2, [&](const Case& c) {
      Fixture<T> fixture(c, static_cast<uint64_t>(c.roi.width));
      expect_agreement(member, fixture);
    });
  });
}

TEST_P(Threshold, DestinationMayBeTheSource) {
  for_each_threshold([]<class T>(const ThresholdMember<T>& member) {
    Fixture<T> fixture({{77, 3}}, 5);
    const std::vector<T> expected = fixture.expected(member);
    ThresholdArgs<T> args = fixture.args();
    args.dst = fixture.src.data(), args.dstStep = fixture.src.step();
    ASSERT_EQ(member.call(args), StatusOk);
    EXPECT_TRUE(same_bits(expected, fixture.src.pixels())) << member.name;
  });
}

// Each row breaks two rules and names the status that must win.
TEST(ThresholdStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_threshold([]<class T>(const ThresholdMember<T>& member) {
    const int32_t row = 10 * int{sizeof(T)};
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_status(member, Fixture<T>({{10, 4}}, 7), what, status, spoil);
    };
    expect("null source, width -1", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi.width = -1; });
    expect("null destination, short step", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.srcStep = 0; });
    expect("negative width", StatusBadSize, [](auto& a) { a.roi.width = -1; });
    expect("negative height", StatusBadSize, [](auto& a) { a.roi.height = -1; });
    expect("short source step", StatusBadSize, [&](auto& a) { a.srcStep = row - int{sizeof(T)}; });
    expect("short destination step", StatusBadSize,
           [&](auto& a) { a.dstStep = row - int{sizeof(T)}; });
    expect("width 0", StatusOk, [](auto& a) { a.roi.width = 0; });
    if (sizeof(T) == 4) {
      expect("uneven source step", StatusBadSize, [&](auto& a) { a.srcStep = row + 2; });
      expect("uneven destination step", StatusBadSize, [&](auto& a) { a.dstStep = row + 2; });
    }
  });
}

TEST_P(Threshold, GivesTheSameBitsEverywhere) {
  Hash hash;
  for_each_threshold([&]<class T>(const ThresholdMember<T>& member) {
    for (int width : {1, 7, 16, 37, 130}) {
      Fixture<T> fixture({{width, 5}}, static_cast<uint64_t>(width));
      ASSERT_EQ(member.call(fixture.args()), StatusOk);
      hash.add(fixture.dst.pixels());
    }
  });
  EXPECT_TRUE(same_hash(0xEC41344994CB2137, hash));
}

}  // namespace
}  // namespace nuqi::test

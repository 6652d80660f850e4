// What flood fills and their size queries refuse, and in which order they look.
#include <gtest/gtest.h>

#include <limits>

#include "fill/fill_fixture.h"

namespace nuqi::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// Each row spoils one argument more than it needs to, and names the status that must win.
TEST(FloodFillStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_flood_fill([]<class T>(const FillMember<T>& member) {
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      FillFixture<T> fixture(member, Case{{10, 4}}, [](int x, int) { return static_cast<T>(x); });
      const auto bytes = [&] {
        auto all = fixture.image.all_bytes();
        all.insert(all.end(), fixture.buffer.data(), fixture.buffer.data() + fixture.buffer.size());
        for (uint64_t word : bits_of_region(fixture.region))
          for (int i = 0; i < 8; ++i) all.push_back(static_cast<uint8_t>(word >> 8 * i));
        return all;
      };
      const auto before = bytes();
      auto args = fixture.args({1, 1}, 50, 1, 1);
      spoil(args);
      const Running now(member.name, args.roi);
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before == bytes(), status != StatusOk) << member.name << ": " << what;
    };
    constexpr int kSize = sizeof(T);
    expect("null image, width 0", StatusNullPtr,
           [](auto& a) { a.image = nullptr, a.roi.width = 0; });
    expect("null region, bad seed", StatusNullPtr,
           [](auto& a) { a.region = nullptr, a.seed.x = -1; });
    expect("null buffer, step 0", StatusNullPtr, [](auto& a) { a.buffer = nullptr, a.step = 0; });
    expect("width 0, bad seed", StatusBadSize, [](auto& a) { a.roi.width = 0, a.seed.y = 9; });
    expect("height -1, bad seed", StatusBadSize, [](auto& a) { a.roi.height = -1, a.seed.y = 9; });
    expect("short row, bad seed", StatusBadSize,
           [](auto& a) { a.step = 10 * kSize - 1, a.seed.x = 10; });
    expect("a row's bytes beyond an int", StatusBadSize,
           [](auto& a) { a.roi.width = INT32_MAX, a.step = INT32_MAX - 3; });
    expect("seed left of the ROI, bad value", StatusBadArg,
           [](auto& a) { a.seed.x = -1, a.value = 256; });
    expect("seed right of the ROI, bad value", StatusBadArg,
           [](auto& a) { a.seed.x = 10, a.value = 256; });
    expect("seed above the ROI", StatusBadArg, [](auto& a) { a.seed.y = -1; });
    expect("seed below the ROI", StatusBadArg, [](auto& a) { a.seed.y = 4; });
    if (sizeof(T) == 4) {
      expect("uneven step, bad seed", StatusBadSize, [](auto& a) { a.step += 2, a.seed.x = 10; });
      expect("any float", StatusOk, [](auto& a) { a.value = -1000; });
    } else {
      expect("value 256, a bad delta", StatusUnsupported,
             [](auto& a) { a.value = 256, a.upper = -1; });
      expect("value -1, a bad delta", StatusUnsupported,
             [](auto& a) { a.value = -1, a.lower = -1; });
    }
    const StatusCode gradient_alone = member.gradient ? StatusBadArg : StatusOk;
    expect("lower delta -1", gradient_alone, [](auto& a) { a.lower = -1; });
    expect("upper delta -1", gradient_alone, [](auto& a) { a.upper = -1; });
    if (sizeof(T) == 1) {
      expect("deltas 200 and 56", gradient_alone, [](auto& a) { a.lower = 200, a.upper = 56; });
      expect("deltas whose sum wraps", gradient_alone,
             [](auto& a) { a.lower = a.upper = static_cast<decltype(a.lower)>(INT32_MAX); });
      expect("deltas 200 and 55", StatusOk, [](auto& a) { a.lower = 200, a.upper = 55; });
    } else {
      expect("deltas of -0.0 and NaN", StatusOk, [](auto& a) {
        a.lower = static_cast<decltype(a.lower)>(-0.0),
        a.upper = static_cast<decltype(a.lower)>(kNaN);
      });
    }
  });
}

// Oddity: the queries test the size before the pointer, and wrap.
TEST(FloodFillStatus, QueriesTestTheSizeFirstAndWrap) {
  const auto expect = [](RoiSize roi, int32_t equality, int32_t gradient) {
    int32_t size = 0;
    EXPECT_EQ(nuqiFloodFillGetSize(roi, &size), StatusOk);
    EXPECT_EQ(size, equality) << roi.width << "x" << roi.height;
    EXPECT_EQ(nuqiFloodFillGetSize_Grad(roi, &size), StatusOk);
    EXPECT_EQ(size, gradient) << roi.width << "x" << roi.height;
  };
  expect({1, 1}, 6, 15);
  expect({640, 480}, 1843200, 1843200 + 642 * 482);
  expect({178956970, 1}, 1073741820, 1073741820 + 3 * 178956972);
  expect({178956971, 1}, 2, 2 + 3 * 178956973);  // 24 * the pixels is 2^32 + 8
  expect({INT32_MAX, INT32_MAX}, 6, 1 + 6);
  for (const auto query : {nuqiFloodFillGetSize, nuqiFloodFillGetSize_Grad}) {
    int32_t size = 77;
    EXPECT_EQ(query({0, 5}, nullptr), StatusBadSize);
    EXPECT_EQ(query({5, -1}, &size), StatusBadSize);
    EXPECT_EQ(query({5, 5}, nullptr), StatusNullPtr);
    EXPECT_EQ(size, 77);
  }
}

}  // namespace
}  // namespace nuqi::test

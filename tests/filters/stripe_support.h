// Runs stripe filters over walled images, and the tests that all of them share.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "filters/stripe_members.h"
#include "support/comparison.h"
#include "support/heap.h"
#include "support/shapes.h"

namespace nuqi::test {

using NewState = std::function<ConvolState*(int32_t width, int32_t type)>;

// An image in raster order.
template <class T>
struct Picture {
  RoiSize roi;
  std::vector<T> pixels;
};

// Bytes: extremes as often as noise. Floats: magnitudes that differ widely, so that every rounding
// shows.
template <class T>
Picture<T> random_picture(RoiSize roi, uint64_t seed) {
  Random random(seed);
  Picture<T> picture = {roi, std::vector<T>(static_cast<size_t>(roi.width) * roi.height)};
  for (T& value : picture.pixels) {
    if constexpr (sizeof(T) == 1)
      value = random.integer<T>();
    else
      value = random.plain_float() * random.one_of(std::array<float, 3>{1.0f, 1e-4f, 3e5f});
  }
  return picture;
}

// Feeds rows of the picture from `y` on, in images that lie as `how` says; appends what comes out to
// `out`.
template <class T, class D>
void run_stripe(const StripeMember<T, D>& member, ConvolState* state, const Picture<T>& picture,
                int y, int rows, int phase, int expected_rows, const Case& how,
                std::vector<D>& out) {
  const int32_t width = picture.roi.width;
  WalledImage<T> src({width, rows}, how.padding[0], how.wall, 1, "source");
  WalledImage<D> dst({width, expected_rows}, how.padding[1], how.wall, 1, "destination");
  const Running now(member.name, {width, rows});
  size_t i = static_cast<size_t>(y) * width;
  src.fill([&] { return picture.pixels[i++]; });
  RoiSize roi = {width, rows};
  ASSERT_EQ(member.call({src.data(), src.step(), dst.data(), dst.step(), &roi, state, phase}),
            StatusOk);
  ASSERT_EQ(roi.width, width);
  ASSERT_EQ(roi.height, expected_rows);
  ASSERT_TRUE(dst.padding_untouched());
  const std::vector<D> pixels = dst.pixels();
  out.insert(out.end(), pixels.begin(), pixels.end());
}

// The picture in one call.
template <class T, class D>
std::vector<D> whole(const StripeMember<T, D>& member, ConvolState* state,
                     const Picture<T>& picture, const Case& how = {}) {
  std::vector<D> out;
  run_stripe(member, state, picture, 0, picture.roi.height, 0, picture.roi.height, how, out);
  return out;
}

// The picture in stripes of the given heights; the first has at least half the size.
template <class T, class D>
std::vector<D> in_stripes(const StripeMember<T, D>& member, ConvolState* state,
                          const Picture<T>& picture, int half, const std::vector<int>& heights) {
  std::vector<D> out;
  int y = 0;
  for (size_t i = 0; i < heights.size(); ++i) {
    const bool first = i == 0, last = i + 1 == heights.size();
    const int phase = first && last ? 0 : first ? 1 : last ? 2 : 4;
    const Case how = {{}, Wall::after, {i % 2 == 0 ? 0 : kWallsBetween, static_cast<int>(i % 3)}};
    run_stripe(member, state, picture, y, heights[i], phase,
               heights[i] - (first ? half : 0) + (last ? half : 0), how, out);
    y += heights[i];
  }
  return out;
}

// Whole pictures against expected(picture); what lies behind the state's row buffers stays as it is.
template <class T, class D, class Expected>
void expect_agreement(const StripeMember<T, D>& member, const NewState& new_state,
                      const Expected& expected) {
  const auto check = [&](const Case& c) {
    WatchedHeap heap;
    ConvolState* state = new_state(c.roi.width, data_type(T{}));
    ASSERT_NE(state, nullptr);
    const uint8_t* end = heap.last_block + heap.last_size - 32;
    const Picture<T> picture = random_picture<T>(c.roi, static_cast<uint64_t>(c.roi.width));
    ASSERT_TRUE(same_bits(expected(picture), whole(member, state, picture, c)));
    for (int i = 0; i < 32; ++i) ASSERT_EQ(end[i], WatchedHeap::kFresh);
  };
  for_each_case(member.name, 2, check, {{129, 40}, {1026, 3}, {8, 150}});
}

// One state, made for the widest picture: any stripes give what one call gives.
template <class T, class D>
void expect_stripes_equal_the_whole(const StripeMember<T, D>& member, const NewState& new_state,
                                    int half) {
  ConvolState* state = new_state(600, data_type(T{}));
  Random random(static_cast<uint64_t>(half));
  for (int round = 0; round < 60; ++round) {
    const RoiSize roi = {round % 10 == 0 ? 600 : random.between(1, 40), random.between(8, 90)};
    const Picture<T> picture = random_picture<T>(roi, 77u + round);
    std::vector<int> heights = {random.between(half, roi.height - 1)};
    for (int left = roi.height - heights[0]; left > 0; left -= heights.back())
      heights.push_back(random.between(1, round % 3 == 0 ? 1 : left));
    SCOPED_TRACE(testing::Message() << member.name << " " << roi.width << "x" << roi.height
                                    << " as " << testing::PrintToString(heights));
    ASSERT_TRUE(same_bits(whole(member, state, picture),
                          in_stripes(member, state, picture, half, heights)));
  }
}

// Each row spoils more than one argument, and names the status that must win. `wrong_state` lacks what
// the filter needs.
template <class T, class D>
void expect_statuses(const StripeMember<T, D>& member, ConvolState* fresh, ConvolState* narrow,
                     ConvolState* wrong_state) {
  const auto expect = [&](const char* what, StatusCode status, auto spoil) {
    const Picture<T> picture = random_picture<T>({10, 6}, 5);
    WalledImage<D> dst({10, 6}, 0, Wall::after);
    const auto before = dst.all_bytes();
    RoiSize roi = picture.roi;
    StripeArgs<T, D> args = {
        picture.pixels.data(), 10 * int{sizeof(T)}, dst.data(), dst.step(), &roi, fresh, 0};
    spoil(args);
    const RoiSize asked = roi;
    EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
    EXPECT_EQ(before, dst.all_bytes()) << member.name << ": " << what;
    EXPECT_TRUE(roi.width == asked.width && roi.height == asked.height) << what;
  };
  const int32_t src_row = 10 * int{sizeof(T)}, dst_row = 10 * int{sizeof(D)};
  expect("null source, width 0", StatusNullPtr, [](auto& a) { a.src = nullptr, a.roi->width = 0; });
  expect("null destination, phase 3", StatusNullPtr, [](auto& a) { a.dst = nullptr, a.phase = 3; });
  expect("null ROI, short step", StatusNullPtr, [](auto& a) { a.roi = nullptr, a.srcStep = 1; });
  expect("null state, phase 4", StatusNullPtr, [](auto& a) { a.state = nullptr, a.phase = 4; });
  expect("width 0, phase 3", StatusBadSize, [](auto& a) { a.roi->width = 0, a.phase = 3; });
  expect("height 0, phase 4", StatusBadSize, [](auto& a) { a.roi->height = 0, a.phase = 4; });
  expect("short source step, phase 8", StatusBadSize,
         [&](auto& a) { a.srcStep = src_row - int{sizeof(T)}, a.phase = 8; });
  expect("short destination step, phase -1", StatusBadSize,
         [&](auto& a) { a.dstStep = dst_row - int{sizeof(D)}, a.phase = -1; });
  expect("uneven destination step, phase 3", StatusBadSize,
         [&](auto& a) { a.dstStep = dst_row + int{sizeof(D)} / 2, a.phase = 3; });
  expect("a width whose row overflows an int", StatusBadSize,
         [](auto& a) { a.roi->width = (1 << 30) + 1, a.srcStep = a.dstStep = INT32_MAX / 4 * 4; });
  if (sizeof(T) == 4)
    expect("uneven source step, phase 3", StatusBadSize,
           [&](auto& a) { a.srcStep = src_row + 2, a.phase = 3; });
  expect("phase 3, narrow state", StatusUnsupported,
         [&](auto& a) { a.phase = 3, a.state = narrow; });
  expect("phase 4 on a fresh, narrow state", StatusUnsupported,
         [&](auto& a) { a.phase = 4, a.state = narrow; });
  expect("phase 2 on a fresh, wrong state", StatusUnsupported,
         [&](auto& a) { a.phase = 2, a.state = wrong_state; });
  expect("a state of 8 columns", StatusBadSize, [&](auto& a) { a.state = narrow; });
  expect("a state of another filter, too narrow", StatusBadSize, [&](auto& a) {
    a.state = wrong_state, a.roi->width = 33, a.roi->height = 1, a.srcStep = a.dstStep = 132;
  });
  expect("a state of another filter", StatusBadContext, [&](auto& a) { a.state = wrong_state; });
}

// A first stripe that does not fill half a window leaves rows pending: until the next first stripe no
// other may come.
template <class T, class D>
void expect_low_first_stripe_waits(const StripeMember<T, D>& member, ConvolState* state, int half) {
  const Picture<T> picture = random_picture<T>({20, 9}, 3);
  std::vector<D> out, dst(20 * 9);
  for (int phase : {0, 1}) {
    run_stripe(member, state, picture, 0, half - 1, phase, phase == 0 ? half - 1 : 0, {}, out);
    for (int next : {2, 4}) {
      RoiSize roi = {20, 9};
      EXPECT_EQ(member.call({picture.pixels.data(), 20 * int{sizeof(T)}, dst.data(),
                             20 * int{sizeof(D)}, &roi, state, next}),
                StatusUnsupported);
      EXPECT_EQ(roi.height, 9);
    }
  }
  EXPECT_TRUE(same_bits(whole(member, state, picture), whole(member, state, picture)));
}

}  // namespace nuqi::test

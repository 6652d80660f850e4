// Runs functions that take an image in stripes over walled images, and the tests that all of them share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "support/comparison.h"
#include "support/heap.h"
#include "support/shapes.h"
#include "support/stripe_members.h"

namespace nuqi::test {

// An image in raster order.
template <class T>
struct Picture {
  RoiSize roi;
  std::vector<T> pixels;  // of several channels: interleaved
};

// Bytes: extremes as often as noise. Floats: magnitudes that differ widely, so that every rounding
// shows.
template <class T>
Picture<T> random_picture(RoiSize roi, uint64_t seed, int channels = 1) {
  Random random(seed);
  Picture<T> picture = {roi,
                        std::vector<T>(static_cast<size_t>(roi.width) * channels * roi.height)};
  for (T& value : picture.pixels) {
    if constexpr (!std::is_same_v<T, float>)
      value = random.integer<T>();
    else
      value = random.plain_float() * random.one_of(std::array<float, 3>{1.0f, 1e-4f, 3e5f});
  }
  return picture;
}

// Feeds rows of the picture from `y` on, in images that lie as `how` says; appends what comes out to
// `out`.
template <class T, class D, class State>
void run_stripe(const StripeMember<T, D, State>& member, State* state, const Picture<T>& picture,
                int y, int rows, int phase, int expected_rows, const Case& how,
                std::vector<D>& out) {
  const int32_t width = picture.roi.width;
  const Case taken = {{width, rows}, how.wall, how.padding};
  const Case given = {{width, expected_rows}, how.wall, how.padding};
  WalledImage<T> src("source", taken, 0, member.channels);
  WalledImage<D> dst("destination", given, 1, member.channels);
  const Running now(member.name, taken.roi);
  size_t i = static_cast<size_t>(y) * width * member.channels;
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
template <class T, class D, class State>
std::vector<D> whole(const StripeMember<T, D, State>& member, State* state,
                     const Picture<T>& picture, const Case& how = {}) {
  std::vector<D> out;
  run_stripe(member, state, picture, 0, picture.roi.height, 0, picture.roi.height, how, out);
  return out;
}

// The picture in stripes of the given heights; the first has at least as many rows as a window has below
// its middle.
template <class T, class D, class State>
std::vector<D> in_stripes(const StripeMember<T, D, State>& member, State* state,
                          const Picture<T>& picture, int below, const std::vector<int>& heights) {
  std::vector<D> out;
  int y = 0;
  for (size_t i = 0; i < heights.size(); ++i) {
    const bool first = i == 0, last = i + 1 == heights.size();
    const int phase = first && last ? 0 : first ? 1 : last ? 2 : 4;
    const Case how = {{}, Wall::after, {i % 2 == 0 ? 0 : kWallsBetween, static_cast<int>(i % 3)}};
    run_stripe(member, state, picture, y, heights[i], phase,
               heights[i] - (first ? below : 0) + (last ? below : 0), how, out);
    y += heights[i];
  }
  return out;
}

// Whole pictures against expected(picture). new_state(width, data type) makes a state; what lies behind
// its row buffers stays as it is.
template <class T, class D, class State, class NewState, class Expected>
void expect_agreement(const StripeMember<T, D, State>& member, const NewState& new_state,
                      const Expected& expected) {
  const auto check = [&](const Case& c) {
    WatchedHeap heap;
    State* state = new_state(c.roi.width, data_type(T{}));
    ASSERT_NE(state, nullptr);
    const uint8_t* end = heap.last_block + heap.last_size - 32;
    const Picture<T> picture =
        random_picture<T>(c.roi, static_cast<uint64_t>(c.roi.width), member.channels);
    ASSERT_TRUE(same_bits(expected(picture), whole(member, state, picture, c)));
    for (int i = 0; i < 32; ++i) ASSERT_EQ(end[i], WatchedHeap::kFresh);
  };
  for_each_case(member.name, 2, check, {{129, 40}, {1026, 3}, {8, 150}});
}

// One state, made for the widest picture: any stripes give what one call gives.
template <class T, class D, class State, class NewState>
void expect_stripes_equal_the_whole(const StripeMember<T, D, State>& member,
                                    const NewState& new_state, int below) {
  State* state = new_state(600, data_type(T{}));
  Random random(static_cast<uint64_t>(below));
  for (int round = 0; round < 60; ++round) {
    const RoiSize roi = {round % 10 == 0 ? 600 : random.between(1, 40), random.between(8, 90)};
    const Picture<T> picture = random_picture<T>(roi, 77u + round, member.channels);
    std::vector<int> heights = {random.between(std::max(below, 1), roi.height - 1)};
    for (int left = roi.height - heights[0]; left > 0; left -= heights.back())
      heights.push_back(random.between(1, round % 3 == 0 ? 1 : left));
    SCOPED_TRACE(testing::Message() << member.name << " " << roi.width << "x" << roi.height
                                    << " as " << testing::PrintToString(heights));
    ASSERT_TRUE(same_bits(whole(member, state, picture),
                          in_stripes(member, state, picture, below, heights)));
  }
}

}  // namespace nuqi::test

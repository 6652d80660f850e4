// The tests that all filters over a square window share.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "support/stripes.h"

namespace nuqi::test {

using NewState = std::function<ConvolState*(int32_t width, int32_t type)>;

// Each row spoils more than one argument, and names the status that must win. `wrong_state` lacks what
// the filter needs.
template <class T, class D>
void expect_statuses(const StripeMember<T, D>& member, ConvolState* fresh, ConvolState* narrow,
                     ConvolState* wrong_state) {
  const auto expect = [&](const char* what, StatusCode status, auto spoil) {
    const Picture<T> picture = random_picture<T>({10, 6}, 5);
    WalledImage<D> dst("destination", Case{{10, 6}});
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

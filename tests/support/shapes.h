// The shapes, walls and paddings that agreement tests run through.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>
#include <vector>

#include "support/crash.h"
#include "support/values.h"
#include "support/walls.h"

namespace nuqi::test {

inline std::ostream& operator<<(std::ostream& out, const Case& c) {
  out << c.roi.width << "x" << c.roi.height << " wall "
      << (c.wall == Wall::after ? "after" : "before") << " padding";
  for (int padding : c.padding)
    padding == kFarApart       ? out << " far"
    : padding == kWallsBetween ? out << " walls"
                               : out << " " << padding;
  return out;
}

// Whether the machine has the addresses for images whose rows lie far apart.
inline bool far_rows_fit() {
  static const bool fit = [] {
    const uint64_t bytes = uint64_t{Case::kMostImages} << 33;
    void* room = MAP_FAILED;
    if (sizeof(void*) == 8)
      room = mmap(nullptr, static_cast<size_t>(bytes), PROT_NONE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (room != MAP_FAILED) return munmap(room, static_cast<size_t>(bytes)) == 0;
    std::puts("left out: rows 2^31 bytes apart; not enough addresses");
    return false;
  }();
  return fit;
}

// Kind 0 is all tight, 1 all padded, then each image alone is padded; the others are mixtures.
inline auto paddings_of(int kind, int images, Random& random) {
  std::array<int, Case::kMostImages> padding = {};
  for (int i = 0; i < images; ++i) {
    bool padded = random.bits() % 2 != 0;
    if (kind < images + 2) padded = kind == 1 || i == kind - 2;
    if (padded) padding[i] = random.between(0, 3) == 0 ? kWallsBetween : random.between(1, 9);
  }
  return padding;
}

// Calls visit(c) with cases for `images` images, each of which has a padding of its own: what is wrong
// for one combination of steps alone, such as rows taken for back to back where one image's are not,
// shows. `more` are shapes that one family needs. Stops at the first fatal failure.
template <class Visit>
void for_each_case(const char* function, int images, const Visit& visit,
                   const std::vector<RoiSize>& more = {}) {
  const int kinds = (images + 3) | 1;  // odd: each meets widths of every remainder
  int number = 0;
  Random random(static_cast<uint64_t>(images));
  const auto run = [&](const Case& c) {
    if (testing::Test::HasFatalFailure()) return;
    SCOPED_TRACE(testing::Message() << function << " " << c);
    const Running now(function, c.roi);
    visit(c);
  };
  const auto at_both_walls = [&](RoiSize roi) {
    for (Wall wall : {Wall::after, Wall::before})
      run({roi, wall, paddings_of(number++ % kinds, images, random)});
  };

  for (int width = 1; width <= 70; ++width) at_both_walls({width, random.between(1, 5)});
  for (RoiSize roi : {RoiSize{1, 200}, {129, 17}, {320, 3}, {641, 3}, {2053, 3}})
    at_both_walls(roi);
  for (RoiSize roi : more) at_both_walls(roi);
  if (far_rows_fit()) {
    Case far = {{70, 4}};
    far.padding.fill(kFarApart);
    run(far);
  }
}

}  // namespace nuqi::test

// Plain distance transforms, as one would write them: two passes over integers in the destination.
// Compiled by each compiler. Takes rows without padding and aligned images.
#include "features/distance_transform_plain.h"

#include <algorithm>
#include <cmath>

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

struct Steps {
  int32_t a, b, c;
};

// One row of a pass, `dir` 1 for rightwards, with the rows `near` and `next` before it in the pass, or
// null.
template <bool is_5x5, int dir>
void pass_row(int32_t* __restrict here, const int32_t* __restrict near,
              const int32_t* __restrict next, int width, Steps s) {
  constexpr int kReach = is_5x5 ? 2 : 1;
  int32_t d = INT32_MAX / 2;
  const auto pixel = [&](int x, auto inside) {
    d = std::min(here[x], d + s.a);
    if (near) {
      d = std::min(d, near[x] + s.a);
      if (inside(x - 1)) d = std::min(d, near[x - 1] + s.b);
      if (inside(x + 1)) d = std::min(d, near[x + 1] + s.b);
      if (is_5x5 && inside(x - 2)) d = std::min(d, near[x - 2] + s.c);
      if (is_5x5 && inside(x + 2)) d = std::min(d, near[x + 2] + s.c);
    }
    if (is_5x5 && next) {
      if (inside(x - 1)) d = std::min(d, next[x - 1] + s.c);
      if (inside(x + 1)) d = std::min(d, next[x + 1] + s.c);
    }
    here[x] = d;
  };
  const auto test = [=](int x) { return x >= 0 && x < width; };
  const auto none = [](int) { return true; };
  const int first = dir > 0 ? 0 : width - 1, end = dir > 0 ? width : -1;
  int x = first;
  for (int i = 0; i < kReach && x != end; ++i, x += dir) pixel(x, test);
  if (near && (next || !is_5x5))
    for (int last = end - dir * kReach; dir > 0 ? x < last : x > last; x += dir) pixel(x, none);
  for (; x != end; x += dir) pixel(x, test);
}

template <bool is_5x5>
void transform(const test::DistanceArgs& a) {
  const auto units = [](float weight) {
    return static_cast<int32_t>(std::lrint(weight * 262144.0));
  };
  const Steps steps = {units(a.metrics[0]), units(a.metrics[1]), is_5x5 ? units(a.metrics[2]) : 0};
  const int width = a.roi.width, height = a.roi.height;
  int32_t* const all = reinterpret_cast<int32_t*>(a.dst);
  const auto row = [&](int y) { return y < 0 || y >= height ? nullptr : all + int64_t{y} * width; };
  const int64_t count = int64_t{width} * height;
  for (int64_t i = 0; i < count; ++i) all[i] = a.src[i] == 0 ? 0 : 1073741823;
  for (int y = 0; y < height; ++y)
    pass_row<is_5x5, 1>(row(y), row(y - 1), row(y - 2), width, steps);
  for (int y = height - 1; y >= 0; --y)
    pass_row<is_5x5, -1>(row(y), row(y + 1), row(y + 2), width, steps);
  for (int64_t i = 0; i < count; ++i) a.dst[i] = static_cast<float>(all[i]) * 0x1p-18f;
}

}  // namespace

void plain_distance_3x3(const test::DistanceArgs& a) { transform<false>(a); }
void plain_distance_5x5(const test::DistanceArgs& a) { transform<true>(a); }

}  // namespace nuqi::bench::PLAIN_COMPILER

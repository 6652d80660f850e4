// Plain flood fills, as one would write them: spans on a stack, which grows as it must. Compiled by each
// compiler.
#include "fill/flood_fill_plain.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

struct Span {
  int y, left, right, parent_left, parent_right, direction;
};

// Equal pixels, painted as they are found.
template <class T>
struct Equality {
  static constexpr bool kDirected = false;  // where a pixel is reached from makes no difference

  Equality(const test::FillArgs<T>& args, T value) : a(args), new_value(value) {
    old_value = row(a.image, a.step, a.seed.y)[a.seed.x];
  }
  bool joins(int, int, int x, int y) const { return row(a.image, a.step, y)[x] == old_value; }
  void take(int x, int y) const { row(a.image, a.step, y)[x] = new_value; }
  void close(const Span&) const {}

  const test::FillArgs<T>& a;
  T old_value, new_value;
};

// Pixels within the deltas of the one that they are reached from, painted when their span is left.
template <class T>
struct Gradient {
  static constexpr bool kDirected = true;
  using Wide = std::conditional_t<std::is_same_v<T, float>, double, int>;

  Gradient(const test::FillArgs<T>& args, T value)
      : a(args), new_value(value), map(static_cast<uint8_t*>(args.buffer)) {
    std::fill(map, map + size_t(a.roi.width + 2) * (a.roi.height + 2), 0);
    centre = (Wide(a.lower) - Wide(a.upper)) / 2, half = (Wide(a.lower) + Wide(a.upper)) / 2;
  }
  uint8_t& taken(int x, int y) const { return map[size_t(y + 1) * (a.roi.width + 2) + x + 1]; }
  bool joins(int from_x, int from_y, int x, int y) const {
    if (taken(x, y)) return false;
    const Wide p = row(a.image, a.step, from_y)[from_x], q = row(a.image, a.step, y)[x];
    if constexpr (std::is_same_v<T, float>)
      return std::fabs((p - q) - centre) <= half;
    else
      return unsigned(q - p + a.lower) <= unsigned(a.lower + a.upper);
  }
  void take(int x, int y) const { taken(x, y) = 1; }
  void close(const Span& s) const {
    T* at = row(a.image, a.step, s.y);
    std::fill(at + s.left, at + s.right + 1, new_value);
  }

  const test::FillArgs<T>& a;
  T new_value;
  uint8_t* map;
  Wide centre, half;
};

template <class Rule, bool diagonal, class T>
void fill(const test::FillArgs<T>& a) {
  const T value = static_cast<T>(a.value);
  const Rule rule(a, value);
  const int width = a.roi.width, height = a.roi.height;
  static std::vector<Span> stack;
  int64_t area = 0;
  int min_x = width, max_x = 0, min_y = height, max_y = 0;

  const auto extend = [&](int x, int y, int parent_left, int parent_right, int direction) {
    int left = x, right = x;
    rule.take(x, y);
    while (right + 1 < width && rule.joins(right, y, right + 1, y)) rule.take(++right, y);
    while (left > 0 && rule.joins(left, y, left - 1, y)) rule.take(--left, y);
    area += right - left + 1;
    stack.push_back({y, left, right, parent_left, parent_right, direction});
    return right;
  };
  const auto joins_from = [&](const Span& s, int x, int y) {
    if (!Rule::kDirected) return rule.joins(x, s.y, x, y);
    if (x >= s.left && x <= s.right && rule.joins(x, s.y, x, y)) return true;
    if (!diagonal) return false;
    return (x > s.left && rule.joins(x - 1, s.y, x, y)) ||
           (x < s.right && rule.joins(x + 1, s.y, x, y));
  };
  const auto scan = [&](const Span& s, int y, int left, int right, int direction) {
    if (unsigned(y) >= unsigned(height)) return;
    for (int x = left; x <= right; ++x)
      if (joins_from(s, x, y)) x = extend(x, y, s.left, s.right, direction);
  };

  stack.clear();
  extend(a.seed.x, a.seed.y, width, -1, 1);
  while (!stack.empty()) {
    const Span s = stack.back();
    stack.pop_back();
    min_x = std::min(min_x, s.left), max_x = std::max(max_x, s.right);
    min_y = std::min(min_y, s.y), max_y = std::max(max_y, s.y);
    const int left = diagonal ? std::max(s.left - 1, 0) : s.left;
    const int right = diagonal ? std::min(s.right + 1, width - 1) : s.right;
    scan(s, s.y - s.direction, left, right, s.direction);
    if (s.parent_left > s.parent_right) {
      scan(s, s.y + s.direction, left, right, -s.direction);
    } else {
      scan(s, s.y + s.direction, left, std::min(s.parent_left - 1, right), -s.direction);
      scan(s, s.y + s.direction, std::max(s.parent_right + 1, left), right, -s.direction);
    }
    rule.close(s);
  }
  *a.region = {double(area), double(value), min_x, min_y, max_x - min_x + 1, max_y - min_y + 1};
}

}  // namespace

template <class T>
void plain_fill(const test::FillArgs<T>& a, bool gradient, bool diagonal) {
  if (gradient)
    diagonal ? fill<Gradient<T>, true>(a) : fill<Gradient<T>, false>(a);
  else
    diagonal ? fill<Equality<T>, true>(a) : fill<Equality<T>, false>(a);
}
template void plain_fill(const test::FillArgs<uint8_t>&, bool, bool);
template void plain_fill(const test::FillArgs<float>&, bool, bool);

}  // namespace nuqi::bench::PLAIN_COMPILER

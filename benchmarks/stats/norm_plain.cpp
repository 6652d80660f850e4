// Plain loops of the norm family, as one would write them. Compiled by each compiler.
#include "stats/norm_plain.h"

#include <cmath>
#include <type_traits>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::NormArgs;
using test::NormKind;
using test::NormOrder;

// The totals of sixteen columns each, so that sums of floats can be computed side by side.
template <class T, NormOrder order>
struct Parts {
  static constexpr bool kWide = std::is_integral_v<T> && order == NormOrder::l2;
  using Sum = std::conditional_t<std::is_integral_v<T>,
                                 std::conditional_t<kWide, uint64_t, uint32_t>, float>;
  using Value = std::conditional_t<std::is_integral_v<T>, int, float>;
  Sum of[16] = {};

  void add(int lane, Value value) {
    const Value m = value < 0 ? -value : value;
    if constexpr (order == NormOrder::inf)
      of[lane] = static_cast<Sum>(m) > of[lane] ? static_cast<Sum>(m) : of[lane];
    else if constexpr (order == NormOrder::l1)
      of[lane] += static_cast<Sum>(m);
    else
      of[lane] += static_cast<Sum>(m * m);
  }
  double total() const {
    Sum all = 0;
    for (Sum part : of) all = order == NormOrder::inf ? (part > all ? part : all) : all + part;
    return static_cast<double>(all);
  }
};

template <class T, NormKind kind, NormOrder order, int channels>
void loop(const NormArgs<T>& a) {
  using Value = typename Parts<T, order>::Value;
  Parts<T, order> total, second;
  const auto pixel = [&](const T* src, const T* src2, const uint8_t* mask, int x, int lane) {
    const Value selected = mask[x] != 0;
    const Value s = src[x * channels];
    if constexpr (kind == NormKind::image) {
      total.add(lane, selected != 0 ? s : 0);
    } else {
      const Value s2 = src2[x * channels];
      total.add(lane, selected != 0 ? s - s2 : 0);
      if constexpr (kind == NormKind::relative) second.add(lane, selected != 0 ? s2 : 0);
    }
  };
  for (int y = 0; y < a.roi.height; ++y) {
    const int first = channels == 3 ? a.channel - 1 : 0;
    const T* src = row(a.src, a.srcStep, y) + first;
    const T* src2 = row(a.src2, a.src2Step, y) + first;
    const uint8_t* mask = row(a.mask, a.maskStep, y);
    int x = 0;
    for (; x + 16 <= a.roi.width; x += 16)
      for (int lane = 0; lane < 16; ++lane) pixel(src, src2, mask, x + lane, lane);
    for (int lane = 0; x < a.roi.width; ++x, ++lane) pixel(src, src2, mask, x, lane);
  }
  double value = total.total();
  if (kind == NormKind::relative) value /= second.total();
  *a.norm = order == NormOrder::l2 ? std::sqrt(value) : value;
}

template <class T, NormKind kind, int channels>
NormLoop<T> pick(NormOrder order) {
  switch (order) {
    case NormOrder::inf: return loop<T, kind, NormOrder::inf, channels>;
    case NormOrder::l1: return loop<T, kind, NormOrder::l1, channels>;
    default: return loop<T, kind, NormOrder::l2, channels>;
  }
}
template <class T, int channels>
NormLoop<T> pick(NormKind kind, NormOrder order) {
  switch (kind) {
    case NormKind::image: return pick<T, NormKind::image, channels>(order);
    case NormKind::difference: return pick<T, NormKind::difference, channels>(order);
    default: return pick<T, NormKind::relative, channels>(order);
  }
}

}  // namespace

template <class T>
NormLoop<T> plain_norm(NormKind kind, NormOrder order, int channels) {
  return channels == 3 ? pick<T, 3>(kind, order) : pick<T, 1>(kind, order);
}
template NormLoop<uint8_t> plain_norm<uint8_t>(NormKind, NormOrder, int);
template NormLoop<int8_t> plain_norm<int8_t>(NormKind, NormOrder, int);
template NormLoop<float> plain_norm<float>(NormKind, NormOrder, int);

}  // namespace nuqi::bench::PLAIN_COMPILER

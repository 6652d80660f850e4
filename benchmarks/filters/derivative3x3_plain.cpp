// Plain loops of the fixed 3x3 derivatives, as one would write them. Compiled by each compiler.
#include "filters/derivative3x3_plain.h"
#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::DerivativeArgs;
using test::DerivativeKind;
using test::DerivativeResult;

// Columns left, x and right of the rows above, here and below; bottomUp is 0.
template <class T, DerivativeKind kind>
DerivativeResult<T> pixel(const DerivativeArgs<T>& a, const T* above, const T* here, const T* below,
                          int left, int x, int right, float scale) {
  using enum DerivativeKind;
  using Sum = std::conditional_t<std::is_same_v<T, float>, float, int>;
  const auto d = [&](const T* r) { return Sum(r[right]) - Sum(r[left]); };
  const auto e = [&](const T* r) { return Sum(r[left]) - 2 * Sum(r[x]) + Sum(r[right]); };
  const auto s = [&](const T* r) { return Sum(r[left]) + 2 * Sum(r[x]) + Sum(r[right]); };
  const auto t = [&](const T* r) { return 3 * (Sum(r[left]) + Sum(r[right])) + 10 * Sum(r[x]); };
  const auto scaled = [&](Sum value) {
    if constexpr (std::is_same_v<T, float>)
      return value * scale;
    else
      return value >> a.shift;
  };
  Sum result;
  if constexpr (kind == dx) result = d(above) + 2 * d(here) + d(below);
  if constexpr (kind == dy) result = s(below) - s(above);
  if constexpr (kind == d2x) result = e(above) + 2 * e(here) + e(below);
  if constexpr (kind == d2y) result = s(above) - 2 * s(here) + s(below);
  if constexpr (kind == dxdy) result = d(below) - d(above);
  if constexpr (kind == scharr_dx) result = scaled(3 * (d(above) + d(below)) + 10 * d(here));
  if constexpr (kind == scharr_dy) result = scaled(t(below) - t(above));
  return static_cast<DerivativeResult<T>>(result);
}

template <class T, DerivativeKind kind>
void loop(const DerivativeArgs<T>& a) {
  const int last = a.roi.width - 1;
  const float scale = 1.0f / static_cast<float>(1 << a.shift);
  for (int y = 0; y < a.roi.height; ++y) {
    const T* here = row(a.src, a.srcStep, y);
    const T* above = y > 0 ? row(a.src, a.srcStep, y - 1) : here;
    const T* below = y + 1 < a.roi.height ? row(a.src, a.srcStep, y + 1) : here;
    DerivativeResult<T>* __restrict dst = row(a.dst, a.dstStep, y);
    const auto at = [&](int left, int x, int right) {
      dst[x] = pixel<T, kind>(a, above, here, below, left, x, right, scale);
    };
    at(0, 0, last > 0);
    for (int x = 1; x < last; ++x) at(x - 1, x, x + 1);
    if (last > 0) at(last - 1, last, last);
  }
}

}  // namespace

template <class T>
DerivativeLoop<T> plain_derivative(DerivativeKind kind) {
  static constexpr DerivativeLoop<T> kLoops[] = {
      loop<T, DerivativeKind::dx>,        loop<T, DerivativeKind::dy>,
      loop<T, DerivativeKind::d2x>,       loop<T, DerivativeKind::d2y>,
      loop<T, DerivativeKind::dxdy>,      loop<T, DerivativeKind::scharr_dx>,
      loop<T, DerivativeKind::scharr_dy>,
  };
  return kLoops[static_cast<int>(kind)];
}
template DerivativeLoop<uint8_t> plain_derivative<uint8_t>(DerivativeKind);
template DerivativeLoop<int8_t> plain_derivative<int8_t>(DerivativeKind);
template DerivativeLoop<float> plain_derivative<float>(DerivativeKind);

}  // namespace nuqi::bench::PLAIN_COMPILER

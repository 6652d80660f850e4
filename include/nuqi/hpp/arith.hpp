/// Per-pixel operations: accumulation, absolute difference, splitting and joining of channels.
#ifndef NUQI_HPP_ARITH_HPP
#define NUQI_HPP_ARITH_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <new>

namespace nuqi {

namespace detail {

inline constexpr auto kAbsDiff =
    overloads(fn<std::uint8_t, 1>(nuqiAbsDiff_8u_C1R), fn<float, 1>(nuqiAbsDiff_32f_C1R));

template <class T, int Channels, class D>
Outcome abs_diff(View<const T, Channels> a, View<const T, Channels> b,
                 View<D, Channels> dst) noexcept {
  static_assert(std::is_same_v<T, D>, "nuqi: abs_diff writes elements of its inputs' type");
  auto* const function = find<T, Channels>(kAbsDiff);
  if (Outcome bad = check_sizes(a, b, dst); bad.failed()) return bad;
  if (Outcome bad = check_in_place(dst, a, b); bad.failed()) return bad;
  return per_pixel(
      [function](RoiSize roi, auto first, auto second, auto out) {
        return function(first.data, first.step, second.data, second.step, out.data, out.step, roi);
      },
      a, b, dst);
}

}  // namespace detail

/// dst = |a - b|. One channel of uint8_t or float, all of one type and size. dst may be a or b.
template <class A, class B, class Dst>
[[nodiscard]] StatusCode abs_diff(const A& a, const B& b, Dst&& dst,
                                  std::nothrow_t /*tag*/) noexcept {
  return detail::abs_diff(detail::as_input(a), detail::as_input(b), detail::as_output<Dst>(dst))
      .status;
}
template <class A, class B, class Dst>
void abs_diff(const A& a, const B& b, Dst&& dst) {
  detail::require(
      detail::abs_diff(detail::as_input(a), detail::as_input(b), detail::as_output<Dst>(dst)),
      "abs_diff", a, b, dst);
}

}  // namespace nuqi

#endif

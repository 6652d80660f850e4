/// Splitting and joining of channels.
#ifndef NUQI_HPP_CHANNELS_HPP
#define NUQI_HPP_CHANNELS_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <new>
#include <tuple>
#include <type_traits>

namespace nuqi {

namespace detail {

inline constexpr auto kSplit =
    overloads(fn<std::uint8_t, 3>(nuqiCopy_8u_C3P3R), fn<std::uint8_t, 4>(nuqiCopy_8u_C4P4R),
              fn<float, 3>(nuqiCopy_32f_C3P3R), fn<float, 4>(nuqiCopy_32f_C4P4R));
inline constexpr auto kJoin =
    overloads(fn<std::uint8_t, 3>(nuqiCopy_8u_P3C3R), fn<std::uint8_t, 4>(nuqiCopy_8u_P4C4R),
              fn<float, 3>(nuqiCopy_32f_P3C3R), fn<float, 4>(nuqiCopy_32f_P4C4R));

/// C takes one step for all planes.
template <class First, class... Others>
bool same_step(First first, Others... others) noexcept {
  return ((first.step() == others.step()) && ...);
}
template <class First, class... Others>
[[gnu::always_inline]] inline bool all_far_apart(First first, Others... others) noexcept {
  if constexpr (sizeof...(others) == 0) {
    return true;
  } else {
    return (far_apart(first, others) && ...) && all_far_apart(others...);
  }
}

/// Planes of different steps are taken row by row: a single row has any.
template <class Call, class Src, class... Planes>
[[gnu::noinline, gnu::cold]] Outcome split_slowly(Call call, Src src, Planes... planes) {
  if (const Outcome bad = check_sizes(src, planes...); bad.failed()) return bad;
  if (any_overlap(src, planes...)) return kOverlap;
  return in_bands(same_step(planes...) ? kUnlimited : src.width(), call, src, planes...);
}

template <class Src, class... Planes>
[[gnu::always_inline]] inline Outcome split(Src src, Planes... planes) noexcept {
  using T = typename Src::element;
  static_assert(Src::channels() == sizeof...(Planes),
                "nuqi: split takes as many planes as there are channels");
  expect_output<T, 1, Planes...>();
  auto* const function = find<T, Src::channels()>(kSplit);
  const auto call = [function](RoiSize roi, auto from, auto first, auto... others) {
    T* const to[] = {first.data, others.data...};
    return function(from.data, from.step, to, first.step, roi);
  };
  if (ready(src, planes...) && same_step(planes...) && all_far_apart(src, planes...)) {
    return call(roi_of(src), whole(src), whole(planes)...);
  }
  return split_slowly(call, src, planes...);
}

template <class Dst, class... Planes>
[[gnu::always_inline]] inline Outcome join(Dst dst, Planes... planes) noexcept {
  using T = typename Dst::element;
  static_assert(Dst::channels() == sizeof...(Planes),
                "nuqi: join makes as many channels as there are planes");
  static_assert(
      (std::is_same_v<typename Planes::element, T> && ...) && ((Planes::channels() == 1) && ...),
      "nuqi: join takes planes of one channel and of its output's elements");
  auto* const function = find<T, Dst::channels()>(kJoin);
  // The output comes last.
  const auto call = [function](RoiSize roi, auto... parts) {
    const auto out = std::get<sizeof...(parts) - 1>(std::tie(parts...));
    const T* const from[] = {parts.data...};
    const std::int32_t steps[] = {parts.step...};
    return function(from, steps[0], out.data, out.step, roi);
  };
  if (same_step(planes...)) return write_apart(call, dst, planes...);
  if (const Outcome bad = check_sizes(dst, planes...); bad.failed()) return bad;
  if (const Outcome bad = check_apart(dst, planes...); bad.failed()) return bad;
  return in_bands(dst.width(), call, planes..., dst);
}

template <class Dst, class Src>
Outcome split_one(Src src, int channel, Dst dst) noexcept {
  using T = typename Src::element;
  expect_output<T, 1, Dst>();
  auto* const function = find<T, Src::channels()>(kSplit);
  if (const Outcome bad = check_channel(channel, Src::channels()); bad.failed()) return bad;
  return write_apart(
      [=](RoiSize roi, auto from, auto to) {
        T* planes[Src::channels()] = {};
        planes[channel] = to.data;
        return function(from.data, from.step, planes, to.step, roi);
      },
      dst, src);
}

}  // namespace detail

/// Channel c of src to plane c, for three or four channels of uint8_t or float: bit for bit. Planes may differ in
/// their steps; they overlap neither src nor each other.
template <class Src, class P0, class P1, class P2>
[[nodiscard]] StatusCode split(const Src& src, P0&& first, P1&& second, P2&& third,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split(detail::as_input(src), detail::as_output<P0>(first),
                       detail::as_output<P1>(second), detail::as_output<P2>(third))
      .status;
}
template <class Src, class P0, class P1, class P2>
void split(const Src& src, P0&& first, P1&& second, P2&& third) {
  detail::require(detail::split(detail::as_input(src), detail::as_output<P0>(first),
                                detail::as_output<P1>(second), detail::as_output<P2>(third)),
                  "split", src, first, second, third);
}
template <class Src, class P0, class P1, class P2, class P3>
[[nodiscard]] StatusCode split(const Src& src, P0&& first, P1&& second, P2&& third, P3&& fourth,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split(detail::as_input(src), detail::as_output<P0>(first),
                       detail::as_output<P1>(second), detail::as_output<P2>(third),
                       detail::as_output<P3>(fourth))
      .status;
}
template <class Src, class P0, class P1, class P2, class P3>
void split(const Src& src, P0&& first, P1&& second, P2&& third, P3&& fourth) {
  detail::require(detail::split(detail::as_input(src), detail::as_output<P0>(first),
                                detail::as_output<P1>(second), detail::as_output<P2>(third),
                                detail::as_output<P3>(fourth)),
                  "split", src, first, second, third, fourth);
}
/// One channel of src alone; channels count from 0.
template <class Src, class Dst>
[[nodiscard]] StatusCode split(const Src& src, int channel, Dst&& dst,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split_one(detail::as_input(src), channel, detail::as_output<Dst>(dst)).status;
}
template <class Src, class Dst>
void split(const Src& src, int channel, Dst&& dst) {
  detail::require(detail::split_one(detail::as_input(src), channel, detail::as_output<Dst>(dst)),
                  "split", src, channel, dst);
}

/// Three or four planes of uint8_t or float to the channels of dst: bit for bit. Planes may differ in their steps,
/// and may be one and the same; none overlaps dst.
template <class P0, class P1, class P2, class Dst>
[[nodiscard]] StatusCode join(const P0& first, const P1& second, const P2& third, Dst&& dst,
                              std::nothrow_t /*tag*/) noexcept {
  return detail::join(detail::as_output<Dst>(dst), detail::as_input(first),
                      detail::as_input(second), detail::as_input(third))
      .status;
}
template <class P0, class P1, class P2, class Dst>
void join(const P0& first, const P1& second, const P2& third, Dst&& dst) {
  detail::require(detail::join(detail::as_output<Dst>(dst), detail::as_input(first),
                               detail::as_input(second), detail::as_input(third)),
                  "join", first, second, third, dst);
}
template <class P0, class P1, class P2, class P3, class Dst,
          class = std::enable_if_t<!std::is_same_v<std::decay_t<Dst>, std::nothrow_t>>>
[[nodiscard]] StatusCode join(const P0& first, const P1& second, const P2& third, const P3& fourth,
                              Dst&& dst, std::nothrow_t /*tag*/) noexcept {
  return detail::join(detail::as_output<Dst>(dst), detail::as_input(first),
                      detail::as_input(second), detail::as_input(third), detail::as_input(fourth))
      .status;
}
template <class P0, class P1, class P2, class P3, class Dst,
          class = std::enable_if_t<!std::is_same_v<std::decay_t<Dst>, std::nothrow_t>>>
void join(const P0& first, const P1& second, const P2& third, const P3& fourth, Dst&& dst) {
  detail::require(
      detail::join(detail::as_output<Dst>(dst), detail::as_input(first), detail::as_input(second),
                   detail::as_input(third), detail::as_input(fourth)),
      "join", first, second, third, fourth, dst);
}

}  // namespace nuqi

#endif

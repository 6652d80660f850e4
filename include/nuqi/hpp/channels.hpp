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
/// Whether several planes of one size and step certainly share no byte.
template <class First, class... Others>
[[gnu::always_inline]] inline bool all_far_apart(First first, Others... others) noexcept {
  if constexpr (sizeof...(others) == 0) {
    return true;
  } else {
    const auto alike = [&](auto plane) {  // the same, and the compiler knows that they are
      return First(Members{}, plane.data(), first.width(), first.height(), first.step());
    };
    return (far_apart(first, alike(others)) && ...) && all_far_apart(alike(others)...);
  }
}

/// C takes planes as an array of pointers.
template <class T, class Function>
struct CallSplit {
  Function* function;

  template <class... Planes>
  [[gnu::always_inline]] StatusCode operator()(RoiSize roi, Part<const T> from, Part<T> first,
                                               Planes... others) const noexcept {
    T* const to[] = {first.data, others.data...};
    return function(from.data, from.step, to, first.step, roi);
  }
};
template <class T, class Function>
struct CallJoin {
  Function* function;

  template <class... Parts>
  [[gnu::always_inline]] StatusCode operator()(RoiSize roi, Part<const T> first,
                                               Parts... others) const noexcept {
    const Part<T> to =
        std::get<sizeof...(others) - 1>(std::tie(others...));  // the output comes last
    const T* const from[] = {first.data, others.data...};
    return function(from, first.step, to.data, to.step, roi);
  }
};

/// Planes of different steps are taken row by row: a single row has any.
template <class... Planes, class Call, class Src>
[[gnu::noinline, gnu::cold]] Outcome split_slowly(Call call, const Src& src,
                                                  std::remove_reference_t<Planes>&... planes) {
  const auto in = as_input(src);
  if (const Outcome bad = check_sizes(in, as_output<Planes>(planes)...); bad.failed()) return bad;
  if (any_overlap(in, as_output<Planes>(planes)...)) return kOverlap;
  return in_bands(same_step(as_output<Planes>(planes)...) ? kUnlimited : in.width(), call, in,
                  as_output<Planes>(planes)...);
}

template <class... Planes, class Src>
[[gnu::always_inline]] inline Outcome split(const Src& src,
                                            std::remove_reference_t<Planes>&... planes) noexcept {
  using T = ElementOf<const Src>;
  static_assert(kChannelsOf<const Src> == sizeof...(Planes),
                "nuqi: split takes as many planes as there are channels");
  expect_output<T, 1, std::remove_reference_t<Planes>...>();
  const auto function = find_for<Src>(kSplit);
  const CallSplit<T, std::remove_pointer_t<decltype(function)>> call{function};
  const auto in = as_input(src);
  if (ready(in, as_output<Planes>(planes)...) && same_step(as_output<Planes>(planes)...) &&
      (far_apart(in, as_output<Planes>(planes)) && ...) &&
      all_far_apart(as_output<Planes>(planes)...)) {
    return call(roi_of(in), whole(in), whole(as_output<Planes>(planes))...);
  }
  return split_slowly<Planes...>(call, src, planes...);
}

template <class Dst, class Call, class... Planes>
[[gnu::noinline, gnu::cold]] Outcome join_slowly(Call call, std::remove_reference_t<Dst>& dst,
                                                 const Planes&... planes) {
  const auto out = as_output<Dst>(dst);
  if (const Outcome bad = check_sizes(out, as_input(planes)...); bad.failed()) return bad;
  if (const Outcome bad = check_apart(out, as_input(planes)...); bad.failed()) return bad;
  return in_bands(out.width(), call, as_input(planes)..., out);
}

template <class Dst, class... Planes>
[[gnu::always_inline]] inline Outcome join(std::remove_reference_t<Dst>& dst,
                                           const Planes&... planes) noexcept {
  using To = std::remove_reference_t<Dst>;
  using T = ElementOf<To>;
  static_assert(kChannelsOf<To> == sizeof...(Planes),
                "nuqi: join makes as many channels as there are planes");
  static_assert((std::is_same_v<ElementOf<const Planes>, T> && ...) &&
                    ((kChannelsOf<const Planes> == 1) && ...),
                "nuqi: join takes planes of one channel and of its output's elements");
  const auto function = find_for<To>(kJoin);
  const CallJoin<T, std::remove_pointer_t<decltype(function)>> call{function};
  if (same_step(as_input(planes)...)) return write<Where::apart, Dst>(call, dst, planes...);
  return join_slowly<Dst>(call, dst, planes...);
}

/// One plane of several: the others' pointers are null.
template <class T, int Channels, class Function>
struct CallSplitOne {
  Function* function;
  int channel;

  [[gnu::always_inline]] StatusCode operator()(RoiSize roi, Part<const T> from,
                                               Part<T> to) const noexcept {
    T* planes[Channels] = {};
    planes[channel] = to.data;
    return function(from.data, from.step, planes, to.step, roi);
  }
};

template <class Dst, class Src>
[[gnu::always_inline]] inline Outcome split_one(const Src& src, int channel,
                                                std::remove_reference_t<Dst>& dst) noexcept {
  using T = ElementOf<const Src>;
  expect_output<T, 1, std::remove_reference_t<Dst>>();
  constexpr int kChannels = kChannelsOf<const Src>;
  const auto function = find_for<Src>(kSplit);
  if (const Outcome bad = check_channel(channel, kChannels); bad.failed()) return bad;
  return write<Where::apart, Dst>(
      CallSplitOne<T, kChannels, std::remove_pointer_t<decltype(function)>>{function, channel}, dst,
      src);
}

}  // namespace detail

/// Channel c of src to plane c, for three or four channels of uint8_t or float: bit for bit. Planes may differ in
/// their steps; they overlap neither src nor each other.
template <class Src, class P0, class P1, class P2>
[[nodiscard]] StatusCode split(const Src& src, P0&& first, P1&& second, P2&& third,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split<P0, P1, P2>(src, first, second, third).status;
}
template <class Src, class P0, class P1, class P2>
void split(const Src& src, P0&& first, P1&& second, P2&& third) {
  detail::require(detail::split<P0, P1, P2>(src, first, second, third), "split", src, first, second,
                  third);
}
template <class Src, class P0, class P1, class P2, class P3>
[[nodiscard]] StatusCode split(const Src& src, P0&& first, P1&& second, P2&& third, P3&& fourth,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split<P0, P1, P2, P3>(src, first, second, third, fourth).status;
}
template <class Src, class P0, class P1, class P2, class P3>
void split(const Src& src, P0&& first, P1&& second, P2&& third, P3&& fourth) {
  detail::require(detail::split<P0, P1, P2, P3>(src, first, second, third, fourth), "split", src,
                  first, second, third, fourth);
}
/// One channel of src alone; channels count from 0.
template <class Src, class Dst>
[[nodiscard]] StatusCode split(const Src& src, int channel, Dst&& dst,
                               std::nothrow_t /*tag*/) noexcept {
  return detail::split_one<Dst>(src, channel, dst).status;
}
template <class Src, class Dst>
void split(const Src& src, int channel, Dst&& dst) {
  detail::require(detail::split_one<Dst>(src, channel, dst), "split", src, channel, dst);
}

/// Three or four planes of uint8_t or float to the channels of dst: bit for bit. Planes may differ in their steps,
/// and may be one and the same; none overlaps dst.
template <class P0, class P1, class P2, class Dst>
[[nodiscard]] StatusCode join(const P0& first, const P1& second, const P2& third, Dst&& dst,
                              std::nothrow_t /*tag*/) noexcept {
  return detail::join<Dst>(dst, first, second, third).status;
}
template <class P0, class P1, class P2, class Dst>
void join(const P0& first, const P1& second, const P2& third, Dst&& dst) {
  detail::require(detail::join<Dst>(dst, first, second, third), "join", first, second, third, dst);
}
template <class P0, class P1, class P2, class P3, class Dst,
          class = std::enable_if_t<!std::is_same_v<std::decay_t<Dst>, std::nothrow_t>>>
[[nodiscard]] StatusCode join(const P0& first, const P1& second, const P2& third, const P3& fourth,
                              Dst&& dst, std::nothrow_t /*tag*/) noexcept {
  return detail::join<Dst>(dst, first, second, third, fourth).status;
}
template <class P0, class P1, class P2, class P3, class Dst,
          class = std::enable_if_t<!std::is_same_v<std::decay_t<Dst>, std::nothrow_t>>>
void join(const P0& first, const P1& second, const P2& third, const P3& fourth, Dst&& dst) {
  detail::require(detail::join<Dst>(dst, first, second, third, fourth), "join", first, second,
                  third, fourth, dst);
}

}  // namespace nuqi

#endif

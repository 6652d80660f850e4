/// One level of a Gaussian pyramid, down or up.
#ifndef NUQI_HPP_PYRAMID_HPP
#define NUQI_HPP_PYRAMID_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/data_type.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/scratch.hpp>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi {
namespace detail {

// clang-format off
inline constexpr auto kPyramidDown = overloads(
    fn<std::uint8_t, 1>(nuqiPyrDown_Gauss5x5_8u_C1R),
    fn<std::uint8_t, 3>(nuqiPyrDown_Gauss5x5_8u_C3R),
    fn<std::int8_t, 1>(nuqiPyrDown_Gauss5x5_8s_C1R),
    fn<std::int8_t, 3>(nuqiPyrDown_Gauss5x5_8s_C3R),
    fn<float, 1>(nuqiPyrDown_Gauss5x5_32f_C1R),
    fn<float, 3>(nuqiPyrDown_Gauss5x5_32f_C3R));
inline constexpr auto kPyramidUp = overloads(
    fn<std::uint8_t, 1>(nuqiPyrUp_Gauss5x5_8u_C1R),
    fn<std::uint8_t, 3>(nuqiPyrUp_Gauss5x5_8u_C3R),
    fn<std::int8_t, 1>(nuqiPyrUp_Gauss5x5_8s_C1R),
    fn<std::int8_t, 3>(nuqiPyrUp_Gauss5x5_8s_C3R),
    fn<float, 1>(nuqiPyrUp_Gauss5x5_32f_C1R),
    fn<float, 3>(nuqiPyrUp_Gauss5x5_32f_C3R));
// clang-format on

inline constexpr Outcome kOddSize{
    StatusBadSize,
    "width and height must be even: repeat the last column or row of an odd image first"};
inline constexpr Outcome kNotHalf{StatusBadSize,
                                  "the output must have half the width and half the height"};
inline constexpr Outcome kNotTwice{StatusBadSize,
                                   "the output must have twice the width and twice the height"};

/// What a direction needs: its functions, and how the larger image is wrong.
struct Down {
  static constexpr const auto& kTable = kPyramidDown;
  static constexpr auto* kQuery = nuqiPyrDownGetBufSize_Gauss5x5;
  template <class Src, class Dst>
  static bool sizes_match(Src src, Dst dst) noexcept {
    return 2 * dst.width() == src.width() && 2 * dst.height() == src.height();
  }
  template <class Src>
  static Outcome fault(Src src) noexcept {
    return ((src.width() | src.height()) & 1) != 0 ? kOddSize : kNotHalf;
  }
};
struct Up {
  static constexpr const auto& kTable = kPyramidUp;
  static constexpr auto* kQuery = nuqiPyrUpGetBufSize_Gauss5x5;
  template <class Src, class Dst>
  static bool sizes_match(Src src, Dst dst) noexcept {
    return dst.width() == 2 * src.width() && dst.height() == 2 * src.height();
  }
  template <class Src>
  static Outcome fault(Src /*src*/) noexcept {
    return kNotTwice;
  }
};

template <class Direction, class Dst, class Src>
[[gnu::noinline, gnu::cold]] Outcome check_level(const Src& src,
                                                 std::remove_reference_t<Dst>& dst) noexcept {
  const auto in = as_input(src);
  const auto out = as_output<Dst>(dst);
  if (in.empty()) return kEmpty;
  if (!fits(in, out)) return kTooLarge;
  if (!Direction::sizes_match(in, out)) return Direction::fault(in);
  return check_apart(out, in);
}

template <class Direction, class Dst, class Src>
[[gnu::always_inline]] inline Outcome pyramid_level(const Src& src,
                                                    std::remove_reference_t<Dst>& dst,
                                                    Scratch& scratch) noexcept {
  using T = ElementOf<const Src>;
  constexpr int kChannels = kChannelsOf<const Src>;
  static_assert(std::is_same_v<ElementOf<std::remove_reference_t<Dst>>, T> &&
                    kChannelsOf<std::remove_reference_t<Dst>> == kChannels,
                "nuqi: a pyramid's levels have the same elements and channels");
  const auto in = as_input(src);
  const auto out = as_output<Dst>(dst);
  if (!ready(in) || !fits(out) || !Direction::sizes_match(in, out) || !far_apart(in, out)) {
    if (const Outcome bad = check_level<Direction, Dst>(src, dst); bad.failed()) return bad;
  }
  const auto width = static_cast<std::int32_t>(in.width());
  const auto query = Direction::kQuery;
  void* const buffer = scratch.get_for(
      {reinterpret_cast<void (*)()>(query), static_cast<std::uint64_t>(width),
       kDataType<T> * 16 + kChannels},
      [=] {
        std::int32_t bytes = 0;
        const bool known = query(width, kDataType<T>, kChannels, &bytes) == StatusOk;
        return known ? static_cast<std::size_t>(bytes) : 0;
      });
  if (buffer == nullptr) return kNoScratch;
  return flat(find<T, kChannels>(Direction::kTable), buffer)(roi_of(in), whole(in), whole(out));
}

}  // namespace detail

/// The next smaller level of a Gaussian pyramid: smoothed by 1 4 6 4 1 along both directions, even columns and
/// rows kept. uint8_t, int8_t or float, one channel or three; src of even width and height, dst of half of both,
/// apart from it. Throws Error.
template <class Source, class Output>
void pyramid_down(const Source& src, Output&& dst, Scratch& scratch) {
  detail::require(detail::pyramid_level<detail::Down, Output>(src, dst, scratch), "pyramid_down",
                  src, dst);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_down(const Source& src, Output&& dst, Scratch& scratch,
                                      std::nothrow_t /*tag*/) noexcept {
  return detail::pyramid_level<detail::Down, Output>(src, dst, scratch).status;
}
template <class Source, class Output>
void pyramid_down(const Source& src, Output&& dst) {
  Scratch scratch;
  pyramid_down(src, std::forward<Output>(dst), scratch);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_down(const Source& src, Output&& dst,
                                      std::nothrow_t tag) noexcept {
  Scratch scratch;
  return pyramid_down(src, std::forward<Output>(dst), scratch, tag);
}

/// The next larger level: zeros between the pixels, smoothed by the same weights. dst has twice the width and
/// height of src, else as pyramid_down. Throws Error.
template <class Source, class Output>
void pyramid_up(const Source& src, Output&& dst, Scratch& scratch) {
  detail::require(detail::pyramid_level<detail::Up, Output>(src, dst, scratch), "pyramid_up", src,
                  dst);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_up(const Source& src, Output&& dst, Scratch& scratch,
                                    std::nothrow_t /*tag*/) noexcept {
  return detail::pyramid_level<detail::Up, Output>(src, dst, scratch).status;
}
template <class Source, class Output>
void pyramid_up(const Source& src, Output&& dst) {
  Scratch scratch;
  pyramid_up(src, std::forward<Output>(dst), scratch);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_up(const Source& src, Output&& dst, std::nothrow_t tag) noexcept {
  Scratch scratch;
  return pyramid_up(src, std::forward<Output>(dst), scratch, tag);
}

}  // namespace nuqi

#endif

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

/// `query` gives the bytes that `function` works in. The images are known to fit.
template <class T, int C, class Function, class Query>
[[gnu::always_inline]] inline Outcome pyramid_level(View<const T, C> src, View<T, C> dst,
                                                    Function* function, Query* query,
                                                    Scratch& scratch) noexcept {
  if (!far_apart(dst, src) && overlap(dst, src)) return kOverlap;
  std::int32_t bytes = 0;
  const StatusCode status = query(static_cast<std::int32_t>(src.width()), kDataType<T>, C, &bytes);
  if (status != StatusOk) return kNoScratch;
  void* const buffer = scratch.get(static_cast<std::size_t>(bytes));
  if (buffer == nullptr) return kNoScratch;
  const Part<const T> from = whole(src);
  const Part<T> to = whole(dst);
  return function(from.data, from.step, to.data, to.step, roi_of(src), buffer);
}

template <class T, class D, int C>
[[gnu::always_inline]] inline Outcome pyramid_down(View<const T, C> src, View<D, C> dst,
                                                   Scratch& scratch) noexcept {
  static_assert(std::is_same_v<T, D>, "nuqi: pyramid_down writes elements of its input's type");
  if (src.empty()) return kEmpty;
  if (((src.width() | src.height()) & 1) != 0) return kOddSize;
  if (!fits(src, dst)) return kTooLarge;
  if (2 * dst.width() != src.width() || 2 * dst.height() != src.height()) return kNotHalf;
  return pyramid_level<T, C>(src, dst, find<T, C>(kPyramidDown), nuqiPyrDownGetBufSize_Gauss5x5,
                             scratch);
}

template <class T, class D, int C>
[[gnu::always_inline]] inline Outcome pyramid_up(View<const T, C> src, View<D, C> dst,
                                                 Scratch& scratch) noexcept {
  static_assert(std::is_same_v<T, D>, "nuqi: pyramid_up writes elements of its input's type");
  if (src.empty()) return kEmpty;
  if (!fits(src, dst)) return kTooLarge;
  if (dst.width() != 2 * src.width() || dst.height() != 2 * src.height()) return kNotTwice;
  return pyramid_level<T, C>(src, dst, find<T, C>(kPyramidUp), nuqiPyrUpGetBufSize_Gauss5x5,
                             scratch);
}

}  // namespace detail

/// The next smaller level of a Gaussian pyramid: smoothed by 1 4 6 4 1 along both directions, even columns and
/// rows kept. uint8_t, int8_t or float, one channel or three; src of even width and height, dst of half of both,
/// apart from it. Throws Error.
template <class Source, class Output>
void pyramid_down(const Source& src, Output&& dst, Scratch& scratch) {
  detail::require(
      detail::pyramid_down(detail::as_input(src), detail::as_output<Output>(dst), scratch),
      "pyramid_down", src, dst);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_down(const Source& src, Output&& dst, Scratch& scratch,
                                      std::nothrow_t /*tag*/) noexcept {
  return detail::pyramid_down(detail::as_input(src), detail::as_output<Output>(dst), scratch)
      .status;
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
  detail::require(
      detail::pyramid_up(detail::as_input(src), detail::as_output<Output>(dst), scratch),
      "pyramid_up", src, dst);
}
template <class Source, class Output>
[[nodiscard]] StatusCode pyramid_up(const Source& src, Output&& dst, Scratch& scratch,
                                    std::nothrow_t /*tag*/) noexcept {
  return detail::pyramid_up(detail::as_input(src), detail::as_output<Output>(dst), scratch).status;
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

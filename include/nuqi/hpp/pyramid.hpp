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

/// `query` gives the bytes that `function` works in.
template <class T, int C, class Function, class Query>
Outcome pyramid_level(View<const T, C> src, View<T, C> dst, Function* function, Query* query,
                      Scratch& scratch) noexcept {
  if (overlap(dst, src)) return kOverlap;
  std::int32_t bytes = 0;
  if (!fits(src, dst) ||
      query(static_cast<std::int32_t>(src.width()), kDataType<T>, C, &bytes) != StatusOk) {
    return kTooLarge;
  }
  void* const buffer = scratch.get(static_cast<std::size_t>(bytes));
  if (buffer == nullptr) return kNoMemory;
  return function(src.data(), static_cast<std::int32_t>(src.step()), dst.data(),
                  static_cast<std::int32_t>(dst.step()), roi_of(src), buffer);
}

template <class T, class D, int C>
Outcome pyramid_down(View<const T, C> src, View<D, C> dst, Scratch& scratch) noexcept {
  static_assert(std::is_same_v<T, D>, "nuqi: pyramid_down writes elements of its input's type");
  if (src.empty()) return kEmpty;
  if (src.width() % 2 != 0 || src.height() % 2 != 0) return kOddSize;
  if (dst.width() != src.width() / 2 || dst.height() != src.height() / 2) return kNotHalf;
  return pyramid_level<T, C>(src, dst, find<T, C>(kPyramidDown), nuqiPyrDownGetBufSize_Gauss5x5,
                             scratch);
}

template <class T, class D, int C>
Outcome pyramid_up(View<const T, C> src, View<D, C> dst, Scratch& scratch) noexcept {
  static_assert(std::is_same_v<T, D>, "nuqi: pyramid_up writes elements of its input's type");
  if (src.empty()) return kEmpty;
  if (dst.width() % 2 != 0 || dst.height() % 2 != 0) return kNotTwice;
  if (dst.width() / 2 != src.width() || dst.height() / 2 != src.height()) return kNotTwice;
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

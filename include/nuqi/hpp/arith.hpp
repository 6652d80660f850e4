/// Accumulation and absolute difference.
#ifndef NUQI_HPP_ARITH_HPP
#define NUQI_HPP_ARITH_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <new>
#include <type_traits>

namespace nuqi {

// ---- Accumulation

namespace detail {

inline constexpr auto kAdd =
    overloads(fn<std::uint8_t, 1>(nuqiAdd_8u32f_C1IR), fn<std::int8_t, 1>(nuqiAdd_8s32f_C1IR),
              fn<float, 1>(nuqiAdd_32f_C1IR));
inline constexpr auto kAddMasked =
    overloads(fn<std::uint8_t, 1>(nuqiAdd_8u32f_C1IMR), fn<std::int8_t, 1>(nuqiAdd_8s32f_C1IMR),
              fn<float, 1>(nuqiAdd_32f_C1IMR));
inline constexpr auto kAddSquare =
    overloads(fn<std::uint8_t, 1>(nuqiAddSquare_8u32f_C1IR),
              fn<std::int8_t, 1>(nuqiAddSquare_8s32f_C1IR), fn<float, 1>(nuqiAddSquare_32f_C1IR));
inline constexpr auto kAddSquareMasked =
    overloads(fn<std::uint8_t, 1>(nuqiAddSquare_8u32f_C1IMR),
              fn<std::int8_t, 1>(nuqiAddSquare_8s32f_C1IMR), fn<float, 1>(nuqiAddSquare_32f_C1IMR));
inline constexpr auto kAddProduct =
    overloads(fn<std::uint8_t, 1>(nuqiAddProduct_8u32f_C1IR),
              fn<std::int8_t, 1>(nuqiAddProduct_8s32f_C1IR), fn<float, 1>(nuqiAddProduct_32f_C1IR));
inline constexpr auto kAddProductMasked = overloads(fn<std::uint8_t, 1>(nuqiAddProduct_8u32f_C1IMR),
                                                    fn<std::int8_t, 1>(nuqiAddProduct_8s32f_C1IMR),
                                                    fn<float, 1>(nuqiAddProduct_32f_C1IMR));
inline constexpr auto kAddWeighted = overloads(fn<std::uint8_t, 1>(nuqiAddWeighted_8u32f_C1IR),
                                               fn<std::int8_t, 1>(nuqiAddWeighted_8s32f_C1IR),
                                               fn<float, 1>(nuqiAddWeighted_32f_C1IR));
inline constexpr auto kAddWeightedMasked = overloads(
    fn<std::uint8_t, 1>(nuqiAddWeighted_8u32f_C1IMR),
    fn<std::int8_t, 1>(nuqiAddWeighted_8s32f_C1IMR), fn<float, 1>(nuqiAddWeighted_32f_C1IMR));

/// Acc is the caller's argument, so that temporary images are told from others.
template <class Acc, class Call, class... Inputs>
[[gnu::always_inline]] inline Outcome accumulate(Call call, std::remove_reference_t<Acc>& acc,
                                                 const Inputs&... inputs) noexcept {
  expect_output<float, 1, Acc>();
  return write<Where::apart, Acc>(call, acc, inputs...);
}

template <class NotAMask, class Acc>
using IfNoMask =
    std::enable_if_t<!std::is_same_v<NotAMask, Mask> && !std::is_arithmetic_v<std::decay_t<Acc>> &&
                         !std::is_same_v<std::decay_t<Acc>, std::nothrow_t>,
                     StatusCode>;
/// What is called with an image in the place of a mask: a sentence for the compiler to say.
template <class NotAMask>
constexpr StatusCode expect_mask() noexcept {
  static_assert(std::is_same_v<NotAMask, Mask>,
                "nuqi: an image stands where a mask belongs: nuqi::Mask(image) makes it one");
  return StatusBadArg;
}

}  // namespace detail

/// acc += src. Sources uint8_t, int8_t or float, accumulator float, one channel; all of one size, the accumulator
/// apart from the others. Each operation rounds once, in single precision. With a mask, pixels that it does not
/// select keep their value; -0 becomes +0. An accumulator of running sums, of squares and of products is what
/// means, variances and covariances of frames are made of.
template <class Src, class Acc>
void accumulate(const Src& src, Acc&& acc) {
  detail::require(
      detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAdd)), acc, src),
      "accumulate", src, acc);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate(const Src& src, Acc&& acc, std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAdd)), acc, src)
      .status;
}
template <class Src, class Acc>
void accumulate(const Src& src, const Mask& mask, Acc&& acc) {
  detail::require(detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddMasked)),
                                          acc, src, mask),
                  "accumulate", src, mask, acc);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate(const Src& src, const Mask& mask, Acc&& acc,
                                    std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddMasked)), acc, src,
                                 mask)
      .status;
}
template <class Src, class NotAMask, class Acc, class... More>
detail::IfNoMask<NotAMask, Acc> accumulate(const Src&, const NotAMask&, Acc&&, const More&...) {
  return detail::expect_mask<NotAMask>();
}

/// acc += src * src. As accumulate().
template <class Src, class Acc>
void accumulate_square(const Src& src, Acc&& acc) {
  detail::require(
      detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddSquare)), acc, src),
      "accumulate_square", src, acc);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate_square(const Src& src, Acc&& acc,
                                           std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddSquare)), acc, src)
      .status;
}
template <class Src, class Acc>
void accumulate_square(const Src& src, const Mask& mask, Acc&& acc) {
  detail::require(
      detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddSquareMasked)), acc,
                              src, mask),
      "accumulate_square", src, mask, acc);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate_square(const Src& src, const Mask& mask, Acc&& acc,
                                           std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddSquareMasked)), acc,
                                 src, mask)
      .status;
}
template <class Src, class NotAMask, class Acc, class... More>
detail::IfNoMask<NotAMask, Acc> accumulate_square(const Src&, const NotAMask&, Acc&&,
                                                  const More&...) {
  return detail::expect_mask<NotAMask>();
}

/// acc += a * b, of two images of one type. As accumulate().
template <class A, class B, class Acc>
void accumulate_product(const A& a, const B& b, Acc&& acc) {
  detail::expect_alike<const A, const B>();
  detail::require(
      detail::accumulate<Acc>(detail::flat(detail::find_for<A>(detail::kAddProduct)), acc, a, b),
      "accumulate_product", a, b, acc);
}
template <class A, class B, class Acc>
[[nodiscard]] StatusCode accumulate_product(const A& a, const B& b, Acc&& acc,
                                            std::nothrow_t /*tag*/) noexcept {
  detail::expect_alike<const A, const B>();
  return detail::accumulate<Acc>(detail::flat(detail::find_for<A>(detail::kAddProduct)), acc, a, b)
      .status;
}
template <class A, class B, class Acc>
void accumulate_product(const A& a, const B& b, const Mask& mask, Acc&& acc) {
  detail::expect_alike<const A, const B>();
  detail::require(
      detail::accumulate<Acc>(detail::flat(detail::find_for<A>(detail::kAddProductMasked)), acc, a,
                              b, mask),
      "accumulate_product", a, b, mask, acc);
}
template <class A, class B, class Acc>
[[nodiscard]] StatusCode accumulate_product(const A& a, const B& b, const Mask& mask, Acc&& acc,
                                            std::nothrow_t /*tag*/) noexcept {
  detail::expect_alike<const A, const B>();
  return detail::accumulate<Acc>(detail::flat(detail::find_for<A>(detail::kAddProductMasked)), acc,
                                 a, b, mask)
      .status;
}
template <class A, class B, class NotAMask, class Acc, class... More>
detail::IfNoMask<NotAMask, Acc> accumulate_product(const A&, const B&, const NotAMask&, Acc&&,
                                                   const More&...) {
  return detail::expect_mask<NotAMask>();
}

/// acc += alpha * (src - acc): a running average that forgets; alpha is any number, mostly from 0 to 1. As
/// accumulate(); where a mask does not select, alpha is 0, so that an infinite difference becomes NaN there too.
template <class Src, class Acc>
void accumulate_weighted(const Src& src, Acc&& acc, float alpha) {
  detail::require(detail::accumulate<Acc>(
                      detail::flat(detail::find_for<Src>(detail::kAddWeighted), alpha), acc, src),
                  "accumulate_weighted", src, acc, alpha);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate_weighted(const Src& src, Acc&& acc, float alpha,
                                             std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(detail::flat(detail::find_for<Src>(detail::kAddWeighted), alpha),
                                 acc, src)
      .status;
}
template <class Src, class Acc>
void accumulate_weighted(const Src& src, const Mask& mask, Acc&& acc, float alpha) {
  detail::require(
      detail::accumulate<Acc>(
          detail::flat(detail::find_for<Src>(detail::kAddWeightedMasked), alpha), acc, src, mask),
      "accumulate_weighted", src, mask, acc, alpha);
}
template <class Src, class Acc>
[[nodiscard]] StatusCode accumulate_weighted(const Src& src, const Mask& mask, Acc&& acc,
                                             float alpha, std::nothrow_t /*tag*/) noexcept {
  return detail::accumulate<Acc>(
             detail::flat(detail::find_for<Src>(detail::kAddWeightedMasked), alpha), acc, src, mask)
      .status;
}
template <class Src, class NotAMask, class Acc, class... More>
detail::IfNoMask<NotAMask, Acc> accumulate_weighted(const Src&, const NotAMask&, Acc&&,
                                                    const More&...) {
  return detail::expect_mask<NotAMask>();
}

// ---- Absolute difference

namespace detail {

inline constexpr auto kAbsDiff =
    overloads(fn<std::uint8_t, 1>(nuqiAbsDiff_8u_C1R), fn<float, 1>(nuqiAbsDiff_32f_C1R));
inline constexpr auto kAbsDiffC =
    overloads(fn<std::uint8_t, 1>(nuqiAbsDiffC_8u_C1R), fn<float, 1>(nuqiAbsDiffC_32f_C1R));

/// A number held to the range of bytes, whatever its type.
template <class Number>
constexpr std::int32_t to_byte(Number number) noexcept {
  static_assert(std::is_integral_v<Number>,
                "nuqi: the difference of integers from a number takes an integer");
  if constexpr (std::is_signed_v<Number>) {
    if (number < 0) return 0;
  }
  return static_cast<std::uintmax_t>(number) > 255 ? 255 : static_cast<std::int32_t>(number);
}

template <class Dst, class A, class B>
[[gnu::always_inline]] inline Outcome abs_diff(const A& a, const B& b,
                                               std::remove_reference_t<Dst>& dst) noexcept {
  if constexpr (!std::is_arithmetic_v<B>) {
    expect_alike<const A, const B, std::remove_reference_t<Dst>>();
    return write<Where::in_place, Dst>(flat(find_for<A>(kAbsDiff)), dst, a, b);
  } else {
    expect_alike<const A, std::remove_reference_t<Dst>>();
    auto* const function = find_for<A>(kAbsDiffC);
    if constexpr (std::is_same_v<ElementOf<const A>, float>) {
      return write<Where::in_place, Dst>(flat(function, static_cast<float>(b)), dst, a);
    } else {
      return write<Where::in_place, Dst>(flat(function, to_byte(b)), dst, a);
    }
  }
}

}  // namespace detail

/// dst = |a - b|, where b is an image, or a number for all pixels. One channel of uint8_t or float, all of one type
/// and size; numbers are held to 0..255 for uint8_t. Exact, or one rounding. dst may be a or b.
template <class A, class B, class Dst>
[[nodiscard]] StatusCode abs_diff(const A& a, const B& b, Dst&& dst,
                                  std::nothrow_t /*tag*/) noexcept {
  return detail::abs_diff<Dst>(a, b, dst).status;
}
template <class A, class B, class Dst>
void abs_diff(const A& a, const B& b, Dst&& dst) {
  detail::require(detail::abs_diff<Dst>(a, b, dst), "abs_diff", a, b, dst);
}

}  // namespace nuqi

#endif

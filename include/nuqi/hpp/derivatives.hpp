/// The fixed 3x3 derivatives: Sobel's and Scharr's.
#ifndef NUQI_HPP_DERIVATIVES_HPP
#define NUQI_HPP_DERIVATIVES_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <new>
#include <type_traits>

namespace nuqi {

/// Which derivative sobel3x3() takes; positive where values grow to the right, or downwards.
enum class Derivative { dx, dy, d2x, d2y, dxdy };
/// The same for images whose bottom row comes first: dy and dxdy are negated.
enum class RowOrder { top_down, bottom_up };

namespace detail {

inline constexpr auto kSobel3x3Dx =
    overloads(fn<std::uint8_t, 1>(nuqiSobel3x3_Dx_8u16s_C1R),
              fn<std::int8_t, 1>(nuqiSobel3x3_Dx_8s16s_C1R), fn<float, 1>(nuqiSobel3x3_Dx_32f_C1R));
inline constexpr auto kSobel3x3Dy =
    overloads(fn<std::uint8_t, 1>(nuqiSobel3x3_Dy_8u16s_C1R),
              fn<std::int8_t, 1>(nuqiSobel3x3_Dy_8s16s_C1R), fn<float, 1>(nuqiSobel3x3_Dy_32f_C1R));
inline constexpr auto kSobel3x3D2x = overloads(fn<std::uint8_t, 1>(nuqiSobel3x3_D2x_8u16s_C1R),
                                               fn<std::int8_t, 1>(nuqiSobel3x3_D2x_8s16s_C1R));
inline constexpr auto kSobel3x3D2y = overloads(fn<std::uint8_t, 1>(nuqiSobel3x3_D2y_8u16s_C1R),
                                               fn<std::int8_t, 1>(nuqiSobel3x3_D2y_8s16s_C1R));
inline constexpr auto kSobel3x3DxDy = overloads(fn<std::uint8_t, 1>(nuqiSobel3x3_DxDy_8u16s_C1R),
                                                fn<std::int8_t, 1>(nuqiSobel3x3_DxDy_8s16s_C1R));
inline constexpr auto kScharrDx =
    overloads(fn<std::uint8_t, 1>(nuqiScharr_Dx_8u16s_C1R),
              fn<std::int8_t, 1>(nuqiScharr_Dx_8s16s_C1R), fn<float, 1>(nuqiScharr_Dx_32f_C1R));
inline constexpr auto kScharrDy =
    overloads(fn<std::uint8_t, 1>(nuqiScharr_Dy_8u16s_C1R),
              fn<std::int8_t, 1>(nuqiScharr_Dy_8s16s_C1R), fn<float, 1>(nuqiScharr_Dy_32f_C1R));

inline constexpr Outcome kTooLow{StatusBadSize, "a 3x3 derivative needs two rows or more"};
inline constexpr Outcome kNoDerivative{StatusUnsupported,
                                       "there is no such derivative of these elements"};

/// Checks and calls call(src, srcStep, dst, dstStep, roi).
template <class Call, class Src, class Dst>
[[gnu::always_inline]] inline Outcome derive(Call call, Src src, Dst dst) noexcept {
  if (!ready(src, dst) || src.height() < 2 || !far_apart(src, dst)) {
    if (const Outcome bad = check_sizes(src, dst); bad.failed()) return bad;
    if (src.height() < 2) return kTooLow;
    if (!fits(src, dst)) return kTooLarge;
    if (const Outcome bad = check_apart(dst, src); bad.failed()) return bad;
  }
  return call(src.data(), static_cast<std::int32_t>(src.step()), dst.data(),
              static_cast<std::int32_t>(dst.step()), roi_of(src));
}

/// What derivatives are written to: int16_t for bytes, float for floats.
template <class Src>
using DerivativeOf =
    std::conditional_t<std::is_same_v<ElementOf<const Src>, float>, float, std::int16_t>;

template <class Table, class Src, class Dst>
Outcome derive_second(const Table& table, Src src, Dst dst) noexcept {
  if constexpr (kHolds<typename Src::element, 1, Table>) {
    return derive(find<typename Src::element, 1>(table), src, dst);
  } else {
    return kNoDerivative;
  }
}

template <class Src, class Dst>
Outcome sobel3x3(Src src, Derivative which, Dst dst, RowOrder order) noexcept {
  using T = typename Src::element;
  const std::int32_t bottom_up = order == RowOrder::bottom_up ? 1 : 0;
  const auto along_rows = [&](auto* function) {
    return derive(
        [=](auto* from, std::int32_t from_step, auto* to, std::int32_t to_step, RoiSize roi) {
          return function(from, from_step, to, to_step, bottom_up, roi);
        },
        src, dst);
  };
  switch (which) {
    case Derivative::dx: return derive(find<T, Src::channels()>(kSobel3x3Dx), src, dst);
    case Derivative::dy: return along_rows(find<T, Src::channels()>(kSobel3x3Dy));
    case Derivative::d2x: return derive_second(kSobel3x3D2x, src, dst);
    case Derivative::d2y: return derive_second(kSobel3x3D2y, src, dst);
    case Derivative::dxdy:
      if constexpr (kHolds<T, 1, decltype(kSobel3x3DxDy)>) {
        return along_rows(find<T, 1>(kSobel3x3DxDy));
      } else {
        return kNoDerivative;
      }
  }
  return kNoDerivative;
}

template <class Src, class Dst>
Outcome scharr(Src src, Derivative which, Dst dst, int shift, RowOrder order) noexcept {
  using T = typename Src::element;
  const std::int32_t bottom_up = order == RowOrder::bottom_up ? 1 : 0;
  if (which == Derivative::dx) {
    auto* const function = find<T, Src::channels()>(kScharrDx);
    return derive(
        [=](auto* from, std::int32_t from_step, auto* to, std::int32_t to_step, RoiSize roi) {
          return function(from, from_step, to, to_step, roi, static_cast<std::int32_t>(shift));
        },
        src, dst);
  }
  if (which != Derivative::dy) return kNoDerivative;
  auto* const function = find<T, Src::channels()>(kScharrDy);
  return derive(
      [=](auto* from, std::int32_t from_step, auto* to, std::int32_t to_step, RoiSize roi) {
        return function(from, from_step, to, to_step, bottom_up, roi,
                        static_cast<std::int32_t>(shift));
      },
      src, dst);
}

}  // namespace detail

/// One derivative of an image of uint8_t or int8_t (to int16_t, exact) or of float (to float; dx and dy only), by
/// Sobel's weights. Pixels beyond an edge equal the edge pixel. Two rows or more; dst lies apart.
template <class Src, class Dst>
[[nodiscard]] StatusCode sobel3x3(const Src& src, Derivative which, Dst&& dst, RowOrder order,
                                  std::nothrow_t /*tag*/) noexcept {
  detail::expect_output<detail::DerivativeOf<Src>, 1, std::remove_reference_t<Dst>>();
  return detail::sobel3x3(detail::as_input(src), which, detail::as_output<Dst>(dst), order).status;
}
template <class Src, class Dst>
[[nodiscard]] StatusCode sobel3x3(const Src& src, Derivative which, Dst&& dst,
                                  std::nothrow_t tag) noexcept {
  return sobel3x3(src, which, dst, RowOrder::top_down, tag);
}
template <class Src, class Dst>
void sobel3x3(const Src& src, Derivative which, Dst&& dst, RowOrder order = RowOrder::top_down) {
  detail::expect_output<detail::DerivativeOf<Src>, 1, std::remove_reference_t<Dst>>();
  detail::require(
      detail::sobel3x3(detail::as_input(src), which, detail::as_output<Dst>(dst), order),
      "sobel3x3", src, static_cast<int>(which), dst);
}

/// The first derivative along x or y by Scharr's weights, which are nearly the same in all directions; `shift`, 0 or
/// more, divides by 2 to its power. All else as for sobel3x3().
template <class Src, class Dst>
[[nodiscard]] StatusCode scharr(const Src& src, Derivative which, Dst&& dst, int shift,
                                RowOrder order, std::nothrow_t /*tag*/) noexcept {
  detail::expect_output<detail::DerivativeOf<Src>, 1, std::remove_reference_t<Dst>>();
  return detail::scharr(detail::as_input(src), which, detail::as_output<Dst>(dst), shift, order)
      .status;
}
template <class Src, class Dst>
[[nodiscard]] StatusCode scharr(const Src& src, Derivative which, Dst&& dst,
                                std::nothrow_t tag) noexcept {
  return scharr(src, which, dst, 0, RowOrder::top_down, tag);
}
template <class Src, class Dst>
void scharr(const Src& src, Derivative which, Dst&& dst, int shift = 0,
            RowOrder order = RowOrder::top_down) {
  detail::expect_output<detail::DerivativeOf<Src>, 1, std::remove_reference_t<Dst>>();
  detail::require(
      detail::scharr(detail::as_input(src), which, detail::as_output<Dst>(dst), shift, order),
      "scharr", src, static_cast<int>(which), dst);
}

}  // namespace nuqi

#endif

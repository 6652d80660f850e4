/// The fixed 3x3 derivatives: Sobel's and Scharr's.
#ifndef NUQI_HPP_DERIVATIVES_HPP
#define NUQI_HPP_DERIVATIVES_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <cstdint>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

namespace nuqi {

/// Which derivative sobel3x3() and scharr() take; positive where values grow to the right, or downwards. As a
/// constant, Derivative::dx, one that the image's elements do not have is refused by the compiler; a variable
/// `Derivative which` may hold any, and is looked at when the operation runs.
class Derivative {
 public:
  enum class Kind { dx, dy, d2x, d2y, dxdy };
  template <Kind kKind>
  using Constant = std::integral_constant<Kind, kKind>;

  static constexpr Constant<Kind::dx> dx{};      ///< the first along x
  static constexpr Constant<Kind::dy> dy{};      ///< the first along y
  static constexpr Constant<Kind::d2x> d2x{};    ///< the second along x
  static constexpr Constant<Kind::d2y> d2y{};    ///< the second along y
  static constexpr Constant<Kind::dxdy> dxdy{};  ///< the mixed one

  constexpr Derivative(Kind kind) noexcept : kind_(kind) {}  // NOLINT(google-explicit-constructor)
  template <Kind kKind>
  constexpr Derivative(Constant<kKind> /*which*/) noexcept  // NOLINT(google-explicit-constructor)
      : kind_(kKind) {}
  constexpr operator Kind() const noexcept { return kind_; }  // NOLINT(google-explicit-constructor)

  /// "dx"
  [[nodiscard]] std::string text() const {
    switch (kind_) {
      case Kind::dx: return "dx";
      case Kind::dy: return "dy";
      case Kind::d2x: return "d2x";
      case Kind::d2y: return "d2y";
      case Kind::dxdy: return "dxdy";
    }
    return "no derivative";
  }

 private:
  Kind kind_;
};
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

using DerivativeKind = Derivative::Kind;

/// The functions of each derivative.
struct OfSobel {
  template <DerivativeKind kKind>
  static constexpr const auto& table() noexcept {
    if constexpr (kKind == DerivativeKind::dx) return kSobel3x3Dx;
    if constexpr (kKind == DerivativeKind::dy) return kSobel3x3Dy;
    if constexpr (kKind == DerivativeKind::d2x) return kSobel3x3D2x;
    if constexpr (kKind == DerivativeKind::d2y) return kSobel3x3D2y;
    if constexpr (kKind == DerivativeKind::dxdy) return kSobel3x3DxDy;
  }
};
struct OfScharr {
  template <DerivativeKind kKind>
  static constexpr const auto& table() noexcept {
    if constexpr (kKind == DerivativeKind::dx) return kScharrDx;
    if constexpr (kKind == DerivativeKind::dy) return kScharrDy;
    if constexpr (kKind != DerivativeKind::dx && kKind != DerivativeKind::dy) return kNoFunctions;
  }
};

template <class Weights, DerivativeKind kKind, class Src>
inline constexpr bool kHasDerivative = kHolds<
    ElementOf<const Src>, kChannelsOf<const Src>,
    std::remove_const_t<std::remove_reference_t<decltype(Weights::template table<kKind>())>>>;

/// What derivatives are written to: int16_t for bytes, float for floats.
template <class Src>
using DerivativeOf =
    std::conditional_t<std::is_same_v<ElementOf<const Src>, float>, float, std::int16_t>;

/// `shift` is the last argument of Scharr's functions.
template <class Weights, DerivativeKind kKind, class Dst, class Src, class... Shift>
[[gnu::always_inline]] inline Outcome derive(const Src& src, std::remove_reference_t<Dst>& dst,
                                             RowOrder order, Shift... shift) noexcept {
  expect_output<DerivativeOf<Src>, 1, std::remove_reference_t<Dst>>();
  if (const Outcome bad = check_whole<Dst>(dst, src); bad.failed()) return bad;
  const auto in = as_input(src);
  const auto from = whole(in);
  const auto to = whole(as_output<Dst>(dst));
  if (in.height() < 2) return kTooLow;
  auto* const function = find_for<Src>(Weights::template table<kKind>());
  if constexpr (kKind == DerivativeKind::dy || kKind == DerivativeKind::dxdy) {
    return function(from.data, from.step, to.data, to.step, order == RowOrder::bottom_up ? 1 : 0,
                    roi_of(in), shift...);
  } else {
    return function(from.data, from.step, to.data, to.step, roi_of(in), shift...);
  }
}

/// A constant names a function; what a variable holds is found out now.
template <class Weights, class Dst, DerivativeKind kKind, class Src, class... Shift>
[[gnu::always_inline]] inline Outcome derive(Derivative::Constant<kKind> /*which*/, const Src& src,
                                             std::remove_reference_t<Dst>& dst, RowOrder order,
                                             Shift... shift) noexcept {
  static_assert(kHasDerivative<Weights, kKind, Src>,
                "nuqi: these elements have no such derivative: scharr knows dx and dy only, "
                "sobel3x3 of float too; second and mixed ones are those of uint8_t and int8_t");
  if constexpr (kHasDerivative<Weights, kKind, Src>) {
    return derive<Weights, kKind, Dst>(src, dst, order, shift...);
  } else {
    return kNoDerivative;
  }
}
template <class Weights, class Dst, class Src, class... Shift>
Outcome derive(Derivative which, const Src& src, std::remove_reference_t<Dst>& dst, RowOrder order,
               Shift... shift) noexcept {
  Outcome outcome = kNoDerivative;
  const auto try_one = [&](auto one) {
    if constexpr (kHasDerivative<Weights, decltype(one)::value, Src>) {
      if (one() == which) outcome = derive<Weights, Dst>(one, src, dst, order, shift...);
    }
  };
  try_one(Derivative::dx), try_one(Derivative::dy), try_one(Derivative::d2x);
  try_one(Derivative::d2y), try_one(Derivative::dxdy);
  return outcome;
}

/// A constant or a variable; for all else a sentence.
template <class Which>
constexpr auto derivative(const Which& which) noexcept {
  constexpr bool kIsOne = std::is_convertible_v<const Which&, Derivative>;
  static_assert(
      kIsOne, "nuqi: behind the image comes the derivative: Derivative::dx, dy, d2x, d2y or dxdy");
  if constexpr (kIsOne) {
    return which;
  } else {
    return Derivative(Derivative::dx);
  }
}

}  // namespace detail

/// One derivative of an image of uint8_t or int8_t (to int16_t, exact) or of float (to float; dx and dy only), by
/// Sobel's weights: sobel3x3(image, Derivative::dx, result). Pixels beyond an edge equal the edge pixel. Two rows or
/// more; dst lies apart.
template <class Src, class Which, class Dst>
void sobel3x3(const Src& src, const Which& which, Dst&& dst, RowOrder order = RowOrder::top_down) {
  detail::require(detail::derive<detail::OfSobel, Dst>(detail::derivative(which), src, dst, order),
                  "sobel3x3", src, Derivative(detail::derivative(which)), dst);
}
template <class Src, class Which, class Dst>
[[nodiscard]] StatusCode sobel3x3(const Src& src, const Which& which, Dst&& dst, RowOrder order,
                                  std::nothrow_t /*tag*/) noexcept {
  return detail::derive<detail::OfSobel, Dst>(detail::derivative(which), src, dst, order).status;
}
template <class Src, class Which, class Dst>
[[nodiscard]] StatusCode sobel3x3(const Src& src, const Which& which, Dst&& dst,
                                  std::nothrow_t tag) noexcept {
  return sobel3x3(src, which, std::forward<Dst>(dst), RowOrder::top_down, tag);
}

/// The first derivative along x or y by Scharr's weights, which are nearly the same in all directions; `shift`, 0 or
/// more, divides by 2 to its power. All else as for sobel3x3().
template <class Src, class Which, class Dst>
void scharr(const Src& src, const Which& which, Dst&& dst, int shift = 0,
            RowOrder order = RowOrder::top_down) {
  detail::require(detail::derive<detail::OfScharr, Dst>(detail::derivative(which), src, dst, order,
                                                        std::int32_t{shift}),
                  "scharr", src, Derivative(detail::derivative(which)), dst, shift);
}
template <class Src, class Which, class Dst>
[[nodiscard]] StatusCode scharr(const Src& src, const Which& which, Dst&& dst, int shift,
                                RowOrder order, std::nothrow_t /*tag*/) noexcept {
  return detail::derive<detail::OfScharr, Dst>(detail::derivative(which), src, dst, order,
                                               std::int32_t{shift})
      .status;
}
template <class Src, class Which, class Dst>
[[nodiscard]] StatusCode scharr(const Src& src, const Which& which, Dst&& dst,
                                std::nothrow_t tag) noexcept {
  return scharr(src, which, std::forward<Dst>(dst), 0, RowOrder::top_down, tag);
}

}  // namespace nuqi

#endif

/// Corners: eigenvalues of the products of derivatives around each pixel.
#ifndef NUQI_HPP_CORNERS_HPP
#define NUQI_HPP_CORNERS_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/scratch.hpp>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace nuqi {

/// Sizes of a corner detector, 3, 5 or 7 each.
struct CornerSizes {
  int aperture = 3;  ///< of the Sobel derivatives
  int block = 3;     ///< of the window in which their products are summed
};

namespace detail {

inline constexpr auto kMinEigen =
    overloads(fn<std::uint8_t, 1>(nuqiMinEigenVal_8u32f_C1R),
              fn<std::int8_t, 1>(nuqiMinEigenVal_8s32f_C1R), fn<float, 1>(nuqiMinEigenVal_32f_C1R));
inline constexpr auto kEigenVectors = overloads(fn<std::uint8_t, 1>(nuqiEigenValsVecs_8u32f_C1R),
                                                fn<std::int8_t, 1>(nuqiEigenValsVecs_8s32f_C1R),
                                                fn<float, 1>(nuqiEigenValsVecs_32f_C1R));

inline constexpr auto* kMinEigenSize = nuqiMinEigenValGetSize;
inline constexpr auto* kEigenVectorsSize = nuqiEigenValsVecsGetSize;

template <class SizeQuery, class Function, class Src, class Dst>
Outcome find_corners(SizeQuery* query, Function* function, Src src, Dst dst, CornerSizes sizes,
                     Scratch& scratch) noexcept {
  if (!ready(src, dst) || !far_apart(src, dst)) {
    if (const Outcome bad = check_sizes(src, dst); bad.failed()) return bad;
    if (!fits(src, dst)) return kTooLarge;
    if (const Outcome bad = check_apart(dst, src); bad.failed()) return bad;
  }
  std::int32_t bytes = 0;
  const StatusCode status =
      query(static_cast<std::int32_t>(src.width()), sizes.aperture, sizes.block, &bytes);
  if (status != StatusOk)
    return {status, "the sizes are 3, 5 or 7 and the image at most 22369621 pixels wide"};
  void* const buffer = scratch.get(static_cast<std::size_t>(bytes));
  if (buffer == nullptr) return kNoMemory;
  return flat(function, static_cast<std::int32_t>(sizes.aperture),
              static_cast<std::int32_t>(sizes.block), buffer)(roi_of(src), whole(src), whole(dst));
}

}  // namespace detail

/// The smaller eigenvalue of the gradients around each pixel: how much of a corner it is. Sources uint8_t, int8_t or
/// float (scaled to 0..255), dst float, apart from the source. Scaled by 1 / (4^(aperture - 1) * 255 * block^2). Of
/// bytes, the window has the aperture's size. Pass a Scratch that is kept to allocate once only.
template <class Src, class Dst>
[[nodiscard]] StatusCode min_eigen(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch,
                                   std::nothrow_t /*tag*/) noexcept {
  detail::expect_output<float, 1, std::remove_reference_t<Dst>>();
  return detail::find_corners(detail::kMinEigenSize, detail::find_for<Src>(detail::kMinEigen),
                              detail::as_input(src), detail::as_output<Dst>(dst), sizes, scratch)
      .status;
}
template <class Src, class Dst>
void min_eigen(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch) {
  detail::expect_output<float, 1, std::remove_reference_t<Dst>>();
  detail::require(
      detail::find_corners(detail::kMinEigenSize, detail::find_for<Src>(detail::kMinEigen),
                           detail::as_input(src), detail::as_output<Dst>(dst), sizes, scratch),
      "min_eigen", src, dst, sizes.aperture, sizes.block);
}
template <class Src, class Dst>
void min_eigen(const Src& src, Dst&& dst, CornerSizes sizes = {}) {
  Scratch scratch;
  min_eigen(src, dst, sizes, scratch);
}

/// Both eigenvalues and the unit vectors of their directions: six channels l1 l2 x1 y1 x2 y2 of float. Zeros where the
/// smaller value is below a hundredth of the larger. All else as for min_eigen().
template <class Src, class Dst>
[[nodiscard]] StatusCode eigen_vectors(const Src& src, Dst&& dst, CornerSizes sizes,
                                       Scratch& scratch, std::nothrow_t /*tag*/) noexcept {
  detail::expect_output<float, 6, std::remove_reference_t<Dst>>();
  return detail::find_corners(detail::kEigenVectorsSize,
                              detail::find_for<Src>(detail::kEigenVectors), detail::as_input(src),
                              detail::as_output<Dst>(dst), sizes, scratch)
      .status;
}
template <class Src, class Dst>
void eigen_vectors(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch) {
  detail::expect_output<float, 6, std::remove_reference_t<Dst>>();
  detail::require(
      detail::find_corners(detail::kEigenVectorsSize, detail::find_for<Src>(detail::kEigenVectors),
                           detail::as_input(src), detail::as_output<Dst>(dst), sizes, scratch),
      "eigen_vectors", src, dst, sizes.aperture, sizes.block);
}
template <class Src, class Dst>
void eigen_vectors(const Src& src, Dst&& dst, CornerSizes sizes = {}) {
  Scratch scratch;
  eigen_vectors(src, dst, sizes, scratch);
}

}  // namespace nuqi

#endif

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

struct MinEigen {
  static constexpr const auto& kTable = kMinEigen;
  static constexpr auto* kQuery = nuqiMinEigenValGetSize;
  static constexpr int kChannels = 1;
};
struct EigenVectors {
  static constexpr const auto& kTable = kEigenVectors;
  static constexpr auto* kQuery = nuqiEigenValsVecsGetSize;
  static constexpr int kChannels = 6;
};

template <class Detector, class Dst, class Src>
[[gnu::always_inline]] inline Outcome find_corners(const Src& src,
                                                   std::remove_reference_t<Dst>& dst,
                                                   CornerSizes sizes, Scratch& scratch) noexcept {
  expect_output<float, Detector::kChannels, std::remove_reference_t<Dst>>();
  if (const Outcome bad = check_whole<Dst>(dst, src); bad.failed()) return bad;
  const auto in = as_input(src);
  const std::int32_t aperture = sizes.aperture, block = sizes.block;
  const auto width = static_cast<std::int32_t>(in.width());
  const auto query = Detector::kQuery;
  // The C function tells whether there are such sizes.
  const std::uint64_t of_sizes =
      std::uint64_t{static_cast<std::uint32_t>(aperture)} << 32 | static_cast<std::uint32_t>(block);
  StatusCode status = StatusOk;
  void* const buffer = scratch.get_for(
      {reinterpret_cast<void (*)()>(query), static_cast<std::uint64_t>(width), of_sizes}, [&] {
        std::int32_t bytes = 0;
        status = query(width, aperture, block, &bytes);
        return status == StatusOk ? static_cast<std::size_t>(bytes) : 0;
      });
  if (status != StatusOk)
    return {status, "the sizes are 3, 5 or 7 and the image at most 22369621 pixels wide"};
  if (buffer == nullptr) return kNoMemory;
  return flat(find_for<Src>(Detector::kTable), aperture, block, buffer)(roi_of(in), whole(in),
                                                                        whole(as_output<Dst>(dst)));
}

}  // namespace detail

/// The smaller eigenvalue of the gradients around each pixel: how much of a corner it is. Sources uint8_t, int8_t or
/// float (scaled to 0..255), dst float, apart from the source. Scaled by 1 / (4^(aperture - 1) * 255 * block^2). Of
/// bytes, the window has the aperture's size. Pass a Scratch that is kept to allocate once only.
template <class Src, class Dst>
[[nodiscard]] StatusCode min_eigen(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch,
                                   std::nothrow_t /*tag*/) noexcept {
  return detail::find_corners<detail::MinEigen, Dst>(src, dst, sizes, scratch).status;
}
template <class Src, class Dst>
void min_eigen(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch) {
  detail::require(detail::find_corners<detail::MinEigen, Dst>(src, dst, sizes, scratch),
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
  return detail::find_corners<detail::EigenVectors, Dst>(src, dst, sizes, scratch).status;
}
template <class Src, class Dst>
void eigen_vectors(const Src& src, Dst&& dst, CornerSizes sizes, Scratch& scratch) {
  detail::require(detail::find_corners<detail::EigenVectors, Dst>(src, dst, sizes, scratch),
                  "eigen_vectors", src, dst, sizes.aperture, sizes.block);
}
template <class Src, class Dst>
void eigen_vectors(const Src& src, Dst&& dst, CornerSizes sizes = {}) {
  Scratch scratch;
  eigen_vectors(src, dst, sizes, scratch);
}

}  // namespace nuqi

#endif

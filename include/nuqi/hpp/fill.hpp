/// Flood fills.
#ifndef NUQI_HPP_FILL_HPP
#define NUQI_HPP_FILL_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/overloads.hpp>
#include <nuqi/hpp/scratch.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace nuqi {

/// Which neighbours a pixel is connected to.
enum class Connectivity {
  four,  ///< those beside, above and below
  eight  ///< the diagonal ones, too
};

namespace detail {

// clang-format off
inline constexpr auto kFillFourEqual = overloads(
    fn<std::uint8_t, 1>(nuqiFloodFill_4Con_8u_C1IR),
    fn<float, 1>(nuqiFloodFill_4Con_32f_C1IR));
inline constexpr auto kFillEightEqual = overloads(
    fn<std::uint8_t, 1>(nuqiFloodFill_8Con_8u_C1IR),
    fn<float, 1>(nuqiFloodFill_8Con_32f_C1IR));
inline constexpr auto kFillFourGradient = overloads(
    fn<std::uint8_t, 1>(nuqiFloodFill_Grad4Con_8u_C1IR),
    fn<float, 1>(nuqiFloodFill_Grad4Con_32f_C1IR));
inline constexpr auto kFillEightGradient = overloads(
    fn<std::uint8_t, 1>(nuqiFloodFill_Grad8Con_8u_C1IR),
    fn<float, 1>(nuqiFloodFill_Grad8Con_32f_C1IR));
// clang-format on

inline constexpr Outcome kSeedOutside{StatusBadArg, "the seed lies outside the image"};

/// Images of uint8_t are painted with integers from 0 to 255, and steps between them are integers.
template <class T>
using FillNumber = std::conditional_t<std::is_same_v<T, float>, float, std::int32_t>;

/// The bytes that a fill works in. The queries compute modulo 2^32: beyond `kQueried` pixels they tell too
/// little.
inline std::int64_t fill_bytes(RoiSize roi, bool gradient) noexcept {
  constexpr std::int64_t kQueried = 178956970;
  const std::int64_t width = roi.width, height = roi.height;
  if (width * height > kQueried) {
    return 6 * width * height + (gradient ? (width + 2) * (height + 2) : 0);
  }
  std::int32_t bytes = 0;
  (gradient ? nuqiFloodFillGetSize_Grad : nuqiFloodFillGetSize)(roi, &bytes);
  return bytes;
}

/// `values` are those that the functions take behind the seed.
template <class Output, class Function, class... Values>
[[gnu::always_inline]] inline Outcome fill(Function* function, FillRegion& region,
                                           std::remove_reference_t<Output>& to, PixelPoint seed,
                                           Scratch& scratch, Values... values) noexcept {
  constexpr bool kGradient = sizeof...(values) > 1;
  const auto image = as_output<Output>(to);
  if (image.empty()) return kEmpty;
  constexpr std::int64_t kMostPixels = std::numeric_limits<std::ptrdiff_t>::max() / 16;
  if (!fits(image) || image.size() > kMostPixels) return kTooLarge;
  if (seed.x < 0 || seed.y < 0 || seed.x >= image.width() || seed.y >= image.height())
    return kSeedOutside;
  const RoiSize roi = roi_of(image);
  void* const buffer =
      scratch.get_for({reinterpret_cast<void (*)()>(fill_bytes), size_key(image), kGradient},
                      [=] { return static_cast<std::size_t>(fill_bytes(roi, kGradient)); });
  if (buffer == nullptr) return kNoScratch;
  return function(image.data(), static_cast<std::int32_t>(image.step()), roi, seed, values...,
                  &region, buffer);
}

template <class AnyImage>
using FillNumberOf = FillNumber<ElementOf<std::remove_reference_t<AnyImage>>>;

}  // namespace detail

/// Paints, in place, the connected pixels that equal the seed, and returns what was painted: their number and the
/// smallest rectangle around them. Where the seed has the value already nothing is painted: the area is 0. One
/// channel of uint8_t, painted with 0 to 255, or float. Throws Error.
template <class AnyImage>
FillRegion flood_fill(AnyImage&& image, PixelPoint seed, detail::FillNumberOf<AnyImage> value,
                      Connectivity connectivity, Scratch& scratch) {
  auto* const function =
      connectivity == Connectivity::four
          ? detail::find_for<std::remove_reference_t<AnyImage>>(detail::kFillFourEqual)
          : detail::find_for<std::remove_reference_t<AnyImage>>(detail::kFillEightEqual);
  FillRegion region{};
  detail::require(detail::fill<AnyImage>(function, region, image, seed, scratch, value),
                  "flood_fill", image, seed.x, seed.y, value);
  return region;
}
template <class AnyImage>
FillRegion flood_fill(AnyImage&& image, PixelPoint seed, detail::FillNumberOf<AnyImage> value,
                      Connectivity connectivity = Connectivity::four) {
  Scratch scratch;
  return flood_fill(std::forward<AnyImage>(image), seed, value, connectivity, scratch);
}

/// Paints the pixels reached from the seed in steps from a pixel p to a neighbour of p - lower to p + upper: the
/// region may drift far from the seed's value. lower and upper are 0 or more; of uint8_t their sum is at most 255.
/// A seed that has the value already is filled like any other. Throws Error.
template <class AnyImage>
FillRegion flood_fill(AnyImage&& image, PixelPoint seed, detail::FillNumberOf<AnyImage> value,
                      detail::FillNumberOf<AnyImage> lower, detail::FillNumberOf<AnyImage> upper,
                      Connectivity connectivity, Scratch& scratch) {
  auto* const function =
      connectivity == Connectivity::four
          ? detail::find_for<std::remove_reference_t<AnyImage>>(detail::kFillFourGradient)
          : detail::find_for<std::remove_reference_t<AnyImage>>(detail::kFillEightGradient);
  FillRegion region{};
  detail::require(
      detail::fill<AnyImage>(function, region, image, seed, scratch, value, lower, upper),
      "flood_fill", image, seed.x, seed.y, value, lower, upper);
  return region;
}
template <class AnyImage>
FillRegion flood_fill(AnyImage&& image, PixelPoint seed, detail::FillNumberOf<AnyImage> value,
                      detail::FillNumberOf<AnyImage> lower, detail::FillNumberOf<AnyImage> upper,
                      Connectivity connectivity = Connectivity::four) {
  Scratch scratch;
  return flood_fill(std::forward<AnyImage>(image), seed, value, lower, upper, connectivity,
                    scratch);
}

}  // namespace nuqi

#endif

/// Smallest and largest pixels, and where they are.
#ifndef NUQI_HPP_MIN_MAX_HPP
#define NUQI_HPP_MIN_MAX_HPP

#include <nuqi/hpp/norms.hpp>

#include <cstdint>

namespace nuqi {

/// A pixel's column and row.
struct Place {
  std::int64_t x;
  std::int64_t y;
};

template <class T>
struct MinMax {
  T min;
  T max;
  Place min_at;
  Place max_at;
};

namespace detail {

inline constexpr auto kMinMax =
    overloads(fn<std::uint8_t, 1>(nuqiMinMaxIndx_8u_C1R), fn<std::int8_t, 1>(nuqiMinMaxIndx_8s_C1R),
              fn<float, 1>(nuqiMinMaxIndx_32f_C1R), fn<std::uint8_t, 3>(nuqiMinMaxIndx_8u_C3CR),
              fn<std::int8_t, 3>(nuqiMinMaxIndx_8s_C3CR), fn<float, 3>(nuqiMinMaxIndx_32f_C3CR));
inline constexpr auto kMinMaxMasked = overloads(
    fn<std::uint8_t, 1>(nuqiMinMaxIndx_8u_C1MR), fn<std::int8_t, 1>(nuqiMinMaxIndx_8s_C1MR),
    fn<float, 1>(nuqiMinMaxIndx_32f_C1MR), fn<std::uint8_t, 3>(nuqiMinMaxIndx_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiMinMaxIndx_8s_C3CMR), fn<float, 3>(nuqiMinMaxIndx_32f_C3CMR));

/// What C found in one band.
struct FoundInBand {
  float min = 0;
  float max = 0;
  PixelPoint min_at = {0, 0};
  PixelPoint max_at = {0, 0};

  /// C reports nothing as it would report a single 0 at the top left.
  [[nodiscard]] bool maybe_nothing() const noexcept {
    return min == 0 && max == 0 && min_at.x == 0 && min_at.y == 0 && max_at.x == 0 && max_at.y == 0;
  }
};

/// Whether a band's first pixel is there: taken, and 0.
template <class T, class... MaskPart>
bool first_is_zero(const T* pixel, MaskPart... mask) noexcept {
  return *pixel == T{0} && ((*mask.data != 0) && ...);
}

struct MinMaxOf {
  template <class T>
  using Result = MinMax<T>;
  template <class T, bool kMasked>
  static constexpr std::int64_t kPixels = kUnlimited;

  /// What C finds.
  template <class T, int kChannels, class Image, class... MaskPart>
  [[gnu::always_inline]] static StatusCode by_c(FoundInBand& found, int channel, RoiSize roi,
                                                Image image, MaskPart... mask) noexcept {
    auto* const function = [] {
      if constexpr (sizeof...(MaskPart) > 0) {
        return find<T, kChannels>(kMinMaxMasked);
      } else {
        return find<T, kChannels>(kMinMax);
      }
    }();
    return reading<kChannels>(function, channel, &found.min, &found.max, &found.min_at,
                              &found.max_at)(roi, image, mask...);
  }
  template <class T, int kChannels, class Image, class... MaskPart>
  [[gnu::always_inline]] static StatusCode once(MinMax<T>& result, int channel, RoiSize roi,
                                                Image image, MaskPart... mask) noexcept {
    FoundInBand found;
    const StatusCode status = by_c<T, kChannels>(found, channel, roi, image, mask...);
    result = {static_cast<T>(found.min),
              static_cast<T>(found.max),
              {found.min_at.x, found.min_at.y},
              {found.max_at.x, found.max_at.y}};
    return status;
  }
  template <class Check, class Image, class... MaskView>
  static auto of_bands(const Check& check, int channel, Image image, MaskView... mask) {
    using T = typename Image::element;
    MinMax<T> all = {T{0}, T{0}, {0, 0}, {0, 0}};
    bool found = false;
    // Bands come as the pixels are read, so that the first of equal ones stays.
    std::int64_t x = 0;
    std::int64_t y = 0;
    const auto add = [&](RoiSize roi, auto part, auto... mask_part) {
      FoundInBand band;
      const StatusCode status = by_c<T, Image::channels()>(band, channel, roi, part, mask_part...);
      if (!band.maybe_nothing() || first_is_zero(part.data + channel, mask_part...)) {
        if (!found || band.min < static_cast<float>(all.min)) {
          all.min = static_cast<T>(band.min);
          all.min_at = {x + band.min_at.x, y + band.min_at.y};
        }
        if (!found || band.max > static_cast<float>(all.max)) {
          all.max = static_cast<T>(band.max);
          all.max_at = {x + band.max_at.x, y + band.max_at.y};
        }
        found = true;
      }
      x += roi.width;
      if (x == image.width()) {
        x = 0;
        y += roi.height;
      }
      return status;
    };
    check(in_bands(kUnlimited, add, image, mask...));
    return all;
  }
  template <class T>
  static bool is_nothing(const MinMax<T>& found) noexcept {
    return found.min == 0 && found.max == 0;
  }
};

}  // namespace detail

/// The smallest and the largest pixel, and the first place of each, row by row from the top: of one channel of
/// uint8_t, int8_t or float, or of one of three. After the image come a Mask, a channel (from 0 on), a Mask and a
/// channel, or nothing. -0 is below +0. Where floats are all NaN, or all the same infinity, everything is 0. An empty
/// mask is an error.
template <class Src, class... Selection>
[[nodiscard]] auto min_max(const Src& src, const Selection&... selection) {
  detail::expect_selection<detail::kChannelsOf<const Src>, Selection...>();
  return detail::read<detail::MinMaxOf>("min_max", detail::choose(selection...), src);
}

}  // namespace nuqi

#endif

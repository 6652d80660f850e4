/// Means and deviations.
#ifndef NUQI_HPP_MEANS_HPP
#define NUQI_HPP_MEANS_HPP

#include <nuqi/hpp/norms.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace nuqi {

/// A mean and a standard deviation, that of the pixels themselves: the root of their mean squared distance from
/// their mean.
struct MeanStd {
  double mean;
  double deviation;
};

namespace detail {

inline constexpr auto kMeanStd = overloads(
    fn<std::uint8_t, 1>(nuqiMean_StdDev_8u_C1R), fn<std::int8_t, 1>(nuqiMean_StdDev_8s_C1R),
    fn<float, 1>(nuqiMean_StdDev_32f_C1R), fn<std::uint8_t, 3>(nuqiMean_StdDev_8u_C3CR),
    fn<std::int8_t, 3>(nuqiMean_StdDev_8s_C3CR), fn<float, 3>(nuqiMean_StdDev_32f_C3CR));
inline constexpr auto kMeanStdMasked = overloads(
    fn<std::uint8_t, 1>(nuqiMean_StdDev_8u_C1MR), fn<std::int8_t, 1>(nuqiMean_StdDev_8s_C1MR),
    fn<float, 1>(nuqiMean_StdDev_32f_C1MR), fn<std::uint8_t, 3>(nuqiMean_StdDev_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiMean_StdDev_8s_C3CMR), fn<float, 3>(nuqiMean_StdDev_32f_C3CMR));
// not called: nuqiMean_32f_C1MR, which adds in single precision; kMeanStdMasked adds in double
inline constexpr auto kMeanMasked =
    overloads(fn<std::uint8_t, 1>(nuqiMean_8u_C1MR), fn<std::int8_t, 1>(nuqiMean_8s_C1MR),
              fn<std::uint8_t, 3>(nuqiMean_8u_C3CMR), fn<std::int8_t, 3>(nuqiMean_8s_C3CMR),
              fn<float, 3>(nuqiMean_32f_C3CMR));

/// Sums of bytes within a band stay below 2^31 and sums of squares below 2^38. C's results are within a few units in
/// the last place of exact ones, so that both sums come back exactly by rounding.
inline constexpr std::int64_t kPixelsOfMoments = std::int64_t{1} << 22;
/// Of floats: C counts in 31 bits.
inline constexpr std::int64_t kPixelsOfFloats = std::int64_t{1} << 30;
template <class T>
inline constexpr std::int64_t kPixelsOfMeans =
    std::is_same_v<T, float> ? kPixelsOfFloats : kPixelsOfMoments;

/// To the nearest integer, of less than 2^51: doubles beyond 2^52 are integers, and their last bits count them. Takes
/// half the latency of a conversion.
inline std::int64_t rounded(double value) noexcept {
  static_assert(std::numeric_limits<double>::is_iec559, "nuqi: doubles are those of IEEE 754");
  constexpr double kBeside = 6755399441055744.0;  // 2^52 + 2^51
  constexpr std::int64_t kBitsBeside = 0x4338000000000000;
  const double shifted = value + kBeside;
  std::int64_t bits = 0;
  std::memcpy(&bits, &shifted, sizeof bits);
  return bits - kBitsBeside;
}

/// The exact sums of bytes.
struct Moments {
  std::int64_t count = 0;
  std::int64_t sum = 0;
  std::int64_t squares = 0;

  /// Adds a band: what C found there. Where rounding left the variance below 0, the deviation is a NaN.
  void add(std::int64_t pixels, MeanStd found) noexcept {
    const auto n = static_cast<double>(pixels);
    const double variance = found.deviation > 0 ? found.deviation * found.deviation : 0;
    count += pixels;
    sum += rounded(found.mean * n);
    squares += rounded((variance + found.mean * found.mean) * n);
  }
  /// Of one band, where products of its sums are exact in 64 bits.
  [[nodiscard]] MeanStd of_one_band() const noexcept {
    const auto n = static_cast<double>(count);
    return {static_cast<double>(sum) / n,
            std::sqrt(static_cast<double>(squares * count - sum * sum)) / n};
  }
  [[nodiscard]] MeanStd result() const noexcept {
    const auto n = static_cast<double>(count);
    const double mean = static_cast<double>(sum) / n;
    // Distances from an integer near the mean: their sums are exact, small, and 0 for constant pixels. As that of
    // the distances is at most n / 2, the difference below is never negative and keeps all but a bit.
    const std::int64_t near_mean = rounded(mean);
    const auto distance = static_cast<double>(sum - near_mean * count);
    const auto distances_squared =
        static_cast<double>(squares - near_mean * (2 * sum - near_mean * count));
    return {mean, std::sqrt((distances_squared - distance * (distance / n)) / n)};
  }
};

/// Means and squared distances of floats, combined over bands.
struct FloatMoments {
  double count = 0;
  double mean = 0;
  double squared_distances = 0;

  void add(std::int64_t pixels, MeanStd found) noexcept {
    if (pixels == 0) return;
    const auto n = static_cast<double>(pixels);
    const double apart = found.mean - mean;
    const double share = n / (count + n);
    squared_distances += found.deviation * found.deviation * n + apart * apart * count * share;
    mean += apart * share;
    count += n;
  }
  [[nodiscard]] MeanStd result() const noexcept {
    return {mean, std::sqrt(squared_distances / count)};
  }
};

/// A deviation is a NaN for want of precision where the mean is finite: 0 then.
inline MeanStd without_noise(MeanStd found) noexcept {
  if (std::isnan(found.deviation) && std::isfinite(found.mean)) found.deviation = 0;
  return found;
}

/// How many pixels a band has: all, or those of its mask.
[[gnu::always_inline]] inline std::int64_t pixels_of(RoiSize roi) noexcept {
  return std::int64_t{roi.width} * roi.height;
}
inline std::int64_t pixels_of(RoiSize roi, Part<const std::uint8_t> mask) {
  return count_of(view_of(mask, roi));
}

struct MeanStdOf {
  template <class T>
  using Result = MeanStd;
  template <class T, bool kMasked>
  static constexpr std::int64_t kPixels = kPixelsOfMeans<T>;

  /// What C finds.
  template <class T, int kChannels, class Image, class... MaskPart>
  [[gnu::always_inline]] static StatusCode by_c(MeanStd& found, int channel, RoiSize roi,
                                                Image image, MaskPart... mask) noexcept {
    StatusCode status = StatusOk;
    if constexpr (sizeof...(mask) > 0) {
      status = reading<kChannels>(find<T, kChannels>(kMeanStdMasked), channel, &found.mean,
                                  &found.deviation)(roi, image, mask...);
    } else {
      status = reading<kChannels>(find<T, kChannels>(kMeanStd), channel, &found.mean,
                                  &found.deviation)(roi, image);
    }
    if constexpr (std::is_same_v<T, float>) found = without_noise(found);
    return status;
  }
  template <class T, int kChannels, class Image, class... MaskPart>
  [[gnu::always_inline]] static StatusCode once(MeanStd& result, int channel, RoiSize roi,
                                                Image image, MaskPart... mask) {
    MeanStd found = {0, 0};
    const StatusCode status = by_c<T, kChannels>(found, channel, roi, image, mask...);
    if constexpr (std::is_same_v<T, float>) {
      result = found;
    } else {
      const std::int64_t pixels = pixels_of(roi, mask...);
      if (pixels == 0) return StatusBadSize;
      Moments moments;
      moments.add(pixels, found);
      result = moments.of_one_band();
    }
    return status;
  }
  template <class Check, class Image, class... MaskView>
  static MeanStd of_bands(const Check& check, int channel, Image image, MaskView... mask) {
    using T = typename Image::element;
    std::conditional_t<std::is_same_v<T, float>, FloatMoments, Moments> all;
    const auto add = [&](RoiSize roi, auto part, auto... mask_part) {
      MeanStd found = {0, 0};
      const StatusCode status = by_c<T, Image::channels()>(found, channel, roi, part, mask_part...);
      all.add(pixels_of(roi, mask_part...), found);
      return status;
    };
    check(in_bands(kPixelsOfMeans<T>, add, image, mask...));
    if (all.count == 0) check(kNothingSelected);
    return all.result();
  }
  static bool is_nothing(MeanStd found) noexcept { return found.mean == 0; }
};

/// The mean alone. Where one call's sum does not wrap, C's masked mean is right as it is.
struct MeanOf {
  template <class T>
  using Result = double;
  template <class T, bool kMasked>
  static constexpr std::int64_t kPixels = kPixelsOfMeans<T>;

  template <class T, int kChannels, class Image, class... MaskPart>
  [[gnu::always_inline]] static StatusCode once(double& result, int channel, RoiSize roi,
                                                Image image, MaskPart... mask) {
    if constexpr (sizeof...(mask) > 0 && kHolds<T, kChannels, decltype(kMeanMasked)>) {
      return reading<kChannels>(find<T, kChannels>(kMeanMasked), channel, &result)(roi, image,
                                                                                   mask...);
    } else {
      MeanStd found = {0, 0};
      const StatusCode status = MeanStdOf::by_c<T, kChannels>(found, channel, roi, image, mask...);
      result = found.mean;
      if constexpr (!std::is_same_v<T, float>) {
        const auto n = static_cast<double>(pixels_of(roi));
        result = static_cast<double>(rounded(found.mean * n)) / n;
      }
      return status;
    }
  }
  template <class Check, class... Views>
  static double of_bands(const Check& check, int channel, Views... views) {
    return MeanStdOf::of_bands(check, channel, views...).mean;
  }
  static bool is_nothing(double found) noexcept { return found == 0; }
};

}  // namespace detail

/// The mean and the standard deviation of all pixels, or of those that a mask selects: of one channel of uint8_t,
/// int8_t or float, or of one of three. After the image come a Mask, a channel (from 0 on), a Mask and a channel, or
/// nothing. Sums of bytes are exact, whatever the size: constant pixels have deviation 0. That costs some 20 ns a call
/// and, with a mask, a second look at the mask, to count. Floats are summed in double precision; a variance that
/// rounding left below 0 is 0. An empty mask is an error.
template <class Src, class... Selection>
[[nodiscard]] MeanStd mean_std(const Src& src, const Selection&... selection) {
  detail::expect_selection<detail::kChannelsOf<const Src>, Selection...>();
  return detail::read<detail::MeanStdOf>("mean_std", detail::choose(selection...), src);
}

/// The mean; all else as for mean_std(). 24 megapixels of 200 have mean 200.
template <class Src, class... Selection>
[[nodiscard]] double mean(const Src& src, const Selection&... selection) {
  detail::expect_selection<detail::kChannelsOf<const Src>, Selection...>();
  return detail::read<detail::MeanOf>("mean", detail::choose(selection...), src);
}

}  // namespace nuqi

#endif

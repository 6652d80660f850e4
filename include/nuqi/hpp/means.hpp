/// Means and deviations.
#ifndef NUQI_HPP_MEANS_HPP
#define NUQI_HPP_MEANS_HPP

#include <nuqi/hpp/norms.hpp>

#include <cmath>
#include <cstdint>
#include <tuple>
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

inline std::int64_t rounded(double value) noexcept {
  return static_cast<std::int64_t>(value < 0 ? value - 0.5 : value + 0.5);
}

/// The exact sums of bytes.
struct Moments {
  std::int64_t count = 0;
  std::int64_t sum = 0;
  std::int64_t squares = 0;

  /// Adds a band: what C found there. Where rounding left the variance below 0, the deviation is a NaN.
  void add(std::int64_t pixels, double mean, double deviation) noexcept {
    const auto n = static_cast<double>(pixels);
    const double variance = deviation > 0 ? deviation * deviation : 0;
    count += pixels;
    sum += rounded(mean * n);
    squares += rounded((variance + mean * mean) * n);
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

/// The same of one band, where products of its sums are exact in 64 bits.
inline MeanStd small_moments(std::int64_t pixels, MeanStd found) noexcept {
  const auto n = static_cast<double>(pixels);
  const double variance = found.deviation > 0 ? found.deviation * found.deviation : 0;
  const std::int64_t sum = rounded(found.mean * n);
  const std::int64_t squares = rounded((variance + found.mean * found.mean) * n);
  return {static_cast<double>(sum) / n,
          std::sqrt(static_cast<double>(squares * pixels - sum * sum)) / n};
}

/// Means and squared distances of floats, combined over bands.
struct FloatMoments {
  double count = 0;
  double mean = 0;
  double squared_distances = 0;

  void add(std::int64_t pixels, double band_mean, double deviation) noexcept {
    if (pixels == 0) return;
    const auto n = static_cast<double>(pixels);
    const double apart = band_mean - mean;
    const double share = n / (count + n);
    squared_distances += deviation * deviation * n + apart * apart * count * share;
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

/// Mean and deviation over the views: an image and, where there is one, its mask.
template <class Image, class... MaskView>
[[gnu::always_inline]] inline MeanStd moments(const char* name, int channel, Image image,
                                              MaskView... mask) {
  constexpr bool kMasked = sizeof...(mask) > 0;
  constexpr bool kFloats = std::is_same_v<typename Image::element, float>;
  MeanStd found = {0, 0};
  auto* const function = [] {
    if constexpr (kMasked) {
      return find<typename Image::element, Image::channels()>(kMeanStdMasked);
    } else {
      return find<typename Image::element, Image::channels()>(kMeanStd);
    }
  }();
  const auto call = reading<Image::channels()>(function, channel, &found.mean, &found.deviation);
  if constexpr (kFloats) {
    if (fits(image, mask...) && image.size() <= kPixelsOfFloats) {
      require(call(roi_of(image), whole(image), whole(mask)...), name, image, mask...);
      return without_noise(found);
    }
  }
  if constexpr (!kFloats && !kMasked) {
    if (fits(image) && image.size() <= kPixelsOfMoments) {
      require(call(roi_of(image), whole(image)), name, image);
      return small_moments(image.size(), found);
    }
  }
  std::conditional_t<kFloats, FloatMoments, Moments> all;
  const auto add = [&](RoiSize roi, auto... parts) {
    const StatusCode status = call(roi, parts...);
    std::int64_t pixels = std::int64_t{roi.width} * roi.height;
    if constexpr (kMasked) pixels = count_of(view_of(std::get<1>(std::make_tuple(parts...)), roi));
    found = kFloats ? without_noise(found) : found;
    all.add(pixels, found.mean, found.deviation);
    return status;
  };
  require(in_bands(kFloats ? kPixelsOfFloats : kPixelsOfMoments, add, image, mask...), name, image,
          mask...);
  if (all.count == 0) require(kNothingSelected, name, image, mask...);
  return all.result();
}

/// Where one call's sum does not wrap, C's masked mean is right as it is.
template <class Image>
[[gnu::always_inline]] inline double masked_mean(const char* name, int channel, Image image,
                                                 View<const std::uint8_t> mask) {
  constexpr bool kFloats = std::is_same_v<typename Image::element, float>;
  if constexpr (kHolds<typename Image::element, Image::channels(), decltype(kMeanMasked)>) {
    if (fits(image, mask) && image.size() <= (kFloats ? kPixelsOfFloats : kPixelsOfMoments)) {
      double mean = 0;
      const auto call = reading<Image::channels()>(
          find<typename Image::element, Image::channels()>(kMeanMasked), channel, &mean);
      require(call(roi_of(image), whole(image), whole(mask)), name, image, mask);
      return mean;
    }
  }
  return moments(name, channel, image, mask).mean;
}

}  // namespace detail

/// The mean and the standard deviation of all pixels, or of those that a mask selects: of one channel of uint8_t,
/// int8_t or float, or of one of three. After the image come a Mask, a channel (from 0 on), a Mask and a channel, or
/// nothing. Sums of bytes are exact, whatever the size: constant pixels have deviation 0. Floats are summed in double
/// precision; a variance that rounding left below 0 is 0. With a mask, the mask is read a second time, to count.
/// An empty mask is an error.
template <class Src, class... Selection>
[[nodiscard]] MeanStd mean_std(const Src& src, const Selection&... selection) {
  const auto value = [](int channel, auto image, auto... mask) {
    return detail::moments("mean_std", channel, image, mask...);
  };
  return detail::read_one(
      "mean_std", value, [](MeanStd found) { return found.mean == 0; }, src, selection...);
}

/// The mean; all else as for mean_std(). 24 megapixels of 200 have mean 200.
template <class Src, class... Selection>
[[nodiscard]] double mean(const Src& src, const Selection&... selection) {
  const auto value = [](int channel, auto image, auto... mask) {
    if constexpr (sizeof...(mask) > 0) {
      return detail::masked_mean("mean", channel, image, mask...);
    } else {
      return detail::moments("mean", channel, image).mean;
    }
  };
  return detail::read_one(
      "mean", value, [](double found) { return found == 0; }, src, selection...);
}

}  // namespace nuqi

#endif

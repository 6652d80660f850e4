/// Norms: how large an image is, how far apart two are, absolutely or relative to the second.
#ifndef NUQI_HPP_NORMS_HPP
#define NUQI_HPP_NORMS_HPP

#include <nuqi/hpp/selection.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace nuqi {

namespace detail {

inline constexpr auto kNormInf =
    overloads(fn<std::uint8_t, 1>(nuqiNorm_Inf_8u_C1MR), fn<std::int8_t, 1>(nuqiNorm_Inf_8s_C1MR),
              fn<float, 1>(nuqiNorm_Inf_32f_C1MR), fn<std::uint8_t, 3>(nuqiNorm_Inf_8u_C3CMR),
              fn<std::int8_t, 3>(nuqiNorm_Inf_8s_C3CMR), fn<float, 3>(nuqiNorm_Inf_32f_C3CMR));
inline constexpr auto kNormL1 =
    overloads(fn<std::uint8_t, 1>(nuqiNorm_L1_8u_C1MR), fn<std::int8_t, 1>(nuqiNorm_L1_8s_C1MR),
              fn<float, 1>(nuqiNorm_L1_32f_C1MR), fn<std::uint8_t, 3>(nuqiNorm_L1_8u_C3CMR),
              fn<std::int8_t, 3>(nuqiNorm_L1_8s_C3CMR), fn<float, 3>(nuqiNorm_L1_32f_C3CMR));
inline constexpr auto kNormL2 =
    overloads(fn<std::uint8_t, 1>(nuqiNorm_L2_8u_C1MR), fn<std::int8_t, 1>(nuqiNorm_L2_8s_C1MR),
              fn<float, 1>(nuqiNorm_L2_32f_C1MR), fn<std::uint8_t, 3>(nuqiNorm_L2_8u_C3CMR),
              fn<std::int8_t, 3>(nuqiNorm_L2_8s_C3CMR), fn<float, 3>(nuqiNorm_L2_32f_C3CMR));
inline constexpr auto kNormDiffInf = overloads(
    fn<std::uint8_t, 1>(nuqiNormDiff_Inf_8u_C1MR), fn<std::int8_t, 1>(nuqiNormDiff_Inf_8s_C1MR),
    fn<float, 1>(nuqiNormDiff_Inf_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormDiff_Inf_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormDiff_Inf_8s_C3CMR), fn<float, 3>(nuqiNormDiff_Inf_32f_C3CMR));
inline constexpr auto kNormDiffL1 = overloads(
    fn<std::uint8_t, 1>(nuqiNormDiff_L1_8u_C1MR), fn<std::int8_t, 1>(nuqiNormDiff_L1_8s_C1MR),
    fn<float, 1>(nuqiNormDiff_L1_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormDiff_L1_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormDiff_L1_8s_C3CMR), fn<float, 3>(nuqiNormDiff_L1_32f_C3CMR));
inline constexpr auto kNormDiffL2 = overloads(
    fn<std::uint8_t, 1>(nuqiNormDiff_L2_8u_C1MR), fn<std::int8_t, 1>(nuqiNormDiff_L2_8s_C1MR),
    fn<float, 1>(nuqiNormDiff_L2_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormDiff_L2_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormDiff_L2_8s_C3CMR), fn<float, 3>(nuqiNormDiff_L2_32f_C3CMR));
inline constexpr auto kNormRelInf = overloads(
    fn<std::uint8_t, 1>(nuqiNormRel_Inf_8u_C1MR), fn<std::int8_t, 1>(nuqiNormRel_Inf_8s_C1MR),
    fn<float, 1>(nuqiNormRel_Inf_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormRel_Inf_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormRel_Inf_8s_C3CMR), fn<float, 3>(nuqiNormRel_Inf_32f_C3CMR));
inline constexpr auto kNormRelL1 = overloads(
    fn<std::uint8_t, 1>(nuqiNormRel_L1_8u_C1MR), fn<std::int8_t, 1>(nuqiNormRel_L1_8s_C1MR),
    fn<float, 1>(nuqiNormRel_L1_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormRel_L1_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormRel_L1_8s_C3CMR), fn<float, 3>(nuqiNormRel_L1_32f_C3CMR));
inline constexpr auto kNormRelL2 = overloads(
    fn<std::uint8_t, 1>(nuqiNormRel_L2_8u_C1MR), fn<std::int8_t, 1>(nuqiNormRel_L2_8s_C1MR),
    fn<float, 1>(nuqiNormRel_L2_32f_C1MR), fn<std::uint8_t, 3>(nuqiNormRel_L2_8u_C3CMR),
    fn<std::int8_t, 3>(nuqiNormRel_L2_8s_C3CMR), fn<float, 3>(nuqiNormRel_L2_32f_C3CMR));

/// What a measure needs: its C functions, how bands are combined, and how many pixels of bytes a sum may have
/// before C's wraps.
struct Inf {
  static constexpr const auto& kNorm = kNormInf;
  static constexpr const auto& kDiff = kNormDiffInf;
  static constexpr const auto& kRel = kNormRelInf;
  static constexpr std::int64_t kBytes = kUnlimited;
  template <class T>
  static double combined(double all, double norm) noexcept {
    return norm > all ? norm : all;
  }
  static double of_total(double total) noexcept { return total; }
};
struct L1 {
  static constexpr const auto& kNorm = kNormL1;
  static constexpr const auto& kDiff = kNormDiffL1;
  static constexpr const auto& kRel = kNormRelL1;
  static constexpr std::int64_t kBytes = std::int64_t{1} << 23;  // times 255 is below 2^31
  template <class T>
  static double combined(double all, double norm) noexcept {
    return all + norm;
  }
  static double of_total(double total) noexcept { return total; }
};
struct L2 {
  static constexpr const auto& kNorm = kNormL2;
  static constexpr const auto& kDiff = kNormDiffL2;
  static constexpr const auto& kRel = kNormRelL2;
  // The square of the rounded root of an integer below 2^40 is less than a half from it.
  static constexpr std::int64_t kBytes = std::int64_t{1} << 23;
  template <class T>
  static double combined(double all, double norm) noexcept {
    const double square = norm * norm;
    return all + (std::is_same_v<T, float> ? square : std::floor(square + 0.5));
  }
  static double of_total(double total) noexcept { return std::sqrt(total); }
};

[[gnu::noinline]] inline std::int64_t count_of(View<const std::uint8_t> mask) {
  auto* const function = find<std::uint8_t, 1>(kNormL1);
  std::int64_t count = 0;
  (void)in_bands(
      Ones::kPixels,
      [&](RoiSize roi, auto part) {
        double sum = 0;
        const auto of_ones = ones(roi);
        const StatusCode status =
            function(of_ones.data, of_ones.step, part.data, part.step, roi, &sum);
        count += static_cast<std::int64_t>(sum) / 255;
        return status;
      },
      mask);
  return count;
}

/// C has these functions with masks only: without one, bands are as large as the mask of ones.
template <class Measure, class T, bool kMasked>
inline constexpr std::int64_t kPixelsOfNorm = !kMasked                   ? Ones::kPixels
                                              : std::is_same_v<T, float> ? kUnlimited
                                                                         : Measure::kBytes;

/// Calls `function` on the parts of `kImages` images and on that of their mask, or on ones.
template <int kChannels, std::size_t kImages, class Function, class... Parts>
[[gnu::always_inline]] inline StatusCode read_band(Function* function, double& norm, int channel,
                                                   RoiSize roi, Parts... parts) {
  const auto call = reading<kChannels>(function, channel, &norm);
  if constexpr (sizeof...(Parts) > kImages) {
    return call(roi, parts...);
  } else {
    return call(roi, parts..., ones(roi));
  }
}

/// The sum, or maximum, over all bands of some images, in double precision: exact for bytes.
template <class Measure, std::size_t kImages, class Function, class Check, class First,
          class... Others>
double total_of(Function* function, const Check& check, int channel, First first,
                Others... others) {
  using T = typename First::element;
  constexpr bool kMasked = sizeof...(Others) == kImages;
  double total = 0, norm = 0;
  const auto add = [&](RoiSize roi, auto... parts) {
    const StatusCode status =
        read_band<First::channels(), kImages>(function, norm, channel, roi, parts...);
    total = Measure::template combined<T>(total, norm);
    return status;
  };
  check(in_bands(kPixelsOfNorm<Measure, T, kMasked>, add, first, others...));
  return total;
}

/// What norms of one image, of the difference of two, and relative ones share.
template <class Measure, const auto& kTable, std::size_t kImages>
struct NormBase {
  template <class T>
  using Result = double;
  template <class T, bool kMasked>
  static constexpr std::int64_t kPixels = kPixelsOfNorm<Measure, T, kMasked>;

  template <class T, int kChannels, class... Parts>
  [[gnu::always_inline]] static StatusCode once(double& result, int channel, RoiSize roi,
                                                Parts... parts) {
    return read_band<kChannels, kImages>(find<T, kChannels>(kTable), result, channel, roi,
                                         parts...);
  }
  static bool is_nothing(double result) noexcept { return result == 0; }
};
template <class Measure, const auto& kTable, std::size_t kImages>
struct Norm : NormBase<Measure, kTable, kImages> {
  template <class Check, class First, class... Others>
  static double of_bands(const Check& check, int channel, First first, Others... others) {
    auto* const function = find<typename First::element, First::channels()>(kTable);
    return Measure::of_total(
        total_of<Measure, kImages>(function, check, channel, first, others...));
  }
};
template <class Measure>
struct RelativeNorm : NormBase<Measure, Measure::kRel, 2> {
  template <class Check, class First, class... Mask>
  static double of_bands(const Check& check, int channel, First a, First b, Mask... mask) {
    constexpr double kLeast = 1.0 / (std::int64_t{1} << 52);  // what C takes for a denominator of 0
    auto* const diff = find<typename First::element, First::channels()>(Measure::kDiff);
    auto* const base = find<typename First::element, First::channels()>(Measure::kNorm);
    const double numerator = total_of<Measure, 2>(diff, check, channel, a, b, mask...);
    const double denominator = total_of<Measure, 1>(base, check, channel, b, mask...);
    return Measure::of_total(numerator / (denominator == 0 ? kLeast : denominator));
  }
};

template <class Measure, class Src, class... Arguments>
[[gnu::always_inline]] inline double norm_of(const char* name, const Src& src,
                                             const Arguments&... selection) {
  expect_selection<kChannelsOf<const Src>, Arguments...>();
  return read<Norm<Measure, Measure::kNorm, 1>>(name, choose(selection...), src);
}
template <class Measure, class A, class B, class... Arguments>
[[gnu::always_inline]] inline double norm_diff_of(const char* name, const A& a, const B& b,
                                                  const Arguments&... selection) {
  expect_alike<const A, const B>();
  expect_selection<kChannelsOf<const A>, Arguments...>();
  return read<Norm<Measure, Measure::kDiff, 2>>(name, choose(selection...), a, b);
}
template <class Measure, class A, class B, class... Arguments>
[[gnu::always_inline]] inline double norm_rel_of(const char* name, const A& a, const B& b,
                                                 const Arguments&... selection) {
  expect_alike<const A, const B>();
  expect_selection<kChannelsOf<const A>, Arguments...>();
  return read<RelativeNorm<Measure>>(name, choose(selection...), a, b);
}

}  // namespace detail

// All take images of uint8_t, int8_t or float and, after them, a Mask, a channel of three (from 0 on), a Mask and a
// channel, or nothing. Results are exact for bytes, of any size: sums do not wrap here. Floats are summed in single
// precision within bands of 16384 pixels, with masks within the whole image, as nuqi.h says, and in double precision
// across bands. An empty mask is an error. A relative norm whose denominator is 0 is the numerator times 2^52.

/// The largest of |src|.
template <class Src, class... Selection>
[[nodiscard]] double norm_inf(const Src& src, const Selection&... selection) {
  return detail::norm_of<detail::Inf>("norm_inf", src, selection...);
}
/// The largest of |a - b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_diff_inf(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_diff_of<detail::Inf>("norm_diff_inf", a, b, selection...);
}
/// The largest of |a - b|, divided by that of |b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_rel_inf(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_rel_of<detail::Inf>("norm_rel_inf", a, b, selection...);
}
/// The sum of |src|.
template <class Src, class... Selection>
[[nodiscard]] double norm_l1(const Src& src, const Selection&... selection) {
  return detail::norm_of<detail::L1>("norm_l1", src, selection...);
}
/// The sum of |a - b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_diff_l1(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_diff_of<detail::L1>("norm_diff_l1", a, b, selection...);
}
/// The sum of |a - b|, divided by that of |b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_rel_l1(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_rel_of<detail::L1>("norm_rel_l1", a, b, selection...);
}
/// The root of the sum of squares of |src|.
template <class Src, class... Selection>
[[nodiscard]] double norm_l2(const Src& src, const Selection&... selection) {
  return detail::norm_of<detail::L2>("norm_l2", src, selection...);
}
/// The root of the sum of squares of |a - b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_diff_l2(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_diff_of<detail::L2>("norm_diff_l2", a, b, selection...);
}
/// The root of the sum of squares of |a - b|, divided by that of |b|.
template <class A, class B, class... Selection>
[[nodiscard]] double norm_rel_l2(const A& a, const B& b, const Selection&... selection) {
  return detail::norm_rel_of<detail::L2>("norm_rel_l2", a, b, selection...);
}

}  // namespace nuqi

#endif

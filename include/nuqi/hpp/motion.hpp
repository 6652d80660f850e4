/// Motion histories, angles, and the pixels along a line.
#ifndef NUQI_HPP_MOTION_HPP
#define NUQI_HPP_MOTION_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/overloads.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <vector>

namespace nuqi {

namespace detail {

template <class History, class Silhouette>
[[gnu::always_inline]] inline Outcome motion_history(const Silhouette& silhouette,
                                                     std::remove_reference_t<History>& history,
                                                     float timestamp, float duration) noexcept {
  static_assert(std::is_same_v<ElementOf<const Silhouette>, std::uint8_t> &&
                    kChannelsOf<const Silhouette> == 1,
                "nuqi: a silhouette is one channel of uint8_t");
  expect_output<float, 1, std::remove_reference_t<History>>();
  return write<Where::apart, History>(flat(nuqiUpdateMotionHistory_8u32f_C1IR, timestamp, duration),
                                      history, silhouette);
}

/// C takes plain arrays: images whose rows lie back to back, or one row after the other.
struct CallArctan {
  [[gnu::always_inline]] StatusCode operator()(RoiSize roi, Part<const float> y,
                                               Part<const float> x,
                                               Part<float> angle) const noexcept {
    return nuqibFastArctan_32f(y.data, x.data, angle.data, roi.width * roi.height);
  }
};

template <class Angle, class Y, class X>
[[gnu::noinline, gnu::cold]] Outcome arctan_slowly(const Y& y, const X& x,
                                                   std::remove_reference_t<Angle>& angle) {
  const auto out = as_output<Angle>(angle);
  if (const Outcome bad = check_sizes(out, as_input(y), as_input(x)); bad.failed()) return bad;
  if (const Outcome bad = check_in_place(out, as_input(y), as_input(x)); bad.failed()) return bad;
  return in_bands(out.width(), CallArctan{}, as_input(y), as_input(x), out);
}

template <class Angle, class Y, class X>
[[gnu::always_inline]] inline Outcome arctan(const Y& y, const X& x,
                                             std::remove_reference_t<Angle>& angle) noexcept {
  expect_alike<const Y, const X, std::remove_reference_t<Angle>>();
  static_assert(std::is_same_v<ElementOf<const Y>, float> && kChannelsOf<const Y> == 1,
                "nuqi: arctan takes one channel of float");
  const auto out = as_output<Angle>(angle);
  const auto of_y = as_input(y);
  const auto of_x = as_input(x);
  const std::ptrdiff_t gap = (out.step() ^ out.row_bytes()) | (of_y.step() ^ out.row_bytes()) |
                             (of_x.step() ^ out.row_bytes());
  const auto tight =
      [&](auto view) {  // the same, and the compiler knows that their steps are equal
        return decltype(view)(Members{}, view.data(), out.width(), out.height(), out.row_bytes());
      };
  if (ready(out, of_y, of_x) && gap == 0 && out.size() <= kMost &&
      lies<Where::in_place>(tight(out), tight(of_y), tight(of_x))) {
    return CallArctan{}(roi_of(out), whole(of_y), whole(of_x), whole(out));
  }
  return arctan_slowly<Angle>(y, x, angle);
}

inline constexpr auto kSampleLine = overloads(
    fn<std::uint8_t, 1>(nuqiSampleLine_8u_C1R), fn<std::uint8_t, 3>(nuqiSampleLine_8u_C3R),
    fn<float, 1>(nuqiSampleLine_32f_C1R), fn<float, 3>(nuqiSampleLine_32f_C3R));
inline constexpr Outcome kEndOutside{StatusBadArg, "an end of the line lies outside the image"};

}  // namespace detail

/// history = timestamp where the silhouette (uint8_t) is not 0; elsewhere what is older than timestamp - duration
/// becomes 0. Histories are float and begin with zeros; times have any unit, duration is 0 or more.
template <class Silhouette, class History>
[[nodiscard]] StatusCode motion_history(const Silhouette& silhouette, History&& history,
                                        float timestamp, float duration,
                                        std::nothrow_t /*tag*/) noexcept {
  return detail::motion_history<History>(silhouette, history, timestamp, duration).status;
}
template <class Silhouette, class History>
void motion_history(const Silhouette& silhouette, History&& history, float timestamp,
                    float duration) {
  detail::require(detail::motion_history<History>(silhouette, history, timestamp, duration),
                  "motion_history", silhouette, history, timestamp, duration);
}

/// The angle of each vector (x, y) in degrees, from the positive x axis towards the positive y axis, within 0.1406 of
/// the true one, and from -0.1406 to 360.1406. Images of float; the angles may replace x or y.
template <class Y, class X, class Angle>
[[nodiscard]] StatusCode arctan(const Y& y, const X& x, Angle&& angle,
                                std::nothrow_t /*tag*/) noexcept {
  return detail::arctan<Angle>(y, x, angle).status;
}
template <class Y, class X, class Angle>
void arctan(const Y& y, const X& x, Angle&& angle) {
  detail::require(detail::arctan<Angle>(y, x, angle), "arctan", y, x, angle);
}

/// The pixels along a straight line, both ends included, one after the other: of one channel, or of three interleaved
/// ones, of uint8_t or float. The longer axis is walked pixel by pixel.
template <class Src>
[[nodiscard]] auto sample_line(const Src& src, PixelPoint start, PixelPoint end) {
  using T = detail::ElementOf<const Src>;
  auto* const function = detail::find_for<Src>(detail::kSampleLine);
  const auto image = detail::as_input(src);
  const auto check = [&](detail::Outcome outcome) {
    detail::require(outcome, "sample_line", src, start.x, start.y, end.x, end.y);
  };
  const auto inside = [&](PixelPoint point) {
    return point.x >= 0 && point.y >= 0 && point.x < image.width() && point.y < image.height();
  };
  check(detail::check_sizes(image));
  if (!detail::fits(image)) check(detail::kTooLarge);
  if (!inside(start) || !inside(end)) check(detail::kEndOutside);
  const int pixels = std::max(std::abs(end.x - start.x), std::abs(end.y - start.y)) + 1;
  std::vector<T> samples(static_cast<std::size_t>(pixels) *
                         static_cast<std::size_t>(image.channels()));
  check(function(image.data(), static_cast<std::int32_t>(image.step()), detail::roi_of(image),
                 samples.data(), start, end));
  return samples;
}

}  // namespace nuqi

#endif

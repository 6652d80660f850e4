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

template <class Silhouette, class History>
Outcome motion_history(Silhouette silhouette, History history, float timestamp,
                       float duration) noexcept {
  static_assert(
      std::is_same_v<typename Silhouette::element, std::uint8_t> && Silhouette::channels() == 1,
      "nuqi: a silhouette is one channel of uint8_t");
  expect_output<float, 1, History>();
  return write_apart(flat(nuqiUpdateMotionHistory_8u32f_C1IR, timestamp, duration), history,
                     silhouette);
}

template <class Y, class X, class Angle>
Outcome arctan(Y y, X x, Angle angle) noexcept {
  expect_alike<Y, X, Angle>();
  static_assert(std::is_same_v<typename Y::element, float> && Y::channels() == 1,
                "nuqi: arctan takes one channel of float");
  // C takes plain arrays: rows that lie back to back, or one row after the other.
  const auto call = [](RoiSize roi, auto of_y, auto of_x, auto to) {
    return nuqibFastArctan_32f(of_y.data, of_x.data, to.data, roi.width * roi.height);
  };
  const auto whole_row = [](auto view) { return view.step() == view.row_bytes(); };
  if (ready(angle, y, x) && angle.size() <= kMost && whole_row(y) && whole_row(x) &&
      whole_row(angle) && (far_apart(angle, y) || identical(angle, y)) &&
      (far_apart(angle, x) || identical(angle, x))) {
    return call(roi_of(y), whole(y), whole(x), whole(angle));
  }
  if (const Outcome bad = check_sizes(angle, y, x); bad.failed()) return bad;
  if (const Outcome bad = check_in_place(angle, y, x); bad.failed()) return bad;
  return in_bands(y.width(), call, y, x, angle);
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
  return detail::motion_history(detail::as_input(silhouette), detail::as_output<History>(history),
                                timestamp, duration)
      .status;
}
template <class Silhouette, class History>
void motion_history(const Silhouette& silhouette, History&& history, float timestamp,
                    float duration) {
  detail::require(detail::motion_history(detail::as_input(silhouette),
                                         detail::as_output<History>(history), timestamp, duration),
                  "motion_history", silhouette, history, timestamp, duration);
}

/// The angle of each vector (x, y) in degrees, from the positive x axis towards the positive y axis, within 0.1406 of
/// the true one, and from -0.1406 to 360.1406. Images of float; the angles may replace x or y.
template <class Y, class X, class Angle>
[[nodiscard]] StatusCode arctan(const Y& y, const X& x, Angle&& angle,
                                std::nothrow_t /*tag*/) noexcept {
  return detail::arctan(detail::as_input(y), detail::as_input(x), detail::as_output<Angle>(angle))
      .status;
}
template <class Y, class X, class Angle>
void arctan(const Y& y, const X& x, Angle&& angle) {
  detail::require(
      detail::arctan(detail::as_input(y), detail::as_input(x), detail::as_output<Angle>(angle)),
      "arctan", y, x, angle);
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

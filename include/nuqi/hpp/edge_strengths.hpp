/// How strong edges are: thresholds from a picture, and strengths among which no two neighbours are equal.
#ifndef NUQI_HPP_EDGE_STRENGTHS_HPP
#define NUQI_HPP_EDGE_STRENGTHS_HPP

#include <nuqi/hpp/view.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace nuqi {

/// The derivatives of which edges are made.
enum class EdgeOperator {
  sobel,  ///< strengths of 0 to 2040
  scharr  ///< strengths of 0 to 8160
};

/// An edge starts where the strength |dx| + |dy| is above `high`, and goes on where it is above `low`.
struct CannyThresholds {
  float low;
  float high;
};

namespace detail {

/// No strength of bytes is greater: 2 * 4080.
inline constexpr int kStrongest = 8160;

/// Makes neighbours' strengths unequal, so that suppression keeps one of two that tie, and neither would
/// stay without it.
///
/// With t(x, y) = x mod 2 + 2 * (y mod 2), which differs between any two of eight neighbours, a pixel's
/// strength m = |dx| + |dy| becomes 4 * m + t:
///   - What was greater stays greater: 4 * (m + 1) + 0 > 4 * m + 3.
///   - m > low exactly where 4 * m + t > 4 * low + 3, for integers: m >= low + 1 makes the left side at least
///     4 * low + 4, and m <= low at most 4 * low + 3.
///   - Directions stay. t goes to the magnitude, a of dx or b of dy, whose growth leads away from the nearer
///     bound: to a where b < a * tan 22.5, to b where b >= a * tan 67.5. Between the bounds it goes to the
///     smaller one: (4 * b + 3) / (4 * a) is at most 1.75 for b <= a, a >= 1, which is below tan 67.5, and
///     the other way round 4 * b / (4 * a + 3) is above 1 for b > a. The two tests are those that
///     the C function makes. A derivative of 0 grows only where both are 0, or stays 0: signs stay, too.
///   - Nothing overflows: 4 * 4080 + 3 and 4 * 8160 + 3 = 32643 are below 32767, where strengths end.
inline void break_ties(std::int16_t* dx, std::int16_t* dy, std::int64_t width,
                       std::int64_t y) noexcept {
  const int of_row = static_cast<int>(y % 2) * 2;
  for (std::int64_t x = 0; x < width; ++x) {
    const int t = of_row + static_cast<int>(x % 2);
    const int a = std::abs(int{dx[x]}), b = std::abs(int{dy[x]});
    const bool across = 4096 * b < 1697 * a, not_along = 4096 * b < 9889 * a;
    const bool to_dx = across | (not_along & (b > a));
    const int of_dx = to_dx ? t : 0, of_dy = t - of_dx;
    dx[x] = static_cast<std::int16_t>(4 * dx[x] + (dx[x] < 0 ? -of_dx : of_dx));
    dy[x] = static_cast<std::int16_t>(4 * dy[x] + (dy[x] < 0 ? -of_dy : of_dy));
  }
}

/// The threshold for strengths that break_ties has changed. Thresholds are truncated; above the strongest they
/// are all one.
inline float threshold_of_unequal(float threshold) noexcept {
  constexpr float kMost = 8191;
  static_assert(kMost >= kStrongest && 4 * kMost + 3 <= 32767);
  return 4 * std::floor(std::min(threshold, kMost)) + 3;
}

/// How many pixels have each strength.
using Strengths = std::array<std::int64_t, kStrongest + 1>;

inline void count_strengths(const std::int16_t* dx, const std::int16_t* dy, std::int64_t width,
                            Strengths& counts) noexcept {
  for (std::int64_t x = 0; x < width; ++x) {
    const int strength = std::abs(int{dx[x]}) + std::abs(int{dy[x]});
    ++counts[static_cast<std::size_t>(strength)];
  }
}

/// The largest whole numbers that a share of the pixels exceed, of those that have any strength: `share` exceed
/// `high`, 2.5 times as many `low`.
inline CannyThresholds thresholds_of(const Strengths& counts, double share) noexcept {
  std::int64_t any = 0;
  for (std::size_t strength = 1; strength < counts.size(); ++strength) any += counts[strength];
  const auto exceeded_by = [&](double part) {
    std::int64_t above = 0;
    for (std::size_t strength = kStrongest; any > 0 && strength > 0; --strength) {
      above += counts[strength];
      if (static_cast<double>(above) >= part * static_cast<double>(any)) {
        return static_cast<float>(strength - 1);
      }
    }
    return 0.0F;
  };
  return {exceeded_by(2.5 * share), exceeded_by(share)};
}

}  // namespace detail
}  // namespace nuqi

#endif

/// Distances to the nearest feature.
#ifndef NUQI_HPP_DISTANCE_HPP
#define NUQI_HPP_DISTANCE_HPP

#include <nuqi/hpp/bands.hpp>

#include <cstdint>
#include <new>
#include <type_traits>

namespace nuqi {

/// The weights of steps to the pixels beside, diagonally and, for 5x5, a knight's move away.
struct DistanceSteps {
  float beside;
  float diagonal;
  float knight = -1;  ///< below 0: there are no such steps, and the transform is 3x3
};

/// Distances whose weights the library knows.
enum class Distance : std::int32_t {
  chessboard = 30,     ///< the larger of |dx| and |dy|
  city_block = 31,     ///< |dx| + |dy|
  euclidean_3x3 = 32,  ///< within some 5 %
  euclidean_5x5 = 52   ///< within some 2 %
};

/// The weights of a distance.
[[nodiscard]] inline DistanceSteps distance_steps(Distance distance) {
  float metrics[3] = {0, 0, -1};
  const auto type = static_cast<std::int32_t>(distance);
  detail::require(nuqiGetDistanceTransformMask(type, metrics), "distance_steps", type);
  return {metrics[0], metrics[1], metrics[2]};
}

namespace detail {

template <class Dst, class Src>
[[gnu::always_inline]] inline Outcome distance_transform(const Src& src,
                                                         std::remove_reference_t<Dst>& dst,
                                                         DistanceSteps steps) noexcept {
  static_assert(std::is_same_v<ElementOf<const Src>, std::uint8_t> && kChannelsOf<const Src> == 1,
                "nuqi: distance_transform takes one channel of uint8_t");
  expect_output<float, 1, std::remove_reference_t<Dst>>();
  if (const Outcome bad = check_whole<Dst>(dst, src); bad.failed()) return bad;
  const float metrics[] = {steps.beside, steps.diagonal, steps.knight};
  auto* const function =
      steps.knight < 0 ? nuqiDistanceTransform_3x3_8u32f_C1R : nuqiDistanceTransform_5x5_8u32f_C1R;
  const auto in = as_input(src);
  return flat(function, &metrics[0])(roi_of(in), whole(in), whole(as_output<Dst>(dst)));
}

}  // namespace detail

/// The distance of every pixel to the nearest one that is 0, as the least sum of steps' weights, in float: 0 to 4096,
/// which is also the distance where there is no such pixel. Weights are from 0 to 4096. dst lies apart.
template <class Src, class Dst>
[[nodiscard]] StatusCode distance_transform(const Src& src, Dst&& dst, DistanceSteps steps,
                                            std::nothrow_t /*tag*/) noexcept {
  return detail::distance_transform<Dst>(src, dst, steps).status;
}
template <class Src, class Dst>
void distance_transform(const Src& src, Dst&& dst, DistanceSteps steps) {
  detail::require(detail::distance_transform<Dst>(src, dst, steps), "distance_transform", src, dst,
                  steps.beside, steps.diagonal, steps.knight);
}

template <class Src, class Dst>
void distance_transform(const Src& src, Dst&& dst, Distance distance = Distance::euclidean_5x5) {
  distance_transform(src, dst, distance_steps(distance));
}

}  // namespace nuqi

#endif

// Distances to the nearest zero pixel: nuqiDistanceTransform_* and nuqiGetDistanceTransformMask.
#include "features/distance_transform.h"

#include <cstring>

#include "core/validate.h"

namespace nuqi {
namespace {

constexpr bool k3x3 = false, k5x5 = true;

// Weight number `i` in units of 2^-18, rounded to the nearest, ties to even: so do additions of doubles
// whose last place is worth one. What lies beyond the supported weights becomes the nearest of them. No
// weight needs to exceed kDistanceFar: a step of 4096 improves no distance.
int32_t weight(const float* metrics, int i) {
  float metric = 0;
  std::memcpy(&metric, metrics + i, sizeof metric);
  const double units = metric * double{1 << 18};
  if (!(units > 0)) return 0;
  if (units > kDistanceFar) return kDistanceFar;
  return static_cast<int32_t>((units + 0x1p52) - 0x1p52);
}

template <bool is_5x5>
StatusCode distance_transform(Image<const uint8_t> src, Image<float> dst, RoiSize roi,
                              const float* metrics) {
  // clang-format off
  if (any_null(src.data, dst.data, metrics))                       return StatusNullPtr;
  if (negative(roi))                                               return StatusBadSize;
  if (short_row(src, roi.width) || short_row(dst, roi.width))      return StatusBadSize;
  if (uneven(dst))                                                 return StatusBadSize;
  if (empty(roi))                                                  return StatusOk;
  // clang-format on

  const DistanceJob job = {
      .src = src,
      .dst = dst,
      .roi = roi,
      .orthogonal = weight(metrics, 0),
      .diagonal = weight(metrics, 1),
      .knight = is_5x5 ? weight(metrics, 2) : 0,
  };
  distance_kernels().of[is_5x5](job);
  return StatusOk;
}

// The weights that nuqiGetDistanceTransformMask knows.
struct Metrics {
  int32_t type;
  int count;
  float weights[3];
};
constexpr Metrics kMetrics[] = {
    {30, 2, {1, 1}},
    {31, 2, {1, 2}},
    {32, 2, {0.955f, 1.3693f}},
    {52, 3, {1, 1.4f, 2.1969f}},
};

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiDistanceTransform_3x3_8u32f_C1R(const uint8_t* src, int32_t srcStep, float* dst,
                                               int32_t dstStep, RoiSize roi, const float* metrics) {
  return distance_transform<k3x3>({src, srcStep}, {dst, dstStep}, roi, metrics);
}

StatusCode nuqiDistanceTransform_5x5_8u32f_C1R(const uint8_t* src, int32_t srcStep, float* dst,
                                               int32_t dstStep, RoiSize roi, const float* metrics) {
  return distance_transform<k5x5>({src, srcStep}, {dst, dstStep}, roi, metrics);
}

StatusCode nuqiGetDistanceTransformMask(int32_t maskType, float* metrics) {
  if (any_null(metrics)) return StatusNullPtr;
  for (const Metrics& known : kMetrics) {
    if (known.type != maskType) continue;
    std::memcpy(metrics, known.weights, known.count * sizeof *metrics);
    return StatusOk;
  }
  return StatusBadArg;
}

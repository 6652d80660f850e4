// Means and deviations: nuqiMean, nuqiMean_StdDev.
#include "stats/mean.h"

#include <type_traits>

#include "core/square_root.h"
#include "core/validate.h"

namespace nuqi {
namespace {

constexpr bool kMasked = true;

template <int channels, class T>
StatusCode mean_of(Image<const T> src, Image<const uint8_t> mask, RoiSize roi, int32_t coi,
                   double* mean) {
  // clang-format off
  if (any_null(src.data, mask.data, mean))                      return StatusNullPtr;
  if (negative(roi))                                            return StatusBadSize;
  if (short_row(src, roi.width, channels) || uneven(src))       return StatusBadStep;
  if (short_row(mask, roi.width))                               return StatusBadStep;
  if (bad_channel(coi))                                         return StatusBadCoi;
  // clang-format on

  // This shows in nuqiMean_32f_C1MR: it decides which pixels are a block of eight.
  ContiguousCollapse(roi, tight(src, roi.width, channels) && tight(mask, roi.width));
  const MeanJob<T> job = {.src = at_channel(src, coi), .mask = mask, .roi = roi};
  MeanSums sums;
  if (!empty(roi)) mean_kernels().of_type<T>().mean[channels == 3](job, sums);
  *mean = sums.count == 0 ? 0.0 : sums.sum / sums.count;
  return StatusOk;
}

template <int channels, bool masked, class T>
StatusCode deviation_of(Image<const T> src, Image<const uint8_t> mask, RoiSize roi, int32_t coi,
                        double* mean, double* deviation) {
  // Deliberate: the masked three-channel forms call a bad step a bad size.
  constexpr StatusCode bad_step = channels == 3 && masked ? StatusBadSize : StatusBadStep;

  // clang-format off
  if (any_null(src.data, mean, deviation))                      return StatusNullPtr;
  if (masked && any_null(mask.data))                            return StatusNullPtr;
  if (below_one(roi))                                           return StatusBadSize;
  if (short_row(src, roi.width, channels) || uneven(src))       return bad_step;
  if (masked && short_row(mask, roi.width))                     return bad_step;
  if (bad_channel(coi))                                         return StatusBadArg;  // deliberate
  // clang-format on

  MeanSums sums;
  sums.count =
      static_cast<int32_t>(static_cast<uint32_t>(roi.width) * static_cast<uint32_t>(roi.height));
  // Floats keep their rows: the column decides which partial sum a pixel belongs to.
  if (!std::is_same_v<T, float>)
    ContiguousCollapse(roi, tight(src, roi.width, channels) && (!masked || tight(mask, roi.width)));
  const MeanJob<T> job = {.src = at_channel(src, coi), .mask = mask, .roi = roi};
  mean_kernels().of_type<T>().deviation[channels == 3][masked](job, sums);
  const double share = sums.count == 0 ? 0.0 : 1.0 / sums.count;
  *mean = sums.sum * share;
  *deviation =
      square_root(sums.squares * share - *mean * *mean);  // NaN where rounding went below 0
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, double* mean) {                                                    \
    return mean_of<1, T>({src, srcStep}, {mask, maskStep}, roi, 1, mean);                         \
  }
ENTRY(nuqiMean_8u_C1MR,  uint8_t)
ENTRY(nuqiMean_8s_C1MR,  int8_t)
ENTRY(nuqiMean_32f_C1MR, float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, int32_t coi, double* mean) {                                       \
    return mean_of<3, T>({src, srcStep}, {mask, maskStep}, roi, coi, mean);                       \
  }
ENTRY(nuqiMean_8u_C3CMR,  uint8_t)
ENTRY(nuqiMean_8s_C3CMR,  int8_t)
ENTRY(nuqiMean_32f_C3CMR, float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, RoiSize roi, double* mean, double* stdDev) {     \
    return deviation_of<1, !kMasked, T>({src, srcStep}, {}, roi, 1, mean, stdDev);                \
  }
ENTRY(nuqiMean_StdDev_8u_C1R,  uint8_t)
ENTRY(nuqiMean_StdDev_8s_C1R,  int8_t)
ENTRY(nuqiMean_StdDev_32f_C1R, float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, RoiSize roi, int32_t coi, double* mean,          \
                  double* stdDev) {                                                               \
    return deviation_of<3, !kMasked, T>({src, srcStep}, {}, roi, coi, mean, stdDev);              \
  }
ENTRY(nuqiMean_StdDev_8u_C3CR,  uint8_t)
ENTRY(nuqiMean_StdDev_8s_C3CR,  int8_t)
ENTRY(nuqiMean_StdDev_32f_C3CR, float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, double* mean, double* stdDev) {                                    \
    return deviation_of<1, kMasked, T>({src, srcStep}, {mask, maskStep}, roi, 1, mean, stdDev);   \
  }
ENTRY(nuqiMean_StdDev_8u_C1MR,  uint8_t)
ENTRY(nuqiMean_StdDev_8s_C1MR,  int8_t)
ENTRY(nuqiMean_StdDev_32f_C1MR, float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, int32_t coi, double* mean, double* stdDev) {                       \
    return deviation_of<3, kMasked, T>(                                                           \
        {src, srcStep}, {mask, maskStep}, roi, coi, mean, stdDev);                                \
  }
ENTRY(nuqiMean_StdDev_8u_C3CMR,  uint8_t)
ENTRY(nuqiMean_StdDev_8s_C3CMR,  int8_t)
ENTRY(nuqiMean_StdDev_32f_C3CMR, float)
#undef ENTRY

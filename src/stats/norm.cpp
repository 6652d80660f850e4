// The norm family: nuqiNorm, nuqiNormDiff, nuqiNormRel.
#include "stats/norm.h"

#include <type_traits>

#include "core/square_root.h"
#include "core/validate.h"

namespace nuqi {
namespace {

// A zero denominator is read as 2^-52, the smallest relative step of a double.
double relative(const NormTotals& totals) {
  return totals.of_second != 0 ? totals.of_image / totals.of_second : totals.of_image * 0x1p52;
}

template <NormOf of, Norm norm, int channels, class T>
StatusCode measure(Image<const T> src, Image<const T> src2, Image<const uint8_t> mask, RoiSize roi,
                   int32_t coi, double* result) {
  constexpr bool two = of != NormOf::image, floats = std::is_same_v<T, float>;
  const int32_t width = roi.width;

  // clang-format off
  if (any_null(src.data, mask.data, result))                          return StatusNullPtr;
  if (two && any_null(src2.data))                                     return StatusNullPtr;
  if (src.step < 1 || mask.step < 1 || (two && src2.step < 1))        return StatusBadStep;
  if (bad_channel(coi))                                               return StatusBadCoi;
  if (below_one(roi))                                                 return StatusBadSize;
  // Deliberate: pixels against bytes, so that rows may overlap.
  if (width > src.step || width > mask.step)                          return StatusBadSize;
  if (two && width > src2.step)                                       return StatusBadSize;
  if (uneven(src) || (two && uneven(src2)))                           return StatusBadSize;
  // clang-format on

  // Where sums of floats are concerned a pixel's lane is its column mod 16 in its own row.
  const bool lanes_stay = !floats || norm == Norm::inf || width % 16 == 0;
  ContiguousCollapse(roi, lanes_stay && tight(src, width, channels) && tight(mask, width) &&
                              (!two || tight(src2, width, channels)));
  const NormJob<T> job = {
      .src = at_channel(src, coi),
      .src2 = two ? at_channel(src2, coi) : src2,
      .mask = mask,
      .roi = roi,
  };
  const auto& kernels = norm_kernels().of_type<T>();
  const NormTotals totals =
      kernels.of[static_cast<int>(of)][static_cast<int>(norm)][channels == 3](job);
  const double value = of == NormOf::relative ? relative(totals) : totals.of_image;
  *result = norm == Norm::l2 ? square_root(value) : value;
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, of, norm)                                                                  \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, double* result) {                                                  \
    return measure<of, norm, 1, T>({src, srcStep}, {}, {mask, maskStep}, roi, 1, result);         \
  }
ENTRY(nuqiNorm_Inf_8u_C1MR,       uint8_t, NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_Inf_8s_C1MR,       int8_t,  NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_Inf_32f_C1MR,      float,   NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_L1_8u_C1MR,        uint8_t, NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L1_8s_C1MR,        int8_t,  NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L1_32f_C1MR,       float,   NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L2_8u_C1MR,        uint8_t, NormOf::image,      Norm::l2)
ENTRY(nuqiNorm_L2_8s_C1MR,        int8_t,  NormOf::image,      Norm::l2)
ENTRY(nuqiNorm_L2_32f_C1MR,       float,   NormOf::image,      Norm::l2)
#undef ENTRY

#define ENTRY(name, T, of, norm)                                                                  \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, int32_t channel, double* result) {                                 \
    return measure<of, norm, 3, T>({src, srcStep}, {}, {mask, maskStep}, roi, channel, result);   \
  }
ENTRY(nuqiNorm_Inf_8u_C3CMR,      uint8_t, NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_Inf_8s_C3CMR,      int8_t,  NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_Inf_32f_C3CMR,     float,   NormOf::image,      Norm::inf)
ENTRY(nuqiNorm_L1_8u_C3CMR,       uint8_t, NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L1_8s_C3CMR,       int8_t,  NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L1_32f_C3CMR,      float,   NormOf::image,      Norm::l1)
ENTRY(nuqiNorm_L2_8u_C3CMR,       uint8_t, NormOf::image,      Norm::l2)
ENTRY(nuqiNorm_L2_8s_C3CMR,       int8_t,  NormOf::image,      Norm::l2)
ENTRY(nuqiNorm_L2_32f_C3CMR,      float,   NormOf::image,      Norm::l2)
#undef ENTRY

#define ENTRY(name, T, of, norm)                                                                  \
  StatusCode name(const T* src1, int32_t src1Step, const T* src2, int32_t src2Step,               \
                  const uint8_t* mask, int32_t maskStep, RoiSize roi, double* result) {           \
    return measure<of, norm, 1, T>(                                                               \
        {src1, src1Step}, {src2, src2Step}, {mask, maskStep}, roi, 1, result);                    \
  }
ENTRY(nuqiNormDiff_Inf_8u_C1MR,   uint8_t, NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_Inf_8s_C1MR,   int8_t,  NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_Inf_32f_C1MR,  float,   NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_L1_8u_C1MR,    uint8_t, NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L1_8s_C1MR,    int8_t,  NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L1_32f_C1MR,   float,   NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L2_8u_C1MR,    uint8_t, NormOf::difference, Norm::l2)
ENTRY(nuqiNormDiff_L2_8s_C1MR,    int8_t,  NormOf::difference, Norm::l2)
ENTRY(nuqiNormDiff_L2_32f_C1MR,   float,   NormOf::difference, Norm::l2)
ENTRY(nuqiNormRel_Inf_8u_C1MR,    uint8_t, NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_Inf_8s_C1MR,    int8_t,  NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_Inf_32f_C1MR,   float,   NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_L1_8u_C1MR,     uint8_t, NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L1_8s_C1MR,     int8_t,  NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L1_32f_C1MR,    float,   NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L2_8u_C1MR,     uint8_t, NormOf::relative,   Norm::l2)
ENTRY(nuqiNormRel_L2_8s_C1MR,     int8_t,  NormOf::relative,   Norm::l2)
ENTRY(nuqiNormRel_L2_32f_C1MR,    float,   NormOf::relative,   Norm::l2)
#undef ENTRY

#define ENTRY(name, T, of, norm)                                                                  \
  StatusCode name(const T* src1, int32_t src1Step, const T* src2, int32_t src2Step,               \
                  const uint8_t* mask, int32_t maskStep, RoiSize roi, int32_t channel,            \
                  double* result) {                                                               \
    return measure<of, norm, 3, T>(                                                               \
        {src1, src1Step}, {src2, src2Step}, {mask, maskStep}, roi, channel, result);              \
  }
ENTRY(nuqiNormDiff_Inf_8u_C3CMR,  uint8_t, NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_Inf_8s_C3CMR,  int8_t,  NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_Inf_32f_C3CMR, float,   NormOf::difference, Norm::inf)
ENTRY(nuqiNormDiff_L1_8u_C3CMR,   uint8_t, NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L1_8s_C3CMR,   int8_t,  NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L1_32f_C3CMR,  float,   NormOf::difference, Norm::l1)
ENTRY(nuqiNormDiff_L2_8u_C3CMR,   uint8_t, NormOf::difference, Norm::l2)
ENTRY(nuqiNormDiff_L2_8s_C3CMR,   int8_t,  NormOf::difference, Norm::l2)
ENTRY(nuqiNormDiff_L2_32f_C3CMR,  float,   NormOf::difference, Norm::l2)
ENTRY(nuqiNormRel_Inf_8u_C3CMR,   uint8_t, NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_Inf_8s_C3CMR,   int8_t,  NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_Inf_32f_C3CMR,  float,   NormOf::relative,   Norm::inf)
ENTRY(nuqiNormRel_L1_8u_C3CMR,    uint8_t, NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L1_8s_C3CMR,    int8_t,  NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L1_32f_C3CMR,   float,   NormOf::relative,   Norm::l1)
ENTRY(nuqiNormRel_L2_8u_C3CMR,    uint8_t, NormOf::relative,   Norm::l2)
ENTRY(nuqiNormRel_L2_8s_C3CMR,    int8_t,  NormOf::relative,   Norm::l2)
ENTRY(nuqiNormRel_L2_32f_C3CMR,   float,   NormOf::relative,   Norm::l2)
#undef ENTRY

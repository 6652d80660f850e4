// Template matching: nuqiMatchTemplate and nuqiMatchTemplateGetBufSize.
#include "match/match_template.h"

#include "core/validate.h"

namespace nuqi {
namespace {

inline const MatchKernels8u& kernels_of(uint8_t) { return match_template_8u_kernels(); }
inline const MatchKernels8s& kernels_of(int8_t) { return match_template_8s_kernels(); }
inline const MatchKernels32f& kernels_of(float) { return match_template_32f_kernels(); }

constexpr bool exceeds(RoiSize tpl, RoiSize src) {
  return tpl.width > src.width || tpl.height > src.height;
}

template <Measure m, class T>
StatusCode match(Image<const T> src, RoiSize src_roi, Image<const T> tpl, RoiSize tpl_roi,
                 Image<float> dst, void* buffer) {
  // clang-format off
  if (any_null(src.data, tpl.data, dst.data, static_cast<char*>(buffer)))  return StatusNullPtr;
  if (below_one(tpl_roi) || exceeds(tpl_roi, src_roi))                     return StatusBadSize;
  const RoiSize dst_roi = {src_roi.width - tpl_roi.width + 1, src_roi.height - tpl_roi.height + 1};
  if (short_row(tpl, tpl_roi.width) || uneven(tpl))                        return StatusBadStep;
  if (short_row(src, src_roi.width) || uneven(src))                        return StatusBadStep;
  if (short_row(dst, dst_roi.width) || uneven(dst))                        return StatusBadStep;
  // clang-format on

  const MatchPlan<T> plan(src_roi, tpl_roi, m);
  const Scratch scratch(buffer, kMatchAlignment);
  const MatchJob<T> job = {
      .src = src,
      .tpl = tpl,
      .dst = dst,
      .tpl_roi = tpl_roi,
      .dst_roi = dst_roi,
      .work = scratch[Region<char>{}],
      .work_bytes = plan.size - kMatchAlignment,
      .tpl_doubles = reinterpret_cast<double*>(scratch[plan.tpl]),
      .row_sums = reinterpret_cast<double*>(scratch[plan.row_sums]),
      .row_energies = reinterpret_cast<double*>(scratch[plan.row_energies]),
  };
  kernels_of(T{}).of[static_cast<int>(m)](job);
  return StatusOk;
}

template <Measure m>
StatusCode buffer_size(RoiSize src, RoiSize tpl, int32_t type, int32_t* size) {
  const auto size_for = [&](auto element) {
    return MatchPlan<decltype(element)>(src, tpl, m).size;
  };

  // clang-format off
  if (any_null(size))                                              return StatusNullPtr;
  *size = 0;  // deliberate: written by calls that fail, too
  if (below_one(tpl) || exceeds(tpl, src))                         return StatusBadSize;
  if (bad_data_type(type))                                         return StatusBadDataType;
  const int64_t bytes = type == k32f ? size_for(float{}) : size_for(uint8_t{});
  if (!fits_int(bytes))                                            return StatusBadSize;
  // clang-format on

  *size = static_cast<int32_t>(bytes);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, m)                                                                       \
  StatusCode name(const T* src, int32_t srcStep, RoiSize srcRoi, const T* tpl, int32_t tplStep, \
                  RoiSize tplRoi, float* dst, int32_t dstStep, void* buffer) {                  \
    return match<m, T>({src, srcStep}, srcRoi, {tpl, tplStep}, tplRoi, {dst, dstStep}, buffer); \
  }
ENTRY(nuqiMatchTemplate_SqDiff_8u32f_C1R,        uint8_t, Measure::sq_diff)
ENTRY(nuqiMatchTemplate_SqDiff_8s32f_C1R,        int8_t,  Measure::sq_diff)
ENTRY(nuqiMatchTemplate_SqDiff_32f_C1R,          float,   Measure::sq_diff)
ENTRY(nuqiMatchTemplate_SqDiffNormed_8u32f_C1R,  uint8_t, Measure::sq_diff_normed)
ENTRY(nuqiMatchTemplate_SqDiffNormed_8s32f_C1R,  int8_t,  Measure::sq_diff_normed)
ENTRY(nuqiMatchTemplate_SqDiffNormed_32f_C1R,    float,   Measure::sq_diff_normed)
ENTRY(nuqiMatchTemplate_Corr_8u32f_C1R,          uint8_t, Measure::corr)
ENTRY(nuqiMatchTemplate_Corr_8s32f_C1R,          int8_t,  Measure::corr)
ENTRY(nuqiMatchTemplate_Corr_32f_C1R,            float,   Measure::corr)
ENTRY(nuqiMatchTemplate_CorrNormed_8u32f_C1R,    uint8_t, Measure::corr_normed)
ENTRY(nuqiMatchTemplate_CorrNormed_8s32f_C1R,    int8_t,  Measure::corr_normed)
ENTRY(nuqiMatchTemplate_CorrNormed_32f_C1R,      float,   Measure::corr_normed)
ENTRY(nuqiMatchTemplate_Coeff_8u32f_C1R,         uint8_t, Measure::coeff)
ENTRY(nuqiMatchTemplate_Coeff_8s32f_C1R,         int8_t,  Measure::coeff)
ENTRY(nuqiMatchTemplate_Coeff_32f_C1R,           float,   Measure::coeff)
ENTRY(nuqiMatchTemplate_CoeffNormed_8u32f_C1R,   uint8_t, Measure::coeff_normed)
ENTRY(nuqiMatchTemplate_CoeffNormed_8s32f_C1R,   int8_t,  Measure::coeff_normed)
ENTRY(nuqiMatchTemplate_CoeffNormed_32f_C1R,     float,   Measure::coeff_normed)
#undef ENTRY

#define ENTRY(name, m)                                                                          \
  StatusCode name(RoiSize srcRoi, RoiSize tplRoi, int32_t dataType, int32_t* size) {            \
    return buffer_size<m>(srcRoi, tplRoi, dataType, size);                                      \
  }
ENTRY(nuqiMatchTemplateGetBufSize_SqDiff,        Measure::sq_diff)
ENTRY(nuqiMatchTemplateGetBufSize_SqDiffNormed,  Measure::sq_diff_normed)
ENTRY(nuqiMatchTemplateGetBufSize_Corr,          Measure::corr)
ENTRY(nuqiMatchTemplateGetBufSize_CorrNormed,    Measure::corr_normed)
ENTRY(nuqiMatchTemplateGetBufSize_Coeff,         Measure::coeff)
ENTRY(nuqiMatchTemplateGetBufSize_CoeffNormed,   Measure::coeff_normed)
#undef ENTRY

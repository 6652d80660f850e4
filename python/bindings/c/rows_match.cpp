// Rows of the table of C functions.
#include <iterator>

#include "call.h"
#include "function.h"

namespace nuqi::python {
namespace {

template <StatusCode (*query)(int32_t, int32_t, int32_t, int32_t*), int32_t type, int32_t channels>
StatusCode pyramid_bytes(const Call& call, int64_t* bytes) {
  int32_t size = 0;
  const StatusCode status =
      query(static_cast<int32_t>(call.images[0].width), type, channels, &size);
  *bytes = size;
  return status;
}

template <StatusCode (*query)(RoiSize, RoiSize, int32_t, int32_t*), int32_t type>
StatusCode match_bytes(const Call& call, int64_t* bytes) {
  int32_t size = 0;
  const StatusCode status = query(call.slots[2].size, call.slots[5].size, type, &size);
  *bytes = size;
  return status;
}

const Row kRows[] = {
    // Gaussian pyramid
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_8u_C1R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 1, 1>),
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_8u_C3R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 1, 3>),
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_8s_C1R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 2, 1>),
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_8s_C3R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 2, 3>),
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_32f_C1R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 9, 1>),
    NUQI_FUNCTION(nuqiPyrDown_Gauss5x5_32f_C3R)
        .sized(Sizes::half)
        .with_buffer(pyramid_bytes<nuqiPyrDownGetBufSize_Gauss5x5, 9, 3>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_8u_C1R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 1, 1>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_8u_C3R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 1, 3>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_8s_C1R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 2, 1>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_8s_C3R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 2, 3>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_32f_C1R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 9, 1>),
    NUQI_FUNCTION(nuqiPyrUp_Gauss5x5_32f_C3R)
        .sized(Sizes::twice)
        .with_buffer(pyramid_bytes<nuqiPyrUpGetBufSize_Gauss5x5, 9, 3>),
    NUQI_FUNCTION(nuqiPyrDownGetBufSize_Gauss5x5),
    NUQI_FUNCTION(nuqiPyrUpGetBufSize_Gauss5x5),
    // Template matching
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiff_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiff, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiff_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiff, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiff_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiff, 9>),
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiffNormed_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiffNormed, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiffNormed_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiffNormed, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_SqDiffNormed_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_SqDiffNormed, 9>),
    NUQI_FUNCTION(nuqiMatchTemplate_Corr_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Corr, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_Corr_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Corr, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_Corr_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Corr, 9>),
    NUQI_FUNCTION(nuqiMatchTemplate_CorrNormed_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CorrNormed, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_CorrNormed_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CorrNormed, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_CorrNormed_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CorrNormed, 9>),
    NUQI_FUNCTION(nuqiMatchTemplate_Coeff_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Coeff, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_Coeff_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Coeff, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_Coeff_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_Coeff, 9>),
    NUQI_FUNCTION(nuqiMatchTemplate_CoeffNormed_8u32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CoeffNormed, 1>),
    NUQI_FUNCTION(nuqiMatchTemplate_CoeffNormed_8s32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CoeffNormed, 2>),
    NUQI_FUNCTION(nuqiMatchTemplate_CoeffNormed_32f_C1R)
        .sized(Sizes::matches)
        .with_buffer(match_bytes<nuqiMatchTemplateGetBufSize_CoeffNormed, 9>),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_SqDiff),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_SqDiffNormed),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_Corr),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_CorrNormed),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_Coeff),
    NUQI_FUNCTION(nuqiMatchTemplateGetBufSize_CoeffNormed),
};

}  // namespace

Rows match_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python

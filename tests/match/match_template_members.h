// Every function of template matching behind one argument list: for its tests and benchmarks.
#pragma once

#include "match/match_template_reference.h"
#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct MatchArgs {
  const T* src;
  int32_t srcStep;
  RoiSize srcRoi;
  const T* tpl;
  int32_t tplStep;
  RoiSize tplRoi;
  float* dst;
  int32_t dstStep;
  void* buffer;
};

using MatchQuery = StatusCode (*)(RoiSize srcRoi, RoiSize tplRoi, int32_t dataType, int32_t* size);

template <class T>
struct MatchMember {
  const char* name;
  MatchMeasure measure;
  MatchQuery query;
  StatusCode (*call)(const MatchArgs<T>&);
};

// clang-format off
#define MEMBER(name, T, measure, query)                                                      \
  MatchMember<T>{#name, MatchMeasure::measure, query, [](const MatchArgs<T>& a) {            \
    return name(a.src, a.srcStep, a.srcRoi, a.tpl, a.tplStep, a.tplRoi, a.dst, a.dstStep, a.buffer); }}

// Calls visit(member) with each of the 18.
template <class Visit>
void for_each_match(const Visit& visit) {
  visit(MEMBER(nuqiMatchTemplate_SqDiff_8u32f_C1R,            uint8_t, sq_diff,        nuqiMatchTemplateGetBufSize_SqDiff));
  visit(MEMBER(nuqiMatchTemplate_SqDiff_8s32f_C1R,            int8_t,  sq_diff,        nuqiMatchTemplateGetBufSize_SqDiff));
  visit(MEMBER(nuqiMatchTemplate_SqDiff_32f_C1R,              float,   sq_diff,        nuqiMatchTemplateGetBufSize_SqDiff));
  visit(MEMBER(nuqiMatchTemplate_SqDiffNormed_8u32f_C1R,      uint8_t, sq_diff_normed, nuqiMatchTemplateGetBufSize_SqDiffNormed));
  visit(MEMBER(nuqiMatchTemplate_SqDiffNormed_8s32f_C1R,      int8_t,  sq_diff_normed, nuqiMatchTemplateGetBufSize_SqDiffNormed));
  visit(MEMBER(nuqiMatchTemplate_SqDiffNormed_32f_C1R,        float,   sq_diff_normed, nuqiMatchTemplateGetBufSize_SqDiffNormed));
  visit(MEMBER(nuqiMatchTemplate_Corr_8u32f_C1R,              uint8_t, corr,           nuqiMatchTemplateGetBufSize_Corr));
  visit(MEMBER(nuqiMatchTemplate_Corr_8s32f_C1R,              int8_t,  corr,           nuqiMatchTemplateGetBufSize_Corr));
  visit(MEMBER(nuqiMatchTemplate_Corr_32f_C1R,                float,   corr,           nuqiMatchTemplateGetBufSize_Corr));
  visit(MEMBER(nuqiMatchTemplate_CorrNormed_8u32f_C1R,        uint8_t, corr_normed,    nuqiMatchTemplateGetBufSize_CorrNormed));
  visit(MEMBER(nuqiMatchTemplate_CorrNormed_8s32f_C1R,        int8_t,  corr_normed,    nuqiMatchTemplateGetBufSize_CorrNormed));
  visit(MEMBER(nuqiMatchTemplate_CorrNormed_32f_C1R,          float,   corr_normed,    nuqiMatchTemplateGetBufSize_CorrNormed));
  visit(MEMBER(nuqiMatchTemplate_Coeff_8u32f_C1R,             uint8_t, coeff,          nuqiMatchTemplateGetBufSize_Coeff));
  visit(MEMBER(nuqiMatchTemplate_Coeff_8s32f_C1R,             int8_t,  coeff,          nuqiMatchTemplateGetBufSize_Coeff));
  visit(MEMBER(nuqiMatchTemplate_Coeff_32f_C1R,               float,   coeff,          nuqiMatchTemplateGetBufSize_Coeff));
  visit(MEMBER(nuqiMatchTemplate_CoeffNormed_8u32f_C1R,       uint8_t, coeff_normed,   nuqiMatchTemplateGetBufSize_CoeffNormed));
  visit(MEMBER(nuqiMatchTemplate_CoeffNormed_8s32f_C1R,       int8_t,  coeff_normed,   nuqiMatchTemplateGetBufSize_CoeffNormed));
  visit(MEMBER(nuqiMatchTemplate_CoeffNormed_32f_C1R,         float,   coeff_normed,   nuqiMatchTemplateGetBufSize_CoeffNormed));
}
#undef MEMBER
// clang-format on

template <class T>
constexpr int32_t kMatchType = std::is_same_v<T, uint8_t>  ? 1
                               : std::is_same_v<T, int8_t> ? 2
                                                           : 9;

}  // namespace nuqi::test

// Every member of the norm family behind one argument list: for its tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"
#include "stats/norm_reference.h"

namespace nuqi::test {

template <class T>
struct NormArgs {
  const T* src;
  int32_t srcStep;
  const T* src2;
  int32_t src2Step;
  const uint8_t* mask;
  int32_t maskStep;
  RoiSize roi;
  int32_t channel;
  double* norm;
};

template <class T>
struct NormMember {
  const char* name;
  NormKind kind;
  NormOrder order;
  int channels;
  StatusCode (*call)(const NormArgs<T>&);
};

// clang-format off
#define MEMBER(name, T, kind, order, channels, ...)                       \
  NormMember<T>{#name, NormKind::kind, NormOrder::order, channels,        \
                [](const NormArgs<T>& a) { return name(__VA_ARGS__, a.norm); }}
#define ONE   a.src, a.srcStep, a.mask, a.maskStep, a.roi
#define TWO   a.src, a.srcStep, a.src2, a.src2Step, a.mask, a.maskStep, a.roi
#define ONE_C ONE, a.channel
#define TWO_C TWO, a.channel

// Calls visit(member) with each of the 54.
template <class Visit>
void for_each_norm(const Visit& visit) {
  visit(MEMBER(nuqiNorm_Inf_8u_C1MR,       uint8_t, image,      inf, 1, ONE));
  visit(MEMBER(nuqiNorm_Inf_8s_C1MR,       int8_t,  image,      inf, 1, ONE));
  visit(MEMBER(nuqiNorm_Inf_32f_C1MR,      float,   image,      inf, 1, ONE));
  visit(MEMBER(nuqiNorm_L1_8u_C1MR,        uint8_t, image,      l1,  1, ONE));
  visit(MEMBER(nuqiNorm_L1_8s_C1MR,        int8_t,  image,      l1,  1, ONE));
  visit(MEMBER(nuqiNorm_L1_32f_C1MR,       float,   image,      l1,  1, ONE));
  visit(MEMBER(nuqiNorm_L2_8u_C1MR,        uint8_t, image,      l2,  1, ONE));
  visit(MEMBER(nuqiNorm_L2_8s_C1MR,        int8_t,  image,      l2,  1, ONE));
  visit(MEMBER(nuqiNorm_L2_32f_C1MR,       float,   image,      l2,  1, ONE));
  visit(MEMBER(nuqiNorm_Inf_8u_C3CMR,      uint8_t, image,      inf, 3, ONE_C));
  visit(MEMBER(nuqiNorm_Inf_8s_C3CMR,      int8_t,  image,      inf, 3, ONE_C));
  visit(MEMBER(nuqiNorm_Inf_32f_C3CMR,     float,   image,      inf, 3, ONE_C));
  visit(MEMBER(nuqiNorm_L1_8u_C3CMR,       uint8_t, image,      l1,  3, ONE_C));
  visit(MEMBER(nuqiNorm_L1_8s_C3CMR,       int8_t,  image,      l1,  3, ONE_C));
  visit(MEMBER(nuqiNorm_L1_32f_C3CMR,      float,   image,      l1,  3, ONE_C));
  visit(MEMBER(nuqiNorm_L2_8u_C3CMR,       uint8_t, image,      l2,  3, ONE_C));
  visit(MEMBER(nuqiNorm_L2_8s_C3CMR,       int8_t,  image,      l2,  3, ONE_C));
  visit(MEMBER(nuqiNorm_L2_32f_C3CMR,      float,   image,      l2,  3, ONE_C));
  visit(MEMBER(nuqiNormDiff_Inf_8u_C1MR,   uint8_t, difference, inf, 1, TWO));
  visit(MEMBER(nuqiNormDiff_Inf_8s_C1MR,   int8_t,  difference, inf, 1, TWO));
  visit(MEMBER(nuqiNormDiff_Inf_32f_C1MR,  float,   difference, inf, 1, TWO));
  visit(MEMBER(nuqiNormDiff_L1_8u_C1MR,    uint8_t, difference, l1,  1, TWO));
  visit(MEMBER(nuqiNormDiff_L1_8s_C1MR,    int8_t,  difference, l1,  1, TWO));
  visit(MEMBER(nuqiNormDiff_L1_32f_C1MR,   float,   difference, l1,  1, TWO));
  visit(MEMBER(nuqiNormDiff_L2_8u_C1MR,    uint8_t, difference, l2,  1, TWO));
  visit(MEMBER(nuqiNormDiff_L2_8s_C1MR,    int8_t,  difference, l2,  1, TWO));
  visit(MEMBER(nuqiNormDiff_L2_32f_C1MR,   float,   difference, l2,  1, TWO));
  visit(MEMBER(nuqiNormDiff_Inf_8u_C3CMR,  uint8_t, difference, inf, 3, TWO_C));
  visit(MEMBER(nuqiNormDiff_Inf_8s_C3CMR,  int8_t,  difference, inf, 3, TWO_C));
  visit(MEMBER(nuqiNormDiff_Inf_32f_C3CMR, float,   difference, inf, 3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L1_8u_C3CMR,   uint8_t, difference, l1,  3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L1_8s_C3CMR,   int8_t,  difference, l1,  3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L1_32f_C3CMR,  float,   difference, l1,  3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L2_8u_C3CMR,   uint8_t, difference, l2,  3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L2_8s_C3CMR,   int8_t,  difference, l2,  3, TWO_C));
  visit(MEMBER(nuqiNormDiff_L2_32f_C3CMR,  float,   difference, l2,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_Inf_8u_C1MR,    uint8_t, relative,   inf, 1, TWO));
  visit(MEMBER(nuqiNormRel_Inf_8s_C1MR,    int8_t,  relative,   inf, 1, TWO));
  visit(MEMBER(nuqiNormRel_Inf_32f_C1MR,   float,   relative,   inf, 1, TWO));
  visit(MEMBER(nuqiNormRel_L1_8u_C1MR,     uint8_t, relative,   l1,  1, TWO));
  visit(MEMBER(nuqiNormRel_L1_8s_C1MR,     int8_t,  relative,   l1,  1, TWO));
  visit(MEMBER(nuqiNormRel_L1_32f_C1MR,    float,   relative,   l1,  1, TWO));
  visit(MEMBER(nuqiNormRel_L2_8u_C1MR,     uint8_t, relative,   l2,  1, TWO));
  visit(MEMBER(nuqiNormRel_L2_8s_C1MR,     int8_t,  relative,   l2,  1, TWO));
  visit(MEMBER(nuqiNormRel_L2_32f_C1MR,    float,   relative,   l2,  1, TWO));
  visit(MEMBER(nuqiNormRel_Inf_8u_C3CMR,   uint8_t, relative,   inf, 3, TWO_C));
  visit(MEMBER(nuqiNormRel_Inf_8s_C3CMR,   int8_t,  relative,   inf, 3, TWO_C));
  visit(MEMBER(nuqiNormRel_Inf_32f_C3CMR,  float,   relative,   inf, 3, TWO_C));
  visit(MEMBER(nuqiNormRel_L1_8u_C3CMR,    uint8_t, relative,   l1,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_L1_8s_C3CMR,    int8_t,  relative,   l1,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_L1_32f_C3CMR,   float,   relative,   l1,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_L2_8u_C3CMR,    uint8_t, relative,   l2,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_L2_8s_C3CMR,    int8_t,  relative,   l2,  3, TWO_C));
  visit(MEMBER(nuqiNormRel_L2_32f_C3CMR,   float,   relative,   l2,  3, TWO_C));
}

#undef MEMBER
#undef ONE
#undef TWO
#undef ONE_C
#undef TWO_C
// clang-format on

}  // namespace nuqi::test

// Every mean and deviation behind one argument list: for their tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct MeanArgs {
  const T* src;
  int32_t srcStep;
  const uint8_t* mask;
  int32_t maskStep;
  RoiSize roi;
  int32_t coi;
  double* mean;
  double* deviation;
};

template <class T>
struct MeanMember {
  const char* name;
  bool deviation;
  int channels;
  bool masked;
  StatusCode (*call)(const MeanArgs<T>&);
};

#define MEMBER(name, T, deviation, channels, masked, ...)                                       \
  MeanMember<T> {                                                                               \
#name, deviation, channels, masked, [](const MeanArgs <T>& a) { return name(__VA_ARGS__); } \
  }
#define SRC  a.src, a.srcStep
#define MASK a.mask, a.maskStep
#define BOTH a.mean, a.deviation

// Calls visit(member) with each of the 18.
template <class Visit>
void for_each_mean(const Visit& visit) {
  visit(MEMBER(nuqiMean_8u_C1MR, uint8_t, false, 1, true, SRC, MASK, a.roi, a.mean));
  visit(MEMBER(nuqiMean_8s_C1MR, int8_t, false, 1, true, SRC, MASK, a.roi, a.mean));
  visit(MEMBER(nuqiMean_32f_C1MR, float, false, 1, true, SRC, MASK, a.roi, a.mean));
  visit(MEMBER(nuqiMean_8u_C3CMR, uint8_t, false, 3, true, SRC, MASK, a.roi, a.coi, a.mean));
  visit(MEMBER(nuqiMean_8s_C3CMR, int8_t, false, 3, true, SRC, MASK, a.roi, a.coi, a.mean));
  visit(MEMBER(nuqiMean_32f_C3CMR, float, false, 3, true, SRC, MASK, a.roi, a.coi, a.mean));
  visit(MEMBER(nuqiMean_StdDev_8u_C1R, uint8_t, true, 1, false, SRC, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8s_C1R, int8_t, true, 1, false, SRC, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_32f_C1R, float, true, 1, false, SRC, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8u_C3CR, uint8_t, true, 3, false, SRC, a.roi, a.coi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8s_C3CR, int8_t, true, 3, false, SRC, a.roi, a.coi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_32f_C3CR, float, true, 3, false, SRC, a.roi, a.coi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8u_C1MR, uint8_t, true, 1, true, SRC, MASK, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8s_C1MR, int8_t, true, 1, true, SRC, MASK, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_32f_C1MR, float, true, 1, true, SRC, MASK, a.roi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8u_C3CMR, uint8_t, true, 3, true, SRC, MASK, a.roi, a.coi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_8s_C3CMR, int8_t, true, 3, true, SRC, MASK, a.roi, a.coi, BOTH));
  visit(MEMBER(nuqiMean_StdDev_32f_C3CMR, float, true, 3, true, SRC, MASK, a.roi, a.coi, BOTH));
}

#undef MEMBER
#undef SRC
#undef MASK
#undef BOTH

}  // namespace nuqi::test

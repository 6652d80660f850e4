// Every member of the extrema behind one argument list: for their tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct MinMaxArgs {
  const T* src;
  int32_t srcStep;
  const uint8_t* mask;
  int32_t maskStep;
  RoiSize roi;
  int32_t channel;
  float *min, *max;
  PixelPoint *minAt, *maxAt;
};

template <class T>
struct MinMaxMember {
  const char* name;
  int channels;
  bool masked;
  StatusCode (*call)(const MinMaxArgs<T>&);
};

// clang-format off
#define MEMBER(name, T, channels, masked, ...)                                             \
  MinMaxMember<T>{#name, channels, masked, [](const MinMaxArgs<T>& a) {                    \
                    return name(__VA_ARGS__, a.min, a.max, a.minAt, a.maxAt); }}
#define SRC     a.src, a.srcStep
#define MASK    a.mask, a.maskStep
#define CHANNEL a.channel

// Calls visit(member) with each of the twelve.
template <class Visit>
void for_each_min_max(const Visit& visit) {
  visit(MEMBER(nuqiMinMaxIndx_8u_C1R,    uint8_t, 1, false, SRC, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_8s_C1R,    int8_t,  1, false, SRC, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_32f_C1R,   float,   1, false, SRC, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_8u_C3CR,   uint8_t, 3, false, SRC, a.roi, CHANNEL));
  visit(MEMBER(nuqiMinMaxIndx_8s_C3CR,   int8_t,  3, false, SRC, a.roi, CHANNEL));
  visit(MEMBER(nuqiMinMaxIndx_32f_C3CR,  float,   3, false, SRC, a.roi, CHANNEL));
  visit(MEMBER(nuqiMinMaxIndx_8u_C1MR,   uint8_t, 1, true,  SRC, MASK, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_8s_C1MR,   int8_t,  1, true,  SRC, MASK, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_32f_C1MR,  float,   1, true,  SRC, MASK, a.roi));
  visit(MEMBER(nuqiMinMaxIndx_8u_C3CMR,  uint8_t, 3, true,  SRC, MASK, a.roi, CHANNEL));
  visit(MEMBER(nuqiMinMaxIndx_8s_C3CMR,  int8_t,  3, true,  SRC, MASK, a.roi, CHANNEL));
  visit(MEMBER(nuqiMinMaxIndx_32f_C3CMR, float,   3, true,  SRC, MASK, a.roi, CHANNEL));
}

#undef MEMBER
#undef SRC
#undef MASK
#undef CHANNEL
// clang-format on

}  // namespace nuqi::test

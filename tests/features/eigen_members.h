// The six corner functions behind one argument list: for their tests and benchmarks.
#pragma once

#include <cstdint>

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct EigenArgs {
  const T* src;
  int32_t srcStep;
  float* dst;
  int32_t dstStep;
  RoiSize roi;
  int32_t aperture, block;
  void* buffer;
};

template <class T>
struct EigenMember {
  const char* name;
  StatusCode (*call)(const EigenArgs<T>&);
  int values;  // floats a pixel
  bool sums_over_aperture;

  int window(int aperture, int block) const { return sums_over_aperture ? aperture : block; }
};

// Calls visit(member) with each.
template <class Visit>
void for_each_eigen(const Visit& visit) {
#define MEMBER(name, T, values, over_aperture)                                                 \
  EigenMember<T>{#name,                                                                        \
                 [](const EigenArgs<T>& a) {                                                   \
                   return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.aperture, a.block, \
                               a.buffer);                                                      \
                 },                                                                            \
                 values, over_aperture}
  visit(MEMBER(nuqiMinEigenVal_8u32f_C1R, uint8_t, 1, true));
  visit(MEMBER(nuqiMinEigenVal_8s32f_C1R, int8_t, 1, true));
  visit(MEMBER(nuqiMinEigenVal_32f_C1R, float, 1, false));
  visit(MEMBER(nuqiEigenValsVecs_8u32f_C1R, uint8_t, 6, false));
  visit(MEMBER(nuqiEigenValsVecs_8s32f_C1R, int8_t, 6, false));
  visit(MEMBER(nuqiEigenValsVecs_32f_C1R, float, 6, false));
#undef MEMBER
}

}  // namespace nuqi::test

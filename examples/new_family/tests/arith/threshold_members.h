// Every member of the thresholds behind one argument list, for tests and benchmarks.
#pragma once

#include "nuqi/threshold.h"

namespace nuqi::test {

template <class T>
struct ThresholdArgs {
  const T* src;
  int32_t srcStep;
  T* dst;
  int32_t dstStep;
  RoiSize roi;
  T level, value;
};

template <class T>
struct ThresholdMember {
  const char* name;
  StatusCode (*call)(const ThresholdArgs<T>&);
};

#define MEMBER(name, T)                                                                            \
  ThresholdMember<T> {                                                                             \
#name, [](const ThresholdArgs <T>&                                                             \
                  a) { return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.level, a.value); } \
  }

// Calls visit(member) with each.
template <class Visit>
void for_each_threshold(const Visit& visit) {
  visit(MEMBER(nuqiThreshold_8u_C1R, uint8_t));
  visit(MEMBER(nuqiThreshold_32f_C1R, float));
}

#undef MEMBER

}  // namespace nuqi::test

// What the functions that take an image in stripes have in common, for their tests and benchmarks.
#pragma once

#include <cstdint>

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T, class D, class State = ConvolState>
struct StripeArgs {
  const T* src;
  int32_t srcStep;
  D* dst;
  int32_t dstStep;
  RoiSize* roi;
  State* state;
  int32_t phase;
};

template <class T, class D, class State = ConvolState>
struct StripeMember {
  const char* name;
  StatusCode (*call)(const StripeArgs<T, D, State>&);
  int channels = 1;
};

constexpr int32_t k8u = 1, k8s = 2, k32f = 9;

// The data type that a state for sources of T is made with.
constexpr int32_t data_type(uint8_t) { return k8u; }
constexpr int32_t data_type(int8_t) { return k8s; }
constexpr int32_t data_type(float) { return k32f; }

}  // namespace nuqi::test

#define NUQI_STRIPE_MEMBER(name, T, D)                                                             \
  nuqi::test::StripeMember<T, D> {                                                                 \
#name, [](const nuqi::test::StripeArgs <T, D>&                                                 \
                  a) { return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.state, a.phase); } \
  }

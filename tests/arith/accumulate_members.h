// Every member of the accumulation family behind one argument list: for its tests and benchmarks.
#pragma once

#include <vector>

#include "arith/accumulate_reference.h"
#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct AccumulateArgs {
  const T* src;
  int32_t srcStep;
  const T* src2;
  int32_t src2Step;
  const uint8_t* mask;
  int32_t maskStep;
  float* acc;
  int32_t accStep;
  RoiSize roi;
  float alpha;
};

template <class T>
struct AccumulateMember {
  const char* name;
  AccumulateTerm term;
  bool masked;
  StatusCode (*call)(const AccumulateArgs<T>&);
};

#define MEMBER(name, T, term, masked, ...)                                                     \
  AccumulateMember<T> {                                                                        \
#name, AccumulateTerm::term, masked,                                                       \
        [](const AccumulateArgs <T>& a) { return name(__VA_ARGS__, a.acc, a.accStep, a.roi); } \
  }
#define WEIGHTED(name, T, masked, ...)                                            \
  AccumulateMember<T> {                                                           \
#name, AccumulateTerm::weighted, masked,                                      \
        [](const AccumulateArgs <T>&                                              \
               a) { return name(__VA_ARGS__, a.acc, a.accStep, a.roi, a.alpha); } \
  }
#define SRC  a.src, a.srcStep
#define SRC2 a.src2, a.src2Step
#define MASK a.mask, a.maskStep

// Calls visit(member) with each of the 24.
template <class Visit>
void for_each_accumulate(const Visit& visit) {
  visit(MEMBER(nuqiAdd_8u32f_C1IR, uint8_t, add, false, SRC));
  visit(MEMBER(nuqiAdd_8s32f_C1IR, int8_t, add, false, SRC));
  visit(MEMBER(nuqiAdd_32f_C1IR, float, add, false, SRC));
  visit(MEMBER(nuqiAdd_8u32f_C1IMR, uint8_t, add, true, SRC, MASK));
  visit(MEMBER(nuqiAdd_8s32f_C1IMR, int8_t, add, true, SRC, MASK));
  visit(MEMBER(nuqiAdd_32f_C1IMR, float, add, true, SRC, MASK));
  visit(MEMBER(nuqiAddSquare_8u32f_C1IR, uint8_t, square, false, SRC));
  visit(MEMBER(nuqiAddSquare_8s32f_C1IR, int8_t, square, false, SRC));
  visit(MEMBER(nuqiAddSquare_32f_C1IR, float, square, false, SRC));
  visit(MEMBER(nuqiAddSquare_8u32f_C1IMR, uint8_t, square, true, SRC, MASK));
  visit(MEMBER(nuqiAddSquare_8s32f_C1IMR, int8_t, square, true, SRC, MASK));
  visit(MEMBER(nuqiAddSquare_32f_C1IMR, float, square, true, SRC, MASK));
  visit(MEMBER(nuqiAddProduct_8u32f_C1IR, uint8_t, product, false, SRC, SRC2));
  visit(MEMBER(nuqiAddProduct_8s32f_C1IR, int8_t, product, false, SRC, SRC2));
  visit(MEMBER(nuqiAddProduct_32f_C1IR, float, product, false, SRC, SRC2));
  visit(MEMBER(nuqiAddProduct_8u32f_C1IMR, uint8_t, product, true, SRC, SRC2, MASK));
  visit(MEMBER(nuqiAddProduct_8s32f_C1IMR, int8_t, product, true, SRC, SRC2, MASK));
  visit(MEMBER(nuqiAddProduct_32f_C1IMR, float, product, true, SRC, SRC2, MASK));
  visit(WEIGHTED(nuqiAddWeighted_8u32f_C1IR, uint8_t, false, SRC));
  visit(WEIGHTED(nuqiAddWeighted_8s32f_C1IR, int8_t, false, SRC));
  visit(WEIGHTED(nuqiAddWeighted_32f_C1IR, float, false, SRC));
  visit(WEIGHTED(nuqiAddWeighted_8u32f_C1IMR, uint8_t, true, SRC, MASK));
  visit(WEIGHTED(nuqiAddWeighted_8s32f_C1IMR, int8_t, true, SRC, MASK));
  visit(WEIGHTED(nuqiAddWeighted_32f_C1IMR, float, true, SRC, MASK));
}

#undef MEMBER
#undef WEIGHTED
#undef SRC
#undef SRC2
#undef MASK

}  // namespace nuqi::test

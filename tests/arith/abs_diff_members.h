// Every member of the absolute-difference family behind one argument list.
#pragma once

#include <type_traits>

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct AbsDiffArgs {
  using Value = std::conditional_t<sizeof(T) == 1, int32_t, float>;

  const T* src;
  int32_t srcStep;
  const T* src2;
  int32_t src2Step;
  T* dst;
  int32_t dstStep;
  RoiSize roi;
  Value value;
};

template <class T>
struct AbsDiffMember {
  const char* name;
  bool of_images;
  StatusCode (*call)(const AbsDiffArgs<T>&);
};

#define OF_IMAGES(name, T)                                                                        \
  AbsDiffMember<T> {                                                                              \
#name, true,                                                                                  \
        [](const AbsDiffArgs <T>&                                                                 \
               a) { return name(a.src, a.srcStep, a.src2, a.src2Step, a.dst, a.dstStep, a.roi); } \
  }
#define OF_CONSTANT(name, T)                                                           \
  AbsDiffMember<T> {                                                                   \
#name, false,                                                                      \
        [](const AbsDiffArgs <T>&                                                      \
               a) { return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.value); } \
  }

// Calls visit(member) with each of the 4.
template <class Visit>
void for_each_abs_diff(const Visit& visit) {
  visit(OF_IMAGES(nuqiAbsDiff_8u_C1R, uint8_t));
  visit(OF_IMAGES(nuqiAbsDiff_32f_C1R, float));
  visit(OF_CONSTANT(nuqiAbsDiffC_8u_C1R, uint8_t));
  visit(OF_CONSTANT(nuqiAbsDiffC_32f_C1R, float));
}

#undef OF_IMAGES
#undef OF_CONSTANT

}  // namespace nuqi::test

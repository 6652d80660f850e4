// Every flood fill behind one argument list: for tests and benchmarks.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

// What the new value and the deltas are told in.
template <class T>
struct FillValue {
  using Type = T;
};
template <>
struct FillValue<uint8_t> {
  using Type = int32_t;
};

template <class T>
struct FillArgs {
  using Value = typename FillValue<T>::Type;

  T* image;
  int32_t step;
  RoiSize roi;
  PixelPoint seed;
  Value value, lower, upper;  // deltas of the gradient fills
  FillRegion* region;
  void* buffer;
};

template <class T>
struct FillMember {
  const char* name;
  bool gradient, diagonal;
  StatusCode (*call)(const FillArgs<T>&);
  StatusCode (*get_size)(RoiSize, int32_t*);
};

#define MEMBER(name, T, diagonal, gradient, get_size, ...)                         \
  FillMember<T> {                                                                  \
#name, gradient, diagonal,                                                       \
                [](const FillArgs<T>& a) {                                                       \
                  return name(a.image, a.step, a.roi, a.seed, a.value, __VA_ARGS__ a.region,     \
                              a.buffer);                                                         \
                },                                                                               \
                get_size \
  }
#define EQUALITY(name, T, diagonal) MEMBER(name, T, diagonal, false, nuqiFloodFillGetSize, )
#define GRADIENT(name, T, diagonal) \
  MEMBER(name, T, diagonal, true, nuqiFloodFillGetSize_Grad, a.lower, a.upper, )

// Calls visit(member) with each of the 8.
template <class Visit>
void for_each_flood_fill(const Visit& visit) {
  visit(EQUALITY(nuqiFloodFill_4Con_8u_C1IR, uint8_t, false));
  visit(EQUALITY(nuqiFloodFill_8Con_8u_C1IR, uint8_t, true));
  visit(EQUALITY(nuqiFloodFill_4Con_32f_C1IR, float, false));
  visit(EQUALITY(nuqiFloodFill_8Con_32f_C1IR, float, true));
  visit(GRADIENT(nuqiFloodFill_Grad4Con_8u_C1IR, uint8_t, false));
  visit(GRADIENT(nuqiFloodFill_Grad8Con_8u_C1IR, uint8_t, true));
  visit(GRADIENT(nuqiFloodFill_Grad4Con_32f_C1IR, float, false));
  visit(GRADIENT(nuqiFloodFill_Grad8Con_32f_C1IR, float, true));
}

#undef MEMBER
#undef EQUALITY
#undef GRADIENT

}  // namespace nuqi::test

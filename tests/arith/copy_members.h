// Every member of the copy family behind one argument list.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct CopyArgs {
  T* pixels;
  int32_t pixelStep;
  T* const* planes;
  int32_t planeStep;
  RoiSize roi;
};

template <class T>
struct CopyMember {
  const char* name;
  int channels;
  bool to_planes;
  StatusCode (*call)(const CopyArgs<T>&);
};

#define TO_PLANES(name, T, channels)                                                    \
  CopyMember<T> {                                                                       \
#name, channels, true,                                                              \
        [](const CopyArgs <T>&                                                          \
               a) { return name(a.pixels, a.pixelStep, a.planes, a.planeStep, a.roi); } \
  }
#define TO_PIXELS(name, T, channels)                                                    \
  CopyMember<T> {                                                                       \
#name, channels, false,                                                             \
        [](const CopyArgs <T>&                                                          \
               a) { return name(a.planes, a.planeStep, a.pixels, a.pixelStep, a.roi); } \
  }

// Calls visit(member) with each of the 8.
template <class Visit>
void for_each_copy(const Visit& visit) {
  visit(TO_PLANES(nuqiCopy_8u_C3P3R, uint8_t, 3));
  visit(TO_PLANES(nuqiCopy_8u_C4P4R, uint8_t, 4));
  visit(TO_PLANES(nuqiCopy_32f_C3P3R, float, 3));
  visit(TO_PLANES(nuqiCopy_32f_C4P4R, float, 4));
  visit(TO_PIXELS(nuqiCopy_8u_P3C3R, uint8_t, 3));
  visit(TO_PIXELS(nuqiCopy_8u_P4C4R, uint8_t, 4));
  visit(TO_PIXELS(nuqiCopy_32f_P3C3R, float, 3));
  visit(TO_PIXELS(nuqiCopy_32f_P4C4R, float, 4));
}

#undef TO_PLANES
#undef TO_PIXELS

}  // namespace nuqi::test

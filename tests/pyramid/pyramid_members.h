// Every level function of the Gaussian pyramid behind one argument list.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct PyramidArgs {
  const T* src;
  int32_t srcStep;
  T* dst;
  int32_t dstStep;
  RoiSize roi;
  void* buffer;
};

template <class T>
struct PyramidMember {
  const char* name;
  bool up;
  int channels;
  int32_t data_type;
  StatusCode (*call)(const PyramidArgs<T>&);

  StatusCode query(int32_t width, int32_t* size) const {
    return up ? nuqiPyrUpGetBufSize_Gauss5x5(width, data_type, channels, size)
              : nuqiPyrDownGetBufSize_Gauss5x5(width, data_type, channels, size);
  }
  RoiSize result(RoiSize roi) const {
    return up ? RoiSize{2 * roi.width, 2 * roi.height} : RoiSize{roi.width / 2, roi.height / 2};
  }
};

#define MEMBER(name, T, type, channels, up)                                             \
  PyramidMember<T> {                                                                    \
#name, up, channels, type,                                                          \
        [](const PyramidArgs <T>&                                                       \
               a) { return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.buffer); } \
  }

// Calls visit(member) with each of the 12.
template <class Visit>
void for_each_pyramid(const Visit& visit) {
  visit(MEMBER(nuqiPyrDown_Gauss5x5_8u_C1R, uint8_t, 1, 1, false));
  visit(MEMBER(nuqiPyrDown_Gauss5x5_8u_C3R, uint8_t, 1, 3, false));
  visit(MEMBER(nuqiPyrDown_Gauss5x5_8s_C1R, int8_t, 2, 1, false));
  visit(MEMBER(nuqiPyrDown_Gauss5x5_8s_C3R, int8_t, 2, 3, false));
  visit(MEMBER(nuqiPyrDown_Gauss5x5_32f_C1R, float, 9, 1, false));
  visit(MEMBER(nuqiPyrDown_Gauss5x5_32f_C3R, float, 9, 3, false));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_8u_C1R, uint8_t, 1, 1, true));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_8u_C3R, uint8_t, 1, 3, true));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_8s_C1R, int8_t, 2, 1, true));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_8s_C3R, int8_t, 2, 3, true));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_32f_C1R, float, 9, 1, true));
  visit(MEMBER(nuqiPyrUp_Gauss5x5_32f_C3R, float, 9, 3, true));
}

#undef MEMBER

}  // namespace nuqi::test

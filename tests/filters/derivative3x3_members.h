// Every fixed 3x3 derivative behind one argument list: for its tests and benchmarks.
#pragma once

#include "filters/derivative3x3_reference.h"
#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct DerivativeArgs {
  const T* src;
  int32_t srcStep;
  DerivativeResult<T>* dst;
  int32_t dstStep;
  int32_t bottomUp;
  RoiSize roi;
  int32_t shift;
};

template <class T>
struct DerivativeMember {
  const char* name;
  DerivativeKind kind;
  bool has_bottom_up, has_shift;
  StatusCode (*call)(const DerivativeArgs<T>&);
};

// clang-format off
#define IMAGES a.src, a.srcStep, a.dst, a.dstStep
#define MEMBER(name, T, kind, has_bottom_up, has_shift, ...)  \
  visit(DerivativeMember<T>{                                  \
      #name, DerivativeKind::kind, has_bottom_up, has_shift,  \
      [](const DerivativeArgs<T>& a) { return name(IMAGES, __VA_ARGS__); }})
#define PLAIN(name, T, kind)   MEMBER(name, T, kind, false, false, a.roi)
#define UP(name, T, kind)      MEMBER(name, T, kind, true, false, a.bottomUp, a.roi)
#define SHIFT(name, T, kind)   MEMBER(name, T, kind, false, true, a.roi, a.shift)
#define UPSHIFT(name, T, kind) MEMBER(name, T, kind, true, true, a.bottomUp, a.roi, a.shift)

// Calls visit(member) with each of the 18.
template <class Visit>
void for_each_derivative(const Visit& visit) {
  PLAIN  (nuqiSobel3x3_Dx_8u16s_C1R,   uint8_t, dx);
  PLAIN  (nuqiSobel3x3_Dx_8s16s_C1R,   int8_t,  dx);
  PLAIN  (nuqiSobel3x3_Dx_32f_C1R,     float,   dx);
  UP     (nuqiSobel3x3_Dy_8u16s_C1R,   uint8_t, dy);
  UP     (nuqiSobel3x3_Dy_8s16s_C1R,   int8_t,  dy);
  UP     (nuqiSobel3x3_Dy_32f_C1R,     float,   dy);
  PLAIN  (nuqiSobel3x3_D2x_8u16s_C1R,  uint8_t, d2x);
  PLAIN  (nuqiSobel3x3_D2x_8s16s_C1R,  int8_t,  d2x);
  PLAIN  (nuqiSobel3x3_D2y_8u16s_C1R,  uint8_t, d2y);
  PLAIN  (nuqiSobel3x3_D2y_8s16s_C1R,  int8_t,  d2y);
  UP     (nuqiSobel3x3_DxDy_8u16s_C1R, uint8_t, dxdy);
  UP     (nuqiSobel3x3_DxDy_8s16s_C1R, int8_t,  dxdy);
  SHIFT  (nuqiScharr_Dx_8u16s_C1R,     uint8_t, scharr_dx);
  SHIFT  (nuqiScharr_Dx_8s16s_C1R,     int8_t,  scharr_dx);
  SHIFT  (nuqiScharr_Dx_32f_C1R,       float,   scharr_dx);
  UPSHIFT(nuqiScharr_Dy_8u16s_C1R,     uint8_t, scharr_dy);
  UPSHIFT(nuqiScharr_Dy_8s16s_C1R,     int8_t,  scharr_dy);
  UPSHIFT(nuqiScharr_Dy_32f_C1R,       float,   scharr_dy);
}
// clang-format on

#undef IMAGES
#undef MEMBER
#undef PLAIN
#undef UP
#undef SHIFT
#undef UPSHIFT

}  // namespace nuqi::test

/* The public header and a call in C99; the test program calls it. */
#include "nuqi/nuqi.h"

StatusCode add_in_c(const uint8_t* src, float* acc, int32_t width) {
  RoiSize roi = {0, 1};
  roi.width = width;
  return nuqiAdd_8u32f_C1IR(src, width, acc, 4 * width, roi);
}

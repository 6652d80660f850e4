// The thresholds: nuqiThreshold.
#include "arith/threshold.h"

#include "core/validate.h"
#include "nuqi/threshold.h"

namespace nuqi {
namespace {

template <class T>
StatusCode threshold(Image<const T> src, Image<T> dst, RoiSize roi, T level, T value) {
  // clang-format off
  if (any_null(src.data, dst.data))                         return StatusNullPtr;
  if (negative(roi))                                        return StatusBadSize;
  if (short_row(src, roi.width) || uneven(src))             return StatusBadSize;
  if (short_row(dst, roi.width) || uneven(dst))             return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width) && tight(dst, roi.width));
  if (empty(roi)) return StatusOk;
  const ThresholdJob<T> job = {.src = src, .dst = dst, .roi = roi, .level = level, .value = value};
  threshold_kernels().of_type<T>().threshold(job);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, T* dst, int32_t dstStep, RoiSize roi,            \
                  T level, T value) {                                                             \
    return threshold<T>({src, srcStep}, {dst, dstStep}, roi, level, value);                       \
  }
ENTRY(nuqiThreshold_8u_C1R,   uint8_t)
ENTRY(nuqiThreshold_32f_C1R,  float)
#undef ENTRY

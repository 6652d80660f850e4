// The absolute-difference family: nuqiAbsDiff, nuqiAbsDiffC.
#include "arith/abs_diff.h"

#include "core/validate.h"

namespace nuqi {
namespace {

template <class T>
StatusCode abs_diff(Image<const T> src, Image<const T> src2, Image<T> dst, RoiSize roi) {
  // clang-format off
  if (any_null(src.data, src2.data, dst.data))              return StatusNullPtr;
  if (below_one(roi))                                       return StatusBadSize;
  if (short_row(src, roi.width) || uneven(src))             return StatusBadSize;
  if (short_row(src2, roi.width) || uneven(src2))           return StatusBadSize;
  if (short_row(dst, roi.width) || uneven(dst))             return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width) && tight(src2, roi.width) && tight(dst, roi.width));
  const AbsDiffJob<T> job = {.src = src, .src2 = src2, .dst = dst, .roi = roi};
  abs_diff_kernels().of_type<T>().of_images(job);
  return StatusOk;
}

template <class T>
StatusCode abs_diff_c(Image<const T> src, Image<T> dst, RoiSize roi, T constant) {
  // clang-format off
  if (any_null(src.data, dst.data))                         return StatusNullPtr;
  if (below_one(roi))                                       return StatusBadSize;
  // Deliberate: nuqiAbsDiffC_32f_C1R, too, holds its steps against the width in pixels.
  if (src.step < roi.width || dst.step < roi.width)         return StatusBadSize;
  if (uneven(src) || uneven(dst))                           return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width) && tight(dst, roi.width));
  const AbsDiffJob<T> job = {.src = src, .dst = dst, .roi = roi, .constant = constant};
  abs_diff_kernels().of_type<T>().of_constant(job);
  return StatusOk;
}

constexpr uint8_t saturate(int32_t value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src1, int32_t src1Step, const T* src2, int32_t src2Step,               \
                  T* dst, int32_t dstStep, RoiSize roi) {                                         \
    return abs_diff<T>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, roi);                  \
  }
ENTRY(nuqiAbsDiff_8u_C1R,   uint8_t)
ENTRY(nuqiAbsDiff_32f_C1R,  float)
#undef ENTRY

StatusCode nuqiAbsDiffC_8u_C1R(const uint8_t* src, int32_t srcStep,
                               uint8_t* dst, int32_t dstStep, RoiSize roi, int32_t value) {
  return abs_diff_c<uint8_t>({src, srcStep}, {dst, dstStep}, roi, saturate(value));
}
StatusCode nuqiAbsDiffC_32f_C1R(const float* src, int32_t srcStep,
                                float* dst, int32_t dstStep, RoiSize roi, float value) {
  return abs_diff_c<float>({src, srcStep}, {dst, dstStep}, roi, value);
}

// The copy family: nuqiCopy, between interleaved and planar images.
#include "arith/copy.h"

#include <type_traits>

#include "core/validate.h"

namespace nuqi {
namespace {

// Floats are copied as integers.
template <class T>
using Bits = std::conditional_t<std::is_same_v<T, float>, uint32_t, T>;

template <class T>
Image<Bits<T>> bits_of(T* data, int32_t step) {
  return {reinterpret_cast<Bits<T>*>(data), step};
}
template <class T>
Image<const Bits<T>> bits_of(const T* data, int32_t step) {
  return {reinterpret_cast<const Bits<T>*>(data), step};
}

template <int channels, class T>
StatusCode split(const T* data, int32_t dataStep, T* const planes[], int32_t step, RoiSize roi) {
  if (any_null(data, planes)) return StatusNullPtr;
  int given = 0, channel = 0;
  for (int k = 0; k < channels; ++k)
    if (planes[k] != nullptr) ++given, channel = k;
  const auto src = bits_of(data, dataStep);
  const auto plane = bits_of(planes[channel], step);

  // clang-format off
  if (given != 1 && given != channels)                          return StatusNullPtr;
  if (negative(roi))                                            return StatusBadSize;
  if (short_row(src, roi.width, channels) || uneven(src))       return StatusBadSize;
  if (short_row(plane, roi.width) || uneven(plane))             return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width, channels) && tight(plane, roi.width));
  if (empty(roi)) return StatusOk;
  if (given == 1) {
    const SplitJob<Bits<T>> job = {.src = src, .planes = {plane}, .roi = roi};
    copy_kernels().of_type<Bits<T>>().extract[channels - 3][channel](job);
  } else {
    SplitJob<Bits<T>> job = {.src = src, .planes = {}, .roi = roi};
    for (int k = 0; k < channels; ++k) job.planes[k] = bits_of(planes[k], step);
    copy_kernels().of_type<Bits<T>>().split[channels - 3](job);
  }
  return StatusOk;
}

template <int channels, class T>
StatusCode join(const T* const planes[], int32_t step, T* data, int32_t dataStep, RoiSize roi) {
  if (any_null(planes, data)) return StatusNullPtr;
  const auto plane = bits_of(planes[0], step);
  const auto dst = bits_of(data, dataStep);

  // clang-format off
  if (any_null(planes[0], planes[1], planes[2]))                return StatusNullPtr;
  if (any_null(planes[channels - 1]))                           return StatusNullPtr;
  if (below_one(roi))                                           return StatusBadSize;
  if (short_row(dst, roi.width, channels) || uneven(dst))       return StatusBadSize;
  if (short_row(plane, roi.width) || uneven(plane))             return StatusBadSize;
  // clang-format on

  ContiguousCollapse(roi, tight(dst, roi.width, channels) && tight(plane, roi.width));
  JoinJob<Bits<T>> job = {.planes = {}, .dst = dst, .roi = roi};
  for (int k = 0; k < channels; ++k) job.planes[k] = bits_of(planes[k], step);
  copy_kernels().of_type<Bits<T>>().join[channels - 3](job);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, channels)                                                                  \
  StatusCode name(const T* src, int32_t srcStep, T* const dst[channels], int32_t dstStep,         \
                  RoiSize roi) {                                                                  \
    return split<channels>(src, srcStep, dst, dstStep, roi);                                      \
  }
ENTRY(nuqiCopy_8u_C3P3R,   uint8_t, 3)
ENTRY(nuqiCopy_8u_C4P4R,   uint8_t, 4)
ENTRY(nuqiCopy_32f_C3P3R,  float,   3)
ENTRY(nuqiCopy_32f_C4P4R,  float,   4)
#undef ENTRY

#define ENTRY(name, T, channels)                                                                  \
  StatusCode name(const T* const src[channels], int32_t srcStep, T* dst, int32_t dstStep,         \
                  RoiSize roi) {                                                                  \
    return join<channels>(src, srcStep, dst, dstStep, roi);                                       \
  }
ENTRY(nuqiCopy_8u_P3C3R,   uint8_t, 3)
ENTRY(nuqiCopy_8u_P4C4R,   uint8_t, 4)
ENTRY(nuqiCopy_32f_P3C3R,  float,   3)
ENTRY(nuqiCopy_32f_P4C4R,  float,   4)
#undef ENTRY

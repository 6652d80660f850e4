// The Gaussian pyramid: nuqiPyrDown, nuqiPyrUp, and the queries of their buffers' sizes.
#include "pyramid/pyramid.h"

#include "core/scratch.h"
#include "core/validate.h"

namespace nuqi {
namespace {

template <int channels, class T>
StatusCode down(Image<const T> src, Image<T> dst, RoiSize roi, const void* buffer) {
  // clang-format off
  if (any_null(src.data, dst.data) || buffer == nullptr)             return StatusNullPtr;
  if (negative(roi))                                                 return StatusBadSize;
  if (short_row(src, roi.width, channels) || uneven(src))            return StatusBadSize;
  if (short_row(dst, roi.width / 2, channels) || uneven(dst))        return StatusBadSize;
  if (roi.width % 2 != 0 || roi.height % 2 != 0)                     return StatusBadSize;
  // clang-format on

  if (empty(roi)) return StatusOk;
  pyramid_down_kernels().of_type<T>().of[channels == 3]({.src = src, .dst = dst, .roi = roi});
  return StatusOk;
}

template <int channels, class T>
StatusCode up(Image<const T> src, Image<T> dst, RoiSize roi, const void* buffer) {
  // clang-format off
  if (any_null(src.data, dst.data) || buffer == nullptr)             return StatusNullPtr;
  if (negative(roi))                                                 return StatusBadSize;
  if (short_row(src, roi.width, channels) || uneven(src))            return StatusBadSize;
  if (short_row(dst, roi.width, 2 * channels) || uneven(dst))        return StatusBadSize;
  // clang-format on

  if (empty(roi)) return StatusOk;
  pyramid_up_kernels().of_type<T>().of[channels == 3]({.src = src, .dst = dst, .roi = roi});
  return StatusOk;
}

// Rows of `values`, and `spare` more, for each channel. The kernels keep their sums in registers: the
// sizes are the contract's promise.
constexpr int64_t buffer_size(int rows, int32_t channels, int64_t values, int64_t spare) {
  return rows * ((channels * (values + spare) + 15) & ~int64_t{15});
}

constexpr bool bad_channels(int32_t channels) { return channels != 1 && channels != 3; }

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// Deliberate: all failures but the first store 0.
StatusCode nuqiPyrDownGetBufSize_Gauss5x5(int32_t roiWidth, int32_t dataType, int32_t channels,
                                          int32_t* bufferSize) {
  const int64_t width = roiWidth;
  const int64_t size = dataType == k32f ? buffer_size(6, channels, 2 * width, 96)
                                        : buffer_size(6, channels, width, 48);

  // clang-format off
  if (any_null(bufferSize))                                          return StatusNullPtr;
  *bufferSize = 0;
  if (roiWidth < 0 || roiWidth % 2 != 0)                             return StatusBadSize;
  if (bad_channels(channels))                                        return StatusBadChannels;
  if (bad_data_type(dataType))                                       return StatusBadDataType;
  if (!fits_int(size))                                               return StatusBadSize;
  // clang-format on

  *bufferSize = static_cast<int32_t>(size);
  return StatusOk;
}

StatusCode nuqiPyrUpGetBufSize_Gauss5x5(int32_t roiWidth, int32_t dataType, int32_t channels,
                                        int32_t* bufferSize) {
  const int64_t size = buffer_size(3, channels, 8 * int64_t{roiWidth}, 96);

  // clang-format off
  if (any_null(bufferSize))                                          return StatusNullPtr;
  *bufferSize = 0;
  if (roiWidth < 0)                                                  return StatusBadSize;
  if (bad_channels(channels))                                        return StatusBadChannels;
  if (bad_data_type(dataType))                                       return StatusBadDataType;
  if (!fits_int(size))                                               return StatusBadSize;
  // clang-format on

  *bufferSize = static_cast<int32_t>(size);
  return StatusOk;
}

// clang-format off

#define ENTRY(name, T, direction, channels)                                                       \
  StatusCode name(const T* src, int32_t srcStep, T* dst, int32_t dstStep, RoiSize srcRoi,         \
                  void* buffer) {                                                                 \
    return direction<channels, T>({src, srcStep}, {dst, dstStep}, srcRoi, buffer);                \
  }
ENTRY(nuqiPyrDown_Gauss5x5_8u_C1R,   uint8_t, down, 1)
ENTRY(nuqiPyrDown_Gauss5x5_8u_C3R,   uint8_t, down, 3)
ENTRY(nuqiPyrDown_Gauss5x5_8s_C1R,   int8_t,  down, 1)
ENTRY(nuqiPyrDown_Gauss5x5_8s_C3R,   int8_t,  down, 3)
ENTRY(nuqiPyrDown_Gauss5x5_32f_C1R,  float,   down, 1)
ENTRY(nuqiPyrDown_Gauss5x5_32f_C3R,  float,   down, 3)
ENTRY(nuqiPyrUp_Gauss5x5_8u_C1R,     uint8_t, up,   1)
ENTRY(nuqiPyrUp_Gauss5x5_8u_C3R,     uint8_t, up,   3)
ENTRY(nuqiPyrUp_Gauss5x5_8s_C1R,     int8_t,  up,   1)
ENTRY(nuqiPyrUp_Gauss5x5_8s_C3R,     int8_t,  up,   3)
ENTRY(nuqiPyrUp_Gauss5x5_32f_C1R,    float,   up,   1)
ENTRY(nuqiPyrUp_Gauss5x5_32f_C3R,    float,   up,   3)
#undef ENTRY

// The fixed 3x3 derivatives: nuqiSobel3x3_*, nuqiScharr_*.
#include "filters/derivative3x3.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/validate.h"

namespace nuqi {
namespace {

// The image with its last row first.
template <class T>
Image<T> upside_down(const Image<T>& image, int32_t height) {
  return {row_of(image, height - 1), -image.step};
}

// 2^-shift. From 128 on the doubled one is infinite and its reciprocal 0.
float scale_of(int32_t shift) {
  float doubled = 1;
  for (int32_t i = 0; i < std::min(shift, 128); ++i) doubled *= 2;
  return 1 / doubled;
}

void store_pixel(int16_t* to, int value) {
  const int16_t pixel = static_cast<int16_t>(value);
  std::memcpy(to, &pixel, sizeof pixel);
}

// The last row of Scharr Dy from column 8 * ((width - 1) / 8) on: shifted first, negated then.
void shift_then_negate(Image<const uint8_t> src, Image<int16_t> dst, RoiSize roi, int32_t shift) {
  const int32_t last = roi.width - 1;
  const uint8_t* here = row_of(src, roi.height - 1);
  const uint8_t* above = row_of(src, roi.height - 2);
  int16_t* out = row_of(dst, roi.height - 1);
  for (int32_t x = last / 8 * 8; x <= last; ++x) {
    const int32_t left = std::max(x - 1, 0), right = std::min(x + 1, last);
    const auto smoothed = [&](const uint8_t* row) {
      return 3 * row[left] + 10 * row[x] + 3 * row[right];
    };
    store_pixel(out + x, -((smoothed(here) - smoothed(above)) >> shift));
  }
}

// Members without bottomUp or shift pass 0.
template <Derivative derivative, class T>
StatusCode differentiate(Image<const T> src, Image<FilterResult<T>> dst, RoiSize roi,
                         int32_t bottom_up, int32_t shift) {
  constexpr bool from_8u = std::is_same_v<T, uint8_t>, floats = std::is_same_v<T, float>;

  // clang-format off
  if (shift < 0)                                   return StatusUnsupported;
  if (bottom_up != 0 && bottom_up != 1)            return StatusUnsupported;
  if (any_null(src.data) || any_null(dst.data))    return StatusNullPtr;
  if (roi.width < 0 || roi.height < 2)             return StatusBadSize;
  if (short_row(src, roi.width) || uneven(src))    return StatusBadSize;
  if (short_row(dst, roi.width) || uneven(dst))    return StatusBadSize;
  // clang-format on

  if (roi.width == 0) {
    // Deliberate: nuqiSobel3x3_Dx_8u16s_C1R takes an empty row for a row of one pixel.
    if constexpr (derivative == Derivative::dx && from_8u)
      for (int32_t y = 0; y < roi.height; ++y) store_pixel(row_of(dst, y), 0);
    return StatusOk;
  }
  const int32_t byte_shift = std::min(shift, 15);
  const DerivativeJob<T> job = {
      .src = bottom_up ? upside_down(src, roi.height) : src,
      .dst = bottom_up ? upside_down(dst, roi.height) : dst,
      .roi = roi,
      .shift = byte_shift,
      .scale = floats ? scale_of(shift) : 0,
  };
  derivative_kernels().of_type<T>().of[static_cast<int>(derivative)](job);
  // Deliberate: nuqiScharr_Dy_8u16s_C1R rounds the end of the last row the other way.
  if constexpr (derivative == Derivative::scharr_dy && from_8u)
    if (bottom_up) shift_then_negate(src, dst, roi, byte_shift);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, derivative)                                                                \
  StatusCode name(const T* src, int32_t srcStep, FilterResult<T>* dst, int32_t dstStep,           \
                  RoiSize roi) {                                                                  \
    return differentiate<derivative, T>({src, srcStep}, {dst, dstStep}, roi, 0, 0);               \
  }
ENTRY(nuqiSobel3x3_Dx_8u16s_C1R,   uint8_t, Derivative::dx)
ENTRY(nuqiSobel3x3_Dx_8s16s_C1R,   int8_t,  Derivative::dx)
ENTRY(nuqiSobel3x3_Dx_32f_C1R,     float,   Derivative::dx)
ENTRY(nuqiSobel3x3_D2x_8u16s_C1R,  uint8_t, Derivative::d2x)
ENTRY(nuqiSobel3x3_D2x_8s16s_C1R,  int8_t,  Derivative::d2x)
ENTRY(nuqiSobel3x3_D2y_8u16s_C1R,  uint8_t, Derivative::d2y)
ENTRY(nuqiSobel3x3_D2y_8s16s_C1R,  int8_t,  Derivative::d2y)
#undef ENTRY

#define ENTRY(name, T, derivative)                                                                \
  StatusCode name(const T* src, int32_t srcStep, FilterResult<T>* dst, int32_t dstStep,           \
                  int32_t bottomUp, RoiSize roi) {                                                \
    return differentiate<derivative, T>({src, srcStep}, {dst, dstStep}, roi, bottomUp, 0);        \
  }
ENTRY(nuqiSobel3x3_Dy_8u16s_C1R,   uint8_t, Derivative::dy)
ENTRY(nuqiSobel3x3_Dy_8s16s_C1R,   int8_t,  Derivative::dy)
ENTRY(nuqiSobel3x3_Dy_32f_C1R,     float,   Derivative::dy)
ENTRY(nuqiSobel3x3_DxDy_8u16s_C1R, uint8_t, Derivative::dxdy)
ENTRY(nuqiSobel3x3_DxDy_8s16s_C1R, int8_t,  Derivative::dxdy)
#undef ENTRY

#define ENTRY(name, T, derivative)                                                                \
  StatusCode name(const T* src, int32_t srcStep, FilterResult<T>* dst, int32_t dstStep,           \
                  RoiSize roi, int32_t shift) {                                                   \
    return differentiate<derivative, T>({src, srcStep}, {dst, dstStep}, roi, 0, shift);           \
  }
ENTRY(nuqiScharr_Dx_8u16s_C1R,     uint8_t, Derivative::scharr_dx)
ENTRY(nuqiScharr_Dx_8s16s_C1R,     int8_t,  Derivative::scharr_dx)
ENTRY(nuqiScharr_Dx_32f_C1R,       float,   Derivative::scharr_dx)
#undef ENTRY

#define ENTRY(name, T, derivative)                                                                \
  StatusCode name(const T* src, int32_t srcStep, FilterResult<T>* dst, int32_t dstStep,           \
                  int32_t bottomUp, RoiSize roi, int32_t shift) {                                 \
    return differentiate<derivative, T>({src, srcStep}, {dst, dstStep}, roi, bottomUp, shift);    \
  }
ENTRY(nuqiScharr_Dy_8u16s_C1R,     uint8_t, Derivative::scharr_dy)
ENTRY(nuqiScharr_Dy_8s16s_C1R,     int8_t,  Derivative::scharr_dy)
ENTRY(nuqiScharr_Dy_32f_C1R,       float,   Derivative::scharr_dy)
#undef ENTRY

// Flood fills of equal pixels: nuqiFloodFill_4Con, nuqiFloodFill_8Con and nuqiFloodFillGetSize.
#include "fill/flood_fill.h"

#include "core/validate.h"
#include "fill/fill_args.h"

namespace nuqi {
namespace {

// Neither less nor greater: a NaN equals everything.
template <class T>
bool equal(T a, T b) {
  return !(a < b) && !(a > b);
}

template <bool diagonal, class T, class Value>
StatusCode fill(Image<T> image, RoiSize roi, PixelPoint seed, Value value, FillRegion* region,
                void* buffer) {
  // clang-format off
  if (any_null(image.data) || any_null(region))                     return StatusNullPtr;
  if (any_null(static_cast<char*>(buffer)))                         return StatusNullPtr;
  if (below_one(roi))                                               return StatusBadSize;
  if (short_row(image, roi.width) || uneven(image))                 return StatusBadSize;
  if (!inside(seed, roi))                                           return StatusBadArg;
  if (sizeof(T) == 1 && (value < 0 || value > 255))                 return StatusUnsupported;
  // clang-format on

  const T new_value = static_cast<T>(value);
  if (equal(pixel_of(image, seed), new_value))
    return StatusOk;  // deliberate: nothing is written, no record either
  const auto& kernels = flood_fill_kernels().of_type<T>();
  *region = kernels.of[diagonal](fill_job(image, roi, seed, new_value, buffer));
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiFloodFillGetSize(RoiSize roi, int32_t* size) {
  // clang-format off
  if (below_one(roi))                                               return StatusBadSize;
  if (any_null(size))  /* deliberate: after the size */             return StatusNullPtr;
  // clang-format on

  *size = static_cast<int32_t>(fill_words_size(roi));
  return StatusOk;
}

// clang-format off

#define ENTRY(name, T, Value, diagonal)                                                           \
  StatusCode name(T* image, int32_t step, RoiSize roi, PixelPoint seed, Value newValue,           \
                  FillRegion* region, void* buffer) {                                             \
    return fill<diagonal, T>({image, step}, roi, seed, newValue, region, buffer);                 \
  }
ENTRY(nuqiFloodFill_4Con_8u_C1IR,   uint8_t, int32_t, !kDiagonal)
ENTRY(nuqiFloodFill_8Con_8u_C1IR,   uint8_t, int32_t, kDiagonal)
ENTRY(nuqiFloodFill_4Con_32f_C1IR,  float,   float,   !kDiagonal)
ENTRY(nuqiFloodFill_8Con_32f_C1IR,  float,   float,   kDiagonal)
#undef ENTRY

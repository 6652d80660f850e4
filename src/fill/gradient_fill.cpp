// Flood fills along gradual changes: nuqiFloodFill_Grad4Con, nuqiFloodFill_Grad8Con and
// nuqiFloodFillGetSize_Grad.
#include "fill/gradient_fill.h"

#include "core/validate.h"
#include "fill/fill_args.h"

namespace nuqi {
namespace {

template <bool diagonal, class T, class Value>
StatusCode fill(Image<T> image, RoiSize roi, PixelPoint seed, Value value, Value lower, Value upper,
                FillRegion* region, void* buffer) {
  // clang-format off
  if (any_null(image.data) || any_null(region))                     return StatusNullPtr;
  if (any_null(static_cast<char*>(buffer)))                         return StatusNullPtr;
  if (below_one(roi))                                               return StatusBadSize;
  if (short_row(image, roi.width) || uneven(image))                 return StatusBadSize;
  if (!inside(seed, roi))                                           return StatusBadArg;
  if (sizeof(T) == 1 && (value < 0 || value > 255))                 return StatusUnsupported;
  if (lower < 0 || upper < 0)                                       return StatusBadArg;
  if (sizeof(T) == 1 && lower > 255 - upper)                       return StatusBadArg;
  // clang-format on

  const FillDeltas<T> deltas = {static_cast<T>(lower), static_cast<T>(upper)};
  const auto& kernels = gradient_fill_kernels().of_type<T>();
  *region = kernels.of[diagonal](fill_job(image, roi, seed, static_cast<T>(value), buffer), deltas);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiFloodFillGetSize_Grad(RoiSize roi, int32_t* size) {
  // clang-format off
  if (below_one(roi))                                               return StatusBadSize;
  if (any_null(size))  /* deliberate: after the size */             return StatusNullPtr;
  // clang-format on

  const uint32_t width = static_cast<uint32_t>(roi.width);
  const uint32_t height = static_cast<uint32_t>(roi.height);
  *size = static_cast<int32_t>((width + 2) * (height + 2) + fill_words_size(roi));
  return StatusOk;
}

// clang-format off

#define ENTRY(name, T, Value, diagonal)                                                           \
  StatusCode name(T* image, int32_t step, RoiSize roi, PixelPoint seed, Value newValue,           \
                  Value lowerDelta, Value upperDelta, FillRegion* region, void* buffer) {         \
    return fill<diagonal, T>({image, step}, roi, seed, newValue, lowerDelta, upperDelta, region,  \
                             buffer);                                                             \
  }
ENTRY(nuqiFloodFill_Grad4Con_8u_C1IR,   uint8_t, int32_t, !kDiagonal)
ENTRY(nuqiFloodFill_Grad8Con_8u_C1IR,   uint8_t, int32_t, kDiagonal)
ENTRY(nuqiFloodFill_Grad4Con_32f_C1IR,  float,   float,   !kDiagonal)
ENTRY(nuqiFloodFill_Grad8Con_32f_C1IR,  float,   float,   kDiagonal)
#undef ENTRY

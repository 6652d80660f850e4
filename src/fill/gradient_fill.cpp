// Flood fills along gradual changes: nuqiFloodFill_Grad4Con, nuqiFloodFill_Grad8Con and
// nuqiFloodFillGetSize_Grad.
#include "fill/gradient_fill.h"

#include "core/validate.h"
#include "fill/pixel_fill.h"

namespace nuqi {
namespace {

template <class T>
class Joins {
 public:
  Joins(int32_t lower, int32_t upper) : lower_(lower), upper_(upper) {}
  bool operator()(int from, int to) const { return to - from <= upper_ && from - to <= lower_; }

 private:
  int lower_, upper_;
};
template <>
class Joins<float> {
 public:
  Joins(double lower, double upper)
      : centre_((lower - upper) / 2), half_range_((lower + upper) / 2) {}
  bool operator()(double from, double to) const {
    return __builtin_fabs((from - to) - centre_) <= half_range_;
  }

 private:
  double centre_, half_range_;
};

// The map of the pixels that are taken, a byte each.
class TakenMap {
 public:
  TakenMap(void* buffer, RoiSize roi) : bytes_(static_cast<uint8_t*>(buffer)), width_(roi.width) {
    std::memset(bytes_, 0, static_cast<size_t>(int64_t{roi.width} * roi.height));
  }
  uint8_t& operator[](PixelPoint at) const { return bytes_[at.y * width_ + at.x]; }

 private:
  uint8_t* bytes_;
  int64_t width_;
};

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

  const T new_value = static_cast<T>(value);
  if (roi.width >= kFillNarrow) {
    const auto& kernels = gradient_fill_kernels().of_type<T>();
    const FillDeltas<T> deltas = {static_cast<T>(lower), static_cast<T>(upper)};
    *region = kernels.of[diagonal](fill_job(image, roi, seed, new_value, buffer), deltas);
    return StatusOk;
  }
  const Joins<T> joins(lower, upper);
  const TakenMap taken(buffer, roi);
  taken[seed] = 1;
  void* const stack = &taken[{0, roi.height}];
  *region = fill_pixels<diagonal>(roi, seed, stack, [&](PixelPoint from, PixelPoint to) {
    if (taken[to] != 0 || !joins(pixel_of(image, from), pixel_of(image, to))) return false;
    taken[to] = 1;
    return true;
  });
  // Not before: steps are between the values as they were.
  for (int32_t y = region->y; y < region->y + region->height; ++y)
    for (int32_t x = region->x; x < region->x + region->width; ++x)
      if (taken[{x, y}] != 0) set_pixel(image, {x, y}, new_value);
  region->value = new_value;
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
  *size = static_cast<int32_t>((width + 2) * (height + 2) + fill_stack_size(roi));
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

// The extrema: nuqiMinMaxIndx.
#include "stats/min_max.h"

#include "core/validate.h"

namespace nuqi {
namespace {

constexpr bool kMasked = true;

// Any of them may be null.
struct MinMaxResults {
  float *min, *max;
  PixelPoint *min_at, *max_at;
};

void write(float* to, float value) {
  if (to != nullptr) *to = value;
}
void write(PixelPoint* to, int64_t place, int32_t width) {
  if (to != nullptr)
    *to = {static_cast<int32_t>(place % width), static_cast<int32_t>(place / width)};
}

template <int channels, bool masked, class T>
StatusCode find(Image<const T> src, Image<const uint8_t> mask, RoiSize roi, int32_t coi,
                const MinMaxResults& results) {
  const int32_t width = roi.width;

  // clang-format off
  if (any_null(src.data) || (masked && any_null(mask.data)))      return StatusNullPtr;
  if (negative(roi))                                              return StatusBadSize;
  if (short_row(src, width, channels) || uneven(src))             return StatusBadStep;
  if (masked && short_row(mask, width))                           return StatusBadStep;
  if (bad_channel(coi))                                           return StatusBadCoi;
  // clang-format on

  MinMax<T> found;
  if (!empty(roi)) {
    ContiguousCollapse(roi, tight(src, width, channels) && (!masked || tight(mask, width)));
    const MinMaxJob<T> job = {.src = at_channel(src, coi), .mask = mask, .roi = roi};
    found = min_max_kernels().of_type<T>().of[channels == 3][masked](job);
  }
  // Deliberate: where one of the two was not found, neither counts.
  const bool none = found.min_at < 0 || found.max_at < 0;
  write(results.min, none ? 0.0f : static_cast<float>(found.min));
  write(results.max, none ? 0.0f : static_cast<float>(found.max));
  write(results.min_at, none ? 0 : found.min_at, none ? 1 : width);
  write(results.max_at, none ? 0 : found.max_at, none ? 1 : width);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define RESULTS float* min, float* max, PixelPoint* minAt, PixelPoint* maxAt

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, RoiSize roi, RESULTS) {                          \
    return find<1, !kMasked, T>({src, srcStep}, {}, roi, 1, {min, max, minAt, maxAt});            \
  }
ENTRY(nuqiMinMaxIndx_8u_C1R,     uint8_t)
ENTRY(nuqiMinMaxIndx_8s_C1R,     int8_t)
ENTRY(nuqiMinMaxIndx_32f_C1R,    float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, RoiSize roi, int32_t channel, RESULTS) {         \
    return find<3, !kMasked, T>({src, srcStep}, {}, roi, channel, {min, max, minAt, maxAt});      \
  }
ENTRY(nuqiMinMaxIndx_8u_C3CR,    uint8_t)
ENTRY(nuqiMinMaxIndx_8s_C3CR,    int8_t)
ENTRY(nuqiMinMaxIndx_32f_C3CR,   float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, RESULTS) {                                                         \
    return find<1, kMasked, T>(                                                                   \
        {src, srcStep}, {mask, maskStep}, roi, 1, {min, max, minAt, maxAt});                      \
  }
ENTRY(nuqiMinMaxIndx_8u_C1MR,    uint8_t)
ENTRY(nuqiMinMaxIndx_8s_C1MR,    int8_t)
ENTRY(nuqiMinMaxIndx_32f_C1MR,   float)
#undef ENTRY

#define ENTRY(name, T)                                                                            \
  StatusCode name(const T* src, int32_t srcStep, const uint8_t* mask, int32_t maskStep,           \
                  RoiSize roi, int32_t channel, RESULTS) {                                        \
    return find<3, kMasked, T>(                                                                   \
        {src, srcStep}, {mask, maskStep}, roi, channel, {min, max, minAt, maxAt});                \
  }
ENTRY(nuqiMinMaxIndx_8u_C3CMR,   uint8_t)
ENTRY(nuqiMinMaxIndx_8s_C3CMR,   int8_t)
ENTRY(nuqiMinMaxIndx_32f_C3CMR,  float)
#undef ENTRY

#undef RESULTS

// The motion history: nuqiUpdateMotionHistory_8u32f_C1IR.
#include "arith/motion_history.h"

#include <bit>

#include "core/float_order.h"
#include "core/validate.h"

namespace nuqi {
namespace {

constexpr int32_t kQuiet = 0x00400000, kInvalid = static_cast<int32_t>(0xFFC00000);

// The bits of timestamp - duration. Those of a NaN take part in comparisons here and differ between
// makers of processors: a NaN timestamp stays what it is, made quiet; infinity - infinity is -NaN.
int32_t threshold_of(float timestamp, float duration) {
  const float threshold = timestamp - duration;
  if (timestamp != timestamp) return std::bit_cast<int32_t>(timestamp) | kQuiet;
  if (threshold != threshold) return kInvalid;
  return std::bit_cast<int32_t>(threshold);
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiUpdateMotionHistory_8u32f_C1IR(const uint8_t* silhouette, int32_t silhouetteStep,
                                              float* history, int32_t historyStep, RoiSize roi,
                                              float timestamp, float duration) {
  const Image<const uint8_t> moving = {silhouette, silhouetteStep};
  const Image<int32_t> seen = {reinterpret_cast<int32_t*>(history), historyStep};

  // clang-format off
  if (any_null(silhouette, history))                          return StatusNullPtr;
  if (negative(roi))                                          return StatusBadSize;
  if (short_row(moving, roi.width))                           return StatusBadSize;
  if (short_row(seen, roi.width) || uneven(seen))             return StatusBadSize;
  if (!(duration >= 0.0f))                                    return StatusBadArg;
  // clang-format on

  ContiguousCollapse(roi, tight(moving, roi.width) && tight(seen, roi.width));
  if (empty(roi)) return StatusOk;
  const MotionHistoryJob job = {
      .silhouette = moving,
      .history = seen,
      .roi = roi,
      .timestamp = std::bit_cast<int32_t>(timestamp),
      .threshold = float_order(threshold_of(timestamp, duration)),
  };
  motion_history_kernels().update(job);
  return StatusOk;
}

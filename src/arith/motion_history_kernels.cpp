// Stamps the pixels that move, and clears those whose motion is too old.
#include "arith/motion_history.h"
#include "core/simd/memory.h"
#include "core/simd/selection.h"

namespace nuqi::NUQI_ISA {
namespace {

// The float_order() of floats of the threshold's sign. Floats of the other sign get a key of their own
// sign, which is on the right side of the threshold too.
template <bool negative>
NUQI_INLINE Px<int32_t> keys_of(const Px<int32_t>& bits) {
  return negative ? bits ^ broadcast<int32_t>(0x7FFFFFFF) : bits;
}

template <bool negative>
void update(const MotionHistoryJob& job) {
  const auto timestamp = broadcast(job.timestamp), threshold = broadcast(job.threshold);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const uint8_t* silhouette = row_of(job.silhouette, y);
    int32_t* history = row_of(job.history, y);

    for_blocks(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      const auto seen = load(history + x, part);
      const auto kept = select(keys_of<negative>(seen) < threshold, Px<int32_t>{}, seen);
      store(history + x, choose(load(silhouette + x, part), timestamp, kept), part);
    });
  }
}

void update_history(const MotionHistoryJob& job) {
  job.threshold < 0 ? update<true>(job) : update<false>(job);
}

}  // namespace

const MotionHistoryKernels motion_history_kernels = {update_history};

}  // namespace nuqi::NUQI_ISA

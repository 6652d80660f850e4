// A plain loop of the motion history, as one would write it. Compiled by each compiler.
#include "arith/motion_history_plain.h"

namespace nuqi::bench::PLAIN_COMPILER {

void plain_motion_history(const uint8_t* silhouette, int32_t silhouetteStep, float* history,
                          int32_t historyStep, RoiSize roi, float timestamp, float duration) {
  const float threshold = timestamp - duration;
  for (int y = 0; y < roi.height; ++y) {
    const uint8_t* moving = silhouette + static_cast<intptr_t>(y) * silhouetteStep;
    float* __restrict seen = history + static_cast<intptr_t>(y) * (historyStep / 4);
    for (int x = 0; x < roi.width; ++x) {
      const float still = seen[x] < threshold ? 0.0f : seen[x];
      seen[x] = moving[x] != 0 ? timestamp : still;
    }
  }
}

}  // namespace nuqi::bench::PLAIN_COMPILER

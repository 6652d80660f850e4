// A plain loop of the motion history, to measure against.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::bench {

// As each compiler makes it. The threshold is positive.
namespace gcc {
void plain_motion_history(const uint8_t* silhouette, int32_t silhouetteStep, float* history,
                          int32_t historyStep, RoiSize roi, float timestamp, float duration);
}
namespace clang {
void plain_motion_history(const uint8_t* silhouette, int32_t silhouetteStep, float* history,
                          int32_t historyStep, RoiSize roi, float timestamp, float duration);
}

}  // namespace nuqi::bench

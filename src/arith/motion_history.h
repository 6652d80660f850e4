// What the entry of the motion history hands to its kernels.
#pragma once

#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

struct MotionHistoryJob {
  Image<const uint8_t> silhouette;
  Image<int32_t> history;  // bits of floats: they are copied, compared and set as integers
  RoiSize roi;
  int32_t timestamp;  // bits of a float
  int32_t threshold;  // a key: float_order() of a float's bits
};

struct MotionHistoryKernels {
  void (*update)(const MotionHistoryJob&);
};

NUQI_KERNEL_TABLES(MotionHistoryKernels, motion_history_kernels)

}  // namespace nuqi

/* The prototypes of the example family. Those of a real one stand in nuqi.h, under a heading of their own
 * whose name README's table repeats. */
#ifndef NUQI_EXAMPLE_THRESHOLD_H
#define NUQI_EXAMPLE_THRESHOLD_H

#include "nuqi/nuqi.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Thresholds ------------------------------------------------------------------------------
 *
 * Keeps the places of what is brighter than a level, as a mask or as an image:
 *
 *   dst = value where src > level, 0 elsewhere
 *
 * Shapes      One channel, 8u or 32f; both images of one type.
 * Arithmetic  A NaN is not above any level. value is copied bit for bit; 0 is +0.0.
 * Overlap     The destination may be the source, and must not overlap it otherwise.
 * Statuses    1. StatusNullPtr: an image pointer is null.
 *             2. StatusBadSize: width or height below 0.
 *             3. StatusBadSize: a step below its row's bytes, or a 32f step not a multiple of 4.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 */
/** Thresholds: dst = value where src > level, 0 elsewhere; 8u. */
NUQI_API StatusCode nuqiThreshold_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                         int32_t dstStep, RoiSize roi, uint8_t level,
                                         uint8_t value);
/** Thresholds: dst = value where src > level, +0.0 elsewhere; 32f. */
NUQI_API StatusCode nuqiThreshold_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                          int32_t dstStep, RoiSize roi, float level, float value);

#ifdef __cplusplus
}
#endif

#endif /* NUQI_EXAMPLE_THRESHOLD_H */

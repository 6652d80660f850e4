/* nuqi: computer-vision primitives over rectangular regions of images in the caller's memory.
 *
 * What all functions share
 * ------------------------
 * Image     A pointer to the first element of the region's top-left pixel and a step: the distance
 *           in BYTES from the start of one row to the start of the next. The pixels of a row are
 *           contiguous, the rows need not be. No pointer needs any alignment. A step is at least the
 *           row's length in bytes; for elements of 2 or 4 bytes it is a multiple of their size.
 * ROI       The region of interest: width and height in pixels. Nothing outside is read or written.
 * Mask      An 8-bit image of the ROI's size with a step of its own. Non-zero selects the pixel.
 * Result    Every function returns a status: 0 is success, negative values are errors. Arguments are
 *           tested in the order that each function lists; the first failure is returned, and nothing
 *           has been written then. Where a function stores something all the same (a size query 0, a
 *           function that makes a state a null pointer), its list says so.
 * Comments  The line above each function begins with the name of its section, which is its manual. Each
 *           section names a short, complete program, installed under share/doc/nuqi.
 * Names     nuqi + operation + element types + layout. 8u, 8s, 16s and 32f are unsigned and signed
 *           bytes, 16-bit integers and single-precision floats; of two types the first is the
 *           source's. C1 is one channel, C3C one channel of three interleaved ones, I in place, M
 *           masked, R works on a ROI.
 * Threads   There is no global state: any number of calls may run at once on distinct outputs.
 * Stack     A call takes less than 4 KB of the caller's stack, but for histograms, blurs and distances
 *           (up to 16 KB), Sobel with selectable aperture, Laplace, erosion, dilation and template
 *           matching (84 KB) and corners (120 KB).
 * Arithmetic  Single-precision operations round to nearest. The same bits come out on every
 *           instruction set, whatever the alignment and the steps. (The bits of a NaN that an
 *           operation creates are the processor's own.)
 */
/** @file
 * The public interface of nuqi: computer-vision primitives over regions of images. */
#ifndef NUQI_NUQI_H
#define NUQI_NUQI_H

#include <stdint.h>

#define NUQI_VERSION_MAJOR 0
#define NUQI_VERSION_MINOR 1
#define NUQI_VERSION_PATCH 0

#if defined(__GNUC__)
#define NUQI_API __attribute__((visibility("default")))
#else
#define NUQI_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ----------------------------------------------------------------------------------- */

/** A status; the line samplers return their positive number of samples through it. */
typedef int32_t StatusCode;

enum {
  StatusOk = 0,
  StatusNothingToDo = 1,   /**< a warning: a morphology strip had no rows to process */
  StatusUnsupported = -5,  /**< an enumerated or ranged argument has a value outside its set */
  StatusBadSize = -9939,   /**< a size, an aperture or (in most families) a step is out of range */
  StatusNullPtr = -9941,   /**< a pointer is null */
  StatusNoMemory = -9942,  /**< a state could not be allocated */
  StatusDivByZero = -9943, /**< a sum that would divide is zero */
  StatusBadArg = -9944,    /**< an argument is outside its range */
  StatusBadDataType = -9945, /**< a data type is not 1 (8u), 2 (8s) or 9 (32f) */
  StatusBadStep = -9947,     /**< a step is too small or not a multiple of the element size */
  StatusBadContext = -9950,  /**< a state was made for another purpose */
  StatusBadCoi = -9985,      /**< a channel of interest is not 1, 2 or 3 */
  StatusBadChannels = -9986  /**< a channel count is not 1 or 3 */
};

/** The size of a region in pixels. */
typedef struct RoiSize {
  int32_t width;
  int32_t height;
} RoiSize;

/** A pixel's position, counted from the region's top-left pixel (0, 0). */
typedef struct PixelPoint {
  int32_t x;
  int32_t y;
} PixelPoint;

/* ---- Accumulation ----------------------------------------------------------------------------
 *
 * Adds an image, its square, the product of two images or a weighted share of an image to a
 * single-precision accumulator in place: running sums, variances and exponential averages of frames,
 * the material of background models. With s, s1, s2 the sources' pixels as floats:
 *
 *   nuqiAdd          acc = acc + s
 *   nuqiAddSquare    acc = acc + s * s
 *   nuqiAddProduct   acc = acc + s1 * s2
 *   nuqiAddWeighted  acc = acc + alpha * (s - acc)
 *
 * Shapes      One channel. Sources 8u, 8s or 32f (nuqiAddProduct: two of one type), accumulator 32f.
 * Arithmetic  Each operation above is one single-precision operation, in the order written (the
 *             weighted form: subtract, multiply, add). Squares and products of bytes are exact and,
 *             where zero, +0.0. alpha is any float; it is not clamped. Overflow gives infinity.
 * Mask        An unselected pixel's term is +0.0; its accumulator is written too, so that -0.0
 *             becomes +0.0 there. The weighted form replaces alpha by +0.0 instead: an unselected
 *             pixel whose s - acc is infinite or NaN becomes NaN; one where s - acc is below zero
 *             adds -0.0 and leaves -0.0 as it is.
 * Overlap     Sources and mask may be one image or overlap; none may overlap the accumulator.
 * Statuses    1. StatusNullPtr: an image or mask pointer is null.
 *             2. StatusBadSize: width or height below 0.
 *             3. StatusBadSize: a step below its row's bytes, or a 32f step not a multiple of 4.
 *                nuqiAddProduct_32f_C1IR alone compares its two source steps with the width in
 *                pixels, so that their rows may overlap.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 * Example     examples/families/accumulation.c
 */
/** Accumulation: acc = acc + src; 8u. */
NUQI_API StatusCode nuqiAdd_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                       int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src; 8s. */
NUQI_API StatusCode nuqiAdd_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                       int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src; 32f. */
NUQI_API StatusCode nuqiAdd_32f_C1IR(const float* src, int32_t srcStep, float* acc, int32_t accStep,
                                     RoiSize roi);
/** Accumulation: acc = acc + src * src; 8u. */
NUQI_API StatusCode nuqiAddSquare_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src * src; 8s. */
NUQI_API StatusCode nuqiAddSquare_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src * src; 32f. */
NUQI_API StatusCode nuqiAddSquare_32f_C1IR(const float* src, int32_t srcStep, float* acc,
                                           int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src1 * src2; 8u. */
NUQI_API StatusCode nuqiAddProduct_8u32f_C1IR(const uint8_t* src1, int32_t src1Step,
                                              const uint8_t* src2, int32_t src2Step, float* acc,
                                              int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src1 * src2; 8s. */
NUQI_API StatusCode nuqiAddProduct_8s32f_C1IR(const int8_t* src1, int32_t src1Step,
                                              const int8_t* src2, int32_t src2Step, float* acc,
                                              int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src1 * src2; 32f. */
NUQI_API StatusCode nuqiAddProduct_32f_C1IR(const float* src1, int32_t src1Step, const float* src2,
                                            int32_t src2Step, float* acc, int32_t accStep,
                                            RoiSize roi);
/** Accumulation: acc = acc + alpha * (src - acc); 8u. */
NUQI_API StatusCode nuqiAddWeighted_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                               int32_t accStep, RoiSize roi, float alpha);
/** Accumulation: acc = acc + alpha * (src - acc); 8s. */
NUQI_API StatusCode nuqiAddWeighted_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                               int32_t accStep, RoiSize roi, float alpha);
/** Accumulation: acc = acc + alpha * (src - acc); 32f. */
NUQI_API StatusCode nuqiAddWeighted_32f_C1IR(const float* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi, float alpha);

/** Accumulation: acc = acc + src under a mask; 8u. */
NUQI_API StatusCode nuqiAdd_8u32f_C1IMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src under a mask; 8s. */
NUQI_API StatusCode nuqiAdd_8s32f_C1IMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src under a mask; 32f. */
NUQI_API StatusCode nuqiAdd_32f_C1IMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                      int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src * src under a mask; 8u. */
NUQI_API StatusCode nuqiAddSquare_8u32f_C1IMR(const uint8_t* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, float* acc,
                                              int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src * src under a mask; 8s. */
NUQI_API StatusCode nuqiAddSquare_8s32f_C1IMR(const int8_t* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, float* acc,
                                              int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src * src under a mask; 32f. */
NUQI_API StatusCode nuqiAddSquare_32f_C1IMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                            int32_t maskStep, float* acc, int32_t accStep,
                                            RoiSize roi);
/** Accumulation: acc = acc + src1 * src2 under a mask; 8u. */
NUQI_API StatusCode nuqiAddProduct_8u32f_C1IMR(const uint8_t* src1, int32_t src1Step,
                                               const uint8_t* src2, int32_t src2Step,
                                               const uint8_t* mask, int32_t maskStep, float* acc,
                                               int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src1 * src2 under a mask; 8s. */
NUQI_API StatusCode nuqiAddProduct_8s32f_C1IMR(const int8_t* src1, int32_t src1Step,
                                               const int8_t* src2, int32_t src2Step,
                                               const uint8_t* mask, int32_t maskStep, float* acc,
                                               int32_t accStep, RoiSize roi);
/** Accumulation: acc = acc + src1 * src2 under a mask; 32f. */
NUQI_API StatusCode nuqiAddProduct_32f_C1IMR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, float* acc, int32_t accStep,
                                             RoiSize roi);
/** Accumulation: acc = acc + alpha * (src - acc) under a mask; 8u. */
NUQI_API StatusCode nuqiAddWeighted_8u32f_C1IMR(const uint8_t* src, int32_t srcStep,
                                                const uint8_t* mask, int32_t maskStep, float* acc,
                                                int32_t accStep, RoiSize roi, float alpha);
/** Accumulation: acc = acc + alpha * (src - acc) under a mask; 8s. */
NUQI_API StatusCode nuqiAddWeighted_8s32f_C1IMR(const int8_t* src, int32_t srcStep,
                                                const uint8_t* mask, int32_t maskStep, float* acc,
                                                int32_t accStep, RoiSize roi, float alpha);
/** Accumulation: acc = acc + alpha * (src - acc) under a mask; 32f. */
NUQI_API StatusCode nuqiAddWeighted_32f_C1IMR(const float* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, float* acc,
                                              int32_t accStep, RoiSize roi, float alpha);

/* ---- Absolute difference ---------------------------------------------------------------------
 *
 * The absolute difference of two images, or of an image and a constant: where frames differ.
 *
 *   nuqiAbsDiff      dst = |src1 - src2|
 *   nuqiAbsDiffC     dst = |src - value|
 *
 * Shapes      One channel, 8u or 32f; all images of one type.
 * Arithmetic  8u: exact, 0 to 255; value is first limited to 0 to 255. 32f: one subtraction, then
 *             the sign is cleared, that of a NaN and of -0.0 too.
 * Overlap     The destination may be one of the sources, and must not overlap them otherwise.
 * Statuses    1. StatusNullPtr: an image pointer is null.
 *             2. StatusBadSize: width or height below 1.
 *             3. StatusBadSize: a step below its row's bytes, or a 32f step not a multiple of 4.
 *                nuqiAbsDiffC_32f_C1R alone compares its steps with the width in pixels, so that
 *                rows may overlap; they are written from top to bottom.
 * Example     examples/families/abs_diff.c
 */
/** Absolute difference: dst = |src1 - src2|; 8u. */
NUQI_API StatusCode nuqiAbsDiff_8u_C1R(const uint8_t* src1, int32_t src1Step, const uint8_t* src2,
                                       int32_t src2Step, uint8_t* dst, int32_t dstStep,
                                       RoiSize roi);
/** Absolute difference: dst = |src1 - src2|; 32f. */
NUQI_API StatusCode nuqiAbsDiff_32f_C1R(const float* src1, int32_t src1Step, const float* src2,
                                        int32_t src2Step, float* dst, int32_t dstStep, RoiSize roi);
/** Absolute difference: dst = |src - value|; 8u. */
NUQI_API StatusCode nuqiAbsDiffC_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                        int32_t dstStep, RoiSize roi, int32_t value);
/** Absolute difference: dst = |src - value|; 32f. */
NUQI_API StatusCode nuqiAbsDiffC_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                         int32_t dstStep, RoiSize roi, float value);

/* ---- Copies ----------------------------------------------------------------------------------
 *
 * Copies between an interleaved image of three or four channels and as many planes, bit for bit.
 *
 *   C3P3, C4P4   dst[c](x, y) = channel c of src(x, y)
 *   P3C3, P4C4   channel c of dst(x, y) = src[c](x, y)
 *
 * Shapes      8u or 32f. Planes are passed as an array of three or four pointers; one step holds for
 *             all of them.
 * One plane   C3P3 and C4P4 also take an array with one plane, the others null, and copy that channel
 *             alone.
 * Casts       C, unlike C++, takes an array of `uint8_t*` for planes that are read only with a cast:
 *             (const uint8_t* const*)planes.
 * Overlap     Planes and interleaved image must not overlap, nor planes that are written each other.
 * Statuses    C3P3 and C4P4 accept an empty ROI and a single plane, P3C3 and P4C4 refuse both.
 *             1. StatusNullPtr: the interleaved image or the array is null.
 *             2. StatusNullPtr: C3P3, C4P4: the number of planes that are not null is neither 1 nor
 *                all; P3C3, P4C4: a plane is null.
 *             3. StatusBadSize: width or height below 0 (P3C3, P4C4: below 1), a step below its row's
 *                bytes, or a 32f step not a multiple of 4.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 * Example     examples/families/copies.c
 */
/** Copies: three interleaved channels to planes, or one to its plane; 8u. */
NUQI_API StatusCode nuqiCopy_8u_C3P3R(const uint8_t* src, int32_t srcStep, uint8_t* const dst[3],
                                      int32_t dstStep, RoiSize roi);
/** Copies: four interleaved channels to planes, or one to its plane; 8u. */
NUQI_API StatusCode nuqiCopy_8u_C4P4R(const uint8_t* src, int32_t srcStep, uint8_t* const dst[4],
                                      int32_t dstStep, RoiSize roi);
/** Copies: three interleaved channels to planes, or one to its plane; 32f. */
NUQI_API StatusCode nuqiCopy_32f_C3P3R(const float* src, int32_t srcStep, float* const dst[3],
                                       int32_t dstStep, RoiSize roi);
/** Copies: four interleaved channels to planes, or one to its plane; 32f. */
NUQI_API StatusCode nuqiCopy_32f_C4P4R(const float* src, int32_t srcStep, float* const dst[4],
                                       int32_t dstStep, RoiSize roi);
/** Copies: three planes to interleaved channels; 8u. */
NUQI_API StatusCode nuqiCopy_8u_P3C3R(const uint8_t* const src[3], int32_t srcStep, uint8_t* dst,
                                      int32_t dstStep, RoiSize roi);
/** Copies: four planes to interleaved channels; 8u. */
NUQI_API StatusCode nuqiCopy_8u_P4C4R(const uint8_t* const src[4], int32_t srcStep, uint8_t* dst,
                                      int32_t dstStep, RoiSize roi);
/** Copies: three planes to interleaved channels; 32f. */
NUQI_API StatusCode nuqiCopy_32f_P3C3R(const float* const src[3], int32_t srcStep, float* dst,
                                       int32_t dstStep, RoiSize roi);
/** Copies: four planes to interleaved channels; 32f. */
NUQI_API StatusCode nuqiCopy_32f_P4C4R(const float* const src[4], int32_t srcStep, float* dst,
                                       int32_t dstStep, RoiSize roi);

/* ---- Motion history --------------------------------------------------------------------------
 *
 * Keeps, for every pixel, the time of the last motion there, and forgets motion that is too old:
 *
 *   history = timestamp   where silhouette is not 0
 *             +0.0        elsewhere, where history is below timestamp - duration
 *             history     elsewhere
 *
 * Shapes      One channel. The silhouette is 8u, for example a thresholded difference of frames; the
 *             history 32f, in place. Start with a history of zeros.
 * Times       In any unit, one for all calls. timestamp is any float, and its exact bits are
 *             written; duration is 0 or more.
 * Order       "Below" is decided on bits: -NaN, -infinity ... -0.0, +0.0 ... +infinity, NaN. With a
 *             threshold of +0.0 a history of -0.0 is cleared, one of +0.0 stays. The difference of
 *             two infinities counts as -NaN (bits FFC00000), the difference from a NaN as that NaN.
 * Overlap     The silhouette must not overlap the history.
 * Statuses    1. StatusNullPtr: an image pointer is null.
 *             2. StatusBadSize: width or height below 0, a step below its row's bytes, or a history
 *                step not a multiple of 4.
 *             3. StatusBadArg: not (duration >= 0); -0.0 passes.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 * Method      A. Bobick and J. Davis, "The recognition of human movement using temporal templates",
 *             IEEE PAMI 23(3), 2001.
 * Example     examples/families/motion_history.c
 */
/** Motion history: timestamp where silhouette is not 0; clears what is older than duration. */
NUQI_API StatusCode nuqiUpdateMotionHistory_8u32f_C1IR(const uint8_t* silhouette,
                                                       int32_t silhouetteStep, float* history,
                                                       int32_t historyStep, RoiSize roi,
                                                       float timestamp, float duration);

/* ---- Arctangent ------------------------------------------------------------------------------
 *
 * The angle of each vector (x, y) in degrees, from the positive x axis towards the positive y axis,
 * within 0.1406 degrees of the true one: directions of gradients.
 *
 *   t = min(|x|, |y|) / max(max(|x|, |y|), 9.99999993922529e-09)
 *   a = (-15.813189506530762 * t + 61.09419631958008) * t - 0.14050041139125824
 *   a = 90 - a  where |x| < |y|;   a = 180 - a  where x < 0;   a = 360 - a  where y < 0
 *
 * Shapes      Three plain arrays of `length` floats, of any alignment.
 * Arithmetic  Each operation above is one single-precision operation, in the order written; min and
 *             max take their second operand where either is NaN. Angles lie between -0.1405005 and
 *             360.1405; those just outside 0 to 360 belong to the approximation. -0.0 is not below 0.
 *             The angle of (0, 0) is that of (1, 0). A NaN in y, and y and x both infinite, give NaN;
 *             a NaN in x counts as |x| = |y|, x not below 0, except that y = 0 gives the angle of
 *             (1, 0).
 * Overlap     The angles may replace y or x, and must not overlap them otherwise.
 * Statuses    1. StatusNullPtr: a pointer is null.
 *             2. StatusBadSize: length below 0.
 *             StatusOk otherwise; length 0 touches no memory.
 * Example     examples/families/arctangent.c
 */
/** Arctangent: directions of vectors (x, y) in degrees, 0 to 360, within 0.1406. */
NUQI_API StatusCode nuqibFastArctan_32f(const float* y, const float* x, float* angle,
                                        int32_t length);

/* ---- Line samples ----------------------------------------------------------------------------
 *
 * Copies the pixels along a digital straight line, both ends included, into a plain array: profiles
 * of intensity. The longer axis is walked pixel by pixel (y where both are equally long); the other
 * coordinate is the nearest one to the true line, exact halves rounding towards the start.
 *
 * Shapes      8u or 32f, one channel or three interleaved ones. dst has room for
 *             max(|end.x - start.x|, |end.y - start.y|) + 1 pixels, one after the other.
 * Result      The number of pixels written, 1 or more, or a status below 0.
 * Overlap     dst must not overlap the image.
 * Statuses    1. StatusNullPtr: dst is null, or the step of a 32f image is not a multiple of 4.
 *             2. StatusNullPtr: src is null.
 *             3. StatusBadSize: width or height below 1.
 *             4. StatusBadStep: the step is below the row's bytes.
 *             5. StatusBadArg: start or end lies outside the ROI.
 * Method      J. Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems
 *             Journal 4(1), 1965.
 * Example     examples/families/line_samples.c
 */
/** Line samples: pixels from start to end; returns their number; 8u, 1 channel. */
NUQI_API StatusCode nuqiSampleLine_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                          uint8_t* dst, PixelPoint start, PixelPoint end);
/** Line samples: pixels from start to end; returns their number; 8u, 3 channels. */
NUQI_API StatusCode nuqiSampleLine_8u_C3R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                          uint8_t* dst, PixelPoint start, PixelPoint end);
/** Line samples: pixels from start to end; returns their number; 32f, 1 channel. */
NUQI_API StatusCode nuqiSampleLine_32f_C1R(const float* src, int32_t srcStep, RoiSize roi,
                                           float* dst, PixelPoint start, PixelPoint end);
/** Line samples: pixels from start to end; returns their number; 32f, 3 channels. */
NUQI_API StatusCode nuqiSampleLine_32f_C3R(const float* src, int32_t srcStep, RoiSize roi,
                                           float* dst, PixelPoint start, PixelPoint end);

/* ---- Means and deviations --------------------------------------------------------------------
 *
 * The mean, or the mean and the standard deviation, of the pixels of a region: all of them or those
 * that a mask selects, of a one-channel image or of one channel of three interleaved ones. With n the
 * number of pixels taken, S their sum and Q the sum of their squares:
 *
 *   nuqiMean         mean = S / n
 *   nuqiMean_StdDev  mean = S * (1 / n);  stdDev = sqrt(Q * (1 / n) - mean * mean)
 *
 * Each operation above rounds once, in double precision. Where nothing is selected both are 0.0.
 *
 * Shapes      Source 8u, 8s or 32f, one channel; C3C: three channels, of which coi, 1 to 3, is taken.
 * Sums        8u, 8s: S is a 32-bit integer that wraps and is read as signed: the mean of an image
 *                whose sum reaches 2^31 (8.4 million pixels of 255) is wrong by a multiple of 2^32 / n,
 *                and may be negative. Q is exact.
 *             nuqiMean_32f_C1MR: four single-precision sums. Of each eight pixels counted from the
 *                row's start, pixel j is added to sum j mod 4, j before j + 4; the last width mod 8
 *                pixels of a row to sum 0. S is (sum 0 + sum 2) + (sum 1 + sum 3) in double. Rows
 *                that lie back to back (both steps equal to the row's bytes) are one long row here,
 *                up to 2^31 - 1 pixels.
 *             nuqiMean_32f_C3CMR: one double, in raster order.
 *             nuqiMean_StdDev_32f: sixteen doubles for S and sixteen for Q, the one of a pixel being
 *                its column mod 16. After each row the upper half is added to the lower one, 16 to 8,
 *                8 to 4, 4 to 2, 2 to 1, and that to the rows above.
 *             n is a 32-bit integer that wraps; without a mask it is width * height.
 *             Keep to fewer than 8,421,505 pixels of 8u a call: work in stripes and weigh their means
 *             by their numbers of pixels.
 * Range       stdDev is the population's, not clamped: where rounding leaves Q / n below the squared
 *             mean it is NaN. A selected NaN or infinity shows in the results, an unselected one
 *             does not.
 * Overlap     Images may overlap. A result pointer must lie in no image.
 * Statuses    nuqiMean: 1. StatusNullPtr: a pointer is null.
 *                2. StatusBadSize: width or height below 0.
 *                3. StatusBadStep: a step below its row's bytes, or a 32f step not a multiple of 4.
 *                4. StatusBadCoi: coi is not 1, 2 or 3.
 *                StatusOk otherwise; with a width or height of 0 the mean is 0.0.
 *             nuqiMean_StdDev: 1. StatusNullPtr: a pointer is null.
 *                2. StatusBadSize: width or height below 1.
 *                3. StatusBadStep as above; but StatusBadSize from the C3CMR members.
 *                4. StatusBadArg: coi is not 1, 2 or 3.
 * Example     examples/families/means.c
 */
/** Means and deviations: mean under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiMean_8u_C1MR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                     int32_t maskStep, RoiSize roi, double* mean);
/** Means and deviations: mean under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiMean_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                     int32_t maskStep, RoiSize roi, double* mean);
/** Means and deviations: mean under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiMean_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                      int32_t maskStep, RoiSize roi, double* mean);
/** Means and deviations: mean under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_8u_C3CMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                      int32_t maskStep, RoiSize roi, int32_t coi, double* mean);
/** Means and deviations: mean under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_8s_C3CMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                      int32_t maskStep, RoiSize roi, int32_t coi, double* mean);
/** Means and deviations: mean under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_32f_C3CMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                       int32_t maskStep, RoiSize roi, int32_t coi, double* mean);

/** Means and deviations: mean and standard deviation; 8u, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                           double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation; 8s, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_8s_C1R(const int8_t* src, int32_t srcStep, RoiSize roi,
                                           double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation; 32f, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_32f_C1R(const float* src, int32_t srcStep, RoiSize roi,
                                            double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_8u_C3CR(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                            int32_t coi, double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_8s_C3CR(const int8_t* src, int32_t srcStep, RoiSize roi,
                                            int32_t coi, double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_32f_C3CR(const float* src, int32_t srcStep, RoiSize roi,
                                             int32_t coi, double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_8u_C1MR(const uint8_t* src, int32_t srcStep,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                            int32_t maskStep, RoiSize roi, double* mean,
                                            double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiMean_StdDev_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, double* mean,
                                             double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_8u_C3CMR(const uint8_t* src, int32_t srcStep,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t coi, double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_8s_C3CMR(const int8_t* src, int32_t srcStep,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t coi, double* mean, double* stdDev);
/** Means and deviations: mean and standard deviation under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiMean_StdDev_32f_C3CMR(const float* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t coi, double* mean, double* stdDev);

/* ---- Norms -----------------------------------------------------------------------------------
 *
 * How large an image is, how far apart two images are, or how far relative to the second one, over the
 * pixels that a mask selects. With a the first (or only) source and b the second:
 *
 *               Inf                        L1                         L2
 *   Norm        max |a|                    sum |a|                    sqrt(sum a^2)
 *   NormDiff    max |a - b|                sum |a - b|                sqrt(sum (a - b)^2)
 *   NormRel     max |a - b| / max |b|      sum |a - b| / sum |b|      sqrt(sum (a - b)^2 / sum b^2)
 *
 * Shapes      C1: one channel. C3C: one of three, channel 1 to 3. Sources 8u, 8s or 32f. The result is
 *             a double, written on success only.
 * Bytes       Exact; -128 has magnitude 128. L1 sums are kept modulo 2^32 and read as signed: more than
 *             2^31 / 255 bright pixels may come out negative. L2 sums have 64 bits. Keep to fewer than
 *             8,421,505 pixels a call and add the stripes' L1 norms.
 * Range       Of bytes: Inf 0 to 255, L1 a whole number, L2 the root of one.
 * 32f         Single precision throughout, then widened; quotient and root are double. Sums have
 *             sixteen parts: the pixel in column x of its row adds to part x mod 16, rows from top to
 *             bottom, an unselected one +0.0. At the end part i takes part i + 8, then i + 4, i + 2 and
 *             i + 1. A NaN is passed over by Inf and makes L1 and L2 NaN.
 * Zero        A denominator of 0 counts as 2^-52: the result is the numerator times 2^52, or the root
 *             of that.
 * Mask        Unselected pixels count as 0; an empty mask gives 0.0.
 * Overlap     The sources and the mask may overlap in any way.
 * Statuses    1. StatusNullPtr: a pointer is null.
 *             2. StatusBadStep: a step below 1.
 *             3. StatusBadCoi: channel below 1 or above 3 (C3C).
 *             4. StatusBadSize: width or height below 1, a step below the width in pixels (so that rows
 *                may overlap), or a 32f source step not a multiple of 4.
 *             StatusOk otherwise.
 * Example     examples/families/norms.c
 */
/** Norms: greatest magnitude of src under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNorm_Inf_8u_C1MR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, double* norm);
/** Norms: greatest magnitude of src under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNorm_Inf_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, double* norm);
/** Norms: greatest magnitude of src under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNorm_Inf_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                          int32_t maskStep, RoiSize roi, double* norm);
/** Norms: sum of magnitudes of src under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNorm_L1_8u_C1MR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, RoiSize roi, double* norm);
/** Norms: sum of magnitudes of src under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNorm_L1_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, RoiSize roi, double* norm);
/** Norms: sum of magnitudes of src under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNorm_L1_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, double* norm);
/** Norms: Euclidean norm of src under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNorm_L2_8u_C1MR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, RoiSize roi, double* norm);
/** Norms: Euclidean norm of src under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNorm_L2_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, RoiSize roi, double* norm);
/** Norms: Euclidean norm of src under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNorm_L2_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, double* norm);
/** Norms: greatest magnitude of src under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_Inf_8u_C3CMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                          int32_t maskStep, RoiSize roi, int32_t channel,
                                          double* norm);
/** Norms: greatest magnitude of src under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_Inf_8s_C3CMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                          int32_t maskStep, RoiSize roi, int32_t channel,
                                          double* norm);
/** Norms: greatest magnitude of src under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_Inf_32f_C3CMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                           int32_t maskStep, RoiSize roi, int32_t channel,
                                           double* norm);
/** Norms: sum of magnitudes of src under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L1_8u_C3CMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, int32_t channel,
                                         double* norm);
/** Norms: sum of magnitudes of src under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L1_8s_C3CMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, int32_t channel,
                                         double* norm);
/** Norms: sum of magnitudes of src under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L1_32f_C3CMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                          int32_t maskStep, RoiSize roi, int32_t channel,
                                          double* norm);
/** Norms: Euclidean norm of src under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L2_8u_C3CMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, int32_t channel,
                                         double* norm);
/** Norms: Euclidean norm of src under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L2_8s_C3CMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                         int32_t maskStep, RoiSize roi, int32_t channel,
                                         double* norm);
/** Norms: Euclidean norm of src under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNorm_L2_32f_C3CMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                          int32_t maskStep, RoiSize roi, int32_t channel,
                                          double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_Inf_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                             const uint8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_Inf_8s_C1MR(const int8_t* src1, int32_t src1Step,
                                             const int8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_Inf_32f_C1MR(const float* src1, int32_t src1Step,
                                              const float* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L1_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                            const uint8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L1_8s_C1MR(const int8_t* src1, int32_t src1Step,
                                            const int8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L1_32f_C1MR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L2_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                            const uint8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L2_8s_C1MR(const int8_t* src1, int32_t src1Step,
                                            const int8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormDiff_L2_32f_C1MR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_Inf_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                              const uint8_t* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t channel, double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_Inf_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                              const int8_t* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t channel, double* norm);
/** Norms: greatest magnitude of src1 - src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_Inf_32f_C3CMR(const float* src1, int32_t src1Step,
                                               const float* src2, int32_t src2Step,
                                               const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                               int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L1_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                             const uint8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L1_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                             const int8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L1_32f_C3CMR(const float* src1, int32_t src1Step,
                                              const float* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t channel, double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L2_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                             const uint8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L2_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                             const int8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: Euclidean norm of src1 - src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormDiff_L2_32f_C3CMR(const float* src1, int32_t src1Step,
                                              const float* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t channel, double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormRel_Inf_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                            const uint8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormRel_Inf_8s_C1MR(const int8_t* src1, int32_t src1Step,
                                            const int8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormRel_Inf_32f_C1MR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L1_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                           const uint8_t* src2, int32_t src2Step,
                                           const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                           double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L1_8s_C1MR(const int8_t* src1, int32_t src1Step, const int8_t* src2,
                                           int32_t src2Step, const uint8_t* mask, int32_t maskStep,
                                           RoiSize roi, double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L1_32f_C1MR(const float* src1, int32_t src1Step, const float* src2,
                                            int32_t src2Step, const uint8_t* mask, int32_t maskStep,
                                            RoiSize roi, double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 8u, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L2_8u_C1MR(const uint8_t* src1, int32_t src1Step,
                                           const uint8_t* src2, int32_t src2Step,
                                           const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                           double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 8s, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L2_8s_C1MR(const int8_t* src1, int32_t src1Step, const int8_t* src2,
                                           int32_t src2Step, const uint8_t* mask, int32_t maskStep,
                                           RoiSize roi, double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 32f, 1 channel. */
NUQI_API StatusCode nuqiNormRel_L2_32f_C1MR(const float* src1, int32_t src1Step, const float* src2,
                                            int32_t src2Step, const uint8_t* mask, int32_t maskStep,
                                            RoiSize roi, double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_Inf_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                             const uint8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_Inf_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                             const int8_t* src2, int32_t src2Step,
                                             const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                             int32_t channel, double* norm);
/** Norms: greatest magnitude of src1 - src2, relative to src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_Inf_32f_C3CMR(const float* src1, int32_t src1Step,
                                              const float* src2, int32_t src2Step,
                                              const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                              int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L1_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                            const uint8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L1_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                            const int8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            int32_t channel, double* norm);
/** Norms: sum of magnitudes of src1 - src2, relative to src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L1_32f_C3CMR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, int32_t channel,
                                             double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L2_8u_C3CMR(const uint8_t* src1, int32_t src1Step,
                                            const uint8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            int32_t channel, double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L2_8s_C3CMR(const int8_t* src1, int32_t src1Step,
                                            const int8_t* src2, int32_t src2Step,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            int32_t channel, double* norm);
/** Norms: Euclidean norm of src1 - src2, relative to src2 under a mask; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiNormRel_L2_32f_C3CMR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, int32_t channel,
                                             double* norm);

/* ---- Minimum and maximum ---------------------------------------------------------------------
 *
 * The smallest and the largest pixel, or selected pixel, of an image, and where each is met first: row
 * by row from the top, from left to right.
 *
 * Shapes      C1: one channel. C3C: one of three, channel 1 to 3. Sources 8u, 8s or 32f; values are
 *             written as floats, places as points of the ROI.
 * Results     Each of the four may be null and is not written then.
 * 32f         Floats are compared by their bits, in a total order: -0.0 is below +0.0, NaNs whose sign
 *             is clear lie above +infinity, the others below -infinity. The minimum is looked for below
 *             +infinity, the maximum above -infinity. Values keep their bits.
 * Nothing     Where there is no pixel (an empty ROI or mask), or no minimum (32f: +infinity and NaNs
 *             above it alone), or no maximum, both values are 0.0 and both points (0, 0).
 * Mask        Unselected pixels are passed over.
 * Statuses    1. StatusNullPtr: the source or the mask is null.
 *             2. StatusBadSize: width or height below 0.
 *             3. StatusBadStep: a step below its row's bytes, or a 32f step not a multiple of 4.
 *             4. StatusBadCoi: channel below 1 or above 3 (C3C).
 *             StatusOk otherwise; a width or height of 0 reads nothing.
 * Example     examples/families/min_max.c
 */
/** Minimum and maximum: least and greatest pixel, with places; 8u, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                          float* min, float* max, PixelPoint* minAt,
                                          PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel, with places; 8s, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_8s_C1R(const int8_t* src, int32_t srcStep, RoiSize roi,
                                          float* min, float* max, PixelPoint* minAt,
                                          PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel, with places; 32f, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_32f_C1R(const float* src, int32_t srcStep, RoiSize roi,
                                           float* min, float* max, PixelPoint* minAt,
                                           PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel, with places; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_8u_C3CR(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                           int32_t channel, float* min, float* max,
                                           PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel, with places; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_8s_C3CR(const int8_t* src, int32_t srcStep, RoiSize roi,
                                           int32_t channel, float* min, float* max,
                                           PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel, with places; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_32f_C3CR(const float* src, int32_t srcStep, RoiSize roi,
                                            int32_t channel, float* min, float* max,
                                            PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 8u, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_8u_C1MR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                           int32_t maskStep, RoiSize roi, float* min, float* max,
                                           PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 8s, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_8s_C1MR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                           int32_t maskStep, RoiSize roi, float* min, float* max,
                                           PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 32f, 1 channel. */
NUQI_API StatusCode nuqiMinMaxIndx_32f_C1MR(const float* src, int32_t srcStep, const uint8_t* mask,
                                            int32_t maskStep, RoiSize roi, float* min, float* max,
                                            PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 8u, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_8u_C3CMR(const uint8_t* src, int32_t srcStep,
                                            const uint8_t* mask, int32_t maskStep, RoiSize roi,
                                            int32_t channel, float* min, float* max,
                                            PixelPoint* minAt, PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 8s, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_8s_C3CMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                            int32_t maskStep, RoiSize roi, int32_t channel,
                                            float* min, float* max, PixelPoint* minAt,
                                            PixelPoint* maxAt);
/** Minimum and maximum: least and greatest pixel under a mask, with places; 32f, 1 channel of 3. */
NUQI_API StatusCode nuqiMinMaxIndx_32f_C3CMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                             int32_t maskStep, RoiSize roi, int32_t channel,
                                             float* min, float* max, PixelPoint* minAt,
                                             PixelPoint* maxAt);

/* ---- Histograms ------------------------------------------------------------------------------
 *
 * nuqiCalcHist_8u_C1R counts the pixels of an image in bins between levels: bin i holds the number of
 * pixels v with levels[i] <= v < levels[i + 1].
 *
 *   The top     The last level is exclusive and at most 255: pixels of 255 are counted nowhere. With
 *               levels from 0 to 255 they are width * height less the sum of the bins.
 *   levelCount  Levels; hist has levelCount - 1 bins, but at least one. With a single level its one
 *               bin has no upper end. Bins whose levels do not ascend are 0.
 *   Statuses    1. StatusNullPtr: a pointer is null.
 *               2. StatusBadSize: width, height or levelCount below 1.
 *               3. StatusBadStep: the step is below the row's bytes.
 *
 * nuqiCalcHist_8u_C2R counts pairs of the two interleaved channels: row j, column i of hist holds the
 * number of pixels whose first channel lies in bin i and second channel in bin j.
 *
 *   The top     Here levels are integers: make the last ones 256, and 255 is counted.
 *   counts      Two numbers, of columns and of rows. They are not tested for null.
 *   levels      counts[0] + 1 ascending levels of the first channel, then counts[1] + 1 of the
 *               second. A value from the first level to below the last lies in the bin whose number
 *               is that of the levels after the first that are not above it.
 *   hist        counts[1] rows of counts[0] counters, histStep bytes apart; the step is not tested.
 *               First of all, (counts[0] + 1) * (counts[1] + 1) counters from its start are set to 0
 *               whatever the step is: memory must reach so far, and counters beyond keep what they
 *               hold and are added to.
 *   Statuses    1. StatusNullPtr: src, hist or levels is null.
 *               2. StatusBadSize: a count, width or height below 1.
 *               3. StatusBadStep: the step is below 2 * width.
 *
 * nuqiConvertHist1D_32s32f tests a histogram: whether it is there, and whether its total is 0. It
 * writes nothing, and the flag has no effect.
 *
 *   Statuses    1. StatusNullPtr: a pointer is null.
 *               2. StatusBadSize: length below 1.
 *               3. StatusDivByZero: the sum of the counters, which is exact, is 0.
 *
 * Counters are 32-bit integers and wrap around. Images, levels and histograms must not overlap.
 *
 * Example     examples/families/histograms.c
 */
/** Histograms: counts of pixels in bins; values from the last level on (255) are not counted. */
NUQI_API StatusCode nuqiCalcHist_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                        int32_t* hist, int32_t levelCount, const uint8_t* levels);
/** Histograms: joint counts of the pairs of two interleaved channels. */
NUQI_API StatusCode nuqiCalcHist_8u_C2R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                        int32_t* hist, int32_t histStep, const int32_t* counts,
                                        const int32_t* levels);
/** Histograms: tests a histogram for a total of 0; writes nothing. */
NUQI_API StatusCode nuqiConvertHist1D_32s32f(const int32_t* src, float* dst, int32_t length,
                                             int32_t flag);

/* ---- Fixed 3x3 derivatives -------------------------------------------------------------------
 *
 * One fixed 3x3 derivative of a one-channel image: Sobel's first, second and mixed derivatives and
 * Scharr's first derivatives. Pixels beyond an edge equal the edge pixel. Weights, row above first:
 *
 *   Sobel3x3_Dx   [ -1  0  1;  -2  0  2;  -1  0  1 ]     positive where values grow to the right
 *   Sobel3x3_Dy   [ -1 -2 -1;   0  0  0;   1  2  1 ]     positive where values grow downwards
 *   Sobel3x3_D2x  [  1 -2  1;   2 -4  2;   1 -2  1 ]
 *   Sobel3x3_D2y  [  1  2  1;  -2 -4 -2;   1  2  1 ]
 *   Sobel3x3_DxDy [  1  0 -1;   0  0  0;  -1  0  1 ]
 *   Scharr_Dx     [ -3  0  3; -10  0 10;  -3  0  3 ]
 *   Scharr_Dy     [ -3 -10 -3;  0  0  0;   3 10  3 ]
 *
 * bottomUp    0, or 1 to negate Dy, DxDy and Scharr Dy (for images stored bottom row first).
 * shift       Scharr only, 0 or more: the result times 2 to the power -shift.
 * Ranges      16s results are exact: at most 1020 in magnitude for Sobel's first derivatives, 2040
 *             for the second and mixed ones, 4080 for Scharr's. They are negated first, then shifted
 *             right arithmetically (towards minus infinity; 16 and more leave 0 or -1). One member
 *             differs: nuqiScharr_Dy_8u16s_C1R with bottomUp 1 shifts first and negates then
 *             (towards plus infinity) in the last row, from column 8 * ((width - 1) / 8) on.
 * 32f         Single precision. With the row terms
 *               d = S(c+1) - S(c-1)
 *               s = (S(c-1) + S(c+1)) + 2 * S(c)
 *               t = (S(c-1) * k3 + S(c+1) * k3) + S(c) * k10
 *             where k3 = 3 * 2^-shift and k10 = 10 * 2^-shift, Sobel Dx is (d above + d) + (d + d below),
 *             Sobel Dy is s below - s above, Scharr Dx is (d above * k3 + d below * k3) + d * k10 and
 *             Scharr Dy is t below - t above; with bottomUp 1 above and below change places. Each
 *             operation rounds once, in the order written; pixels of weight 0 take no part. The
 *             factor 2^-shift is the reciprocal of 1 doubled shift times: 0 from shift 128 on.
 * Overlap     Source and destination must not overlap.
 * Statuses    1. StatusUnsupported: shift below 0 (Scharr).
 *             2. StatusUnsupported: bottomUp neither 0 nor 1.
 *             3. StatusNullPtr: a pointer is null.
 *             4. StatusBadSize: width below 0, height below 2, a step below its row's bytes or not a
 *                multiple of the element size.
 *             StatusOk otherwise. With width 0 nothing is written, except by
 *             nuqiSobel3x3_Dx_8u16s_C1R, which writes 0 to the first element of every row.
 * Method      I. Sobel and G. Feldman, "A 3x3 isotropic gradient operator for image processing",
 *             1968; H. Scharr, "Optimal operators in digital image processing", Heidelberg, 2000.
 * Example     examples/families/derivatives.c
 */
/** Fixed 3x3 derivatives: Sobel's first derivative along x; 8u to 16s. */
NUQI_API StatusCode nuqiSobel3x3_Dx_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's first derivative along x; 8s to 16s. */
NUQI_API StatusCode nuqiSobel3x3_Dx_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's first derivative along x; 32f. */
NUQI_API StatusCode nuqiSobel3x3_Dx_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's first derivative along y; 8u to 16s. */
NUQI_API StatusCode nuqiSobel3x3_Dy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, int32_t bottomUp, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's first derivative along y; 8s to 16s. */
NUQI_API StatusCode nuqiSobel3x3_Dy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, int32_t bottomUp, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's first derivative along y; 32f. */
NUQI_API StatusCode nuqiSobel3x3_Dy_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's second derivative along x; 8u to 16s. */
NUQI_API StatusCode nuqiSobel3x3_D2x_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's second derivative along x; 8s to 16s. */
NUQI_API StatusCode nuqiSobel3x3_D2x_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's second derivative along y; 8u to 16s. */
NUQI_API StatusCode nuqiSobel3x3_D2y_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's second derivative along y; 8s to 16s. */
NUQI_API StatusCode nuqiSobel3x3_D2y_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's mixed derivative; 8u to 16s. */
NUQI_API StatusCode nuqiSobel3x3_DxDy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                                int32_t dstStep, int32_t bottomUp, RoiSize roi);
/** Fixed 3x3 derivatives: Sobel's mixed derivative; 8s to 16s. */
NUQI_API StatusCode nuqiSobel3x3_DxDy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                                int32_t dstStep, int32_t bottomUp, RoiSize roi);
/** Fixed 3x3 derivatives: Scharr's first derivative along x; 8u to 16s. */
NUQI_API StatusCode nuqiScharr_Dx_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, RoiSize roi, int32_t shift);
/** Fixed 3x3 derivatives: Scharr's first derivative along x; 8s to 16s. */
NUQI_API StatusCode nuqiScharr_Dx_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, RoiSize roi, int32_t shift);
/** Fixed 3x3 derivatives: Scharr's first derivative along x; 32f. */
NUQI_API StatusCode nuqiScharr_Dx_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                          int32_t dstStep, RoiSize roi, int32_t shift);
/** Fixed 3x3 derivatives: Scharr's first derivative along y; 8u to 16s. */
NUQI_API StatusCode nuqiScharr_Dy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                            int32_t shift);
/** Fixed 3x3 derivatives: Scharr's first derivative along y; 8s to 16s. */
NUQI_API StatusCode nuqiScharr_Dy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                            int32_t shift);
/** Fixed 3x3 derivatives: Scharr's first derivative along y; 32f. */
NUQI_API StatusCode nuqiScharr_Dy_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                          int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                          int32_t shift);

/* ---- Filter states ---------------------------------------------------------------------------
 *
 * A state holds what a blur, Sobel or Laplace filter needs between calls: its size, its kernels and
 * the last rows of the stripe before. Make one for a width and keep it: it serves any number of
 * images, one after the other, of that width or less.
 *
 * Kernels     Sobel and Laplace filters weigh columns and rows by kernels of their size, 3, 5 or 7.
 *             That of order k is the k-th difference, smoothed by [1 1] to the size; lowest column
 *             or row first:
 *               3   1 2 1 | -1 0 1 | 1 -2 1
 *               5   1 4 6 4 1 | -1 -2 0 2 1 | 1 0 -2 0 1 | -1 2 0 -2 1 | 1 -4 6 -4 1
 *               7   1 6 15 20 15 6 1 | -1 -4 -5 0 5 4 1 | 1 2 -1 -4 -1 2 1 | -1 0 3 0 -3 0 1 |
 *                   1 -2 -1 4 -1 -2 1 | -1 4 -5 0 5 -4 1 | 1 -6 15 -20 15 -6 1
 * Sobel       xOrder and yOrder from 0 to apertureSize - 1; bottomUp 1 negates y kernels of odd order
 *             (for images stored bottom row first), bottomUp 0 does not.
 * dataType    1 for 8u, 2 for 8s, 9 for 32f sources. States for 8u and 8s serve either; a blur takes
 *             a state of any type.
 * Memory      4 * roiWidth bytes, rounded up to a multiple of 32, for each of size (Sobel), size + 1
 *             (blur) or 2 * size (Laplace) rows, and about 700 bytes more.
 * Free        nuqiConvolFree ends a state's use, and by contract leaves its memory allocated until
 *             the program ends. So do not make a state for every image: keep one and reuse it.
 * Threads     One state serves one sequence of calls at a time.
 * Statuses    nuqiSobelInitAlloc:
 *             1. StatusNullPtr: state is null.    2. StatusBadSize: roiWidth below 1.
 *             3. StatusUnsupported: bottomUp neither 0 nor 1.
 *             4. StatusBadSize: apertureSize not 3, 5 or 7; an order below 0; an order of
 *                apertureSize or more.
 *             5. StatusUnsupported: dataType not 1, 2 or 9.    6. StatusNoMemory.
 *             nuqiBlurInitAlloc, nuqiLaplaceInitAlloc:
 *             1. StatusNullPtr: state is null.
 *             2. StatusBadSize: roiWidth below 1, or maskSize not 3, 5 or 7.
 *             3. StatusUnsupported: dataType not 1, 2 or 9.    4. StatusNoMemory.
 *             *state is written only with StatusOk. nuqiConvolFree: StatusNullPtr: state is null.
 * Example     examples/families/stripes.c
 */
/** What a blur, Sobel or Laplace filter keeps between calls; see "Filter states". */
typedef struct ConvolState ConvolState;

/** Filter states: makes a state for nuqiSobel. */
NUQI_API StatusCode nuqiSobelInitAlloc(int32_t roiWidth, int32_t dataType, int32_t apertureSize,
                                       int32_t bottomUp, int32_t xOrder, int32_t yOrder,
                                       ConvolState** state);
/** Filter states: makes a state for nuqiBlur. */
NUQI_API StatusCode nuqiBlurInitAlloc(int32_t roiWidth, int32_t dataType, int32_t maskSize,
                                      ConvolState** state);
/** Filter states: makes a state for nuqiLaplace. */
NUQI_API StatusCode nuqiLaplaceInitAlloc(int32_t roiWidth, int32_t dataType, int32_t maskSize,
                                         ConvolState** state);
/** Filter states: ends a state's use, but releases nothing: keep states and reuse them. */
NUQI_API StatusCode nuqiConvolFree(ConvolState* state);

/* ---- Blur ------------------------------------------------------------------------------------
 *
 * The sum of the n x n pixels around each pixel, n being the state's size: a box blur that is not
 * normalised. Pixels beyond an edge equal the edge pixel.
 *
 * Stripes     The picture may come in one call or in several, in horizontal stripes from top to
 *             bottom; phase says which part this is:
 *               phase            source rows in roi->height    result rows
 *               0  whole image   h                             h
 *               1  first stripe  h                             h - n/2, but not below 0
 *               4  middle        h                             h
 *               2  last stripe   h                             h + n/2
 *             On return roi->height is the number of result rows that this call has written; the
 *             first of all the stripes' results is the picture's row 0. Stripes give exactly what
 *             one call gives. After a first stripe (or whole image) of fewer than n/2 rows the next
 *             call must be a first stripe again.
 * Shapes      One channel, 8u or 8s to 16s, 32f to 32f. roi->width may be less than the state's.
 * Range       8u: 0 to 255 * n * n (2295, 6375, 12495); 8s: -128 * n * n to 127 * n * n.
 * Arithmetic  8u and 8s are exact. 32f sums run, and keep what they round away: with half = n/2 and W
 *             the width, along a row, in double precision,
 *               h[0] = (half + 1) * S(0) + S(1) + ... + S(half)
 *               h[x] = (h[x-1] + S(min(x + half, W - 1))) - S(max(x - half - 1, 0))
 *             and each h[x] is rounded to a float; down a column, in single precision, the sum
 *             starts as (half + 1) * h of the first row, then adds the h of each further row minus
 *             that of the row which leaves the window (0 until the first leaves). A NaN or an
 *             infinity therefore stays in all results to its right and below, and the residue of
 *             large values in those after them, until the next first stripe.
 * Overlap     Source, destination and state must not overlap.
 * Statuses    1. StatusNullPtr: a pointer is null.
 *             2. StatusBadSize: width or height below 1, a step below its row's bytes or not a
 *                multiple of the element size.
 *             3. StatusUnsupported: phase not 0, 1, 2 or 4.
 *             4. StatusUnsupported: phase 2 or 4 where a first stripe must come: with a new state, or
 *                after too few rows.
 *             5. StatusBadSize: the width exceeds the state's, rounded up to a multiple of 8.
 *             6. StatusBadContext: the state has not the row buffers of a blur of its size.
 * Example     examples/families/blur.c
 */
/** Blur: sums of n x n pixels, not divided, in stripes; 8u to 16s. */
NUQI_API StatusCode nuqiBlur_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                       int32_t dstStep, RoiSize* roi, ConvolState* state,
                                       int32_t phase);
/** Blur: sums of n x n pixels, not divided, in stripes; 8s to 16s. */
NUQI_API StatusCode nuqiBlur_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                       int32_t dstStep, RoiSize* roi, ConvolState* state,
                                       int32_t phase);
/** Blur: sums of n x n pixels, not divided, in stripes; 32f. */
NUQI_API StatusCode nuqiBlur_32f_C1R(const float* src, int32_t srcStep, float* dst, int32_t dstStep,
                                     RoiSize* roi, ConvolState* state, int32_t phase);

/* ---- Sobel -----------------------------------------------------------------------------------
 *
 * Derivatives of any order, with an aperture of 3, 5 or 7: the state's x kernel weighs the columns
 * around each pixel, its y kernel the rows. First derivatives are positive where values grow to the
 * right, or downwards (upwards with bottomUp 1). Pixels beyond an edge equal the edge pixel.
 *
 * Stripes     As for the blur; n is the aperture.
 * Shapes      One channel, 8u or 8s to 16s, 32f to 32f. roi->width may be less than the state's.
 * Range       First derivatives: at most 1020 in magnitude with aperture 3, 12240 with 5.
 * Arithmetic  16s results are exact, and saturate where they exceed 16 bits: with aperture 7, and
 *             with aperture 5 and orders 0 and 0.
 *             32f: single precision, down the columns first and then along the rows. With v(k) the
 *             value k rows or columns from the middle and w(k) its weight, both times
 *               even orders   ((v(h) + v(-h)) * w(h) + (v(h-1) + v(1-h)) * w(h-1)) + ... + v(0) * w(0)
 *               odd orders    ((v(h) - v(-h)) * w(h) + (v(h-1) - v(1-h)) * w(h-1)) + ...
 *             with h half the aperture, down to k = 1, the terms added from left to right; each
 *             operation rounds once.
 * Overlap     Source, destination and state must not overlap.
 * Statuses    1 to 5 as for the blur.
 *             6. StatusBadContext: the state has fewer row buffers than its size, or no kernels in
 *                the source's number format (16-bit integers for 8u and 8s, floats for 32f).
 * Method      I. Sobel and G. Feldman, "A 3x3 isotropic gradient operator for image processing",
 *             1968, with binomial smoothing for the larger apertures.
 * Example     examples/families/sobel.c
 */
/** Sobel: derivative of the state's orders and aperture, in stripes; 8u to 16s. */
NUQI_API StatusCode nuqiSobel_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                        int32_t dstStep, RoiSize* roi, ConvolState* state,
                                        int32_t phase);
/** Sobel: derivative of the state's orders and aperture, in stripes; 8s to 16s. */
NUQI_API StatusCode nuqiSobel_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                        int32_t dstStep, RoiSize* roi, ConvolState* state,
                                        int32_t phase);
/** Sobel: derivative of the state's orders and aperture, in stripes; 32f. */
NUQI_API StatusCode nuqiSobel_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                      int32_t dstStep, RoiSize* roi, ConvolState* state,
                                      int32_t phase);

/* ---- Laplace ---------------------------------------------------------------------------------
 *
 * The second derivative along x plus that along y, each smoothed across: with k0 and k2 the kernels
 * of orders 0 and 2, the columns weighed by k2 and the rows by k0, plus the same the other way round.
 * Negative on a bright spot. Pixels beyond an edge equal the edge pixel.
 *
 * Stripes     As for the blur; n is the size.
 * Shapes      One channel, 8u or 8s to 16s, 32f to 32f. roi->width may be less than the state's.
 * Range       At most 2040 in magnitude with size 3, 14280 with 5.
 * Arithmetic  16s results are exact; those of size 7 saturate where they exceed 16 bits.
 *             32f: single precision. Both terms contain the smoothing by [1 1] of columns and rows,
 *             n - 3 times each. Let m be the source smoothed down its columns, by sums v(r) + v(r+1)
 *             of neighbouring rows, then sums of those, n - 3 times in all; then
 *               z = ((m(r-1,c-1) + m(r+1,c-1)) + (m(r-1,c+1) + m(r+1,c+1))) - 4 * m(r,c)
 *             and, z(k) standing k columns further on, the result is twice
 *               size 3   z(0)
 *               size 5   (z(-1) + z(1)) + (z(0) + z(0))
 *               size 7   ((z(-2) + z(2)) + (z(-1) + z(1)) * 4) + z(0) * 6
 *             each operation rounding once. A picture without detail gives 0 exactly.
 * Overlap     Source, destination and state must not overlap.
 * Statuses    1 to 5 as for the blur.
 *             6. StatusBadContext: the state has fewer row buffers than twice its size, or no kernels
 *                in the source's number format (16-bit integers for 8u and 8s, floats for 32f).
 * Example     examples/families/laplace.c
 */
/** Laplace: second derivatives along x and y, added, in stripes; 8u to 16s. */
NUQI_API StatusCode nuqiLaplace_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                          int32_t dstStep, RoiSize* roi, ConvolState* state,
                                          int32_t phase);
/** Laplace: second derivatives along x and y, added, in stripes; 8s to 16s. */
NUQI_API StatusCode nuqiLaplace_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                          int32_t dstStep, RoiSize* roi, ConvolState* state,
                                          int32_t phase);
/** Laplace: second derivatives along x and y, added, in stripes; 32f. */
NUQI_API StatusCode nuqiLaplace_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                        int32_t dstStep, RoiSize* roi, ConvolState* state,
                                        int32_t phase);

/* ---- Canny edges -----------------------------------------------------------------------------
 *
 * Finds edges in a pair of derivative images, for example those of nuqiSobel3x3_Dx and _Dy:
 *
 *   magnitude    m = |dx| + |dy|, at most 32767; 0 unless m > low
 *   suppression  a pixel stays where m is strictly greater than both neighbours' along the gradient,
 *                quantised to four directions: across where |dy| * 4096 < |dx| * 1697, diagonal where
 *                |dy| * 4096 < |dx| * 9889 (tan 22.5 and 67.5 degrees), else along the column; on
 *                the falling diagonal where dx and dy have one sign, 0 counting as positive. Beyond
 *                the ROI m is 0.
 *   hysteresis   pixels that stay and have m > high are edges, and so is every pixel that stays and
 *                is one of the eight neighbours of an edge
 *
 * Ties        Of two equal neighbours both go: a sharp edge between black and white, which has one
 *             magnitude on either side, vanishes. Break ties before the call: with
 *             k = x % 2 + 2 * (y % 2), which differs between neighbours, pass 4 * dx + k, or 4 * dx - k
 *             where dx < 0, 4 * dy and, of whole thresholds, 4 * low + 3 and 4 * high + 3. The same
 *             pixels exceed them, and 3x3 derivatives of bytes have room for that.
 * Shapes      dx, dy 16s; dst 8u: 255 on edges, 0 elsewhere. Call with equal steps for dx and dy:
 *             the magnitude pass walks dx by dyStep and dy by dxStep, so both images must reach
 *             (height - 1) * the larger step + 2 * width bytes where the steps differ.
 * Thresholds  Truncated to integers first; above 32767 they act as 32767. Infinity is legal.
 * Buffer      nuqiCannyGetSize gives its size in bytes: 12 * (width + 2) * (height + 2). It needs no
 *             alignment and no initial content.
 * Overlap     dst may be neither source, nor may the buffer overlap any of the three.
 * Statuses    nuqiCannyGetSize: 1. StatusBadSize: width or height below 1, or a size above 2^31 - 1.
 *                2. StatusNullPtr: the size pointer is null.
 *             nuqiCanny_16s8u_C1R: 1. StatusNullPtr: a pointer is null.
 *                2. StatusBadSize: width or height below 1, a step below its row's bytes, an odd dx
 *                   or dy step, or a ROI that nuqiCannyGetSize refuses.
 *                3. StatusUnsupported: low below 0, or not (high >= low). Tested before truncation.
 * Method      J. Canny, "A computational approach to edge detection", IEEE PAMI 8(6), 1986.
 * Example     examples/families/canny.c
 */
/** Canny edges: bytes of the buffer that edges of such a region need. */
NUQI_API StatusCode nuqiCannyGetSize(RoiSize roi, int32_t* size);
/** Canny edges: edges, 255, from derivatives; of two equal neighbours neither is one. */
NUQI_API StatusCode nuqiCanny_16s8u_C1R(const int16_t* dx, int32_t dxStep, const int16_t* dy,
                                        int32_t dyStep, uint8_t* dst, int32_t dstStep, RoiSize roi,
                                        float low, float high, void* buffer);

/* ---- Corners ---------------------------------------------------------------------------------
 *
 * How much a picture changes around each pixel, and in which directions. dx and dy being its first
 * derivatives, the sums of their products over a window make a matrix
 *
 *   [ Sxx Sxy ]      Sxx = sum of dx * dx,  Sxy = sum of dx * dy,  Syy = sum of dy * dy
 *   [ Sxy Syy ]
 *
 * whose eigenvalues tell flat regions (both small) from edges (one large) and corners (both large).
 * MinEigenVal gives the smaller one, a corner's strength; EigenValsVecs both and their directions.
 *
 * Shapes      8u, 8s or 32f, one channel; dst 32f. MinEigenVal: one float a pixel, and dstStep at least
 *             4 * width. EigenValsVecs: six floats a pixel, l1 l2 x1 y1 x2 y2, the eigenvalues and
 *             the unit eigenvectors (x1, y1) of l1 and (x2, y2) of l2; dstStep at least 24 * width.
 *             srcStep, in bytes, need not be a multiple of the element size. Pixels beyond an edge
 *             equal the edge pixel, and so do derivatives.
 * Sizes       apertureSize is that of the Sobel kernels, blockSize that of the window: 3, 5 or 7.
 *             nuqiMinEigenVal_8u32f_C1R and _8s32f_C1R sum over a window of apertureSize, while their
 *             scale is that of blockSize.
 * Scale       All results are multiplied by 1 / (2^(2 * (apertureSize - 1)) * 255 * blockSize^2),
 *             floats' too: scale pictures of floats to 0..255. Of pictures in 0..1
 *             nuqiEigenValsVecs_32f_C1R gives 0 nearly everywhere.
 * Range       Of bytes, with both sizes 3: Sxx * scale and Syy * scale lie in 0 to 255, |Sxy| * scale is
 *             at most 255, and eigenvalues lie in 0 to 510, but for rounding.
 * Arithmetic  Bit for bit that of nuqiSobel_* with orders (1, 0) and (0, 1) and of nuqiBlur_32f_C1R:
 *             derivatives of bytes saturate where they exceed 16 bits, each product is rounded to a
 *             float, and the sums run, so that what large values leave in them stays in the column's
 *             later rows. A NaN or an infinity in a 32f source spoils the results near it and to their
 *             right and below. Then, in double precision, every operation rounding once and the
 *             result once more to a float:
 *               MinEigenVal      a = 0.5 * Sxx, b = Sxy, c = 0.5 * Syy
 *                                ((a + c) - sqrt(b * b + (a - c) * (a - c))) * scale
 *                                It is not clamped: rounding can leave it slightly below 0.
 *               EigenValsVecs    a = Sxx * scale, b = Sxy * scale, c = Syy * scale, M = max(a, c)
 *                                1. min(a, c) < 0.01 * M: six zeros.
 *                                2. |b| < 0.01 * M: a c 1 0 0 1, in this order even where a < c.
 *                                3. d = a * c - b * b; d < 0.01 * M: six zeros. A product is held
 *                                   against a single value here: that is why floats in 0..1 fail.
 *                                4. t = a + c, D = sqrt(t * t - 4 * d), l1 = (t + D) * 0.5 and
 *                                   l2 = (t - D) * 0.5; for each l, n = sqrt(b * b + (l - a) * (l - a)),
 *                                   or 2^-23 where that is 0, and the vector is (b / n, (l - a) / n).
 * Buffer      nuqiMinEigenValGetSize and nuqiEigenValsVecsGetSize, two names of one function, give its
 *             size in bytes: 96 * roiWidth, whatever the sizes. It needs no alignment and no initial
 *             content. Nothing else is allocated.
 * Overlap     Source, destination and buffer must not overlap.
 * Statuses    Size queries: 1. StatusBadSize: roiWidth below 1 or above 22369621, or a size that is
 *                not 3, 5 or 7.
 *                2. StatusNullPtr: the size pointer is null.
 *             Others: 1. StatusNullPtr: source, destination or buffer is null.
 *                2. StatusBadSize: width or height below 1, a step below its row's bytes, dstStep not a
 *                   multiple of 4, a size that is not 3, 5 or 7.
 * Method      J. Shi and C. Tomasi, "Good features to track", CVPR 1994.
 * Example     examples/families/corners.c
 */
/** Corners: bytes of the buffer that corners need; the same as its sister. */
NUQI_API StatusCode nuqiMinEigenValGetSize(int32_t roiWidth, int32_t apertureSize,
                                           int32_t blockSize, int32_t* size);
/** Corners: bytes of the buffer that corners need; the same as its sister. */
NUQI_API StatusCode nuqiEigenValsVecsGetSize(int32_t roiWidth, int32_t apertureSize,
                                             int32_t blockSize, int32_t* size);
/** Corners: smaller eigenvalue of the gradients around each pixel; 8u to 32f. */
NUQI_API StatusCode nuqiMinEigenVal_8u32f_C1R(const uint8_t* src, int32_t srcStep, float* dst,
                                              int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                              int32_t blockSize, void* buffer);
/** Corners: smaller eigenvalue of the gradients around each pixel; 8s to 32f. */
NUQI_API StatusCode nuqiMinEigenVal_8s32f_C1R(const int8_t* src, int32_t srcStep, float* dst,
                                              int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                              int32_t blockSize, void* buffer);
/** Corners: smaller eigenvalue of the gradients around each pixel; 32f. */
NUQI_API StatusCode nuqiMinEigenVal_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                            int32_t blockSize, void* buffer);
/** Corners: eigenvalues and vectors of the gradients around each pixel; 8u to 32f. */
NUQI_API StatusCode nuqiEigenValsVecs_8u32f_C1R(const uint8_t* src, int32_t srcStep, float* dst,
                                                int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                                int32_t blockSize, void* buffer);
/** Corners: eigenvalues and vectors of the gradients around each pixel; 8s to 32f. */
NUQI_API StatusCode nuqiEigenValsVecs_8s32f_C1R(const int8_t* src, int32_t srcStep, float* dst,
                                                int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                                int32_t blockSize, void* buffer);
/** Corners: eigenvalues and vectors of the gradients around each pixel; 32f. */
NUQI_API StatusCode nuqiEigenValsVecs_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                              int32_t dstStep, RoiSize roi, int32_t apertureSize,
                                              int32_t blockSize, void* buffer);

/* ---- Distance transforms ---------------------------------------------------------------------
 *
 * The distance of every pixel to the nearest pixel that is 0, by chamfer steps: each step to a
 * neighbour has a weight, and the distance is the least sum on a way of steps. Two passes find it,
 * down the rows from left to right and up from right to left; a pixel takes the least of its own value
 * and, for every neighbour below that the pass has come by, of the neighbour's plus the step's weight:
 *
 *   3x3   metrics[0] along rows and columns, metrics[1] along diagonals
 *   5x5   these, and metrics[2] for the knight's moves, (1, 2) and (2, 1) pixels away
 *
 * Beyond the ROI there are no neighbours: one column measures along itself.
 *
 * Shapes      src 8u, where 0 is a feature and all else is measured; dst 32f, in pixels if a step to
 *             the next pixel weighs 1. metrics are two floats, or three for 5x5, of any alignment.
 * Arithmetic  32-bit integers in units of 2^-18, which the last pass rounds to floats. Weights are
 *             rounded to whole units, ties to even: 1.3693 counts as 1.3693008422851562. Pixels start
 *             from 0 or from 2^30 - 1, so that no distance exceeds 4096.0, which is also what pixels
 *             get that reach no feature: farther distances cannot be told from it.
 * Weights     From 0 to 4096. Others give some distances all the same.
 * Overlap     Source and destination must not overlap. The destination is the only working storage.
 * Statuses    1. StatusNullPtr: a pointer is null.
 *             2. StatusBadSize: width or height below 0, a step below its row's bytes, or a
 *                destination step that is not a multiple of 4.
 *             An empty ROI is then StatusOk, and nothing is written.
 * Method      G. Borgefors, "Distance transformations in digital images", Computer Vision, Graphics,
 *             and Image Processing 34(3), 1986.
 * Example     examples/families/distances.c
 */
/** Distance transforms: distance to the nearest 0 by steps to 8 neighbours; 8u to 32f. */
NUQI_API StatusCode nuqiDistanceTransform_3x3_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                        float* dst, int32_t dstStep, RoiSize roi,
                                                        const float* metrics);
/** Distance transforms: distance to the nearest 0 by steps to 16 neighbours; 8u to 32f. */
NUQI_API StatusCode nuqiDistanceTransform_5x5_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                        float* dst, int32_t dstStep, RoiSize roi,
                                                        const float* metrics);

/* Weights for them: two for 30 to 32, three for 52. No other type is known.
 *
 *   30   3x3, largest of |dx| and |dy| (chessboard)   1, 1
 *   31   3x3, |dx| + |dy| (city block)                1, 2
 *   32   3x3, nearly Euclidean                        0.955, 1.3693
 *   52   5x5, nearly Euclidean                        1, 1.4, 2.1969
 *
 * Statuses    1. StatusNullPtr: the array is null.  2. StatusBadArg: another type.
 */
/** Distance transforms: usual weights of steps, by type: 30, 31, 32, 52. */
NUQI_API StatusCode nuqiGetDistanceTransformMask(int32_t maskType, float* metrics);

/* ---- Morphology states -----------------------------------------------------------------------
 *
 * A state holds the element of an erosion or dilation and the rows that its next results need. Make
 * one for a width, a type, a number of channels and an element, and keep it: it serves any number of
 * images of that width or less, one after the other.
 *
 * Element     maskSize.width x maskSize.height pixels from 1x1 on; anchor is the one that lies on the
 *             result's pixel. shape says which of them belong to it:
 *               0    rectangle  all
 *               1    cross      the row and the column of the anchor
 *               2    ellipse    by contract a peculiar one. With rx, ry the halves of width and height,
 *                               rounded down, and dx = rx * sqrt((ry^2 - (ry - i)^2) * (1 / ry^2)),
 *                               rounded to the nearest integer, rows i and height - 1 - i, i < ry,
 *                               hold columns max(rx - dx, 0) to min(rx + dx, width). The middle row of
 *                               an odd height stays empty (3x3 is two pixels), and column `width` is
 *                               column 0 of the next row. Pass an ellipse of your own as a mask if you
 *                               want it filled.
 *               100  mask       those whose entry in `mask` is not 0: maskSize.width *
 *                               maskSize.height integers, row by row. No other shape reads `mask`.
 * Calls       Shape 0 serves the _Rect_ functions, 1 the _Cross_ functions, 2 and 100 the others.
 * dataType    1 for 8u, 9 for 32f.
 * Memory      One block. With p bytes a pixel, about p * (roiWidth + maskSize.width + 17) bytes for
 *             each of maskSize.height + 1 (8u) or + 2 (32f) rows; masks and ellipses besides 16 bytes
 *             for each pixel of the element.
 * Free        nuqiMorphologyFree ends a state's use, and by contract leaves its memory allocated until
 *             the program ends. So do not make a state for every image: keep one and reuse it.
 * Threads     One state serves one sequence of calls at a time.
 * Statuses    nuqiMorphologyInitAlloc:
 *             1. StatusNullPtr: state is null. *state is set to null before all other tests.
 *             2. StatusBadSize: roiWidth below 1.    3. StatusBadDataType: dataType not 1 or 9.
 *             4. StatusBadChannels: channels not 1, 3 or 4.
 *             5. StatusBadSize: a width or height of the element below 1.
 *             6. StatusBadArg: the anchor lies outside the element.
 *             7. StatusBadArg: shape not 0, 1, 2 or 100. StatusNullPtr: shape 100, and mask is null.
 *             8. StatusNoMemory: the rows, the masks or the block take 2^32 bytes or more, or there is
 *                no such block.
 *             nuqiMorphologyFree: StatusNullPtr: state is null.
 * Example     examples/families/strips.c
 */
/** What an erosion or dilation keeps between calls; see "Morphology states". */
typedef struct MorphState MorphState;

/** Morphology states: makes a state for an element. */
NUQI_API StatusCode nuqiMorphologyInitAlloc(int32_t roiWidth, int32_t dataType, int32_t channels,
                                            RoiSize maskSize, PixelPoint anchor, int32_t shape,
                                            const int32_t* mask, MorphState** state);
/** Morphology states: ends a state's use, but releases nothing: keep states and reuse them. */
NUQI_API StatusCode nuqiMorphologyFree(MorphState* state);

/* ---- Erosion and dilation --------------------------------------------------------------------
 *
 * The least (nuqiErodeStrip) or greatest (nuqiDilateStrip) of the pixels that the state's element
 * covers when its anchor lies on the pixel: result (x, y) is that of all
 * (x + c - anchor.x, y + r - anchor.y) with (c, r) in the element. Dilation does not reflect the
 * element: for an opening or closing turn it by 180 degrees for the second step, its anchor too.
 * Pixels beyond an edge equal the edge pixel; channels are processed each on its own.
 *
 * Strips      The picture may come in one call or in several, in strips from top to bottom; border
 *             says which part this is. With `below` the rows of the element below its anchor:
 *               border           source rows in roi->height    result rows
 *               0  whole image   h                             h
 *               1  first strip   h                             h - below
 *               4  middle        h                             h
 *               2  last strip    h, which may be 0             h + below
 *             On return roi->height is the number of result rows that this call has written; the
 *             first of all the strips' results is the picture's row 0. Strips give exactly what one
 *             call gives. They may be of any height, lower than the element too: a first strip of
 *             too few rows gives none, and the strips after it as many less as rows are still missing.
 *             A last strip always completes the picture: as many rows come out as went in. borders 0
 *             and 1 begin a picture, whatever came before.
 *             An element of one row needs no rows of other strips: there each strip is a call with
 *             border 0, and 2 and 4 have nothing to do.
 * Shapes      One, three or four channels, 8u or 32f. roi->width may be less than the state's.
 * Range       A value of the source, but for masks without a pixel inside.
 * Arithmetic  Exact. 32f of _Rect_ and _Cross_ compare as the machine does: of two values of which one
 *             is NaN, or of zeros of both signs, the second is taken. Their order depends on nothing
 *             but the element. With p(i) the pixels or rows of a line of n, first to last, k the
 *             greatest power of 2 not above n, and m(1, i) = p(i),
 *               m(2w, i) = (m(w, i), m(w, i + w))    extremum of the line = (m(k, 0), m(k, n - k))
 *             _Rect_ takes that of n = maskSize.width pixels along each row, then that of
 *             n = maskSize.height of those down the column. _Cross_ takes that of its row, r, and then
 *             (r, p(0)), (that, p(1)) and so on down its column. Masks of 32f compare all floats by their
 *             bits: -0.0 is below +0.0, and NaNs lie beyond the infinity of their sign.
 *             A mask without a pixel inside gives 255 (erosion) or 0 (dilation), of 32f the NaNs of
 *             bits 0x7FFFFFFF and 0xFFFFFFFF.
 * Overlap     Source, destination and state must not overlap.
 * Statuses    1. StatusNullPtr: a pointer is null, in a call without source rows too.
 *             2. StatusBadSize: width below 1 or above the state's, height below 0.
 *             3. StatusBadContext: the state is of another type, number of channels or shape.
 *             4. StatusBadStep: a step below its row's bytes, or a 32f step not a multiple of 4.
 *             5. StatusBadArg: border not 0, 1, 2 or 4.
 *             6. StatusNothingToDo, a warning, with roi->height set to 0 and the state as it was:
 *                border 2 or 4 and the state holds no rows (no strip has come yet, or the element is
 *                one row high); height 0 and border not 2.
 * Example     examples/families/opening.c
 */
/** Erosion and dilation: least pixel under a rectangle, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_Rect_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                               int32_t dstStep, RoiSize* roi, MorphState* state,
                                               int32_t border);
/** Erosion and dilation: least pixel under a rectangle, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_Rect_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                               int32_t dstStep, RoiSize* roi, MorphState* state,
                                               int32_t border);
/** Erosion and dilation: least pixel under a rectangle, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_Rect_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                               int32_t dstStep, RoiSize* roi, MorphState* state,
                                               int32_t border);
/** Erosion and dilation: least pixel under a rectangle, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_Rect_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a rectangle, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_Rect_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a rectangle, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_Rect_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_Cross_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_Cross_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_Cross_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_Cross_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_Cross_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: least pixel under a cross, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_Cross_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                          int32_t dstStep, RoiSize* roi, MorphState* state,
                                          int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                          int32_t dstStep, RoiSize* roi, MorphState* state,
                                          int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                          int32_t dstStep, RoiSize* roi, MorphState* state,
                                          int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiErodeStrip_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiErodeStrip_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: least pixel under any element, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiErodeStrip_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_Rect_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_Rect_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_Rect_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize* roi, MorphState* state,
                                                int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_Rect_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_Rect_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a rectangle, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_Rect_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_Cross_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_Cross_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_Cross_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                 int32_t dstStep, RoiSize* roi, MorphState* state,
                                                 int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_Cross_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                                  int32_t dstStep, RoiSize* roi, MorphState* state,
                                                  int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_Cross_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                                  int32_t dstStep, RoiSize* roi, MorphState* state,
                                                  int32_t border);
/** Erosion and dilation: greatest pixel under a cross, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_Cross_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                                  int32_t dstStep, RoiSize* roi, MorphState* state,
                                                  int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 8u, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 8u, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 8u, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                           int32_t dstStep, RoiSize* roi, MorphState* state,
                                           int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 32f, 1 channel. */
NUQI_API StatusCode nuqiDilateStrip_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize* roi, MorphState* state,
                                            int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 32f, 3 channels. */
NUQI_API StatusCode nuqiDilateStrip_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize* roi, MorphState* state,
                                            int32_t border);
/** Erosion and dilation: greatest pixel under any element, in strips; 32f, 4 channels. */
NUQI_API StatusCode nuqiDilateStrip_32f_C4R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize* roi, MorphState* state,
                                            int32_t border);

/* ---- Gaussian pyramid ------------------------------------------------------------------------
 *
 * One level of a pyramid, down to half the size or up to twice, by the weights w = 1 4 6 4 1 of both
 * directions. Down smooths by w / 16 and keeps the even columns and rows. Up puts zeros between the
 * pixels and smooths by w / 8, which leaves 1 6 1 for even columns and rows, 4 4 for odd ones:
 *
 *   down      h(j)     = s(2j-2) + 4 * (s(2j-1) + s(2j+1)) + 6 * s(2j) + s(2j+2)
 *             first      2 * (3 * s(0) + 4 * s(1) + s(2))
 *             last       s(w-4) + 4 * (s(w-3) + s(w-1)) + 7 * s(w-2)
 *             only       8 * (s(0) + s(1)), where w is 2
 *   up        h(2i)    = s(i-1) + 6 * s(i) + s(i+1)
 *             h(2i+1)  = 4 * (s(i) + s(i+1))
 *             first      2 * (3 * s(0) + s(1)) for h(0)
 *             last       s(w-2) + 7 * s(w-1) for h(2w-2), 8 * s(w-1) for h(2w-1)
 *             only       8 * s(0) for both, where w is 1
 *
 * Rows are summed that way, then columns of the rows' sums; the result is the sum / 256 down, / 64 up.
 * So down mirrors at all four edges without repeating the edge pixel, and up mirrors at the left and
 * the top and repeats the last pixel at the right and the bottom.
 *
 * Shapes      8u, 8s or 32f; one channel or three. srcRoi is the source's size; the destination has
 *             half its width and height (both are even), or twice.
 * Arithmetic  8u, 8s: exact, rounded to nearest, halves upwards: (sum + 128) >> 8, (sum + 32) >> 6.
 *             No sum leaves the range of the type. 32f: every operation above is one of single
 *             precision, each sum taken from left to right as it is written: rows, columns, then
 *             * 0.00390625f down, * 0.015625f up.
 * Buffer      bufferSize bytes for a source roiWidth pixels wide, of any alignment. dataType is 1 for
 *             8u, 2 for 8s, 9 for 32f, channels 1 or 3. With x rounded up to 16 by up16(x), in 64 bits:
 *               down, 8u and 8s   6 * up16(channels * (roiWidth + 48))
 *               down, 32f         6 * up16(channels * (roiWidth * 2 + 96))
 *               up                3 * up16(channels * (roiWidth * 8 + 96))
 * Overlap     None: source, destination and buffer are apart.
 * Statuses    Levels: 1. StatusNullPtr: a pointer is null.
 *             2. StatusBadSize: width or height below 0; a step below its row's bytes; a 32f step not
 *                a multiple of 4; down: an odd width or height.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 *             Queries: 1. StatusNullPtr: bufferSize is null. All other failures store 0 there.
 *             2. StatusBadSize: roiWidth below 0; down: odd.   3. StatusBadChannels.
 *             4. StatusBadDataType.   5. StatusBadSize: a size above 2^31 - 1.
 * Method      P. Burt and E. Adelson, "The Laplacian pyramid as a compact image code", IEEE Trans. on
 *             Communications 31(4), 1983.
 * Example     examples/families/pyramid.c
 */
/** Gaussian pyramid: half the width and height; 8u, 1 channel. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: half the width and height; 8u, 3 channels. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: half the width and height; 8s, 1 channel. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_8s_C1R(const int8_t* src, int32_t srcStep, int8_t* dst,
                                                int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: half the width and height; 8s, 3 channels. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_8s_C3R(const int8_t* src, int32_t srcStep, int8_t* dst,
                                                int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: half the width and height; 32f, 1 channel. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: half the width and height; 32f, 3 channels. */
NUQI_API StatusCode nuqiPyrDown_Gauss5x5_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                                 int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 8u, 1 channel. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                              int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 8u, 3 channels. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_8u_C3R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                              int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 8s, 1 channel. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_8s_C1R(const int8_t* src, int32_t srcStep, int8_t* dst,
                                              int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 8s, 3 channels. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_8s_C3R(const int8_t* src, int32_t srcStep, int8_t* dst,
                                              int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 32f, 1 channel. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                               int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: twice the width and height; 32f, 3 channels. */
NUQI_API StatusCode nuqiPyrUp_Gauss5x5_32f_C3R(const float* src, int32_t srcStep, float* dst,
                                               int32_t dstStep, RoiSize srcRoi, void* buffer);
/** Gaussian pyramid: bytes of the buffer that a level down needs. */
NUQI_API StatusCode nuqiPyrDownGetBufSize_Gauss5x5(int32_t roiWidth, int32_t dataType,
                                                   int32_t channels, int32_t* bufferSize);
/** Gaussian pyramid: bytes of the buffer that a level up needs. */
NUQI_API StatusCode nuqiPyrUpGetBufSize_Gauss5x5(int32_t roiWidth, int32_t dataType,
                                                 int32_t channels, int32_t* bufferSize);

/* ---- Template matching -----------------------------------------------------------------------
 *
 * Slides a template over a source and scores every place where it lies wholly inside: dst(x, y) is
 * the score of the template's top-left pixel at source pixel (x, y). With the template's n pixels t,
 * the source's pixels w under them and
 *   S1 = sum w   S2 = sum w^2   T1 = sum t   T2 = sum t^2   C = sum w t   D = sum (w - t)^2
 *   k = 1 / (n + 2^-52)    m = S1 * k    e = 2^-23    root(v) about 1 / sqrt(v)
 * the scores are, multiplied from left to right,
 *   SqDiff        D                                                         0 where they are equal
 *   SqDiffNormed  root(|S2| + e) * D * root(|T2| + e)
 *   Corr          C
 *   CorrNormed    root(|S2| + e) * C * root(|T2| + e)                       at most about 1
 *   Coeff         C - S1 * T1 * k              32f: C - S1 * k * T1
 *   CoeffNormed   root(|S2 - m * S1| + e) * (C - m * T1) * root(|T2 - T1 * T1 * k| + e)
 *                                              32f: the last term k * T1 * T1; about -1 to 1
 * SqDiffNormed divides by the energies as they are, not less their means. Where the patch or the
 * template is flat (black, for those without means) e alone stands under the root: the score is
 * finite, and large at most.
 *
 * Shapes      One channel: source and template 8u, 8s or 32f, both alike, to 32f. dst is
 *             srcWidth - tplWidth + 1 by srcHeight - tplHeight + 1 pixels; no border is made up. A
 *             template as large as the source gives one score.
 * Arithmetic  Scores are computed in double precision and rounded to floats.
 *             8u, 8s: C, D, S1, S2 and T2 are exact; T1 is the sum modulo 2^32, read as signed: of 8u
 *             it wraps from 8,421,505 pixels of 255 on.
 *             32f: all sums in double precision, w - t too. C, D, T1 and T2 are added up row after
 *             row, from left to right. S1 and S2 run: with a(x, y) the sum of source row y under the
 *             template's columns at x,
 *               a(0, y) = the sum, from left to right
 *               a(x, y) = a(x-1, y) + (enters - leaves),
 *                         for S2   + (enters + leaves) * (enters - leaves)
 *               S(x, 0) = a(x, 0) + a(x, 1) + ... from 0 on
 *               S(x, y) = (S(x, y-1) - a(x, y-1)) + a(x, y + tplHeight - 1)
 *             and keep what they round away; a NaN or an infinity stays in all scores to its right and
 *             below that need S1 or S2.
 *             root(v): v is rounded to a float with bits b; y starts as the float with the bits
 *             (0xBE6F0000 - b) >> 1 (unsigned, 32 bits); four times y = (1.5 - (v/2 * y) * y) * y in
 *             double precision.
 * Buffer      nuqiMatchTemplateGetBufSize, of the same measure, gives its size in bytes for dataType 1
 *             (8u), 2 (8s) or 9 (32f). It needs no alignment and no initial content.
 * Overlap     dst and buffer overlap neither each other nor source or template; these may overlap.
 * Statuses    nuqiMatchTemplate: 1. StatusNullPtr: a pointer is null.
 *                2. StatusBadSize: the template's width or height is below 1 or exceeds the source's.
 *                3. StatusBadStep: a step below its row's bytes, or not a multiple of the element size.
 *             nuqiMatchTemplateGetBufSize: 1. StatusNullPtr: size is null. All others store 0.
 *                2. StatusBadSize: as above.         3. StatusBadDataType: dataType not 1, 2 or 9.
 *                4. StatusBadSize: the size exceeds 2^31 - 1. Matching has no such limit.
 * Method      J. P. Lewis, "Fast normalized cross-correlation", Vision Interface, 1995: running sums.
 * Example     examples/families/template_matching.c
 */
/** Template matching: sum of squared differences at every place; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiff_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                       RoiSize srcRoi, const uint8_t* tpl,
                                                       int32_t tplStep, RoiSize tplRoi, float* dst,
                                                       int32_t dstStep, void* buffer);
/** Template matching: sum of squared differences at every place; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiff_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                       RoiSize srcRoi, const int8_t* tpl,
                                                       int32_t tplStep, RoiSize tplRoi, float* dst,
                                                       int32_t dstStep, void* buffer);
/** Template matching: sum of squared differences at every place; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiff_32f_C1R(const float* src, int32_t srcStep,
                                                     RoiSize srcRoi, const float* tpl,
                                                     int32_t tplStep, RoiSize tplRoi, float* dst,
                                                     int32_t dstStep, void* buffer);
/** Template matching: normalised sum of squared differences at every place; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiffNormed_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                             RoiSize srcRoi, const uint8_t* tpl,
                                                             int32_t tplStep, RoiSize tplRoi,
                                                             float* dst, int32_t dstStep,
                                                             void* buffer);
/** Template matching: normalised sum of squared differences at every place; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiffNormed_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                             RoiSize srcRoi, const int8_t* tpl,
                                                             int32_t tplStep, RoiSize tplRoi,
                                                             float* dst, int32_t dstStep,
                                                             void* buffer);
/** Template matching: normalised sum of squared differences at every place; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_SqDiffNormed_32f_C1R(const float* src, int32_t srcStep,
                                                           RoiSize srcRoi, const float* tpl,
                                                           int32_t tplStep, RoiSize tplRoi,
                                                           float* dst, int32_t dstStep,
                                                           void* buffer);
/** Template matching: correlation at every place; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Corr_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                     RoiSize srcRoi, const uint8_t* tpl,
                                                     int32_t tplStep, RoiSize tplRoi, float* dst,
                                                     int32_t dstStep, void* buffer);
/** Template matching: correlation at every place; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Corr_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                     RoiSize srcRoi, const int8_t* tpl,
                                                     int32_t tplStep, RoiSize tplRoi, float* dst,
                                                     int32_t dstStep, void* buffer);
/** Template matching: correlation at every place; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Corr_32f_C1R(const float* src, int32_t srcStep,
                                                   RoiSize srcRoi, const float* tpl,
                                                   int32_t tplStep, RoiSize tplRoi, float* dst,
                                                   int32_t dstStep, void* buffer);
/** Template matching: normalised correlation at every place; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CorrNormed_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                           RoiSize srcRoi, const uint8_t* tpl,
                                                           int32_t tplStep, RoiSize tplRoi,
                                                           float* dst, int32_t dstStep,
                                                           void* buffer);
/** Template matching: normalised correlation at every place; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CorrNormed_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                           RoiSize srcRoi, const int8_t* tpl,
                                                           int32_t tplStep, RoiSize tplRoi,
                                                           float* dst, int32_t dstStep,
                                                           void* buffer);
/** Template matching: normalised correlation at every place; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CorrNormed_32f_C1R(const float* src, int32_t srcStep,
                                                         RoiSize srcRoi, const float* tpl,
                                                         int32_t tplStep, RoiSize tplRoi,
                                                         float* dst, int32_t dstStep, void* buffer);
/** Template matching: covariance at every place; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Coeff_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                      RoiSize srcRoi, const uint8_t* tpl,
                                                      int32_t tplStep, RoiSize tplRoi, float* dst,
                                                      int32_t dstStep, void* buffer);
/** Template matching: covariance at every place; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Coeff_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                      RoiSize srcRoi, const int8_t* tpl,
                                                      int32_t tplStep, RoiSize tplRoi, float* dst,
                                                      int32_t dstStep, void* buffer);
/** Template matching: covariance at every place; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_Coeff_32f_C1R(const float* src, int32_t srcStep,
                                                    RoiSize srcRoi, const float* tpl,
                                                    int32_t tplStep, RoiSize tplRoi, float* dst,
                                                    int32_t dstStep, void* buffer);
/** Template matching: correlation coefficient at every place, -1 to 1; 8u to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CoeffNormed_8u32f_C1R(const uint8_t* src, int32_t srcStep,
                                                            RoiSize srcRoi, const uint8_t* tpl,
                                                            int32_t tplStep, RoiSize tplRoi,
                                                            float* dst, int32_t dstStep,
                                                            void* buffer);
/** Template matching: correlation coefficient at every place, -1 to 1; 8s to 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CoeffNormed_8s32f_C1R(const int8_t* src, int32_t srcStep,
                                                            RoiSize srcRoi, const int8_t* tpl,
                                                            int32_t tplStep, RoiSize tplRoi,
                                                            float* dst, int32_t dstStep,
                                                            void* buffer);
/** Template matching: correlation coefficient at every place, -1 to 1; 32f. */
NUQI_API StatusCode nuqiMatchTemplate_CoeffNormed_32f_C1R(const float* src, int32_t srcStep,
                                                          RoiSize srcRoi, const float* tpl,
                                                          int32_t tplStep, RoiSize tplRoi,
                                                          float* dst, int32_t dstStep,
                                                          void* buffer);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_SqDiff needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_SqDiff(RoiSize srcRoi, RoiSize tplRoi,
                                                       int32_t dataType, int32_t* size);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_SqDiffNormed needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_SqDiffNormed(RoiSize srcRoi, RoiSize tplRoi,
                                                             int32_t dataType, int32_t* size);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_Corr needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_Corr(RoiSize srcRoi, RoiSize tplRoi,
                                                     int32_t dataType, int32_t* size);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_CorrNormed needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_CorrNormed(RoiSize srcRoi, RoiSize tplRoi,
                                                           int32_t dataType, int32_t* size);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_Coeff needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_Coeff(RoiSize srcRoi, RoiSize tplRoi,
                                                      int32_t dataType, int32_t* size);
/** Template matching: bytes of the buffer that nuqiMatchTemplate_CoeffNormed needs. */
NUQI_API StatusCode nuqiMatchTemplateGetBufSize_CoeffNormed(RoiSize srcRoi, RoiSize tplRoi,
                                                            int32_t dataType, int32_t* size);

/* ---- Flood fills -----------------------------------------------------------------------------
 *
 * Paints, in place, the connected region of pixels that a seed belongs to. Pixels are connected
 * through their four neighbours (4Con) or all eight (8Con).
 *
 *   nuqiFloodFill_4Con, _8Con          the pixels that equal the seed
 *   nuqiFloodFill_Grad4Con, _Grad8Con  the pixels reached in steps from a pixel p to a neighbour q with
 *                                      p - lower <= q <= p + upper; the region may drift far from the
 *                                      seed's value along a gradual change
 *
 * Values are those before the call; the order of the search does not show in the result.
 *
 * Shapes      One channel, 8u or 32f. seed: a pixel of the ROI. newValue paints: 0 to 255 for 8u, any
 *             float for 32f.
 * Equality    32f: neither less nor greater. -0.0 equals +0.0, and a NaN pixel equals any seed.
 *             Where the seed already equals newValue, which a NaN of either does, nothing is painted
 *             and neither region nor buffer is written; the status is StatusOk.
 * Gradient    8u: an exact comparison of integers. 32f: |(p - q) - (lower - upper) / 2| <=
 *             (lower + upper) / 2 in doubles. The formula decides: where an infinity or rounding makes it
 *             differ from p - lower <= q <= p + upper, too. Deltas of infinity and 0 join all finite
 *             values; two infinite deltas, or one NaN, join nothing to the seed. A NaN or two equal
 *             infinities do not join. A seed that already has the new value is filled like any other.
 *             A step may lead one way alone where the deltas differ.
 * Region      What was painted: the number of pixels, newValue, and the smallest rectangle around it.
 * Buffer      Its size in bytes: nuqiFloodFillGetSize gives 6 * width * height,
 *             nuqiFloodFillGetSize_Grad (width + 2) * (height + 2) more. It needs no alignment and no
 *             initial content, and its size is not tested. The queries compute 24 * width * height
 *             modulo 2^32, and the sum of the other term and a quarter of it modulo 2^32, too: from
 *             178,956,971 pixels on, bring the bytes of the formulas above instead of what they give.
 * Overlap     Image, region and buffer must not overlap.
 * Statuses    nuqiFloodFillGetSize, _Grad: 1. StatusBadSize: width or height below 1.
 *                2. StatusNullPtr: the size pointer is null.
 *             Fills: 1. StatusNullPtr: image, region or buffer is null.
 *                2. StatusBadSize: width or height below 1, a step below its row's bytes, or a 32f step
 *                   not a multiple of 4.
 *                3. StatusBadArg: the seed lies outside the ROI.
 *                4. StatusUnsupported: 8u: newValue below 0 or above 255.
 *             Gradient fills: 5. StatusBadArg: a delta below 0 (-0.0 and NaN are not).
 *                6. StatusBadArg: 8u: lowerDelta + upperDelta above 255.
 * Example     examples/families/flood_fill.c
 */

/** What a flood fill has painted. */
typedef struct FillRegion {
  double area;   /**< in pixels */
  double value;  /**< what they were painted with */
  int32_t x;     /**< the leftmost column */
  int32_t y;     /**< the topmost row */
  int32_t width; /**< of the smallest rectangle around them */
  int32_t height;
} FillRegion;

/** Flood fills: bytes of the buffer that a fill of such a region needs. */
NUQI_API StatusCode nuqiFloodFillGetSize(RoiSize roi, int32_t* size);
/** Flood fills: paints the connected pixels that equal the seed, 4 neighbours each; 8u. */
NUQI_API StatusCode nuqiFloodFill_4Con_8u_C1IR(uint8_t* image, int32_t step, RoiSize roi,
                                               PixelPoint seed, int32_t newValue,
                                               FillRegion* region, void* buffer);
/** Flood fills: paints the connected pixels that equal the seed, 8 neighbours each; 8u. */
NUQI_API StatusCode nuqiFloodFill_8Con_8u_C1IR(uint8_t* image, int32_t step, RoiSize roi,
                                               PixelPoint seed, int32_t newValue,
                                               FillRegion* region, void* buffer);
/** Flood fills: paints the connected pixels that equal the seed, 4 neighbours each; 32f. */
NUQI_API StatusCode nuqiFloodFill_4Con_32f_C1IR(float* image, int32_t step, RoiSize roi,
                                                PixelPoint seed, float newValue, FillRegion* region,
                                                void* buffer);
/** Flood fills: paints the connected pixels that equal the seed, 8 neighbours each; 32f. */
NUQI_API StatusCode nuqiFloodFill_8Con_32f_C1IR(float* image, int32_t step, RoiSize roi,
                                                PixelPoint seed, float newValue, FillRegion* region,
                                                void* buffer);

/** Flood fills: bytes of the buffer that a gradient fill of such a region needs. */
NUQI_API StatusCode nuqiFloodFillGetSize_Grad(RoiSize roi, int32_t* size);
/** Flood fills: paints the pixels that small steps lead to, 4 neighbours each; 8u. */
NUQI_API StatusCode nuqiFloodFill_Grad4Con_8u_C1IR(uint8_t* image, int32_t step, RoiSize roi,
                                                   PixelPoint seed, int32_t newValue,
                                                   int32_t lowerDelta, int32_t upperDelta,
                                                   FillRegion* region, void* buffer);
/** Flood fills: paints the pixels that small steps lead to, 8 neighbours each; 8u. */
NUQI_API StatusCode nuqiFloodFill_Grad8Con_8u_C1IR(uint8_t* image, int32_t step, RoiSize roi,
                                                   PixelPoint seed, int32_t newValue,
                                                   int32_t lowerDelta, int32_t upperDelta,
                                                   FillRegion* region, void* buffer);
/** Flood fills: paints the pixels that small steps lead to, 4 neighbours each; 32f. */
NUQI_API StatusCode nuqiFloodFill_Grad4Con_32f_C1IR(float* image, int32_t step, RoiSize roi,
                                                    PixelPoint seed, float newValue,
                                                    float lowerDelta, float upperDelta,
                                                    FillRegion* region, void* buffer);
/** Flood fills: paints the pixels that small steps lead to, 8 neighbours each; 32f. */
NUQI_API StatusCode nuqiFloodFill_Grad8Con_32f_C1IR(float* image, int32_t step, RoiSize roi,
                                                    PixelPoint seed, float newValue,
                                                    float lowerDelta, float upperDelta,
                                                    FillRegion* region, void* buffer);

#ifdef __cplusplus
}
#endif

#endif /* NUQI_NUQI_H */

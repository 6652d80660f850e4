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
 *           has been written then.
 * Names     nuqi + operation + element types + layout. 8u, 8s, 16s and 32f are unsigned and signed
 *           bytes, 16-bit integers and single-precision floats; of two types the first is the
 *           source's. C1 is one channel, C3C one channel of three interleaved ones, I in place, M
 *           masked, R works on a ROI.
 * Threads   There is no global state: any number of calls may run at once on distinct outputs.
 * Arithmetic  Single-precision operations round to nearest. The same bits come out on every
 *           instruction set, whatever the alignment and the steps. (The bits of a NaN that an
 *           operation creates are the processor's own.)
 */
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

/* A status; the line samplers return their positive number of samples through it. */
typedef int32_t StatusCode;

enum {
  StatusOk = 0,
  StatusNothingToDo = 1,  /* a warning: a morphology strip had no rows to process */
  StatusUnsupported = -5, /* an enumerated or ranged argument has a value outside its set */
  StatusBadSize = -9939,  /* a width, height, aperture or (in most families) step is out of range */
  StatusNullPtr = -9941,  /* a pointer is null */
  StatusNoMemory = -9942, /* a state could not be allocated */
  StatusDivByZero = -9943,   /* a sum that would divide is zero */
  StatusBadArg = -9944,      /* an argument is outside its range */
  StatusBadDataType = -9945, /* a data type is not 1 (8u), 2 (8s) or 9 (32f) */
  StatusBadStep = -9947,     /* a step is too small or not a multiple of the element size */
  StatusBadContext = -9950,  /* a state was made for another purpose */
  StatusBadCoi = -9985,      /* a channel of interest is not 1, 2 or 3 */
  StatusBadChannels = -9986  /* a channel count is not 1 or 3 */
};

/* The size of a region in pixels. */
typedef struct RoiSize {
  int32_t width;
  int32_t height;
} RoiSize;

/* A pixel's position, counted from the region's top-left pixel (0, 0). */
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
 */
NUQI_API StatusCode nuqiAdd_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                       int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAdd_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                       int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAdd_32f_C1IR(const float* src, int32_t srcStep, float* acc, int32_t accStep,
                                     RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_32f_C1IR(const float* src, int32_t srcStep, float* acc,
                                           int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_8u32f_C1IR(const uint8_t* src1, int32_t src1Step,
                                              const uint8_t* src2, int32_t src2Step, float* acc,
                                              int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_8s32f_C1IR(const int8_t* src1, int32_t src1Step,
                                              const int8_t* src2, int32_t src2Step, float* acc,
                                              int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_32f_C1IR(const float* src1, int32_t src1Step, const float* src2,
                                            int32_t src2Step, float* acc, int32_t accStep,
                                            RoiSize roi);
NUQI_API StatusCode nuqiAddWeighted_8u32f_C1IR(const uint8_t* src, int32_t srcStep, float* acc,
                                               int32_t accStep, RoiSize roi, float alpha);
NUQI_API StatusCode nuqiAddWeighted_8s32f_C1IR(const int8_t* src, int32_t srcStep, float* acc,
                                               int32_t accStep, RoiSize roi, float alpha);
NUQI_API StatusCode nuqiAddWeighted_32f_C1IR(const float* src, int32_t srcStep, float* acc,
                                             int32_t accStep, RoiSize roi, float alpha);

NUQI_API StatusCode nuqiAdd_8u32f_C1IMR(const uint8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAdd_8s32f_C1IMR(const int8_t* src, int32_t srcStep, const uint8_t* mask,
                                        int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAdd_32f_C1IMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                      int32_t maskStep, float* acc, int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_8u32f_C1IMR(const uint8_t* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, float* acc,
                                              int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_8s32f_C1IMR(const int8_t* src, int32_t srcStep,
                                              const uint8_t* mask, int32_t maskStep, float* acc,
                                              int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddSquare_32f_C1IMR(const float* src, int32_t srcStep, const uint8_t* mask,
                                            int32_t maskStep, float* acc, int32_t accStep,
                                            RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_8u32f_C1IMR(const uint8_t* src1, int32_t src1Step,
                                               const uint8_t* src2, int32_t src2Step,
                                               const uint8_t* mask, int32_t maskStep, float* acc,
                                               int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_8s32f_C1IMR(const int8_t* src1, int32_t src1Step,
                                               const int8_t* src2, int32_t src2Step,
                                               const uint8_t* mask, int32_t maskStep, float* acc,
                                               int32_t accStep, RoiSize roi);
NUQI_API StatusCode nuqiAddProduct_32f_C1IMR(const float* src1, int32_t src1Step, const float* src2,
                                             int32_t src2Step, const uint8_t* mask,
                                             int32_t maskStep, float* acc, int32_t accStep,
                                             RoiSize roi);
NUQI_API StatusCode nuqiAddWeighted_8u32f_C1IMR(const uint8_t* src, int32_t srcStep,
                                                const uint8_t* mask, int32_t maskStep, float* acc,
                                                int32_t accStep, RoiSize roi, float alpha);
NUQI_API StatusCode nuqiAddWeighted_8s32f_C1IMR(const int8_t* src, int32_t srcStep,
                                                const uint8_t* mask, int32_t maskStep, float* acc,
                                                int32_t accStep, RoiSize roi, float alpha);
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
 */
NUQI_API StatusCode nuqiAbsDiff_8u_C1R(const uint8_t* src1, int32_t src1Step, const uint8_t* src2,
                                       int32_t src2Step, uint8_t* dst, int32_t dstStep,
                                       RoiSize roi);
NUQI_API StatusCode nuqiAbsDiff_32f_C1R(const float* src1, int32_t src1Step, const float* src2,
                                        int32_t src2Step, float* dst, int32_t dstStep,
                                        RoiSize roi);
NUQI_API StatusCode nuqiAbsDiffC_8u_C1R(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                        int32_t dstStep, RoiSize roi, int32_t value);
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
 * Overlap     Planes and interleaved image must not overlap, nor planes that are written each other.
 * Statuses    C3P3 and C4P4 accept an empty ROI and a single plane, P3C3 and P4C4 refuse both.
 *             1. StatusNullPtr: the interleaved image or the array is null.
 *             2. StatusNullPtr: C3P3, C4P4: the number of planes that are not null is neither 1 nor
 *                all; P3C3, P4C4: a plane is null.
 *             3. StatusBadSize: width or height below 0 (P3C3, P4C4: below 1), a step below its row's
 *                bytes, or a 32f step not a multiple of 4.
 *             StatusOk otherwise; a width or height of 0 touches no memory.
 */
NUQI_API StatusCode nuqiCopy_8u_C3P3R(const uint8_t* src, int32_t srcStep, uint8_t* const dst[3],
                                      int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_8u_C4P4R(const uint8_t* src, int32_t srcStep, uint8_t* const dst[4],
                                      int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_32f_C3P3R(const float* src, int32_t srcStep, float* const dst[3],
                                       int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_32f_C4P4R(const float* src, int32_t srcStep, float* const dst[4],
                                       int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_8u_P3C3R(const uint8_t* const src[3], int32_t srcStep, uint8_t* dst,
                                      int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_8u_P4C4R(const uint8_t* const src[4], int32_t srcStep, uint8_t* dst,
                                      int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiCopy_32f_P3C3R(const float* const src[3], int32_t srcStep, float* dst,
                                       int32_t dstStep, RoiSize roi);
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
 */
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
 */
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
 */
NUQI_API StatusCode nuqiSampleLine_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                          uint8_t* dst, PixelPoint start, PixelPoint end);
NUQI_API StatusCode nuqiSampleLine_8u_C3R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                          uint8_t* dst, PixelPoint start, PixelPoint end);
NUQI_API StatusCode nuqiSampleLine_32f_C1R(const float* src, int32_t srcStep, RoiSize roi,
                                           float* dst, PixelPoint start, PixelPoint end);
NUQI_API StatusCode nuqiSampleLine_32f_C3R(const float* src, int32_t srcStep, RoiSize roi,
                                           float* dst, PixelPoint start, PixelPoint end);

/* ---- Histograms ------------------------------------------------------------------------------
 *
 * nuqiCalcHist_8u_C1R counts the pixels of an image in bins between levels: bin i holds the number of
 * pixels v with levels[i] <= v < levels[i + 1].
 *
 *   levelCount  Levels; hist has levelCount - 1 bins, but at least one. With a single level its one
 *               bin has no upper end. Bins whose levels do not ascend are 0.
 *   Statuses    1. StatusNullPtr: a pointer is null.
 *               2. StatusBadSize: width, height or levelCount below 1.
 *               3. StatusBadStep: the step is below the row's bytes.
 *
 * nuqiCalcHist_8u_C2R counts pairs of the two interleaved channels: row j, column i of hist holds the
 * number of pixels whose first channel lies in bin i and second channel in bin j.
 *
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
 */
NUQI_API StatusCode nuqiCalcHist_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                        int32_t* hist, int32_t levelCount, const uint8_t* levels);
NUQI_API StatusCode nuqiCalcHist_8u_C2R(const uint8_t* src, int32_t srcStep, RoiSize roi,
                                        int32_t* hist, int32_t histStep, const int32_t* counts,
                                        const int32_t* levels);
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
 *               t = (S(c-1) + S(c+1)) * k3 + S(c) * k10,   k3 = 3 * 2^-shift, k10 = 10 * 2^-shift
 *             Sobel Dx is (d above + d below) + 2 * d, Sobel Dy is s below - s above, Scharr Dx is
 *             (d above + d below) * k3 + d * k10 and Scharr Dy is t below - t above; with bottomUp 1
 *             above and below change places. Each operation rounds once, in the order written. The
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
 */
NUQI_API StatusCode nuqiSobel3x3_Dx_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_Dx_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_Dx_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_Dy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, int32_t bottomUp, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_Dy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                              int32_t dstStep, int32_t bottomUp, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_Dy_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_D2x_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_D2x_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_D2y_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_D2y_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                               int32_t dstStep, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_DxDy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                                int32_t dstStep, int32_t bottomUp, RoiSize roi);
NUQI_API StatusCode nuqiSobel3x3_DxDy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                                int32_t dstStep, int32_t bottomUp, RoiSize roi);
NUQI_API StatusCode nuqiScharr_Dx_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, RoiSize roi, int32_t shift);
NUQI_API StatusCode nuqiScharr_Dx_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, RoiSize roi, int32_t shift);
NUQI_API StatusCode nuqiScharr_Dx_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                          int32_t dstStep, RoiSize roi, int32_t shift);
NUQI_API StatusCode nuqiScharr_Dy_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                            int32_t shift);
NUQI_API StatusCode nuqiScharr_Dy_8s16s_C1R(const int8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                            int32_t shift);
NUQI_API StatusCode nuqiScharr_Dy_32f_C1R(const float* src, int32_t srcStep, float* dst,
                                          int32_t dstStep, int32_t bottomUp, RoiSize roi,
                                          int32_t shift);

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
 */
NUQI_API StatusCode nuqiCannyGetSize(RoiSize roi, int32_t* size);
NUQI_API StatusCode nuqiCanny_16s8u_C1R(const int16_t* dx, int32_t dxStep, const int16_t* dy,
                                        int32_t dyStep, uint8_t* dst, int32_t dstStep, RoiSize roi,
                                        float low, float high, void* buffer);

#ifdef __cplusplus
}
#endif

#endif /* NUQI_NUQI_H */

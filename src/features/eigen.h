// What the entries of the corner functions share with their kernels: the layout of the buffer, and the
// job.
#pragma once

#include "core/by_type.h"
#include "core/image.h"
#include "core/isa.h"
#include "core/scratch.h"
#include "filters/result.h"

namespace nuqi {

// The sums over a window of dx * dx, dx * dy and dy * dy.
constexpr int kEigenPlanes = 3;

// For each plane and column: the sums along the last rows, as many as a window has, and their own.
constexpr int kEigenKept = kEigenPlanes * (7 + 1);

struct EigenPlan {
  Region<float> kept;
  int64_t size;
};

// False where the size exceeds an int.
constexpr bool plan_eigen(int32_t width, EigenPlan& plan) {
  ScratchLayout layout;
  plan.kept = layout.add<float>(int64_t{kEigenKept} * width);
  plan.size = layout.size();
  return fits_int(plan.size);
}

// A kernel takes so many rows of derivatives at a time, in strips of columns.
constexpr int kEigenRows = 16;
constexpr int kEigenLanes = 16;

template <class D>
struct EigenStrip {
  static constexpr int kColumns = 256;
  static constexpr int kMargin = 32;  // columns on either side
  static constexpr int kPitch = kColumns + 2 * kMargin;

  alignas(64) D dx[kEigenRows][kPitch], dy[kEigenRows][kPitch];
};

// What lasts from strip to strip, or from band to band of rows.
struct EigenCarry {
  // Products of the last columns, and sums around the next one.
  alignas(64) float columns[kEigenPlanes][64][kEigenRows];
  alignas(64) double sum[kEigenPlanes][kEigenRows];
  // Of the columns at the right that do not fill a vector, what the buffer holds of the others.
  alignas(64) float kept[kEigenKept][kEigenLanes];
};

struct EigenJob {
  EigenCarry* carry;
  float* kept;         // the caller's buffer: `width` floats for each of kEigenKept
  Image<float> dst;    // the whole image
  int64_t y;           // of the strip's first row
  int rows;            // the strip's rows that the image has
  int repeats;         // copies of its last row below the image
  int half;            // of the window
  int32_t x, columns;  // of the strip
  int32_t width;       // of the image
  double scale;
};

template <class D>
using EigenKernel = void (*)(const EigenJob&, const EigenStrip<D>&);

enum class EigenResult { minimum, vectors };
// Forced inline as row_of is.
__attribute__((always_inline)) constexpr int values_of(EigenResult result) {
  return result == EigenResult::minimum ? 1 : 6;
}

template <class D>
struct EigenKernelsOf {
  EigenKernel<D> running[2];  // [result]
};
template <>
struct EigenKernelsOf<int16_t> {
  EigenKernel<int16_t> running[2];
  EigenKernel<int16_t> minimum_of_bytes3x3;  // where both aperture and window are 3x3
};

using EigenKernels = ByType<EigenKernelsOf, int16_t, float>;

NUQI_KERNEL_TABLES(EigenKernels, eigen_kernels)

}  // namespace nuqi

// Eigenvalues of the gradients' covariance: nuqiMinEigenVal and nuqiEigenValsVecs.
#include "features/eigen.h"

#include <type_traits>

#include "core/stripe.h"
#include "core/validate.h"
#include "filters/convol_state.h"
#include "filters/sobel.h"

namespace nuqi {
namespace {

template <class T>
struct EigenCall {
  Image<const T> src;
  Image<float> dst;
  RoiSize roi;
  int32_t aperture, block;
  void* buffer;
};

// Both first derivatives.
template <class D>
struct Derivatives {
  SobelWeights<D> dx = {}, dy = {};

  explicit Derivatives(int32_t aperture) {
    const Coefficients smooth = coefficients_of(0, aperture), derive = coefficients_of(1, aperture);
    const int half = aperture / 2;
    for (int k = 0; k <= half; ++k) {
      dx.x[k] = dy.y[k] = static_cast<D>(derive.of[half + k]);
      dx.y[k] = dy.x[k] = static_cast<D>(smooth.of[half + k]);
    }
  }
};

// Fills a strip with the derivatives of its rows and columns and of a column on either side, for windows
// of 3x3: the others keep columns from strip to strip. Beyond the image's ends lie copies of its first or
// last column.
template <class T, class D>
void derive(const EigenCall<T>& call, const EigenJob& job, const Derivatives<D>& weights,
            EigenStrip<D>& strip) {
  constexpr int kMargin = EigenStrip<D>::kMargin;
  const int half = call.aperture / 2, reach = half + 1;
  const int32_t left = std::min(job.x, reach);
  const int32_t end = job.x + job.columns, right = std::min(job.width - end, reach);

  const Stripe image = {call.roi.height, half, half, true, true, 0};
  const T* rows[kMostSources];
  StripeRows<T>{image, call.src, nullptr}.collect(
      job.y - half, kEigenRows + 2 * half + kMostRowsAtOnce - 1, rows);
  for (int i = 0; i < kEigenRows + 2 * half + kMostRowsAtOnce - 1; ++i) rows[i] += job.x - left;

  const auto& kernels = sobel_kernels().of_type<T>().of[half - 1];
  const auto filter = [&](D(&to)[kEigenRows][EigenStrip<D>::kPitch], const SobelKernel<T, D>& sobel,
                          const SobelWeights<D>& of) {
    sobel({.rows = rows,
           .dst = {to[0] + kMargin - left, int32_t{sizeof to[0]}},
           .roi = {left + job.columns + right, kEigenRows}},
          of);
    for (D(&row)[EigenStrip<D>::kPitch] : to) {
      D* const first = row + kMargin - left;
      D* const last = row + kMargin + job.columns + right - 1;
      if (left == job.x) first[-1] = *first;
      if (right == job.width - end) std::fill(last + 1, last + 1 + kEigenLanes, *last);
    }
  };
  filter(strip.dx, kernels[1][0], weights.dx);
  filter(strip.dy, kernels[0][1], weights.dy);
}

template <class D>
EigenKernel<D> kernel_of(EigenResult result, int32_t aperture) {
  const EigenKernelsOf<D>& kernels = eigen_kernels().of_type<D>();
  if constexpr (std::is_same_v<D, int16_t>)
    if (result == EigenResult::minimum && aperture == 3) return kernels.minimum_of_bytes3x3;
  return kernels.running[static_cast<int>(result)];
}

// 1 / (2^(2 * (aperture - 1)) * 255 * block^2)
double scale_of(int32_t aperture, int32_t block) {
  const double gain = static_cast<double>(1 << (aperture - 1));
  return 1.0 / (gain * gain * 255.0 * block * block);
}

template <class T>
void walk(const EigenCall<T>& call, EigenResult result, int window) {
  using D = FilterResult<T>;
  EigenPlan plan = {};
  plan_eigen(call.roi.width, plan);
  EigenStrip<D> strip;
  EigenCarry carry;
  EigenJob job = {};
  job.carry = &carry;
  job.kept = Scratch(call.buffer)[plan.kept];
  job.dst = call.dst;
  job.half = window / 2;
  job.width = call.roi.width;
  job.scale = scale_of(call.aperture, call.block);
  const auto kernel = kernel_of<D>(result, call.aperture);
  const Derivatives<D> weights(call.aperture);
  const int64_t height = call.roi.height;
  for (job.y = 0; job.y < height; job.y += kEigenRows) {
    job.rows = static_cast<int>(std::min<int64_t>(kEigenRows, height - job.y));
    job.repeats = job.y + job.rows == height ? job.half : 0;
    for (job.x = 0; job.x < job.width; job.x += job.columns) {
      job.columns = std::min(job.width - job.x, EigenStrip<D>::kColumns);
      derive(call, job, weights, strip);
      kernel(job, strip);
    }
  }
}

template <EigenResult result, class T>
StatusCode eigen(const EigenCall<T>& call, int32_t window) {
  const auto& [src, dst, roi, aperture, block, buffer] = call;
  // clang-format off
  if (any_null(src.data, dst.data, static_cast<char*>(buffer)))    return StatusNullPtr;
  if (below_one(roi))                                              return StatusBadSize;
  if (short_row(src, roi.width))  /* it may be uneven */           return StatusBadSize;
  if (short_row(dst, roi.width, values_of(result)) || uneven(dst)) return StatusBadSize;
  if (!is_size(aperture) || !is_size(block))                       return StatusBadSize;
  // clang-format on
  walk(call, result, window);
  return StatusOk;
}

StatusCode get_size(int32_t width, int32_t aperture, int32_t block, int32_t* size) {
  EigenPlan plan = {};
  // clang-format off
  if (width < 1 || !is_size(aperture) || !is_size(block))          return StatusBadSize;
  if (!plan_eigen(width, plan))                                    return StatusBadSize;
  if (any_null(size))  /* deliberate: after the sizes */           return StatusNullPtr;
  // clang-format on
  *size = static_cast<int32_t>(plan.size);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiMinEigenValGetSize(int32_t roiWidth, int32_t apertureSize, int32_t blockSize,
                                  int32_t* size) {
  return get_size(roiWidth, apertureSize, blockSize, size);
}
StatusCode nuqiEigenValsVecsGetSize(int32_t roiWidth, int32_t apertureSize, int32_t blockSize,
                                    int32_t* size) {
  return get_size(roiWidth, apertureSize, blockSize, size);
}

// The last column is the window that sums are taken over. Deliberate: for bytes and minima it is the
// aperture, while the scale is that of the block.
#define ENTRY(name, T, result, window)                                                     \
  StatusCode name(const T* src, int32_t srcStep, float* dst, int32_t dstStep, RoiSize roi, \
                  int32_t apertureSize, int32_t blockSize, void* buffer) {                 \
    return eigen<EigenResult::result, T>({.src = {src, srcStep},                           \
                                          .dst = {dst, dstStep},                           \
                                          .roi = roi,                                      \
                                          .aperture = apertureSize,                        \
                                          .block = blockSize,                              \
                                          .buffer = buffer},                               \
                                         window);                                          \
  }

// clang-format off

ENTRY(nuqiMinEigenVal_8u32f_C1R,   uint8_t, minimum, apertureSize)
ENTRY(nuqiMinEigenVal_8s32f_C1R,   int8_t,  minimum, apertureSize)
ENTRY(nuqiMinEigenVal_32f_C1R,     float,   minimum, blockSize)
ENTRY(nuqiEigenValsVecs_8u32f_C1R, uint8_t, vectors, blockSize)
ENTRY(nuqiEigenValsVecs_8s32f_C1R, int8_t,  vectors, blockSize)
ENTRY(nuqiEigenValsVecs_32f_C1R,   float,   vectors, blockSize)

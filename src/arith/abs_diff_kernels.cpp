// The absolute differences of two images, or of an image and a constant.
#include "arith/abs_diff.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

template <int N>
NUQI_INLINE Vec<uint8_t, N> difference(const Vec<uint8_t, N>& a, const Vec<uint8_t, N>& b) {
  return max(a, b) - min(a, b);
}
template <int N>
NUQI_INLINE Vec<float, N> difference(const Vec<float, N>& a, const Vec<float, N>& b) {
  return abs(a - b);
}

template <bool of_images, class T>
void abs_diff(const AbsDiffJob<T>& job) {
  constexpr int kBlock = Reg<T>::kLanes;
  const auto constant = broadcast<T, kBlock>(job.constant);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    const T* src2 = row_of(job.src2, y);
    T* dst = row_of(job.dst, y);

    for_blocks<kBlock>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      const auto a = load<kBlock>(src + x, part);
      if constexpr (of_images)
        store(dst + x, difference(a, load<kBlock>(src2 + x, part)), part);
      else
        store(dst + x, difference(a, constant), part);
    });
  }
}

template <class T>
constexpr AbsDiffKernelsOf<T> kKernels = {abs_diff<true, T>, abs_diff<false, T>};

}  // namespace

const AbsDiffKernels abs_diff_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

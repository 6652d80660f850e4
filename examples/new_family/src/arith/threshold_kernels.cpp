// Compares pixels with a level.
#include "arith/threshold.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class T>
void threshold(const ThresholdJob<T>& job) {
  constexpr int kBlock = Reg<T>::kLanes;
  const auto level = broadcast<T, kBlock>(job.level), value = broadcast<T, kBlock>(job.value);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    T* dst = row_of(job.dst, y);

    for_blocks<kBlock>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      store(dst + x, keep(load<kBlock>(src + x, part) > level, value), part);
    });
  }
}

template <class T>
constexpr ThresholdKernelsOf<T> kKernels = {threshold<T>};

}  // namespace

const ThresholdKernels threshold_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

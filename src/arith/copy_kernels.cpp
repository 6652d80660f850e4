// Interleaved pixels to planes, or to one of them, and planes to interleaved pixels.
#include "arith/copy.h"
#include "core/simd/memory.h"
#include "core/simd/planes.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class T, int C>
void split_pixels(const SplitJob<T>& job) {
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    T* planes[C];
    for (int k = 0; k < C; ++k) planes[k] = row_of(job.planes[k], y);

    for_blocks<Reg<T>::kLanes>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      const auto out = deinterleave(load_pixels<C>(src + C * x, part));
      for_each<4>([&](int k) NUQI_FORCED {
        if (k < C) store(planes[k] + x, out.v[k], part);
      });
    });
  }
}

template <class T, int C, int channel>
void extract_channel(const SplitJob<T>& job) {
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    T* plane = row_of(job.planes[0], y);
    for_blocks<Reg<T>::kLanes>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      store(plane + x, deinterleave(load_pixels<C>(src + C * x, part)).v[channel], part);
    });
  }
}

template <class T, int C>
void join_planes(const JoinJob<T>& job) {
  for (int32_t y = 0; y < job.roi.height; ++y) {
    T* dst = row_of(job.dst, y);
    const T* planes[C];
    for (int k = 0; k < C; ++k) planes[k] = row_of(job.planes[k], y);

    for_blocks<Reg<T>::kLanes>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      Regs<T, C> in;
      for_each<4>([&](int k) NUQI_FORCED {
        if (k < C) in.v[k] = load<Reg<T>::kLanes>(planes[k] + x, part);
      });
      store_pixels(dst + C * x, interleave(in), part);
    });
  }
}

template <class T>
constexpr CopyKernelsOf<T> kKernels = {
    {split_pixels<T, 3>, split_pixels<T, 4>},
    {{extract_channel<T, 3, 0>, extract_channel<T, 3, 1>, extract_channel<T, 3, 2>, nullptr},
     {extract_channel<T, 4, 0>, extract_channel<T, 4, 1>, extract_channel<T, 4, 2>,
      extract_channel<T, 4, 3>}},
    {join_planes<T, 3>, join_planes<T, 4>},
};

}  // namespace

const CopyKernels copy_kernels = {kKernels<uint8_t>, kKernels<uint32_t>};

}  // namespace nuqi::NUQI_ISA

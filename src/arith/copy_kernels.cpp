// Interleaved pixels to planes, or to one of them, and planes to interleaved pixels.
#include "arith/copy.h"
#include "core/simd/memory.h"
#include "core/simd/planes.h"

namespace nuqi::NUQI_ISA {
namespace {

// Registers of a plane that follow each other before the next plane's turn: where bytes come from beyond
// L2, prefetchers and fill buffers serve a few long runs better than many short ones.
template <class T>
constexpr int kRun = sizeof(T) == 1 ? 8 : 1;

template <class T>
NUQI_INLINE bool long_runs(RoiSize roi, int channels) {
  constexpr int64_t kL2 = 1 << 21;
  return kRun<T> > 1 && int64_t{roi.width} * roi.height * channels > kL2;
}

template <int C, int Run, class T, class Part>
NUQI_INLINE void split_run(const T* src, T* const* planes, int64_t x, Part part) {
  constexpr int n = Reg<T>::kLanes;
  Regs<T, C> out[Run];
  for_each<Run>([&](int i) NUQI_FORCED {
    out[i] = deinterleave(load_pixels<C>(src + C * (x + i * n), part));
  });
  for_each<C>([&](int k) NUQI_FORCED {
    for_each<Run>([&](int i) NUQI_FORCED { store(planes[k] + x + i * n, out[i].v[k], part); });
  });
}

template <class T, int C>
void split_pixels(const SplitJob<T>& job) {
  constexpr int n = Reg<T>::kLanes, run = n * kRun<T>;
  const bool runs = long_runs<T>(job.roi, C);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    T* planes[C];
    for (int k = 0; k < C; ++k) planes[k] = row_of(job.planes[k], y);

    int64_t begin = 0;
    if (runs)
      for (; begin + run <= job.roi.width; begin += run)
        split_run<C, kRun<T>>(src, planes, begin, Whole{});
    for_blocks<n>(job.roi.width - begin, [&](int64_t x, auto part) NUQI_FORCED {
      split_run<C, 1>(src, planes, begin + x, part);
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

template <int C, int Run, class T, class Part>
NUQI_INLINE void join_run(const T* const* planes, T* dst, int64_t x, Part part) {
  constexpr int n = Reg<T>::kLanes;
  Regs<T, C> in[Run];
  for_each<C>([&](int k) NUQI_FORCED {
    for_each<Run>([&](int i) NUQI_FORCED { in[i].v[k] = load<n>(planes[k] + x + i * n, part); });
  });
  for_each<Run>([&](int i)
                    NUQI_FORCED { store_pixels(dst + C * (x + i * n), interleave(in[i]), part); });
}

template <class T, int C>
void join_planes(const JoinJob<T>& job) {
  constexpr int n = Reg<T>::kLanes, run = n * kRun<T>;
  const bool runs = long_runs<T>(job.roi, C);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    T* dst = row_of(job.dst, y);
    const T* planes[C];
    for (int k = 0; k < C; ++k) planes[k] = row_of(job.planes[k], y);

    int64_t begin = 0;
    if (runs)
      for (; begin + run <= job.roi.width; begin += run)
        join_run<C, kRun<T>>(planes, dst, begin, Whole{});
    for_blocks<n>(job.roi.width - begin, [&](int64_t x, auto part) NUQI_FORCED {
      join_run<C, 1>(planes, dst, begin + x, part);
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

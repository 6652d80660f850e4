// Sums of the pixels of a ROI and of their squares: all of them or the selected ones, of one channel or
// of one out of three.
#include "core/simd/arithmetic.h"
#include "core/simd/channel.h"
#include "core/simd/reduce.h"
#include "core/simd/selection.h"
#include "stats/mean.h"

namespace nuqi::NUQI_ISA {
namespace {

// Bytes, in integers.
template <int channels, bool masked, bool squares, class T>
void sum_bytes(const MeanJob<T>& job, MeanSums& result) {
  using Sums = ByteSums<T, squares>;
  constexpr int kLanes = Reg<T>::kLanes;
  constexpr int64_t kStretch = int64_t{Sums::kRoom} * kLanes;
  Sums sums;
  SelectedCount<kLanes> count;
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    const uint8_t* mask = row_of(job.mask, y);
    for (int64_t start = 0; start < job.roi.width; start += kStretch) {
      const int64_t rest = job.roi.width - start, width = rest < kStretch ? rest : kStretch;
      sums.reserve(int((width + kLanes - 1) / kLanes));
      for_blocks_in_turns<kLanes, Sums::kTurns>(
          width, [&](int64_t i, auto part, int turn) NUQI_FORCED {
            const int64_t x = start + i;
            auto v = load_channel<channels, kLanes>(src + channels * x, part);
            if constexpr (masked) {
              const auto m = load<kLanes>(mask + x, part);
              count.add(m);
              v = keep_selected(m, v);
            }
            sums.add(v, turn);
          });
    }
  }
  sums.collect();
  result.sum = static_cast<int32_t>(static_cast<uint32_t>(sums.sum()));
  result.squares = static_cast<double>(sums.squares_sum());
  if (masked) result.count = static_cast<int32_t>(count.total());
}

// Floats, in doubles. A row's sixteen partial sums are reduced at its end.
template <int channels, bool masked>
void sum_floats(const MeanJob<float>& job, MeanSums& result) {
  SelectedCount<16> count;
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const float* src = row_of(job.src, y);
    const uint8_t* mask = row_of(job.mask, y);
    Px<double> sums = {}, squares = {};
    for_blocks(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      Px<double> v;
      if constexpr (masked) {
        const auto m = load(mask + x, part);
        count.add(m);
        if constexpr (channels == 1)
          v = load_doubles(src + x, m, part);
        else
          v = to_doubles(keep_selected(m, load_third<16>(src + 3 * x, part)));
      } else if constexpr (channels == 1) {
        v = load_doubles(src + x, part);
      } else {
        v = to_doubles(load_third<16>(src + 3 * x, part));
      }
      sums = sums + v;
      squares = add_exact_square(squares, v);
    });
    result.sum += reduce_add(sums);
    result.squares += reduce_add(squares);
  }
  if (masked) result.count = static_cast<int32_t>(count.total());
}

// The next two kernels are bound by the latency of their dependency chain of additions: 2 cycles each, but
// 4 while 64-byte registers are in use. So pixels are selected in blocks of eight.
template <int channels>
NUQI_INLINE void store_selected(float* to, const float* from, const uint8_t* mask, Whole whole) {
  for_each<2>([&](int half) NUQI_FORCED {
    const auto eight = load_channel<channels, 8>(from + 8 * channels * half, whole);
    store(to + 8 * half, keep_selected(load_eight(mask + 8 * half, whole), eight));
  });
}
template <int channels>
NUQI_INLINE void store_selected(float* to, const float* from, const uint8_t* mask, First part) {
  store(to, keep_selected(load(mask, part), load_channel<channels, 16>(from, part)));
}

// nuqiMean_32f_C1MR: four single-precision sums.
void sum_in_four_lanes(const MeanJob<float>& job, MeanSums& result) {
  Vec<float, 4> lanes = {};
  SelectedCount<16> count;
  uint32_t rest = 0;
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const float* src = row_of(job.src, y);
    const uint8_t* mask = row_of(job.mask, y);
    const int32_t eights = job.roi.width / 8 * 8;
    for_blocks(eights, [&](int64_t x, auto part) NUQI_FORCED {
      count.add(load(mask + x, part));
      float selected[16];
      store_selected<1>(selected, src + x, mask + x, part);
      for_each<4>([&](int i) NUQI_FORCED { lanes = lanes + load<4>(selected + 4 * i); });
    });
    for (int32_t x = eights; x < job.roi.width; ++x) {
      if (mask[x] == 0) continue;
      lanes.r[0][0] += load_one(src + x);
      ++rest;
    }
  }
  const auto& lane = lanes.r[0];
  result.sum = (double{lane[0]} + double{lane[2]}) + (double{lane[1]} + double{lane[3]});
  result.count = static_cast<int32_t>(rest + count.total());
}

// nuqiMean_32f_C3CMR: one double.
void sum_in_raster_order(const MeanJob<float>& job, MeanSums& result) {
  double sum = 0;
  SelectedCount<16> count;
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const float* src = row_of(job.src, y);
    const uint8_t* mask = row_of(job.mask, y);
    for_blocks(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      count.add(load(mask + x, part));
      float selected[16];
      store_selected<3>(selected, src + 3 * x, mask + x, part);
      // Keeps GCC from extracting the lanes from registers one by one, which takes twice as long.
      __asm__("" : "+m"(selected));
      for_each<16>([&](int i) NUQI_FORCED { sum += double{selected[i]}; });
    });
  }
  result.sum = sum;
  result.count = static_cast<int32_t>(count.total());
}

template <class T>
constexpr MeanKernelsOf<T> kKernels = {
    {sum_bytes<1, true, false, T>, sum_bytes<3, true, false, T>},
    {{sum_bytes<1, false, true, T>, sum_bytes<1, true, true, T>},
     {sum_bytes<3, false, true, T>, sum_bytes<3, true, true, T>}},
};
template <>
constexpr MeanKernelsOf<float> kKernels<float> = {
    {sum_in_four_lanes, sum_in_raster_order},
    {{sum_floats<1, false>, sum_floats<1, true>}, {sum_floats<3, false>, sum_floats<3, true>}},
};

}  // namespace

const MeanKernels mean_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

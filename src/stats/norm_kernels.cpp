// Reduces the selected pixels of one or two images to their largest magnitude, the sum of their magnitudes
// or the sum of their squares.
#include "core/simd/arithmetic.h"
#include "core/simd/channel.h"
#include "core/simd/reduce.h"
#include "core/simd/selection.h"
#include "stats/norm.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- What each pixel contributes: its magnitude or, of floats for L2, the square of it. Magnitudes of
// bytes, and of differences of bytes, are unsigned bytes.

template <Norm norm, class T, int N>
NUQI_INLINE auto magnitude(const Vec<T, N>& a) {
  if constexpr (kIsFloat<T> && norm == Norm::l2)
    return a * a;
  else if constexpr (kIsSigned<T>)
    return abs(a);
  else
    return a;
}
template <Norm norm, class T, int N>
NUQI_INLINE auto distance(const Vec<T, N>& a, const Vec<T, N>& b) {
  if constexpr (kIsFloat<T>)
    return magnitude<norm>(a - b);
  else
    return as<uint8_t>(max(a, b)) - as<uint8_t>(min(a, b));
}

// ---- Totals of magnitudes

template <NormOf of, Norm norm, int channels, class T>
class Total {  // of bytes
  using Sums = ByteSums<uint8_t, norm == Norm::l2>;

 public:
  static constexpr int kLanes = Reg<uint8_t>::kLanes;
  static constexpr int kTurns = norm == Norm::inf ? 1 : Sums::kTurns;
  static constexpr int kRoom = Sums::kRoom;

  NUQI_INLINE void reserve(int blocks) {
    if constexpr (norm != Norm::inf) sums_.reserve(blocks);
  }
  NUQI_INLINE void add(const Reg<uint8_t>& a, int turn) {
    if constexpr (norm == Norm::inf)
      largest_ = max(a, largest_);
    else
      sums_.add(a, turn);
  }
  NUQI_INLINE double value() {
    if constexpr (norm == Norm::inf) return reduce_max(largest_);
    sums_.collect();
    if constexpr (norm == Norm::l1) return (int32_t)sums_.sum();  // modulo 2^32
    return (double)sums_.squares_sum();
  }

 private:
  Reg<uint8_t> largest_ = {};
  Sums sums_;
};

// Sums of floats have sixteen lanes. On AVX-512, 256-bit additions have a lower latency than 512-bit ones:
// where little but the dependency chain binds, accumulators of eight lanes save a fifth of the time.
template <NormOf of, Norm norm, int channels>
class Total<of, norm, channels, float> {
  static constexpr bool kEights = norm != Norm::inf && channels == 1 && of == NormOf::image;

 public:
  static constexpr int kLanes = kEights ? 8 : 16;
  static constexpr int kTurns = norm == Norm::inf ? kRegBytes / 16 : 16 / kLanes;
  static constexpr int kRoom = INT32_MAX;

  NUQI_INLINE void reserve(int) {}
  NUQI_INLINE void add(const Vec<float, kLanes>& a, int turn) {
    auto& lanes = lanes_[turn];
    if constexpr (norm == Norm::inf)
      lanes = max(a, lanes);  // which stay where a is NaN
    else
      lanes = lanes + a;
  }
  NUQI_INLINE double value() const {
    auto all = lanes_[0];
    for_each<kTurns>([&](int i) NUQI_FORCED {
      if (i > 0) all = norm == Norm::inf ? max(all, lanes_[i]) : all + lanes_[i];
    });
    return norm == Norm::inf ? reduce_max(all) : reduce_add(all);
  }

 private:
  Vec<float, kLanes> lanes_[kTurns] = {};
};

// ---- The kernel

template <int N, class Part>
NUQI_INLINE auto load_mask(const uint8_t* from, Part part) {
  if constexpr (N == 8)
    return load_eight(from, part);
  else
    return load<N>(from, part);
}

// Calls body(x, part, turn) for a row's blocks of N. Blocks of eight alternate between two accumulators, in
// the tail too: a lane is a column mod 16.
template <int N, int turns, class Body>
NUQI_INLINE void for_row(int64_t width, const Body& body) {
  if constexpr (N == 8)
    for_blocks<16>(width, [&](int64_t x, auto part) NUQI_FORCED {
      for_each<2>([&](int half)
                      NUQI_FORCED { body(x + 8 * half, part_from<8>(part, 8 * half), half); });
    });
  else
    for_blocks_in_turns<N, turns>(width, body);
}

template <NormOf of, Norm norm, int channels, class T>
NormTotals measure(const NormJob<T>& job) {
  using Totals = Total<of, norm, channels, T>;
  constexpr int kLanes = Totals::kLanes;
  constexpr int64_t kStretch = int64_t{Totals::kRoom} * kLanes;
  Totals total, total_of_second;
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    const T* src2 = row_of(job.src2, y);
    const uint8_t* mask = row_of(job.mask, y);
    for (int64_t start = 0; start < job.roi.width; start += kStretch) {
      const int64_t rest = job.roi.width - start, width = rest < kStretch ? rest : kStretch;
      total.reserve(int((width + kLanes - 1) / kLanes));
      if constexpr (of == NormOf::relative)
        total_of_second.reserve(int((width + kLanes - 1) / kLanes));

      for_row<kLanes, Totals::kTurns>(width, [&](int64_t i, auto part, int turn) NUQI_FORCED {
        const int64_t x = start + i;
        const auto selected = load_mask<kLanes>(mask + x, part);
        const auto a = load_channel<channels, kLanes>(src + channels * x, part);
        if constexpr (of == NormOf::image) {
          total.add(keep_selected(selected, magnitude<norm>(a)), turn);
        } else {
          const auto b = load_channel<channels, kLanes>(src2 + channels * x, part);
          total.add(keep_selected(selected, distance<norm>(a, b)), turn);
          if constexpr (of == NormOf::relative)
            total_of_second.add(keep_selected(selected, magnitude<norm>(b)), turn);
        }
      });
    }
  }
  return {total.value(), total_of_second.value()};
}

template <class T>
constexpr NormKernelsOf<T> kKernels = {{
    {{measure<NormOf::image, Norm::inf, 1, T>, measure<NormOf::image, Norm::inf, 3, T>},
     {measure<NormOf::image, Norm::l1, 1, T>, measure<NormOf::image, Norm::l1, 3, T>},
     {measure<NormOf::image, Norm::l2, 1, T>, measure<NormOf::image, Norm::l2, 3, T>}},
    {{measure<NormOf::difference, Norm::inf, 1, T>, measure<NormOf::difference, Norm::inf, 3, T>},
     {measure<NormOf::difference, Norm::l1, 1, T>, measure<NormOf::difference, Norm::l1, 3, T>},
     {measure<NormOf::difference, Norm::l2, 1, T>, measure<NormOf::difference, Norm::l2, 3, T>}},
    {{measure<NormOf::relative, Norm::inf, 1, T>, measure<NormOf::relative, Norm::inf, 3, T>},
     {measure<NormOf::relative, Norm::l1, 1, T>, measure<NormOf::relative, Norm::l1, 3, T>},
     {measure<NormOf::relative, Norm::l2, 1, T>, measure<NormOf::relative, Norm::l2, 3, T>}},
}};

}  // namespace

const NormKernels norm_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

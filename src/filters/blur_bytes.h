// Sums of 3x3, 5x5 or 7x7 bytes. Both passes stay in registers: a block of columns is walked from top to
// bottom. With an intermediate buffer a 64x64 image takes three times as long: rows are read back across
// recent stores, whose forwarding fails.
//
// Even and odd columns are kept apart: a pair of bytes is a 16-bit lane, so that a load one lane to
// the left or right gives the neighbours, and the windows of two neighbours share all pixels but one.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/shuffle.h"
#include "filters/blur.h"

namespace nuqi::NUQI_ISA {
namespace {

template <int N>
struct Split {
  Vec<int16_t, N / 2> even, odd;

  friend NUQI_INLINE Split operator+(const Split& a, const Split& b) {
    return {a.even + b.even, a.odd + b.odd};
  }
};

// Columns on either side of a block that are read at most, whole pairs.
constexpr int kReach = 4;

// The sums along a row of N columns. load(k) gives the columns from the k-th pair on.
template <int half, class Load>
NUQI_INLINE auto sums_along(const Load& load) {
  constexpr int far = (half + 1) / 2;  // lanes to the outermost columns
  const auto pairs = [&](int k) NUQI_FORCED { return pair_sums(load(k)); };
  const auto left = odd_bytes(load(-far)), right = even_bytes(load(far));
  auto shared = pairs(0);
  using Sums = Split<2 * decltype(shared)::kLanes>;
  if constexpr (half == 2) return Sums{pairs(-1) + shared + right, left + shared + pairs(1)};
  if constexpr (half == 3) shared = pairs(-1) + shared + pairs(1);
  return Sums{shared + left, shared + right};
}

// The first eight of sixteen columns: one register of results, and no masks where masks are slow.
struct Eight {};

template <int N, class Part>
NUQI_INLINE void store_split(int16_t* to, const Split<N>& a, Part part) {
  using Out = Vec<int16_t, N / 2>;
  const auto lanes = typename UpTo<N / 2>::Type{};
  auto low = zip_half<0>(a.even.r[0], a.odd.r[0], lanes);
  auto high = zip_half<1>(a.even.r[0], a.odd.r[0], lanes);
  if constexpr (N > 16) {
    const auto halves = typename UpTo<N / 8>::Type{};
    const auto groups = low;
    low = order_half<0>(groups, high, halves);
    high = order_half<1>(groups, high, halves);
  }
  store(to, Out{{low}}, part_from<N / 2>(part, 0));
  store(to + N / 2, Out{{high}}, part_from<N / 2>(part, N / 2));
}
NUQI_INLINE void store_split(int16_t* to, const Split<16>& a, Eight) {
  store(to, Vec<int16_t, 8>{{zip_half<0>(a.even.r[0], a.odd.r[0], UpTo<8>::Type{})}});
}

// The results of a block of columns; two rows share all rows of their windows but the outer ones.
// load(y, k) gives the columns from the k-th pair on, of source row y.
template <int half, class Load, class Part>
NUQI_INLINE void walk_down(const Load& load, int16_t* to, int32_t step, int count, Part part) {
  const auto along = [&](int y) NUQI_FORCED {
    return sums_along<half>([&](int k) NUQI_FORCED { return load(y, k); });
  };
  const Image<int16_t> dst = {to, step};
  // Rows two by two: the upper ones, and the sum of each lower one and the next upper one.
  decltype(along(0)) upper[half + 1] = {}, lower = {}, shared[half] = {};
  for (int y = -2 * half; y < count; y += 2) {
    upper[half] = along(y + 2 * half);
    shared[half - 1] = lower + upper[half];
    lower = along(y + 2 * half + 1);
    if (y >= 0) {
      auto sum = shared[0];
      for_each<half - 1>([&](int i) NUQI_FORCED { sum = sum + shared[i + 1]; });
      store_split(row_of(dst, y), upper[0] + sum, part);
      if (y + 1 < count) store_split(row_of(dst, y + 1), sum + lower, part);
    }
    for_each<half>([&](int i) NUQI_FORCED { upper[i] = upper[i + 1]; });
    for_each<half - 1>([&](int i) NUQI_FORCED { shared[i] = shared[i + 1]; });
  }
}

// ---- The ends of rows where bytes permute across the register

// Loads N columns from x on, or all columns if they are fewer, and neighbours of them; beyond the image's
// ends its first or its last column. Loads stay inside the rows; lanes are permuted instead.
template <int half, int N, class T, class Part>
class ClampedLoad {
  static constexpr int far = (half + 1) / 2;

 public:
  NUQI_INLINE ClampedLoad(const T* const* rows, int32_t x, int32_t width, Part part)
      : rows_(rows), part_(part) {
    const int lanes = lane_count<N>(part);
    for_each<2 * far + 1>([&](int i) NUQI_FORCED {
      const int32_t wanted = x + 2 * (i - far), most = width - lanes;
      at_[i] = wanted < 0 ? 0 : wanted < most ? wanted : most;
      const auto from =
          lane_numbers<T>(typename UpTo<N>::Type{}) + broadcast<int8_t, N>(int8_t(wanted - at_[i]));
      from_[i] = min(max(from, Vec<int8_t, N>{}), broadcast<int8_t, N>(int8_t(lanes - 1)));
    });
  }
  NUQI_INLINE Vec<T, N> operator()(int y, int k) const {
    return permute_bytes(load<N>(rows_[y] + at_[far + k], part_), from_[far + k]);
  }

 private:
  const T* const* rows_;
  Part part_;
  int32_t at_[2 * far + 1];
  Vec<int8_t, N> from_[2 * far + 1];
};

// A block that touches an end of the rows, or both.
template <int half, int N, class T>
NUQI_NOINLINE void end_block(const WindowJob<T, int16_t>& job, int32_t x) {
  walk_down<half>(ClampedLoad<half, N, T, Whole>(job.rows, x, job.roi.width, Whole{}),
                  job.dst.data + x, job.dst.step, job.roi.height, Whole{});
}
template <int half, int N, class T>
NUQI_NOINLINE void only_block(const WindowJob<T, int16_t>& job) {
  const First all = {job.roi.width};
  walk_down<half>(ClampedLoad<half, N, T, First>(job.rows, 0, all.lanes, all), job.dst.data,
                  job.dst.step, job.roi.height, all);
}

template <int half, class T>
NUQI_INLINE void ends_by_permutations(const WindowJob<T, int16_t>& job) {
  const int32_t width = job.roi.width;
  if (width <= 16) return only_block<half, 16>(job);
  if (width <= 32) return only_block<half, 32>(job);
  if (width < 64) return only_block<half, 64>(job);
  end_block<half, 64>(job, 0);
  if (width > 64) end_block<half, 64>(job, width - 64);
}

// ---- The ends of rows elsewhere

// Some columns of some rows, and copies of the first and the last column of the image beyond it. All
// rows are copied before the first is read: a load that spans two recent stores fails store forwarding.
template <class T>
struct PaddedRows {
  static constexpr int32_t kStep = 128;

  T values[kMostSources][kStep];

  template <class Piece>
  NUQI_INLINE void copy(const T* const* rows, int count, int32_t begin, int32_t end,
                        int32_t width) {
    constexpr int32_t size = sizeof(Piece);
    const int32_t n = end - begin;
    const auto copy_piece = [](T* to, const T* from)
                                NUQI_FORCED { __builtin_memcpy(to, from, size); };
    const auto repeat = [](T* to, T value)
                            NUQI_FORCED { store_one((uint32_t*)to, uint8_t(value) * 0x01010101u); };
    for (int i = 0; i < count; ++i) {
      T* to = values[i] + 2 * kReach;
      const T* from = rows[i] + begin;
      int32_t x = 0;
      for (; x + size <= n; x += size) copy_piece(to + x, from + x);
      if (x < n) copy_piece(to + n - size, from + n - size);
      if (begin == 0) repeat(to - kReach, from[0]);
      if (end == width) repeat(to + n, from[n - 1]);
    }
  }
  NUQI_NOINLINE void fill(const T* const* rows, int count, int32_t begin, int32_t end,
                          int32_t width) {
    const int32_t n = end - begin;
    if (n >= kRegBytes) return copy<Reg<T> >(rows, count, begin, end, width);
    if (n >= 16) return copy<Vec<T, 16> >(rows, count, begin, end, width);
    if (n >= 8) return copy<uint64_t>(rows, count, begin, end, width);
    return copy<T>(rows, count, begin, end, width);
  }
};

template <int half, int N, class T, class Part>
NUQI_NOINLINE void padded_block(const T* from, int16_t* to, int32_t step, int count, Part part) {
  walk_down<half>([&](int y, int k)
                      NUQI_FORCED { return load<N>(from + y * PaddedRows<T>::kStep + 2 * k); },
                  to, step, count, part);
}

template <int half, class T>
NUQI_INLINE void ends_by_copies(const WindowJob<T, int16_t>& job) {
  constexpr int N = kRegBytes;
  const int32_t width = job.roi.width;
  const int count = job.roi.height, sources = (count + 1) / 2 * 2 + 2 * half;
  PaddedRows<T> padded;
  const auto block = [&](auto vec, int32_t begin, int32_t x, auto part) NUQI_FORCED {
    padded_block<half, decltype(vec)::kLanes>(padded.values[0] + 2 * kReach + x - begin,
                                              job.dst.data + x, job.dst.step, count, part);
  };
  if (width <= 64) {
    padded.fill(job.rows, sources, 0, width, width);
    const auto blocks = [&](auto vec, int n, auto part) NUQI_FORCED {
      for (int32_t x = 0; x < width; x += n) block(vec, 0, x + n <= width ? x : width - n, part);
    };
    if (width >= N) return blocks(Vec<T, N>{}, N, Whole{});
    if (N > 16 && width >= 16) return blocks(Vec<T, 16>{}, 16, Whole{});
    if (width >= 8) return blocks(Vec<T, 16>{}, 8, Eight{});
    return block(Vec<T, 16>{}, 0, 0, First{width});
  }
  padded.fill(job.rows, sources, 0, N + kReach, width);
  block(Vec<T, N>{}, 0, 0, Whole{});
  padded.fill(job.rows, sources, width - N - kReach, width, width);
  block(Vec<T, N>{}, width - N - kReach, width - N, Whole{});
}

// ---- All columns

template <int half, class T>
void blur(const WindowJob<T, int16_t>& job) {
  constexpr int N = kRegBytes;
  const int32_t width = job.roi.width;
  if constexpr (Machine::kPermutesBytes)
    ends_by_permutations<half>(job);
  else
    ends_by_copies<half>(job);
  if (width <= 64) return;
  for (int32_t left = N; left < width - N; left += N) {
    const int32_t last = width - N - kReach, x = left < last ? left : last;
    const auto columns = [&](int y, int k) NUQI_FORCED { return load<N>(job.rows[y] + x + 2 * k); };
    walk_down<half>(columns, job.dst.data + x, job.dst.step, job.roi.height, Whole{});
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

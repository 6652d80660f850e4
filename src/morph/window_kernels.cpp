// Rectangles and crosses of 3x3 or 5x5 pixels.
#include "morph/row_pairs.h"
#include "morph/tile.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Lines of `size` pixels or rows: windows that double

template <Extremum extremum, int size, int w = 1, class V>
NUQI_INLINE V of_line(V (&m)[size]) {
  if constexpr (2 * w <= size) {
    for_each<size - 2 * w + 1>([&](int i) NUQI_FORCED { m[i] = best<extremum>(m[i], m[i + w]); });
    return of_line<extremum, size, 2 * w>(m);
  } else {
    return best<extremum>(m[0], m[size - w]);
  }
}

// Along a row.
template <Extremum extremum, int size, class T, int N>
NUQI_INLINE Vec<T, N> along_row(const T* from, int64_t channels) {
  Vec<T, N> m[size];
  for_each<size>([&](int i) NUQI_FORCED { m[i] = load<N>(from + i * channels); });
  if constexpr (kIsFloat<T>) return of_line<extremum>(m);
  // Bytes come in any order: that of the fewest operations.
  for_each<size - 1>([&](int i) NUQI_FORCED { m[0] = best<extremum>(m[0], m[i + 1]); });
  return m[0];
}

// The last `size` of what was put in.
template <class V, int size>
struct Queue {
  V values[size];

  // Gives the oldest.
  NUQI_INLINE V push(const V& value) {
    const V oldest = values[0];
    for_each<size - 1>([&](int i) NUQI_FORCED { values[i] = values[i + 1]; });
    values[size - 1] = value;
    return oldest;
  }
};

// Down a column: gives the extremum of the last `size` rows. Before that, what the queues happened to
// hold.
template <Extremum extremum, int size, class V, int w = 1>
struct Column {
  static constexpr bool kDoubles = 2 * w <= size;
  Queue<V, kDoubles ? w : size - w> queue = {};
  Column<extremum, size, V, 2 * w> next = {};

  NUQI_INLINE V push(const V& m) {
    const V all = best<extremum>(queue.push(m), m);
    if constexpr (kDoubles)
      return next.push(all);
    else
      return all;
  }
};
template <Extremum extremum, int size, class V, int w>
requires(w > size) struct Column<extremum, size, V, w> {
};

template <Extremum extremum, int size, class T, int N>
struct Rectangle {
  Column<extremum, size, Vec<T, N>> column = {};

  NUQI_INLINE Vec<T, N> push(const T* from, int64_t channels) {
    return column.push(along_row<extremum, size, T, N>(from, channels));
  }
};

template <Extremum extremum, int size, class T, int N>
struct Cross {
  Queue<Vec<T, N>, size / 2> along = {};
  Queue<Vec<T, N>, size> column = {};

  NUQI_INLINE Vec<T, N> push(const T* from, int64_t channels) {
    auto result = along.push(along_row<extremum, size, T, N>(from, channels));
    column.push(load<N>(from + size / 2 * channels));
    for_each<size>([&](int i) NUQI_FORCED { result = best<extremum>(result, column.values[i]); });
    return result;
  }
};

// ---- Walks down the columns, N of them at once

template <int N, int size, class Shape, class T, class Part>
NUQI_INLINE void walk_down(Shape shape, const ElementJob<T>& job, const T* const* rows,
                           Image<T> dst, int64_t x, Part part) {
  constexpr int kLine = 64, kAhead = 512;  // bytes
  for_each<size - 1>([&](int y) NUQI_FORCED { shape.push(rows[y] + x, job.channels); });
  for (int64_t y = 0; y < job.height; ++y) {
    const T* from = rows[y + size - 1] + x;
    for_each<N* int{sizeof(T)} / kLine>(
        [&](int i) NUQI_FORCED { prefetch((const char*)from + kAhead + i * kLine); });
    store(row_of(dst, y) + x, shape.push(from, job.channels), part);
  }
}

// Blocks of several registers: a cache line that two blocks share is seldom fetched twice.
template <class T>
constexpr int registers_for(int size) {
  return !kPairsRows<T> && (Machine::kMasks || size == 3) ? 2 : 1;
}

template <template <Extremum, int, class, int> class Shape, Extremum extremum, int size, class T>
void stretch(const ElementJob<T>& job, const T* const* rows, Image<T> dst, int64_t count) {
  constexpr int N = Reg<T>::kLanes, kWide = registers_for<T>(size) * N;
  int64_t x = 0;
  if constexpr (kWide > N)
    for (; x + kWide <= count; x += kWide)
      walk_down<kWide, size>(Shape<extremum, size, T, kWide>{}, job, rows, dst, x, Whole{});
  for (; x + N <= count; x += N)
    walk_down<N, size>(Shape<extremum, size, T, N>{}, job, rows, dst, x, Whole{});
  if (x < count)
    walk_down<N, size>(Shape<extremum, size, T, N>{}, job, rows, dst, x, First{int(count - x)});
}

template <Extremum extremum, int size, class T>
void rectangle(const ElementJob<T>& job) {
  if constexpr (kPairsRows<T>)
    if (job.anchor.x == size / 2) return row_pairs<extremum, size, false>(job);
  for_stretches<false>(job, stretch<Rectangle, extremum, size, T>);
}

// Around its anchor.
template <Extremum extremum, int size, class T>
void cross(const ElementJob<T>& job) {
  if constexpr (kPairsRows<T>)
    row_pairs<extremum, size, true>(job);
  else
    for_stretches<false>(job, stretch<Cross, extremum, size, T>);
}

constexpr auto kLeast = Extremum::least, kGreatest = Extremum::greatest;

template <class T>
constexpr WindowKernelsOf<T> kKernels = {
    {{rectangle<kLeast, 3, T>, rectangle<kLeast, 5, T>},
     {rectangle<kGreatest, 3, T>, rectangle<kGreatest, 5, T>}},
    {{cross<kLeast, 3, T>, cross<kLeast, 5, T>}, {cross<kGreatest, 3, T>, cross<kGreatest, 5, T>}},
};

}  // namespace

const WindowKernels window_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

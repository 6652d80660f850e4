// Extrema over small elements, straight from the caller's rows. Near the ends of the rows, and where
// floats are compared as keys, a tile holds the pixels with the copies that stand beside them.
#include "morph/window.h"

#include "morph/extremum.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Tiles

// Blocks are read whole, so that a row has room for one more than it holds; rows lie an odd number of
// cache lines apart.
constexpr int kTileBytes = 512, kTileStep = kTileBytes + 64;

template <class T>
struct Tile {
  static constexpr int kStep = kTileStep / sizeof(T);

  alignas(64) T pixels[kWindowSources * kStep];
  const T* rows[kWindowSources];

  static NUQI_INLINE int64_t sources(const WindowJob<T>& job) {
    return job.height + job.element.height - 1;
  }
  // The caller's rows, from a column on.
  NUQI_INLINE void refer(const WindowJob<T>& job, int64_t from) {
    for (int64_t r = 0; r < sources(job); ++r) rows[r] = job.rows[r] + from;
  }
  // Columns `from` to `from` + count - 1 of the image, all of its rows; those outside are copies.
  template <bool keys>
  NUQI_INLINE void fill(const WindowJob<T>& job, int64_t from, int64_t count) {
    const int64_t before = from < 0 ? -from : 0, beyond = from + count - job.count;
    const int64_t after = beyond > 0 ? beyond : 0, inside = count - before - after;
    for (int64_t r = 0; r < sources(job); ++r) {
      const T* src = job.rows[r] + from + before;
      T* row = pixels + r * kStep;
      T* to = row + before;
      rows[r] = row;
      for_blocks<Reg<T>::kLanes>(inside, [&](int64_t x, auto part) NUQI_FORCED {
        const auto block = load<Reg<T>::kLanes>(src + x, part);
        store(to + x, keys ? swap_key<T>(block) : block);
      });
      for (int64_t i = 1; i <= before; ++i) to[-i] = to[job.channels - i];
      for (int64_t i = 0; i < after; ++i) to[inside + i] = to[inside + i - job.channels];
    }
  }
};

// Computes `count` columns from dst's first on: rows[r][0] is the leftmost pixel under the element there.
template <class T>
using Stretch = void (*)(const WindowJob<T>& job, const T* const* rows, Image<T> dst,
                         int64_t count);

template <bool keys, class T>
NUQI_NOINLINE void for_stretches(const WindowJob<T>& job, Stretch<T> compute) {
  constexpr int N = Reg<T>::kLanes;
  const int64_t around = int64_t{job.element.width - 1} * job.channels;
  const int64_t left = int64_t{job.anchor.x} * job.channels, right = around - left;
  const int64_t most = (kTileBytes / int{sizeof(T)} - around) / N * N;
  Tile<T> tile;
  for (int64_t x = 0; x < job.count;) {
    const int64_t rest = job.count - x, blocks = (rest - right) / N * N;
    int64_t count = blocks;
    if (!keys && rest > most && x >= left && blocks > 0) {
      tile.refer(job, x - left);
    } else {
      count = rest <= most ? rest : keys ? most : (left + N - 1) / N * N;
      tile.template fill<keys>(job, x - left, count + around);
    }
    compute(job, tile.rows, {job.dst.data + x, job.dst.step}, count);
    x += count;
  }
}

// ---- Lines of `size` pixels or rows: windows that double

template <int size>
constexpr int kReached = size < 2 ? 1 : 2 * kReached<size / 2>;

// Along a row.
template <Extremum extremum, int size, class T>
NUQI_INLINE Reg<T> along_row(const T* from, int64_t channels) {
  constexpr int N = Reg<T>::kLanes;
  Reg<T> m[size];
  for_each<size>([&](int i) NUQI_FORCED { m[i] = load<N>(from + i * channels); });
  if constexpr (!kIsFloat<T>) {
    for_each<size - 1>([&](int i) NUQI_FORCED { m[0] = best<extremum>(m[0], m[i + 1]); });
    return m[0];
  } else {
    for (int w = 1; 2 * w <= size; w *= 2)
      for_each<size - 1>([&](int i) NUQI_FORCED {
        if (i + 2 * w <= size) m[i] = best<extremum>(m[i], m[i + w]);
      });
    return best<extremum>(m[0], m[size - kReached<size>]);
  }
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
template <Extremum extremum, int size, class T, int w = 1>
struct Column {
  static constexpr bool kDoubles = 2 * w <= size;
  Queue<Reg<T>, kDoubles ? w : size - w> queue;
  Column<extremum, size, T, 2 * w> next;

  NUQI_INLINE Reg<T> push(const Reg<T>& m) {
    const auto all = best<extremum>(queue.push(m), m);
    if constexpr (kDoubles)
      return next.push(all);
    else
      return all;
  }
};
template <Extremum extremum, int size, class T, int w>
requires(w > size) struct Column<extremum, size, T, w> {
};

template <Extremum extremum, class T, int size>
struct Rectangle {
  Column<extremum, size, T> column = {};

  NUQI_INLINE Reg<T> push(const T* from, int64_t channels) {
    return column.push(along_row<extremum, size>(from, channels));
  }
};

template <Extremum extremum, class T, int size>
struct Cross {
  Queue<Reg<T>, size / 2> along = {};
  Queue<Reg<T>, size> column = {};

  NUQI_INLINE Reg<T> push(const T* from, int64_t channels) {
    constexpr int N = Reg<T>::kLanes;
    auto result = along.push(along_row<extremum, size>(from, channels));
    column.push(load<N>(from + size / 2 * channels));
    for_each<size>([&](int i) NUQI_FORCED { result = best<extremum>(result, column.values[i]); });
    return result;
  }
};

// Walks down the columns, a block of pixels wide.
template <template <Extremum, class, int> class Shape, Extremum extremum, int size, class T>
void stretch(const WindowJob<T>& job, const T* const* rows, Image<T> dst, int64_t count) {
  for_blocks<Reg<T>::kLanes>(count, [&](int64_t x, auto part) NUQI_FORCED {
    Shape<extremum, T, size> shape;
    for_each<size - 1>([&](int y) NUQI_FORCED { shape.push(rows[y] + x, job.channels); });
    for (int64_t y = 0; y < job.height; ++y) {
      const auto result = shape.push(rows[y + size - 1] + x, job.channels);
      store(row_of(dst, y) + x, result, part);
    }
  });
}

template <template <Extremum, class, int> class Shape, Extremum extremum, int size, class T>
void walk(const WindowJob<T>& job) {
  for_stretches<false>(job, stretch<Shape, extremum, size, T>);
}

// ---- Arbitrary masks. A pixel is loaded once, and offered to all results that it may lie below.

// So many of an element's rows are looked at, whether it has them or not.
constexpr int kMaskHeights[] = {5, kSmallHeight};

// Bit i of takers[c]: row i of the element, counted so that its last is the last that is looked at, has
// a pixel inside in column c.
template <class T>
struct Takers {
  uint16_t of[kSmallBytes / sizeof(T) + 1];

  NUQI_INLINE Takers(const WindowJob<T>& job, int32_t height) {
    constexpr int kEntry = sizeof(T) == 1 ? 8 : 1;
    const int32_t above = height - job.element.height;
    for (int32_t c = 0; c < job.element.width; ++c) {
      int bits = 0;
      for (int32_t r = 0; r < job.element.height; ++r)
        if (job.inside[(int64_t{r} * job.element.width + c) * kEntry] != 0)
          bits |= 1 << (r + above);
      of[c] = (uint16_t)bits;
    }
  }
};

template <Extremum extremum, int height, int N, class T, class Part>
NUQI_INLINE void mask_columns(const WindowJob<T>& job, const Takers<T>& takers,
                              const T* const* rows, Image<T> dst, int64_t x, Part part) {
  using V = Vec<KeyOf<T>, N>;
  V results[height];
  const V none = worst<extremum, T, N>();
  for_each<height>([&](int i) NUQI_FORCED { results[i] = none; });
  for (int64_t y = 1 - job.element.height; y < job.height; ++y) {
    const auto* at = (const KeyOf<T>*)rows[y + job.element.height - 1] + x;
    for (int32_t c = 0; c < job.element.width; ++c, at += job.channels) {
      const auto pixels = load<N>(at);
      const int bits = takers.of[c];
      for_each<height>([&](int i) NUQI_FORCED {
        if (bits & 1 << i) results[i] = best<extremum>(results[i], pixels);
      });
    }
    if (y >= 0) store(row_of(dst, y) + x, swap_key<T>(as<T>(results[height - 1])), part);
    for_each<height - 1>([&](int i)
                             NUQI_FORCED { results[height - 1 - i] = results[height - 2 - i]; });
    results[0] = none;
  }
}

template <Extremum extremum, int height, class T>
void mask_stretch(const WindowJob<T>& job, const T* const* rows, Image<T> dst, int64_t count) {
  constexpr int N = Reg<T>::kLanes, kWide = 2 * N;
  const Takers<T> takers(job, height);
  int64_t x = 0;
  if constexpr (Machine::kMasks)  // which has the registers, too
    for (; x + kWide <= count; x += kWide)
      mask_columns<extremum, height, kWide>(job, takers, rows, dst, x, Whole{});
  for (; x + N <= count; x += N)
    mask_columns<extremum, height, N>(job, takers, rows, dst, x, Whole{});
  if (x < count)
    mask_columns<extremum, height, N>(job, takers, rows, dst, x, First{int(count - x)});
}

template <Extremum extremum, class T>
void mask(const WindowJob<T>& job) {
  for_stretches<kIsFloat<T>>(job, job.element.height <= kMaskHeights[0]
                                      ? mask_stretch<extremum, kMaskHeights[0], T>
                                      : mask_stretch<extremum, kMaskHeights[1], T>);
}

constexpr auto kLeast = Extremum::least, kGreatest = Extremum::greatest;

template <class T>
constexpr WindowKernelsOf<T> kKernels = {
    {{walk<Rectangle, kLeast, 3, T>, walk<Rectangle, kLeast, 5, T>},
     {walk<Rectangle, kGreatest, 3, T>, walk<Rectangle, kGreatest, 5, T>}},
    {{walk<Cross, kLeast, 3, T>, walk<Cross, kLeast, 5, T>},
     {walk<Cross, kGreatest, 3, T>, walk<Cross, kGreatest, 5, T>}},
    {mask<kLeast, T>, mask<kGreatest, T>},
};

}  // namespace

const WindowKernels window_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

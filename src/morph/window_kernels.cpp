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

  // Columns `from` to `from` + count - 1 of the image, all of its rows; those outside are copies.
  template <bool keys>
  NUQI_INLINE void fill(const WindowJob<T>& job, int64_t from, int64_t count) {
    const int64_t before = from < 0 ? -from : 0, beyond = from + count - job.count;
    const int64_t after = beyond > 0 ? beyond : 0, inside = count - before - after;
    const int64_t sources = job.height + job.element.height - 1 + kRowsTogether - 1;
    for (int64_t r = 0; r < sources; ++r) {
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

// Calls compute(rows, dst, count) for stretches of the columns, where rows[r][0] is the leftmost pixel
// under the element on dst's first.
template <bool keys, class T, class Compute>
NUQI_INLINE void for_stretches(const WindowJob<T>& job, const Compute& compute) {
  constexpr int N = Reg<T>::kLanes;
  const int64_t around = int64_t{job.element.width - 1} * job.channels;
  const int64_t left = int64_t{job.anchor.x} * job.channels, right = around - left;
  const int64_t most = (kTileBytes / int{sizeof(T)} - around) / N * N;
  Tile<T> tile;
  const T* direct[kWindowSources];
  for (int64_t x = 0; x < job.count;) {
    const Image<T> dst = {job.dst.data + x, job.dst.step};
    const int64_t rest = job.count - x;
    const int64_t blocks = (rest - right) / N * N;
    int64_t count;
    if (!keys && rest > most && x >= left && blocks > 0) {
      count = blocks;
      const int64_t sources = job.height + job.element.height - 1 + kRowsTogether - 1;
      for (int64_t r = 0; r < sources; ++r) direct[r] = job.rows[r] + x - left;
      compute(direct, dst, count);
    } else {
      count = rest <= most ? rest : keys ? most : (left + N - 1) / N * N;
      tile.template fill<keys>(job, x - left, count + around);
      compute(tile.rows, dst, count);
    }
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
void walk(const WindowJob<T>& job) {
  constexpr int N = Reg<T>::kLanes;
  const auto compute = [&](const T* const* rows, const Image<T>& image, int64_t count) NUQI_FORCED {
    for_blocks<N>(count, [&](int64_t x, auto part) NUQI_FORCED {
      Shape<extremum, T, size> shape;
      for_each<size - 1>([&](int y) NUQI_FORCED { shape.push(rows[y] + x, job.channels); });
      for (int64_t y = 0; y < job.height; ++y) {
        store(row_of(image, y) + x, shape.push(rows[y + size - 1] + x, job.channels), part);
      }
    });
  };
  for_stretches<false>(job, compute);
}

// ---- Arbitrary masks: pixels are loaded once for several rows of the result.

template <Extremum extremum, class T>
void mask(const WindowJob<T>& job) {
  using Key = KeyOf<T>;
  constexpr int N = Reg<T>::kLanes, kEntry = sizeof(T) == 1 ? 8 : 1, kRows = kRowsTogether;
  const int32_t width = job.element.width, height = job.element.height + kRows - 1;
  // Which of the rows a pixel below their first belongs to: a bit each.
  uint8_t takers[(kSmallHeight + kRows - 1) * (kSmallBytes / sizeof(T) + 1)];
  for (int32_t r = 0; r < height; ++r)
    for (int32_t c = 0; c < width; ++c) {
      int bits = 0;
      for (int32_t i = 0; i < kRows; ++i)
        if (r >= i && r - i < job.element.height &&
            job.inside[(int64_t{r - i} * width + c) * kEntry] != 0)
          bits |= 1 << i;
      takers[r * width + c] = (uint8_t)bits;
    }

  const auto compute = [&](const T* const* rows, const Image<T>& image, int64_t count) NUQI_FORCED {
    for (int64_t y = 0; y < job.height; y += kRows)
      for_blocks<N>(count, [&](int64_t x, auto part) NUQI_FORCED {
        Reg<Key> results[kRows];
        for_each<kRows>([&](int i) NUQI_FORCED { results[i] = worst<extremum, T>(); });
        const uint8_t* taken = takers;
        for (int32_t r = 0; r < height; ++r) {
          const Key* at = (const Key*)rows[y + r] + x;
          for (int32_t c = 0; c < width; ++c, at += job.channels) {
            const int bits = *taken++;
            if (bits == 0) continue;
            const auto pixels = load<N>(at);
            for_each<kRows>([&](int i) NUQI_FORCED {
              if (bits & 1 << i) results[i] = best<extremum>(results[i], pixels);
            });
          }
        }
        for_each<kRows>([&](int i) NUQI_FORCED {
          if (y + i < job.height)
            store(row_of(image, y + i) + x, swap_key<T>(as<T>(results[i])), part);
        });
      });
  };
  for_stretches<kIsFloat<T>>(job, compute);
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

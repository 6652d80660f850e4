// Rectangles, one strip of columns after the other: extrema down the columns, then along the rows.
// Bytes are taken in any order, and a window that holds an edge pixel gains nothing from its copies.
#include "morph/rectangle.h"

#include "core/simd/shuffle.h"
#include "morph/line.h"

namespace nuqi::NUQI_ISA {
namespace {

// Blocks are read whole, so that a line has room for one more than it holds; lines lie an odd number of
// cache lines apart.
constexpr int kStripBytes = 640, kLineStep = kStripBytes + kRectangleBytes + 192;

// Lines at least between what goes down the columns and what goes along the rows, where loads across what
// has just been stored would wait for it.
constexpr int kTogether = 16;

// ---- Down the columns

// Results of `count` windows of `height` rows, one line each. All of them hold the row numbered height - 1:
// each is the extremum of that row and those above it, and of those below it.
template <int N, Extremum extremum, class T, class Part>
NUQI_INLINE void down_columns(const T* const* rows, int64_t column, int64_t height, int64_t count,
                              T* lines, Part part) {
  const auto row = [&](int64_t r) NUQI_FORCED { return load<N>(rows[r] + column, part); };
  auto above = row(height - 1);
  for (int64_t r = height - 2; r >= count; --r) above = best<extremum>(above, row(r));
  if (count == height) store(lines + (height - 1) * kLineStep, above, part);
  for (int64_t r = count == height ? height - 2 : count - 1; r >= 0; --r) {
    above = best<extremum>(above, row(r));
    store(lines + r * kLineStep, above, part);
  }
  if (count == 1) return;
  auto below = row(height);
  for (int64_t r = 1;; ++r) {
    T* line = lines + r * kLineStep;
    store(line, best<extremum>(load<N>(line, part), below), part);
    if (r + 1 == count) break;
    below = best<extremum>(below, row(height + r));
  }
}

template <Extremum extremum, class T>
NUQI_INLINE void down(const T* const* rows, int64_t column, int64_t width, int64_t height,
                      int64_t count, T* lines) {
  constexpr int N = Reg<T>::kLanes, kWide = 4 * N;
  int64_t x = 0;
  const auto next = [&]<int n>(Vec<T, n>, auto part) NUQI_FORCED {
    down_columns<n, extremum>(rows, column + x, height, count, lines + x, part);
  };
  for (; x + kWide <= width; x += kWide) next(Vec<T, kWide>{}, Whole{});
  for (; x + N <= width; x += N) next(Vec<T, N>{}, Whole{});
  if (x == width) return;
  // A whole block that overlaps the one before beats a part of one.
  if (width < N) return next(Vec<T, N>{}, First{int(width)});
  x = width - N;
  next(Vec<T, N>{}, Whole{});
}

// ---- Along the rows

// Windows that double, from the right: what a block needs of the next one is still in registers.
// `doublings` is the binary logarithm of the size, rounded up.
template <int doublings, Extremum extremum, class T>
NUQI_NOINLINE void along_in_registers(const T* lines, int64_t rows, Image<T> dst, int64_t count,
                                      int64_t channels, int64_t size) {
  constexpr int N = Reg<T>::kLanes;
  const auto numbers = as<uint8_t>(lane_numbers<uint8_t>(typename UpTo<kRegBytes>::Type{}));
  Reg<uint8_t> places[doublings + 1];
  for_each<doublings>([&](int i) NUQI_FORCED {
    const int64_t w = 1 << i, rest = size - w;
    const auto bytes = uint8_t((rest < w ? rest : w) * channels * int64_t{sizeof(T)});
    places[i] = numbers + broadcast<uint8_t, kRegBytes>(bytes);
  });
  const int64_t tail = (count - 1) / N * N, around = (size - 1) * channels;
  for (int64_t y = 0; y < rows; ++y) {
    const T* line = lines + y * (kLineStep / int64_t{sizeof(T)});
    T* to = row_of(dst, y);
    Reg<T> right[doublings + 1] = {};
    const auto windows_at = [&](int64_t x) NUQI_FORCED {
      auto m = load<N>(line + x);
      for_each<doublings>([&](int i) NUQI_FORCED {
        const Reg<T> next = permute_bytes(m, right[i], places[i]);
        right[i] = m;
        m = best<extremum>(m, next);
      });
      return m;
    };
    for (int64_t x = (count + around - 1) / N * N; x > tail; x -= N) windows_at(x);
    int64_t x = tail;
    if (count - tail < N) store(to + x, windows_at(x), First{int(count - x)}), x -= N;
    for (; x >= 0; x -= N) store(to + x, windows_at(x));
  }
}

// Windows that grow fourfold. Each pass takes several rows, for the same reason as above.
template <Extremum extremum, class T>
NUQI_NOINLINE void along_in_passes(const T* lines, int64_t rows, Image<T> dst, int64_t count,
                                   int64_t channels, int64_t size) {
  constexpr int kRows = kTogether / 2, kStep = kLineStep / int{sizeof(T)};
  alignas(64) T between[kRows * kStep];
  const Windows last(size);
  for (int64_t y = 0; y < rows; y += kRows) {
    const int64_t n = rows - y < kRows ? rows - y : kRows;
    const T* from = lines + y * kStep;
    int64_t rest = count + (size - 1) * channels;
    for (int64_t w = 1; w < last.reached; w *= 4) {
      const int64_t step = w * channels;
      rest -= 3 * step;
      for (int64_t i = 0; i < n * kStep; i += kStep) {
        const T* row = from + i;
        of_rows<extremum>(row, row + step, row + 2 * step, row + 3 * step, between + i, rest);
      }
      from = between;
    }
    for (int64_t i = 0; i < n; ++i) {
      const auto at = [&](int k) NUQI_FORCED { return from + i * kStep + last.at[k] * channels; };
      of_rows<extremum>(at(0), at(1), at(2), at(3), row_of(dst, y + i), count);
    }
  }
}

template <Extremum extremum, class T>
NUQI_INLINE void along(const T* lines, int64_t rows, Image<T> dst, int64_t count, int64_t channels,
                       int64_t size) {
  if constexpr (Machine::kPermutesBytes) {
    int doublings = 0;
    while (1 << doublings < size) ++doublings;
    const auto with = [&]<int n>(Indices<n>) NUQI_FORCED {
      along_in_registers<n, extremum>(lines, rows, dst, count, channels, size);
    };
    // The farthest step is below half a window.
    if (channels * int64_t{sizeof(T)} << doublings <= 2 * kRegBytes) switch (doublings) {
        case 0: return with(Indices<0>{});
        case 1: return with(Indices<1>{});
        case 2: return with(Indices<2>{});
        case 3: return with(Indices<3>{});
        case 4: return with(Indices<4>{});
        case 5: return with(Indices<5>{});
        case 6: return with(Indices<6>{});
      }
  }
  along_in_passes<extremum>(lines, rows, dst, count, channels, size);
}

// ---- Strips

// What any pixel replaces, in `count` columns of some lines and in what a block holds beyond them. Line by
// line, GCC would call memset.
template <Extremum extremum>
NUQI_INLINE void fill_worst(uint8_t* lines, int64_t rows, int64_t count) {
  constexpr int N = Reg<uint8_t>::kLanes;
  for (int64_t x = 0; x < count; x += N)
    for (int64_t r = 0; r < rows; ++r)
      store(lines + r * kLineStep + x, worst<extremum, uint8_t, N>());
}

// Columns x to x + count - 1 of the results. Blocks of the lines are those of the caller's rows.
template <Extremum extremum>
NUQI_INLINE void strip(const ElementJob<uint8_t>& job, int64_t x, int64_t count, uint8_t* lines) {
  const auto round_down = [](int64_t column) NUQI_FORCED { return column & -int64_t{kRegBytes}; };
  const auto least = [](int64_t a, int64_t b) NUQI_FORCED { return a < b ? a : b; };
  const int64_t height = job.element.height;
  const int64_t most = least(job.height, height < kTogether ? kTogether / height * height : height);
  const int64_t from = x - int64_t{job.anchor.x} * job.channels, start = round_down(from);
  const int64_t end = from + count + int64_t{job.element.width - 1} * job.channels;
  const int64_t blocks_end = round_down(end + kRegBytes - 1);
  const int64_t left = start < 0 ? 0 : start, right = least(job.count, blocks_end);
  fill_worst<extremum>(lines, most, left - start);
  fill_worst<extremum>(lines + right - start, most, end - right);
  for (int64_t y = 0; y < job.height; y += most) {
    const int64_t rows = least(most, job.height - y);
    for (int64_t r = 0; r < rows; r += height)
      down<extremum>(job.rows + y + r, left, right - left, height, least(height, rows - r),
                     lines + r * kLineStep + left - start);
    along<extremum>(lines + from - start, rows,
                    Image<uint8_t>{row_of(job.dst, y) + x, job.dst.step}, count, job.channels,
                    job.element.width);
  }
}

template <Extremum extremum>
void rectangle(const ElementJob<uint8_t>& job) {
  alignas(64) uint8_t lines[kRectangleHeight * kLineStep];
  const int64_t strips = (job.count + kStripBytes - 1) / kStripBytes;
  const int64_t width = ((job.count + strips - 1) / strips + kRegBytes - 1) / kRegBytes * kRegBytes;
  for (int64_t x = 0; x < job.count; x += width)
    strip<extremum>(job, x, job.count - x < width ? job.count - x : width, lines);
}

}  // namespace

const RectangleKernels rectangle_kernels = {
    {rectangle<Extremum::least>, rectangle<Extremum::greatest>}};

}  // namespace nuqi::NUQI_ISA

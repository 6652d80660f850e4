// Sums of 3x3, 5x5 or 7x7 pixels.
#include "core/simd/convert.h"
#include "core/simd/shuffle.h"
#include "core/simd/transpose.h"
#include "filters/blur.h"
#include "filters/tile.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Bytes. Even and odd columns are kept apart: widening costs a mask and a shift, whole registers
// of bytes are read, and the windows of two neighbours share all pixels but one.

struct SplitTile {
  static constexpr int kRows = 4;
  static constexpr int32_t kWidth = kTileWidth<int16_t>;
  static constexpr int32_t kMargin = kRegBytes;
  static constexpr int32_t kHalfStep = kMargin + kWidth / 2 + kMargin;
  static constexpr int32_t kRowStep = 2 * kHalfStep;

  alignas(64) int16_t values[kRows][2][kHalfStep];

  // Column x of the first row; its next but one follows.
  NUQI_INLINE int16_t* at(int64_t x) {
    return values[0][0] + (x & 1) * kHalfStep + kMargin + (x >> 1);
  }

  // Repeats the first and the last of the columns from `from` to `to` as far as windows reach.
  NUQI_INLINE void extend(int32_t from, int32_t to) {
    for (int row = 0; row < kRows * kRowStep; row += kRowStep)
      for (int32_t i = 1; i <= 3; ++i) {
        at(from - i)[row] = at(from)[row];
        at(to - 1 + i)[row] = at(to - 1)[row];
      }
  }
};

// Calls block(x, column x in the tile, column x + 1, part) as for_blocks_overlapping does.
template <class Block>
NUQI_INLINE void for_split_blocks(SplitTile& tile, int64_t from, int64_t to, const Block& block) {
  constexpr int N = kRegBytes;
  if (to - from < N) return block(from, tile.at(from), tile.at(from + 1), First{int(to - from)});
  int16_t *own = tile.at(from), *next = tile.at(from + 1);
  for (; from + N <= to; from += N, own += N / 2, next += N / 2) block(from, own, next, Whole{});
  if (from < to) block(to - N, tile.at(to - N), tile.at(to - N + 1), Whole{});
}

template <int half, class T>
NUQI_INLINE void down(const T* const* rows, int64_t left, SplitTile& tile, int32_t from,
                      int32_t to) {
  constexpr int N = kRegBytes, kRows = SplitTile::kRows + 2 * half;
  const auto block = [&](int64_t x, int16_t* own, int16_t* next, auto part) NUQI_FORCED {
    Vec<T, N> bytes[kRows];
    for_each<kRows>([&](int i) NUQI_FORCED { bytes[i] = load<N>(rows[i] + left + x, part); });
    const auto sum_rows = [&](int16_t* out, const auto& values) NUQI_FORCED {
      auto sum = values(0);
      for_each<2 * half>([&](int i) NUQI_FORCED { sum = sum + values(i + 1); });
      store(out, sum);
      for_each<SplitTile::kRows - 1>([&](int i) NUQI_FORCED {
        sum = sum + (values(i + 1 + 2 * half) - values(i));
        store(out + (i + 1) * tile.kRowStep, sum);
      });
    };
    sum_rows(own, [&](int i) NUQI_FORCED { return even_bytes(bytes[i]); });
    sum_rows(next, [&](int i) NUQI_FORCED { return odd_bytes(bytes[i]); });
  };
  for_split_blocks(tile, from, to, block);
}

template <int half>
NUQI_INLINE void along(SplitTile& tile, int row, int16_t* to, int32_t width) {
  constexpr int N = kRegBytes;
  const auto block = [&](int64_t x, const int16_t* own, const int16_t* next,
                         auto part) NUQI_FORCED {
    const auto at = [&](int k) NUQI_FORCED {
      return load<N / 2>((k % 2 == 0 ? own : next) + row * tile.kRowStep + (k >> 1));
    };
    auto shared = at(1 - half);
    for_each<2 * half - 1>([&](int i) NUQI_FORCED { shared = shared + at(2 - half + i); });
    const auto pairs = concat(shared + at(-half), shared + at(half + 1));
    store(to + x, in_order(zip_groups(pairs)), part);
  };
  for_split_blocks(tile, 0, width, block);
}

template <int half, class T>
void blur(const WindowJob<T, int16_t>& job) {
  for_tiles<SplitTile, half>(
      job.roi,
      [&](SplitTile& tile, int32_t y, int32_t x, int32_t from, int32_t to)
          NUQI_FORCED { down<half>(job.rows + y, x, tile, from, to); },
      [&](SplitTile& tile, int row, int32_t y, int32_t x, int32_t width)
          NUQI_FORCED { along<half>(tile, row, row_of(job.dst, y) + x, width); });
}

// ---- Floats. A sum along a row is a chain of additions by contract: sixteen rows walk in step, a lane
// each, and are turned back into rows sixteen columns at a time.

constexpr int kRows = RunningBlurJob::kRows;
static_assert(kRows == 16);

// The last source columns, sixteen rows each.
struct Columns {
  static constexpr int kCount = 64;  // those of three blocks are in use at once
  alignas(64) float values[kCount][kRows];

  NUQI_INLINE float* at(int64_t x) { return values[x & (kCount - 1)]; }
  NUQI_INLINE void set(int64_t x, const Px<float>& column) { store(at(x), column); }
};

// Reads the block of columns from x on, and repeats the last one where the rows end.
NUQI_INLINE void read_block(const RunningBlurJob& job, int64_t x, Columns& columns) {
  const int64_t rest = job.width - x;
  if (rest <= 0) return;
  if (rest >= 16) {
    transpose([&](int row) NUQI_FORCED { return job.rows[row] + x; }, columns.at(x));
  } else {
    alignas(64) float rows[kRows][16];
    for (int row = 0; row < kRows; ++row)
      store(rows[row], load(job.rows[row] + x, First{int(rest)}));
    transpose([&](int row) NUQI_FORCED { return rows[row]; }, columns.at(x));
  }
  if (rest <= 16)
    for (int i = 0; i < job.half; ++i) columns.set(job.width + i, load(columns.at(job.width - 1)));
}

// The sums along the rows of sixteen columns become results. sums[2 * half + 1 + i] is row i's, and
// what stands at sums[i] leaves the window when it enters.
template <class Part>
NUQI_INLINE void sum_columns(const RunningBlurJob& job, float (&sums)[7 + kRows][16], int64_t x,
                             Part part) {
  const int size = 2 * job.half + 1;
  const auto ring = [&](int i) NUQI_FORCED { return static_cast<float*>(job.ring[i]) + x; };
  const auto result = [&](int i) NUQI_FORCED { return row_of(job.dst, i - job.skipped) + x; };
  Px<float> sum;
  int i = 0;
  if (job.first) {
    // The first row counts half + 1 times; nothing leaves before it does.
    const auto top = load(sums[size]);
    for (int k = 1; k < size; ++k) store(sums[k], k <= job.half ? Px<float>{} : top);
    sum = top * broadcast(static_cast<float>(job.half + 1));
    i = 1;
  } else {
    for (int k = 0; k < size; ++k) store(sums[k], load(ring(k), part));
    sum = load(ring(size), part);
  }
  for (; i < job.count; ++i) {
    sum = sum + (load(sums[size + i]) - load(sums[i]));
    if (i >= job.skipped) store(result(i), sum, part);
  }
  for (int k = 0; k < size; ++k) store(ring(k), load(sums[job.count + k]), part);
  store(ring(size), sum, part);
}

void running_blur(const RunningBlurJob& job) {
  const int half = job.half;
  Columns columns;
  read_block(job, 0, columns);
  read_block(job, 16, columns);
  const auto first = load(columns.at(0));
  for (int k = 1; k <= half; ++k) columns.set(-k, first);
  columns.set(-half - 1, Px<float>{});  // nothing leaves the first sum

  // The first sum but for its last column.
  auto sum = load_doubles(columns.at(0)) * broadcast(static_cast<double>(half + 1));
  for (int k = 1; k < half; ++k) sum = sum + load_doubles(columns.at(k));

  alignas(64) float along[16][kRows] = {};  // the last block may fill it in part
  alignas(64) float sums[7 + kRows][16];
  for (int64_t begin = 0; begin < job.width; begin += 16) {
    if (begin > 0) read_block(job, begin + 16, columns);
    const int64_t end = begin + 16 < job.width ? begin + 16 : job.width;
    for (int64_t x = begin; x < end; ++x) {
      sum = (sum + load_doubles(columns.at(x + half))) - load_doubles(columns.at(x - half - 1));
      store(along[x - begin], round_to_floats(sum));
    }
    transpose([&](int column) NUQI_FORCED { return along[column]; }, sums[2 * half + 1]);
    if (end - begin == 16)
      sum_columns(job, sums, begin, Whole{});
    else
      sum_columns(job, sums, begin, First{int(end - begin)});
  }
}

template <class T>
constexpr BlurKernelsOf<T> kKernels = {{blur<1, T>, blur<2, T>, blur<3, T>}};

}  // namespace

const BlurKernels blur_kernels = {kKernels<uint8_t>, kKernels<int8_t>, {running_blur}};

}  // namespace nuqi::NUQI_ISA

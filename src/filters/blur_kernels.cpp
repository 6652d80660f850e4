// Sums of 3x3, 5x5 or 7x7 pixels.
#include "core/simd/convert.h"
#include "core/simd/transpose.h"
#include "filters/blur.h"
#include "filters/blur_bytes.h"

namespace nuqi::NUQI_ISA {
namespace {

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

// Sums of 3x3, 5x5 or 7x7 pixels.
#include "filters/blur.h"
#include "filters/blur_bytes.h"
#include "filters/running_sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Floats

constexpr int kRows = RunningBlurJob::kRows;
static_assert(kRows == 16);
constexpr int kMostRepeats = 3;

// Reads the block of columns from x on. Where the rows end, the last column is repeated as far as a
// window around the block reaches.
NUQI_INLINE void read_block(const RunningBlurJob& job, int64_t x, const RunningColumns& columns) {
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
  if (rest <= 16) {
    const auto last = load(columns.at(job.width - 1));
    for (int64_t i = rest; i < 16 + job.half; ++i) columns.set(x + i, last);
  }
}

// The sums along the rows of sixteen columns, sums[i] those of row i, become results. Row i leaves the
// window as row i + 2 * half + 1 enters it; the first to leave are rows of the ring.
template <class Part>
NUQI_INLINE void sum_columns(const RunningBlurJob& job,
                             const float (&sums)[kRows + kMostRepeats][16], int64_t x, Part part) {
  const int size = 2 * job.half + 1, count = job.count + job.repeats;
  const auto ring = [&](int i) NUQI_FORCED { return static_cast<float*>(job.ring[i]) + x; };
  const auto result = [&](int i) NUQI_FORCED { return row_of(job.dst, i - job.skipped) + x; };
  Px<float> sum;
  if (job.first) {
    // The first row counts half + 1 times; nothing leaves before it does.
    const auto top = load(sums[0]);
    for (int k = 0; k < size; ++k) store(ring(k), k <= job.half ? Px<float>{} : top, part);
    sum = top * broadcast(static_cast<float>(job.half + 1));
  } else {
    sum = load(ring(size), part);
  }
  const auto advance = [&](int i, const Px<float>& leaving) NUQI_FORCED {
    sum = sum + (load(sums[i]) - leaving);
    if (i >= job.skipped) store(result(i), sum, part);
  };
  int i = job.first;
  for (; i < size && i < count; ++i) advance(i, load(ring(i), part));
  for (; i < count; ++i) advance(i, load(sums[i - size]));
  store(ring(size), sum, part);
  for (int k = 0; k < size; ++k) {
    const int kept = count - size + k;
    store(ring(k), kept < 0 ? load(ring(size + kept), part) : load(sums[kept]), part);
  }
}

void running_blur(const RunningBlurJob& job) {
  const int half = job.half;
  alignas(64) float values[RunningColumns::kCount][kRows];
  const RunningColumns columns = {values};
  read_block(job, 0, columns);
  auto sum = columns.start(half);
  alignas(64) float sums[kRows + kMostRepeats][16];
  for (int64_t x = 0; x < job.width; x += 16) {
    read_block(job, x + 16, columns);
    sum_rows(columns, half, x, sum, sums[0]);
    for (int i = 0; i < job.repeats; ++i) store(sums[job.count + i], load(sums[job.count - 1]));
    if (job.width - x >= 16)
      sum_columns(job, sums, x, Whole{});
    else
      sum_columns(job, sums, x, First{int(job.width - x)});
  }
}

template <class T>
constexpr BlurKernelsOf<T> kKernels = {{blur<1, T>, blur<2, T>, blur<3, T>}};

}  // namespace

const BlurKernels blur_kernels = {kKernels<uint8_t>, kKernels<int8_t>, {running_blur}};

}  // namespace nuqi::NUQI_ISA

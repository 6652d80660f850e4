// Corners: products of derivatives, their sums over a window, eigenvalues of these.
#include "core/simd/arithmetic.h"
#include "core/simd/planes.h"
#include "core/simd/reduce.h"
#include "core/simd/shuffle.h"
#include "features/eigen.h"
#include "filters/running_sums.h"

namespace nuqi::NUQI_ISA {
namespace {

static_assert(kEigenLanes == 16 && kEigenRows == 16);

// ---- Results, a register of them at a time

using Doubles = Vec<double, Reg<float>::kLanes>;

NUQI_INLINE Doubles doubles(double value) { return broadcast<double, Doubles::kLanes>(value); }
NUQI_INLINE Doubles square(const Doubles& a) { return a * a; }

// Integers, which are exact sums, are added and subtracted as such, floats as doubles.
NUQI_INLINE Doubles sum(const Reg<int32_t>& a, const Reg<int32_t>& b) { return to_doubles(a + b); }
NUQI_INLINE Doubles sum(const Reg<float>& a, const Reg<float>& b) {
  return to_doubles(a) + to_doubles(b);
}
NUQI_INLINE Doubles difference(const Reg<int32_t>& a, const Reg<int32_t>& b) {
  return to_doubles(a - b);
}
NUQI_INLINE Doubles difference(const Reg<float>& a, const Reg<float>& b) {
  return to_doubles(a) - to_doubles(b);
}

// From the sums over a pixel's window of dx * dx, dx * dy and dy * dy, in two steps: between them other
// pixels' work hides the latency of the square root.
template <EigenResult>
struct Results;

template <>
struct Results<EigenResult::minimum> {
  Doubles trace, root;

  // Twice all that the contract says: powers of two round nothing.
  template <class V>
  NUQI_INLINE void begin(const V& xx, const V& xy, const V& yy, double) {
    trace = sum(xx, yy);
    root = square_root(add_exact_square(square(difference(xx, yy)), sum(xy, xy)));
  }
  NUQI_INLINE void finish(float* to, double scale) const {
    store(to, round_to_floats((trace - root) * doubles(0.5 * scale)));
  }
};

template <>
struct Results<EigenResult::vectors> {
  Doubles a, b, c, determinant, root;

  template <class V>
  NUQI_INLINE void begin(const V& xx, const V& xy, const V& yy, double scale) {
    a = to_doubles(xx) * doubles(scale);
    b = to_doubles(xy) * doubles(scale);
    c = to_doubles(yy) * doubles(scale);
    determinant = a * c - square(b);
    root = square_root(square(a + c) - doubles(4) * determinant);
  }
  NUQI_INLINE void finish(float* to, double) const {
    const auto none = doubles(0), one = doubles(1), half = doubles(0.5);
    const Doubles l1 = (a + c + root) * half, l2 = (a + c - root) * half;
    const auto length_of = [&](const Doubles& l) NUQI_FORCED {
      const auto length = square_root(square(b) + square(l - a));
      return select(length == none, doubles(__FLT_EPSILON__), length);
    };
    const auto n1 = length_of(l1), n2 = length_of(l2);

    const auto limit = doubles(0.01) * max(a, c);
    const auto diagonal = abs(b) < limit;
    const auto flat = (min(a, c) < limit) | (~diagonal & (determinant < limit));
    const auto choose = [&](const Doubles& axis, const Doubles& value) NUQI_FORCED {
      return round_to_floats(keep(~flat, select(diagonal, axis, value)));
    };
    store_six(to, {choose(a, l1), choose(c, l2), choose(one, b / n1), choose(none, (l1 - a) / n1),
                   choose(none, b / n2), choose(one, (l2 - a) / n2)});
  }
};

// ---- Sums down the columns, of a block of sixteen

constexpr int kMostRows = kEigenRows + 3;

// A value for each plane: floats, or integers of the same size.
template <class T>
struct Planes {
  Px<T> of[kEigenPlanes];
};

// What the buffer keeps of a block from band to band: some vectors of each plane.
template <class T>
struct Kept {
  T* at;
  int64_t pitch;
  int count;

  // Blocks that are not whole have a place of their own.
  NUQI_INLINE Kept(const EigenJob& job, int32_t x, int count) : count(count) {
    const bool whole = job.width - x >= 16;
    at = whole ? (T*)job.kept + x : (T*)job.carry->kept[0];
    pitch = whole ? job.width : 16;
  }
  NUQI_INLINE T* operator()(int plane, int64_t i) const { return at + (plane * count + i) * pitch; }
};

// Sums of floats run: a row's sums along it are added, those of the row that leaves the window subtracted.
class RunningDown {
 public:
  using Sum = float;

  NUQI_INLINE RunningDown(const EigenJob& job, int32_t x, Planes<float>& total)
      : half_(job.half), size_(2 * job.half + 1), top_(job.y == 0), kept_(job, x, size_ + 1) {
    if (top_) return;
    for (int k = 0; k < size_; ++k)
      for_each<kEigenPlanes>([&](int p) NUQI_FORCED { store(rows_[p][k], load(kept_(p, k))); });
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED { total.of[p] = load(kept_(p, size_)); });
  }
  // `total` becomes the sums over the window that ends with row i.
  NUQI_INLINE void add(int i, const Planes<float>& row, Planes<float>& total) {
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      if (top_ && i == 0) {
        // The first row counts half + 1 times; nothing leaves before it does.
        for (int k = 1; k <= size_; ++k) store(rows_[p][k], k <= half_ ? Px<float>{} : row.of[p]);
        total.of[p] = row.of[p] * broadcast(float(half_ + 1));
      } else {
        total.of[p] = total.of[p] + (row.of[p] - load(rows_[p][i]));
        store(rows_[p][size_ + i], row.of[p]);
      }
    });
  }
  NUQI_INLINE void keep(int rows, const Planes<float>& total) const {
    for (int k = 0; k < size_; ++k)
      for_each<kEigenPlanes>([&](int p)
                                 NUQI_FORCED { store(kept_(p, k), load(rows_[p][rows + k])); });
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED { store(kept_(p, size_), total.of[p]); });
  }

 private:
  const int half_, size_;
  const bool top_;
  const Kept<float> kept_;
  // Of as many rows as a window has before the band, then of the band's.
  alignas(64) float rows_[kEigenPlanes][7 + kMostRows][16];
};

// Sums of three rows of integers, which are exact in any order.
class ThreeDown {
 public:
  using Sum = int32_t;

  NUQI_INLINE ThreeDown(const EigenJob& job, int32_t x, Planes<int32_t>&)
      : top_(job.y == 0), kept_(job, x, 2) {
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      last_.of[p] = top_ ? Px<int32_t>{} : load(kept_(p, 0));
      two_.of[p] = top_ ? Px<int32_t>{} : load(kept_(p, 1));
    });
  }
  NUQI_INLINE void add(int i, const Planes<int32_t>& row, Planes<int32_t>& total) {
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      if (top_ && i == 0) last_.of[p] = row.of[p];
      total.of[p] = two_.of[p] + row.of[p];
      two_.of[p] = last_.of[p] + row.of[p];
      last_.of[p] = row.of[p];
    });
  }
  NUQI_INLINE void keep(int, const Planes<int32_t>&) const {
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      store(kept_(p, 0), last_.of[p]);
      store(kept_(p, 1), two_.of[p]);
    });
  }

 private:
  const bool top_;
  const Kept<int32_t> kept_;
  Planes<int32_t> last_, two_;  // the last row, and the last two together
};

// Takes the rows of the block from column x of the image on one by one; along(i) gives the sums along
// row i. Writes the results of the windows that end, from dst's row 0 on for the first row's.
template <EigenResult result, class Down, class Along>
NUQI_INLINE void walk_down(const EigenJob& job, int32_t x, const Image<float>& dst,
                           const Along& along) {
  using T = typename Down::Sum;
  // Copies, which no store can change.
  const int in_image = job.rows, count = in_image + job.repeats;
  const int first = job.y < job.half ? int(job.half - job.y) : 0;  // to end a window
  const double scale = job.scale;
  Planes<T> row, total;
  Down down(job, x, total);
  alignas(64) T sums[kEigenPlanes][16];
  // Row i is begun, row i - 1 finished.
  Results<result> results[16 / Doubles::kLanes];
  for (int i = 0; i <= count; ++i) {
    if (i < in_image) row = along(i);
    if (i < count) {
      down.add(i, row, total);
      for_each<kEigenPlanes>([&](int p) NUQI_FORCED { store(sums[p], total.of[p]); });
    }
    for (int k = 0; k < 16 / Doubles::kLanes; ++k) {
      const auto at = [&](int p) NUQI_FORCED {
        return load<Doubles::kLanes>(sums[p] + k * Doubles::kLanes);
      };
      if (i > first)
        results[k].finish(row_of(dst, i - 1) + values_of(result) * Doubles::kLanes * k, scale);
      if (i < count) results[k].begin(at(0), at(1), at(2), scale);
    }
  }
  down.keep(count, total);
}

// The results of a block that is not whole go through a place of their own.
template <EigenResult result, class Down, class Along>
NUQI_INLINE void write_block(const EigenJob& job, int32_t x, const Along& along) {
  constexpr int kValues = values_of(result);
  const int columns = job.width - x;
  const Image<float> dst = {row_of(job.dst, job.y - job.half) + int64_t{kValues} * x, job.dst.step};
  alignas(64) float narrow[kMostRows][16 * kValues];
  const bool whole = columns >= 16;
  walk_down<result, Down>(job, x, whole ? dst : Image<float>{narrow[0], int32_t{sizeof narrow[0]}},
                          along);
  if (whole) return;
  for (int i = 0; i < job.rows + job.repeats; ++i)
    if (job.y + i >= job.half)
      __builtin_memcpy(row_of(dst, i), narrow[i], int64_t{columns} * kValues * int{sizeof(float)});
}

// ---- Sums along the rows

// Nine products of bytes' 3x3 derivatives are below 2^24: floats would be exact, and so integers give the
// same. Of each pair of columns, the left one's window is the pair and the column before it, the right
// one's the pair and the column behind it.
struct Pairs {
  Px<int16_t> both, before, behind;

  NUQI_INLINE explicit Pairs(const int16_t* from)
      : both(load(from)), before(load(from - 1)), behind(load(from + 2)) {}
};
NUQI_INLINE Px<int32_t> sum_three(const Pairs& a, const Pairs& b) {
  const auto first = [](const Px<int16_t>& pairs) NUQI_FORCED {
    return lanes_as<int16_t>(lanes_as<int32_t>(pairs) & broadcast<int32_t, 8>(0xFFFF));
  };
  const auto both = dot_pairs(a.both, b.both);
  return zip(both + dot_pairs(first(a.before), b.before),
             both + dot_pairs(first(a.behind), b.behind));
}

void minimum_of_bytes3x3(const EigenJob& job, const EigenStrip<int16_t>& strip) {
  for (int32_t x = 0; x < job.columns; x += 16)
    write_block<EigenResult::minimum, ThreeDown>(job, job.x + x, [&](int i) NUQI_FORCED {
      constexpr int kMargin = EigenStrip<int16_t>::kMargin;
      const Pairs dx(strip.dx[i] + kMargin + x), dy(strip.dy[i] + kMargin + x);
      return Planes<int32_t>{{sum_three(dx, dx), sum_three(dx, dy), sum_three(dy, dy)}};
    });
}

// Elsewhere the sums run, along the rows of a block at a time.
NUQI_INLINE RunningColumns columns_of(const EigenJob& job, int plane) {
  return {job.carry->columns[plane]};
}

// Turns sixteen columns of a strip into rows of floats.
NUQI_INLINE void turn(const float (&from)[kEigenRows][EigenStrip<float>::kPitch], int32_t column,
                      float* to) {
  transpose([&](int i) NUQI_FORCED { return from[i] + column; }, to);
}
NUQI_INLINE void turn(const int16_t (&from)[kEigenRows][EigenStrip<int16_t>::kPitch],
                      int32_t column, float* to) {
  alignas(64) float rows[16][16];
  for (int i = 0; i < 16; ++i)
    store(rows[i], convert<float>(convert<int32_t>(load(from[i] + column))));
  transpose([&](int i) NUQI_FORCED { return rows[i]; }, to);
}

// Reads the products of the sixteen columns that start at column x of the strip.
template <class D>
NUQI_NOINLINE void read(const EigenJob& job, const EigenStrip<D>& strip, int32_t x) {
  alignas(64) float turned[2][16][16];
  turn(strip.dx, EigenStrip<D>::kMargin + x, turned[0][0]);
  turn(strip.dy, EigenStrip<D>::kMargin + x, turned[1][0]);
  for (int i = 0; i < 16; ++i) {
    const auto dx = load(turned[0][i]), dy = load(turned[1][i]);
    const Planes<float> products = {{dx * dx, dx * dy, dy * dy}};
    for_each<kEigenPlanes>(
        [&](int p) NUQI_FORCED { columns_of(job, p).set(job.x + x + i, products.of[p]); });
  }
}

// The sums along the rows of the block from column x of the image on, of one plane.
NUQI_NOINLINE void sum_block(const EigenJob& job, int plane, int32_t x, float* along) {
  double(&carried)[kEigenRows] = job.carry->sum[plane];
  const RunningColumns columns = columns_of(job, plane);
  auto sum = x == 0 ? columns.start(job.half) : load(carried);
  sum_rows(columns, job.half, x, sum, along);
  store(carried, sum);
}

template <EigenResult result>
NUQI_NOINLINE void write(const EigenJob& job, int32_t x) {
  alignas(64) float along[kEigenPlanes][kEigenRows][16];
  for (int p = 0; p < kEigenPlanes; ++p) sum_block(job, p, x, along[p][0]);
  write_block<result, RunningDown>(job, x, [&](int i) NUQI_FORCED {
    return Planes<float>{{load(along[0][i]), load(along[1][i]), load(along[2][i])}};
  });
}

// The last windows of a block reach into the next one: it is written when that has been read.
template <EigenResult result, class D>
void running(const EigenJob& job, const EigenStrip<D>& strip) {
  int32_t x = 0;
  for (; x < job.columns; x += 16) {
    read(job, strip, x);
    if (job.x + x > 0) write<result>(job, job.x + x - 16);
  }
  const int32_t end = job.x + x;
  if (end < job.width) return;
  for (int p = 0; p < kEigenPlanes; ++p) {
    const auto last = load(columns_of(job, p).at(end - 1));
    for (int k = 0; k < job.half; ++k) columns_of(job, p).set(end + k, last);
  }
  write<result>(job, end - 16);
}

template <class D>
constexpr EigenKernelsOf<D> kKernels = {
    {running<EigenResult::minimum, D>, running<EigenResult::vectors, D>}};
template <>
constexpr EigenKernelsOf<int16_t> kKernels<int16_t> = {
    {running<EigenResult::minimum, int16_t>, running<EigenResult::vectors, int16_t>},
    minimum_of_bytes3x3};

}  // namespace

const EigenKernels eigen_kernels = {kKernels<int16_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

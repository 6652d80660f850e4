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

// The sums over a pixel's window of dx * dx, dx * dy and dy * dy.
struct Sums {
  Doubles xx, xy, yy;
};

template <EigenResult>
struct Results;

template <>
struct Results<EigenResult::minimum> {
  static NUQI_INLINE void write(float* to, const Sums& sums, double scale) {
    const auto a = sums.xx * doubles(0.5), c = sums.yy * doubles(0.5);
    const auto root = square_root(add_exact_square(square(a - c), sums.xy));
    store(to, round_to_floats((a + c - root) * doubles(scale)));
  }
};

template <>
struct Results<EigenResult::vectors> {
  static NUQI_INLINE void write(float* to, const Sums& sums, double scale) {
    const auto none = doubles(0), one = doubles(1), half = doubles(0.5);
    const auto a = sums.xx * doubles(scale), b = sums.xy * doubles(scale);
    const auto c = sums.yy * doubles(scale);
    const auto limit = doubles(0.01) * max(a, c);
    const auto determinant = a * c - square(b);
    const auto diagonal = max(b, none - b) < limit;
    const auto flat = (min(a, c) < limit) | (~diagonal & (determinant < limit));

    const auto trace = a + c;
    const auto root = square_root(square(trace) - doubles(4) * determinant);
    const Doubles l1 = (trace + root) * half, l2 = (trace - root) * half;
    const auto length_of = [&](const Doubles& l) NUQI_FORCED {
      const auto length = square_root(square(b) + square(l - a));
      return select(length == none, doubles(__FLT_EPSILON__), length);
    };
    const auto n1 = length_of(l1), n2 = length_of(l2);
    const auto choose = [&](const Doubles& axis, const Doubles& value) NUQI_FORCED {
      return round_to_floats(keep(~flat, select(diagonal, axis, value)));
    };
    store_six(to, {choose(a, l1), choose(c, l2), choose(one, b / n1), choose(none, (l1 - a) / n1),
                   choose(none, b / n2), choose(one, (l2 - a) / n2)});
  }
};

// ---- Sums down the columns, of a block of columns

// A value for each plane.
struct Planes {
  Px<float> of[kEigenPlanes];
};

// The sums along the rows of a block: those of the last rows before a band, as many as a window has, then
// the band's own and copies of its last one.
struct Rows {
  alignas(64) float of[kEigenPlanes][7 + kEigenRows + 3][16];
};

// What the buffer keeps of a block from band to band: those last rows, and the sums over them.
struct Kept {
  float* at;
  int64_t pitch;
  int size;

  NUQI_INLINE float* row(int plane, int64_t i) const {
    return at + (plane * (size + 1) + i) * pitch;
  }
  NUQI_INLINE float* total(int plane) const { return row(plane, size); }
};

// Takes a band's rows one by one; along(i) gives the sums along row i. Writes the results of the windows
// that end, from dst's row 0 on for the first row's.
template <EigenResult result, class Along>
NUQI_INLINE void walk_down(const EigenJob& job, const Kept& kept, Rows& rows,
                           const Image<float>& dst, const Along& along) {
  const int size = kept.size, count = job.rows + job.repeats;
  alignas(64) float sums[kEigenPlanes][16];
  Planes row, total;
  int i = 0;
  if (job.y == 0) {
    // The first row counts half + 1 times; nothing leaves before it does.
    row = along(0);
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      for (int k = 1; k <= size; ++k) store(rows.of[p][k], k <= job.half ? Px<float>{} : row.of[p]);
      total.of[p] = row.of[p] * broadcast(float(job.half + 1));
    });
    i = 1;
  } else {
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      for (int k = 0; k < size; ++k) store(rows.of[p][k], load(kept.row(p, k)));
      total.of[p] = load(kept.total(p));
    });
  }
  for (; i < count; ++i) {
    if (i < job.rows) row = along(i);
    for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
      total.of[p] = total.of[p] + (row.of[p] - load(rows.of[p][i]));
      store(rows.of[p][size + i], row.of[p]);
      store(sums[p], total.of[p]);
    });
    if (job.y + i < job.half) continue;
    for (int lane = 0; lane < 16; lane += Doubles::kLanes) {
      const auto at = [&](int p)
                          NUQI_FORCED { return load_doubles<Doubles::kLanes>(sums[p] + lane); };
      Results<result>::write(row_of(dst, i) + values_of(result) * lane, {at(0), at(1), at(2)},
                             job.scale);
    }
  }
  for_each<kEigenPlanes>([&](int p) NUQI_FORCED {
    for (int k = 0; k < size; ++k) store(kept.row(p, k), load(rows.of[p][count + k]));
    store(kept.total(p), total.of[p]);
  });
}

// The block from column x of the image on. Where fewer than sixteen are left, what is kept of them and
// their results go to places of their own.
template <EigenResult result, class Along>
NUQI_INLINE void write_block(const EigenJob& job, int32_t x, const Along& along) {
  constexpr int kValues = values_of(result);
  const int size = 2 * job.half + 1, columns = job.width - x;
  const Image<float> dst = {row_of(job.dst, job.y - job.half) + int64_t{kValues} * x, job.dst.step};
  alignas(64) float out[kEigenRows + 3][16 * kValues];
  const bool whole = columns >= 16;
  const Kept kept =
      whole ? Kept{job.kept + x, job.width, size} : Kept{job.carry->kept[0], 16, size};
  Rows rows;
  walk_down<result>(job, kept, rows, whole ? dst : Image<float>{out[0], int32_t{sizeof out[0]}},
                    along);
  if (whole) return;
  for (int i = 0; i < job.rows + job.repeats; ++i)
    if (job.y + i >= job.half)
      __builtin_memcpy(row_of(dst, i), out[i], int64_t{columns} * kValues * int{sizeof(float)});
}

// ---- Sums along the rows

NUQI_INLINE Px<float> to_floats(const Px<int16_t>& a) {
  return convert<float>(convert<int32_t>(a));
}
NUQI_INLINE Px<float> to_floats(const Px<float>& a) { return a; }

NUQI_INLINE Planes products(const Px<float>& dx, const Px<float>& dy) {
  return {{dx * dx, dx * dy, dy * dy}};
}
// Products of bytes' 3x3 derivatives, and sums of three, are below 2^24: they may be added in any order.
// Of each pair of columns, the left one's window is the pair and the column before it, the right one's the
// pair and the column behind it.
struct Pairs {
  Px<int16_t> both, before, behind;

  NUQI_INLINE explicit Pairs(const int16_t* from)
      : both(load(from)), before(load(from - 1)), behind(load(from + 2)) {}
};
NUQI_INLINE Px<float> sum_three(const Pairs& a, const Pairs& b) {
  const auto first = [](const Px<int16_t>& pairs) NUQI_FORCED {
    return lanes_as<int16_t>(lanes_as<int32_t>(pairs) & broadcast<int32_t, 8>(0xFFFF));
  };
  const auto both = dot_pairs(a.both, b.both);
  return convert<float>(zip(both + dot_pairs(first(a.before), b.before),
                            both + dot_pairs(first(a.behind), b.behind)));
}

void minimum_of_bytes3x3(const EigenJob& job, const EigenStrip<int16_t>& strip) {
  for (int32_t x = 0; x < job.columns; x += 16)
    write_block<EigenResult::minimum>(job, job.x + x, [&](int i) NUQI_FORCED {
      constexpr int kMargin = EigenStrip<int16_t>::kMargin;
      const Pairs dx(strip.dx[i] + kMargin + x), dy(strip.dy[i] + kMargin + x);
      return Planes{{sum_three(dx, dx), sum_three(dx, dy), sum_three(dy, dy)}};
    });
}

// Elsewhere the sums run, along the rows of a block at a time.
struct RunningSums {
  RunningColumns columns[kEigenPlanes];
  alignas(64) float along[kEigenPlanes][kEigenRows][16];
};

// Reads the products of the sixteen columns that start at column x of the strip.
template <class D>
NUQI_NOINLINE void read(const EigenJob& job, const EigenStrip<D>& strip, int32_t x,
                        RunningSums& sums) {
  alignas(64) float turned[2][16][16];
  const auto turn = [&](const D(&from)[kEigenRows][EigenStrip<D>::kPitch], float* to) NUQI_FORCED {
    Px<float> rows[16];
    for_each<16>([&](int i) NUQI_FORCED {
      rows[i] = to_floats(load(from[i] + EigenStrip<D>::kMargin + x));
    });
    transpose(rows, to);
  };
  turn(strip.dx, turned[0][0]);
  turn(strip.dy, turned[1][0]);
  for (int i = 0; i < 16; ++i) {
    const Planes column = products(load(turned[0][i]), load(turned[1][i]));
    for_each<kEigenPlanes>([&](int p)
                               NUQI_FORCED { sums.columns[p].set(job.x + x + i, column.of[p]); });
  }
}

NUQI_NOINLINE void add(const EigenJob& job, int plane, int32_t x, RunningSums& sums) {
  double(&carried)[kEigenRows] = job.carry->along[plane];
  auto sum = x == 0 ? sums.columns[plane].start(job.half) : load(carried);
  sum_rows(sums.columns[plane], job.half, x, sum, sums.along[plane][0]);
  store(carried, sum);
}

// Writes the sixteen columns that start at column x of the image.
template <EigenResult result>
NUQI_NOINLINE void write(const EigenJob& job, int32_t x, RunningSums& sums) {
  for (int p = 0; p < kEigenPlanes; ++p) add(job, p, x, sums);
  write_block<result>(job, x, [&](int i) NUQI_FORCED {
    return Planes{{load(sums.along[0][i]), load(sums.along[1][i]), load(sums.along[2][i])}};
  });
}

// A block's last windows reach into the next one: it is written when that has been read.
template <EigenResult result, class D>
void running(const EigenJob& job, const EigenStrip<D>& strip) {
  RunningSums sums;
  for (int p = 0; p < kEigenPlanes; ++p) sums.columns[p].values = job.carry->columns[p];
  int32_t x = 0;
  for (; x < job.columns; x += 16) {
    read(job, strip, x, sums);
    if (job.x + x > 0) write<result>(job, job.x + x - 16, sums);
  }
  const int32_t end = job.x + x;
  if (end < job.width) return;
  for (const RunningColumns& columns : sums.columns) {
    const auto last = load(columns.at(end - 1));
    for (int k = 0; k < job.half; ++k) columns.set(end + k, last);
  }
  write<result>(job, end - 16, sums);
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

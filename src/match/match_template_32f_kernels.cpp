// Template matching of floats: every sum of doubles runs in the order of the pixels, so that placements are
// the lanes.
#include "core/simd/arithmetic.h"
#include "match/score.h"

namespace nuqi::NUQI_ISA {
namespace {

// Result rows that share the loads of their source rows.
constexpr int kRows = kRegBytes == 64 ? 6 : 4;
constexpr int kDoubles = kRegBytes / 8;

// ---- Products, or squared differences

// The sums of kRows rows of a stretch of columns. Blocks of columns are whole: the last one starts before
// its turn, even before the stretch.
constexpr int kMost = 2 * kDoubles, kFew = 4;  // columns of a block
struct Raw {
  double of[kRows][kMost + kColumns] = {};
  double* row(int y) { return of[y] + kMost; }
};

template <int N>
struct Lanes {
  using Type = Vec<double, N>;
  static NUQI_INLINE Type load(const float* from) { return load_doubles<N>(from); }
  static NUQI_INLINE Type all(double value) { return broadcast<double, N>(value); }
  static NUQI_INLINE void put(double* to, const Type& a) { store(to, a); }
};
template <>
struct Lanes<1> {
  using Type = double;
  static NUQI_INLINE double load(const float* from) { return load_one(from); }
  static NUQI_INLINE double all(double value) { return value; }
  static NUQI_INLINE void put(double* to, double a) { *to = a; }
};

// sum + w * t, where the product of two floats is exact; or sum + (w - t)^2.
NUQI_INLINE double add_product(double sum, double w, double t) { return sum + w * t; }
template <int N>
NUQI_INLINE Vec<double, N> add_product(const Vec<double, N>& sum, const Vec<double, N>& w,
                                       const Vec<double, N>& t) {
  return add_exact_product(sum, w, t);
}
template <bool differences, class V>
NUQI_INLINE V add_term(const V& sum, const V& w, const V& t) {
  if constexpr (differences) {
    const V d = w - t;
    return sum + d * d;
  } else {
    return add_product(sum, w, t);
  }
}

// N columns from column x of R rows from row y on, of a template of R - 1 rows at least.
template <bool differences, int N, int R>
NUQI_NOINLINE void sum_block(const MatchJob<float>& job, int64_t x, int64_t y,
                             double* const (&to)[R]) {
  using L = Lanes<N>;
  const int64_t width = job.tpl_roi.width, height = job.tpl_roi.height;
  typename L::Type sums[R] = {};
  // Row i of the source meets row i - k of the template for row k of the results, where there is one.
  const auto add_row = [&](int64_t i, const auto& meets) NUQI_FORCED {
    const float* const src = row_of(job.src, y + i) + x;
    for (int64_t c = 0; c < width; ++c) {
      const auto w = L::load(src + c);
      for_each<R>([&](int k) NUQI_FORCED {
        if (!meets(k)) return;
        sums[k] = add_term<differences>(sums[k], w, L::all(job.tpl_doubles[(i - k) * width + c]));
      });
    }
  };
  for_each<R - 1>([&](int i) NUQI_FORCED { add_row(i, [=](int k) { return k <= i; }); });
  for (int64_t i = R - 1; i < height; ++i) add_row(i, [](int) { return true; });
  for_each<R - 1>([&](int i) NUQI_FORCED { add_row(height + i, [=](int k) { return k > i; }); });
  for_each<R>([&](int k) NUQI_FORCED { L::put(to[k], sums[k]); });
}

template <bool differences, int N, int R>
void sum_rows(const MatchJob<float>& job, int64_t x, int columns, int64_t y, Raw& raw) {
  for (int start = 0; start < columns; start += N) {
    const int at = start + N <= columns ? start : columns - N;
    double* to[R];
    for (int k = 0; k < R; ++k) to[k] = raw.row(k) + at;
    sum_block<differences, N, R>(job, x + at, y, to);
  }
}
template <bool differences, int R>
void sum_rows(const MatchJob<float>& job, int64_t x, int columns, int64_t y, Raw& raw) {
  if (job.dst_roi.width >= kMost)
    sum_rows<differences, kMost, R>(job, x, columns, y, raw);
  else if (job.dst_roi.width >= kFew)
    sum_rows<differences, kFew, R>(job, x, columns, y, raw);
  else
    sum_rows<differences, 1, R>(job, x, columns, y, raw);
}

// ---- The running sums of the patches

// How a row's sum, or energy, changes when one pixel enters and another leaves.
template <Of of, class V>
NUQI_INLINE V change(const V& enters, const V& leaves) {
  if constexpr (of == Of::sums)
    return enters - leaves;
  else
    return (enters + leaves) * (enters - leaves);
}

// Of the patches of a stretch of columns, block after block of rows. `rows` holds each source row's sum at
// the stretch's first column; what has been read last of a row leaves it at that of the next stretch.
template <Of of>
class PatchSums {
 public:
  PatchSums(const MatchJob<float>& job, double* rows) : job_(job), rows_(rows) {
    for (int64_t y = 0; y < source_height(); y += kRows)
      sum_rows(y, rows_until(y, source_height()));
  }

  // The first row of the stretch of `columns` columns from x.
  NUQI_NOINLINE void start(int64_t x, int columns) {
    x_ = x, columns_ = columns;
    for (double& sum : of_column_) sum = 0;
    for (int64_t y = 0; y < job_.tpl_roi.height; y += kRows) {
      const int count = rows_until(y, job_.tpl_roi.height);
      run<false>(y, count, entering_);
      for (int k = 0; k < count; ++k)
        for_columns([&](int j) NUQI_FORCED { return at(j) + load(entering_[k] + j); });
    }
  }
  // Before the rows from y on, up to `end`, the first one of all left out.
  NUQI_NOINLINE void prepare(int64_t y, int64_t end) {
    first_ = y;
    if (y == end) return;
    // In this order: where the template is low, rows of this block both enter and leave.
    run<false>(y - 1 + job_.tpl_roi.height, int(end - y), entering_);
    run<true>(y - 1, int(end - y), leaving_);
  }
  NUQI_NOINLINE void at_row(int64_t y) {
    const int64_t k = y - first_;
    for_columns([&](int j)
                    NUQI_FORCED { return at(j) - load(leaving_[k] + j) + load(entering_[k] + j); });
  }
  // After the last row.
  NUQI_NOINLINE void finish() {
    for (int64_t y = job_.dst_roi.height - 1; y < source_height(); y += kRows)
      run<true>(y, rows_until(y, source_height()), leaving_);
  }

  NUQI_INLINE Px<double> at(int64_t j) const { return load(of_column_ + j); }

 private:
  using Rows = double[kRows][kColumns + 16];

  int64_t source_height() const { return int64_t{job_.dst_roi.height} + job_.tpl_roi.height - 1; }
  static int rows_until(int64_t y, int64_t end) { return end - y < kRows ? int(end - y) : kRows; }

  template <class Sum>
  NUQI_INLINE void for_columns(const Sum& sum) {
    for (int j = 0; j < columns_; j += 16) store(of_column_ + j, sum(j));
  }

  // Each row is a dependency chain: kRows of them run at once, the last one several times where there are fewer.

  // Of `count` source rows from y on, under the template's columns at the first place.
  NUQI_NOINLINE void sum_rows(int64_t y, int count) {
    const float* rows[kRows];
    double sums[kRows] = {};
    for (int k = 0; k < kRows; ++k) rows[k] = row_of(job_.src, y + (k < count ? k : count - 1));
    for (int64_t c = 0; c < job_.tpl_roi.width; ++c)
      for_each<kRows>([&](int k) NUQI_FORCED {
        const double pixel = load_one(rows[k] + c);
        sums[k] += of == Of::sums ? pixel : pixel * pixel;
      });
    for (int k = 0; k < count; ++k) rows_[y + k] = sums[k];
  }

  // The same at each of the stretch's places.
  template <bool for_the_last_time>
  NUQI_NOINLINE void run(int64_t y, int count, Rows& to) {
    for (int k = 0; k < kRows; ++k) {
      const int64_t row = y + (k < count ? k : count - 1);
      const float *const leaves = pixels(row), *const enters = leaves + job_.tpl_roi.width;
      for_blocks(columns_ - 1, [&](int64_t j, auto part) NUQI_FORCED {
        store(to[k] + 1 + j,
              change<of>(load_doubles(enters + j, part), load_doubles(leaves + j, part)));
      });
      to[k][0] = rows_[row];
    }
    double sums[kRows];
    for_each<kRows>([&](int k) NUQI_FORCED { sums[k] = to[k][0]; });
    for (int j = 1; j < columns_; ++j)
      for_each<kRows>([&](int k) NUQI_FORCED { to[k][j] = sums[k] += to[k][j]; });
    if (!for_the_last_time || x_ + columns_ == job_.dst_roi.width) return;
    for (int k = 0; k < count; ++k) {
      const float* const leaves = pixels(y + k) + columns_ - 1;
      const double enters = load_one(leaves + job_.tpl_roi.width);
      rows_[y + k] = to[k][columns_ - 1] + change<of>(enters, (double)load_one(leaves));
    }
  }
  const float* pixels(int64_t y) const { return row_of(job_.src, y) + x_; }

  const MatchJob<float>& job_;
  double* rows_;
  int64_t x_ = 0, first_ = 0;
  int columns_ = 0;
  double of_column_[kColumns] = {};
  Rows leaving_ = {}, entering_ = {};
};

// ---- The kernel

struct TemplateSums {
  double sum, energy;
};

// Visits the template's pixels: use(t, y, c) in their order. Their sums, where a measure needs these.
template <bool needs, class Use>
NUQI_INLINE TemplateSums take_template(const MatchJob<float>& job, const Use& use) {
  TemplateSums sums = {0, 0};
  for (int64_t y = 0; y < job.tpl_roi.height; ++y) {
    const float* const row = row_of(job.tpl, y);
    for (int64_t c = 0; c < job.tpl_roi.width; ++c) {
      const double t = load_one(row + c);
      if constexpr (needs) {
        sums.sum += t;
        sums.energy += t * t;
      }
      use(t, y, c);
    }
  }
  return sums;
}
// Lays it out as doubles.
template <bool needs>
NUQI_NOINLINE TemplateSums lay_out(const MatchJob<float>& job) {
  double* to = job.tpl_doubles;
  return take_template<needs>(job, [&](double t, int64_t, int64_t) NUQI_FORCED { *to++ = t; });
}
// The only place: its products run beside the template's sums, since each is one long dependency chain.
template <bool needs, bool differences>
NUQI_NOINLINE TemplateSums sum_only_place(const MatchJob<float>& job, Raw& raw) {
  double sum = 0;
  const TemplateSums sums =
      take_template<needs>(job, [&](double t, int64_t y, int64_t c) NUQI_FORCED {
        sum = add_term<differences>(sum, (double)load_one(row_of(job.src, y) + c), t);
      });
  raw.row(0)[0] = sum;
  return sums;
}

template <Measure m>
void match(const MatchJob<float>& job) {
  constexpr bool differences = m == Measure::sq_diff || m == Measure::sq_diff_normed;
  constexpr bool needs = m != Measure::sq_diff && m != Measure::corr;
  using Sums = typename IfElse<needs_sums(m), PatchSums<Of::sums>, NoSums>::Type;
  using Energies = typename IfElse<needs_energies(m), PatchSums<Of::energies>, NoSums>::Type;
  const int64_t width = job.dst_roi.width, height = job.dst_roi.height;
  const bool only = width == 1 && height == 1;
  Raw raw;
  const TemplateSums tpl =
      only ? sum_only_place<needs, differences>(job, raw) : lay_out<needs>(job);
  const TemplateTerms terms = template_terms<m, true>(job.tpl_roi, tpl.sum, tpl.energy);
  Sums sums(job, job.row_sums);
  Energies energies(job, job.row_energies);
  const int64_t rows = height >= kRows && job.tpl_roi.height >= kRows - 1 ? kRows
                       : height >= 2                                      ? 2
                                                                          : 1;
  for (int64_t x = 0; x < width; x += kColumns) {
    const int columns = width - x < kColumns ? int(width - x) : kColumns;
    sums.start(x, columns);
    energies.start(x, columns);
    for (int64_t start = 0; start < height; start += rows) {
      const int64_t base = start + rows <= height ? start : height - rows;
      if (rows == kRows)
        sum_rows<differences, kRows>(job, x, columns, base, raw);
      else if (rows == 2)
        sum_rows<differences, 2>(job, x, columns, base, raw);
      else if (!only)
        sum_rows<differences, 1>(job, x, columns, base, raw);
      const int64_t next = start == 0 ? 1 : start;
      sums.prepare(next, base + rows);
      energies.prepare(next, base + rows);
      for (int64_t y = start; y < base + rows; ++y) {
        if (y != 0) sums.at_row(y), energies.at_row(y);
        for (int j = 0; j < columns; j += 16)
          store_scores(
              row_of(job.dst, y) + x + j, columns - j,
              score<m, true>(load(raw.row(int(y - base)) + j), sums.at(j), energies.at(j), terms));
      }
    }
    sums.finish();
    energies.finish();
  }
}

}  // namespace

const MatchKernels32f match_template_32f_kernels = {{
    match<Measure::sq_diff>,
    match<Measure::sq_diff_normed>,
    match<Measure::corr>,
    match<Measure::corr_normed>,
    match<Measure::coeff>,
    match<Measure::coeff_normed>,
}};

}  // namespace nuqi::NUQI_ISA

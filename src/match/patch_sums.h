// Sums of bytes, and their energies, over the patches that the template covers.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/reduce.h"
#include "match/match_template.h"

namespace nuqi::NUQI_ISA {
namespace {

// Result columns that are computed together.
constexpr int kColumns = 64;

enum class Of { sums, energies };

// Adds the pixels of a row to sums.
template <class Sums, class T>
NUQI_INLINE void add_row(Sums& sums, const T* row, int64_t width) {
  constexpr int kLanes = Reg<T>::kLanes;
  constexpr int64_t kStretch = int64_t{Sums::kRoom} * kLanes;
  for (int64_t start = 0; start < width; start += kStretch) {
    const int64_t rest = width - start, stretch = rest < kStretch ? rest : kStretch;
    sums.reserve(int((stretch + kLanes - 1) / kLanes));
    for_blocks_in_turns<kLanes, Sums::kTurns>(
        stretch, [&](int64_t x, auto part, int turn)
                     NUQI_FORCED { sums.add(load<kLanes>(row + start + x, part), turn); });
  }
}

struct Totals {
  int64_t sum, energy;
};
template <class T>
NUQI_NOINLINE Totals totals_of(const Image<const T>& image, RoiSize roi) {
  ByteSums<T, true> sums;
  for (int64_t y = 0; y < roi.height; ++y) add_row(sums, row_of(image, y), roi.width);
  sums.collect();
  return {sums.sum(), sums.squares_sum()};
}

// Of the patches of a stretch of columns, row after row: that of the first column, and by how much each
// further one differs from the one before it, which are the pixels that enter less those that leave.
template <Of of, class T>
class PatchSums {
  // The most rows whose changes 32 bits hold, of 255^2 each.
  static constexpr int kMostRows = INT32_MAX / (255 * 255);

 public:
  PatchSums(const MatchJob<T>& job, int64_t x, int columns)
      : job_(job), x_(x), columns_(columns), tall_(job.tpl_roi.height > kMostRows) {
    for (int64_t y = 0; y < job.tpl_roi.height - 1; ++y) add<1>(y);
  }

  // Called for each row in turn.
  void at_row(int64_t y) {
    add<1>(y + job_.tpl_roi.height - 1);
    set_columns();
    add<-1>(y);
  }
  NUQI_INLINE Px<double> at(int64_t j) const { return load(of_column_ + j); }

 private:
  // A source row enters the patches, or leaves them.
  template <int sign>
  NUQI_NOINLINE void add(int64_t y) {
    const T* const leaves = row_of(job_.src, y) + x_;
    const T* const enters = leaves + job_.tpl_roi.width;
    ByteSums<T, of == Of::energies> row;
    add_row(row, leaves, job_.tpl_roi.width);
    row.collect();
    first_ += sign * (of == Of::sums ? row.sum() : row.squares_sum());
    if (tall_) {
      for (int j = 0; j < columns_ - 1; ++j)
        tall_changes_[j] += sign * (term(enters[j]) - term(leaves[j]));
    } else {
      for_blocks(columns_ - 1, [&](int64_t j, auto part) NUQI_FORCED {
        const auto a = term(load(enters + j, part)), b = term(load(leaves + j, part));
        store(changes_ + j, load(changes_ + j) + (sign > 0 ? a - b : b - a));
      });
    }
  }
  static NUQI_INLINE int term(T a) { return of == Of::sums ? a : a * a; }
  static NUQI_INLINE Px<int32_t> term(const Px<T>& a) {
    if constexpr (of == Of::sums)
      return convert<int32_t>(a);
    else
      return multiply_bytes(a, a);
  }

  NUQI_NOINLINE void set_columns() {
    int64_t sum = first_;
    of_column_[0] = (double)sum;
    for (int j = 1; j < columns_; ++j)
      of_column_[j] = (double)(sum += tall_ ? tall_changes_[j - 1] : changes_[j - 1]);
  }

  const MatchJob<T>& job_;
  int64_t x_;
  int columns_;
  bool tall_;
  int64_t first_ = 0, tall_changes_[kColumns] = {};
  int32_t changes_[kColumns] = {};
  double of_column_[kColumns] = {};
};

// Where a measure needs none.
struct NoSums {
  template <class Job>
  NoSums(const Job&, int64_t, int) {}
  void at_row(int64_t) {}
  NUQI_INLINE Px<double> at(int64_t) const { return {}; }
};
template <bool needed, Of of, class T>
using PatchSumsIf = typename IfElse<needed, PatchSums<of, T>, NoSums>::Type;

}  // namespace
}  // namespace nuqi::NUQI_ISA

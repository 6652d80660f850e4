// Sums of bytes, and their energies, over the patches that the template covers.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/reduce.h"
#include "core/simd/shuffle.h"
#include "match/score.h"

namespace nuqi::NUQI_ISA {
namespace {

// The most result columns of a stretch.
constexpr int kMostColumns = 128;

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

template <Of of, class T>
NUQI_INLINE Px<int32_t> term(const Px<T>& a) {
  if constexpr (of == Of::sums)
    return convert<int32_t>(a);
  else
    return multiply_bytes(a, a);
}

// Of the patches of a stretch of columns, row after row: that of the first column, and by how much each
// further one's differs from the one before it, which are the pixels that enter less those that leave.
template <Of of, class T>
class PatchSums {
  // The most pixels whose energies 32 bits hold with a sign.
  static constexpr int kMostPixels = INT32_MAX / (255 * 255);

 public:
  explicit PatchSums(const MatchJob<T>& job)
      : job_(job), small_(int64_t{job.tpl_roi.width} * job.tpl_roi.height <= kMostPixels) {}

  void start(int64_t x, int columns) {
    x_ = x, columns_ = columns;
    small_first_ = {}, first_ = 0;
    for (int j = 0; j < kMostColumns; ++j) small_changes_[j] = 0, changes_[j] = 0;
    for (int64_t y = 0; y < job_.tpl_roi.height - 1; ++y) small_ ? move<false>(y) : add(y, 1);
  }

  // Called for each row in turn.
  void at_row(int64_t y) {
    const int64_t enters = y + job_.tpl_roi.height - 1;
    if (small_) {
      y == 0 ? move<false>(enters) : move<true>(enters);
      set_small_sums();
    } else {
      if (y != 0) add(y - 1, -1);
      add(enters, 1);
      double sum = (double)first_;
      sums_[0] = sum;
      for (int j = 1; j < columns_; ++j) sums_[j] = sum += changes_[j - 1];
    }
  }
  NUQI_INLINE Px<double> at(int64_t j) const {
    return small_ ? to_doubles(ints_at(j)) : load(sums_ + j);
  }
  // Of a small template.
  NUQI_INLINE Px<int32_t> ints_at(int64_t j) const { return load(small_sums_ + j); }

 private:
  const T* row(int64_t y) const { return row_of(job_.src, y) + x_; }

  // Source row y enters the patches; perhaps the one above them leaves.
  template <bool one_leaves>
  NUQI_NOINLINE void move(int64_t y) {
    const int64_t width = job_.tpl_roi.width;
    const T *const in = row(y), *const out = row(y - job_.tpl_roi.height);
    const auto difference = [&](int64_t c, auto part) NUQI_FORCED {
      const auto enters = term<of>(load(in + c, part));
      if constexpr (one_leaves)
        return enters - term<of>(load(out + c, part));
      else
        return enters;
    };
    for_blocks(width, [&](int64_t c, auto part)
                          NUQI_FORCED { small_first_ = small_first_ + difference(c, part); });
    for_blocks(columns_ - 1, [&](int64_t j, auto part) NUQI_FORCED {
      const auto change = difference(width + j, part) - difference(j, part);
      store(small_changes_ + j, load(small_changes_ + j) + change);
    });
  }
  // Each lane gets those before it, and not itself: what is stored is loaded again as it was stored, since
  // a load from two stores waits for both.
  NUQI_NOINLINE void set_small_sums() {
    auto before = broadcast(reduce_add(small_first_));
    for (int j = 0; j < columns_; j += 16) {
      const auto changes = load(small_changes_ + j);
      const auto sums = before + running_sums(changes);
      store(small_sums_ + j, sums - changes);
      before = last_everywhere(sums);
    }
  }

  // Of larger templates: a source row enters the patches (sign 1), or leaves them (-1).
  NUQI_NOINLINE void add(int64_t y, int sign) {
    const T *const leaves = row(y), *const enters = leaves + job_.tpl_roi.width;
    ByteSums<T, of == Of::energies> row;
    add_row(row, leaves, job_.tpl_roi.width);
    row.collect();
    first_ += sign * (of == Of::sums ? row.sum() : row.squares_sum());
    for_blocks(columns_ - 1, [&](int64_t j, auto part) NUQI_FORCED {
      const auto a = term<of>(load(enters + j, part)), b = term<of>(load(leaves + j, part));
      store(changes_ + j, load(changes_ + j) + to_doubles(a - b) * broadcast((double)sign));
    });
  }

  const MatchJob<T>& job_;
  const bool small_;
  int64_t x_ = 0;
  int columns_ = 0;
  Px<int32_t> small_first_ = {};
  int32_t small_changes_[kMostColumns], small_sums_[kMostColumns];
  int64_t first_ = 0;
  double changes_[kMostColumns], sums_[kMostColumns];
};

template <bool needed, Of of, class T>
using PatchSumsIf = typename IfElse<needed, PatchSums<of, T>, NoSums>::Type;

}  // namespace
}  // namespace nuqi::NUQI_ISA

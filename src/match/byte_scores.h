// The scores of places of bytes, row after row, of whatever way the sums of products came.
#pragma once

#include "match/patch_sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// The sums of products of a row's places: ints where the template is one small piece, else doubles.
struct ProductRow {
  const int32_t* ints;
  const double* doubles;
};

// A measure, seen by what computes products: one copy of that serves all measures.
struct Scorer {
  void* scores;
  void (*start)(void* scores, int64_t x, int columns);   // a stretch of columns
  void (*put)(void* scores, int64_t y, ProductRow row);  // called for each row in turn
  Totals tpl;
};

template <Measure m, class T>
class ByteScores {
 public:
  explicit ByteScores(const MatchJob<T>& job)
      : job_(job),
        tpl_(totals_of(job.tpl, job.tpl_roi)),
        terms_(template_terms<m, false>(job.tpl_roi, (int32_t)tpl_.sum, (double)tpl_.energy)),
        sums_(job),
        energies_(job) {}

  Scorer scorer() {
    return {this,
            [](void* self, int64_t x, int columns) { ((ByteScores*)self)->start(x, columns); },
            [](void* self, int64_t y, ProductRow row) { ((ByteScores*)self)->put(y, row); }, tpl_};
  }

 private:
  static constexpr bool kDifferences = m == Measure::sq_diff || m == Measure::sq_diff_normed;

  void start(int64_t x, int columns) {
    x_ = x, columns_ = columns;
    sums_.start(x, columns);
    energies_.start(x, columns);
  }
  void put(int64_t y, ProductRow row) {
    sums_.at_row(y);
    energies_.at_row(y);
    for (int j = 0; j < columns_; j += 16) {
      Px<float> scores;
      if ((m == Measure::corr || m == Measure::sq_diff) && row.ints != nullptr) {
        auto raw = load(row.ints + j);
        if constexpr (kDifferences) raw = difference<int32_t>(energies_.ints_at(j), raw);
        scores = convert<float>(raw);
      } else {
        const auto energy = energies_.at(j);
        auto raw = row.ints != nullptr ? to_doubles(load(row.ints + j)) : load(row.doubles + j);
        if constexpr (kDifferences) raw = difference<double>(energy, raw);
        scores = score<m, false>(raw, sums_.at(j), energy, terms_);
      }
      store_scores(row_of(job_.dst, y) + x_ + j, columns_ - j, scores);
    }
  }
  // The sum of squared differences is S2 - 2 C + T2.
  template <class Lane>
  NUQI_INLINE Px<Lane> difference(const Px<Lane>& energy, const Px<Lane>& products) const {
    return energy + broadcast((Lane)tpl_.energy) - (products + products);
  }

  const MatchJob<T>& job_;
  const Totals tpl_;
  const TemplateTerms terms_;
  PatchSumsIf<needs_sums(m), Of::sums, T> sums_;
  PatchSumsIf<needs_energies(m) || kDifferences, Of::energies, T> energies_;
  int64_t x_ = 0;
  int columns_ = 0;
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

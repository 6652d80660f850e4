// The scores of places of bytes, row after row, of whatever way the sums of products came.
#pragma once

#include "match/patch_sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// The sums of products at the places of rows that lie `pitch` apart: ints where the template is one small
// piece, else doubles.
struct ProductRows {
  const int32_t* ints;
  const double* doubles;
  int64_t pitch;
};

// A measure, seen by what computes products: one copy of that serves all measures.
struct Scorer {
  void* scores;
  void (*start)(void* scores, int64_t x, int columns);  // a stretch of columns
  void (*put)(void* scores, int64_t y, int rows,
              const ProductRows& products);  // one after the other
  Totals tpl;
  bool products_alone;  // the scores are the sums of products
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
            [](void* self, int64_t y, int rows, const ProductRows& products) {
              ((ByteScores*)self)->put(y, rows, products);
            },
            tpl_, m == Measure::corr};
  }

 private:
  static constexpr bool kDifferences = m == Measure::sq_diff || m == Measure::sq_diff_normed;

  void start(int64_t x, int columns) {
    x_ = x, columns_ = columns;
    sums_.start(x, columns);
    energies_.start(x, columns);
  }
  void put(int64_t y, int rows, const ProductRows& products) {
    const ProductRows from = products;
    const int columns = columns_;
    for (int i = 0; i < rows; ++i) {
      sums_.at_row(y + i);
      energies_.at_row(y + i);
      float* const to = row_of(job_.dst, y + i) + x_;
      for (int j = 0; j < columns; j += 16)
        store_scores(to + j, columns - j, scores_at(j, from, i * from.pitch + j));
    }
  }
  NUQI_INLINE Px<float> scores_at(int j, const ProductRows& products, int64_t at) const {
    if ((m == Measure::corr || m == Measure::sq_diff) && products.ints != nullptr) {
      auto raw = load(products.ints + at);
      if constexpr (kDifferences) raw = difference<int32_t>(energies_.ints_at(j), raw);
      return convert<float>(raw);
    } else {
      const auto energy = energies_.at(j);
      auto raw = products.ints != nullptr ? to_doubles(load(products.ints + at))
                                          : load(products.doubles + at);
      if constexpr (kDifferences) raw = difference<double>(energy, raw);
      return score<m, false>(raw, sums_.at(j), energy, terms_);
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

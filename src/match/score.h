// What kernels of bytes and of floats share: the stretch of columns, the kinds of sums over patches, and the
// measures' formulas, in double precision, for sixteen placements at a time.
#pragma once

#include "core/simd/convert.h"
#include "match/match_template.h"

namespace nuqi::NUQI_ISA {
namespace {

// Result columns that are computed together.
constexpr int kColumns = 64;

enum class Of { sums, energies };
// Where a measure needs none.
struct NoSums {
  template <class... Arguments>
  explicit NoSums(const Arguments&...) {}
  void start(int64_t, int) {}
  void prepare(int64_t, int64_t) {}
  void at_row(int64_t) {}
  void finish() {}
  NUQI_INLINE Px<double> at(int64_t) const { return {}; }
};

constexpr double kRootTerm = 0x1p-23;

// About 1 / sqrt(v): a seed from the bits of v as a float, and four of Newton's steps. Their order, and the
// seed for whatever v is, are the contract's.
NUQI_INLINE Px<double> reciprocal_root(const Px<double>& v) {
  const auto bits = as<uint32_t>(round_to_floats(v));
  const auto seed = (broadcast<uint32_t>(0xBE6F0000) - bits) >> 1;
  const auto half = broadcast(0.5) * v, most = broadcast(1.5);
  Px<double> y = to_doubles(as<float>(seed));
  for_each<4>([&](int) NUQI_FORCED { y = (most - (half * y) * y) * y; });
  return y;
}
NUQI_INLINE Px<double> root_of_energy(const Px<double>& energy) {
  return reciprocal_root(abs(energy) + broadcast(kRootTerm));
}

// What the formulas need of the template.
struct TemplateTerms {
  double per_pixel;  // 1 / n
  double sum, root;
};

// Of floats the multiplications have another order.
template <Measure m, bool floats>
NUQI_INLINE TemplateTerms template_terms(RoiSize roi, double sum, double energy) {
  const double n = (double)roi.width * (double)roi.height;
  TemplateTerms t = {1 / (n + 0x1p-52), sum, 0};
  const double mean_part = floats ? t.per_pixel * sum * sum : sum * sum * t.per_pixel;
  const double rest = m == Measure::coeff_normed ? energy - mean_part : energy;
  t.root = root_of_energy(broadcast(rest)).r[0][0];
  return t;
}

// The score of sixteen patches: of the products' or the squared differences' sum `raw`, and of the sums and
// energies that the measure needs.
template <Measure m, bool floats>
NUQI_INLINE Px<float> score(const Px<double>& raw, const Px<double>& sum, const Px<double>& energy,
                            const TemplateTerms& t) {
  const auto per_pixel = broadcast(t.per_pixel), tpl_sum = broadcast(t.sum);
  const auto tpl_root = broadcast(t.root);
  if constexpr (m == Measure::sq_diff_normed || m == Measure::corr_normed) {
    return round_to_floats(root_of_energy(energy) * raw * tpl_root);
  } else if constexpr (m == Measure::coeff) {
    const auto mean_part = floats ? sum * per_pixel * tpl_sum : sum * tpl_sum * per_pixel;
    return round_to_floats(raw - mean_part);
  } else if constexpr (m == Measure::coeff_normed) {
    const auto mean = sum * per_pixel;
    const auto root = root_of_energy(energy - mean * sum);
    return round_to_floats(root * (raw - mean * tpl_sum) * tpl_root);
  } else {
    return round_to_floats(raw);
  }
}

// The first `rest` of sixteen scores, or all.
NUQI_INLINE void store_scores(float* to, int rest, const Px<float>& scores) {
  if (rest >= 16)
    store(to, scores);
  else
    store(to, scores, First{rest});
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

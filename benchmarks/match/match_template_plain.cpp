// Plain loops of template matching, as one would write them. Compiled by each compiler.
#include "match/match_template_plain.h"

#include <cmath>
#include <type_traits>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::MatchArgs;
using test::MatchMeasure;

template <MatchMeasure m, class T>
void loop(const MatchArgs<T>& a) {
  // Sums of a row of bytes fit 32 bits.
  using Row = std::conditional_t<std::is_integral_v<T>, uint32_t, double>;
  using Term = std::conditional_t<std::is_integral_v<T>, int, double>;
  constexpr bool differences = m <= MatchMeasure::sq_diff_normed;
  constexpr bool sums = m >= MatchMeasure::coeff;
  constexpr bool energies =
      m != MatchMeasure::sq_diff && m != MatchMeasure::corr && m != MatchMeasure::coeff;
  const int width = a.srcRoi.width - a.tplRoi.width + 1;
  const int height = a.srcRoi.height - a.tplRoi.height + 1;
  const double n = static_cast<double>(a.tplRoi.width) * a.tplRoi.height;
  double t1 = 0, t2 = 0;
  for (int r = 0; r < a.tplRoi.height; ++r)
    for (int c = 0; c < a.tplRoi.width; ++c) {
      const double t = row(a.tpl, a.tplStep, r)[c];
      t1 += t, t2 += t * t;
    }
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      double products = 0, sum = 0, energy = 0;
      for (int r = 0; r < a.tplRoi.height; ++r) {
        const T* w = row(a.src, a.srcStep, y + r) + x;
        const T* t = row(a.tpl, a.tplStep, r);
        Row row_products = 0, row_sum = 0, row_energy = 0;
        for (int c = 0; c < a.tplRoi.width; ++c) {
          const Term u = w[c], v = t[c];
          row_products += static_cast<Row>(differences ? (u - v) * (u - v) : u * v);
          if (sums) row_sum += static_cast<Row>(u);
          if (energies) row_energy += static_cast<Row>(u * u);
        }
        using Signed = std::conditional_t<std::is_integral_v<T>, int32_t, double>;
        products += static_cast<double>(static_cast<Signed>(row_products));
        sum += static_cast<double>(static_cast<Signed>(row_sum));
        energy += static_cast<double>(static_cast<Signed>(row_energy));
      }
      double score = products;
      if (m == MatchMeasure::coeff) score -= sum * t1 / n;
      if (m == MatchMeasure::coeff_normed)
        score = (products - sum * t1 / n) /
                std::sqrt((energy - sum * sum / n) * (t2 - t1 * t1 / n) + 1e-7);
      else if (energies)
        score /= std::sqrt(energy * t2 + 1e-7);
      row(a.dst, a.dstStep, y)[x] = static_cast<float>(score);
    }
}

}  // namespace

template <class T>
MatchLoop<T> plain_match(MatchMeasure measure) {
  using enum MatchMeasure;
  switch (measure) {
    case sq_diff: return loop<sq_diff, T>;
    case sq_diff_normed: return loop<sq_diff_normed, T>;
    case corr: return loop<corr, T>;
    case corr_normed: return loop<corr_normed, T>;
    case coeff: return loop<coeff, T>;
    default: return loop<coeff_normed, T>;
  }
}
template MatchLoop<uint8_t> plain_match<uint8_t>(MatchMeasure);
template MatchLoop<int8_t> plain_match<int8_t>(MatchMeasure);
template MatchLoop<float> plain_match<float>(MatchMeasure);

}  // namespace nuqi::bench::PLAIN_COMPILER

// Plain loops of the means and deviations, as one would write them. Compiled by each compiler.
#include "stats/mean_plain.h"

#include <bit>
#include <cmath>
#include <type_traits>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::MeanArgs;

// value or 0, without a branch: random masks would cost a misprediction for every other pixel.
int32_t kept(int32_t value, bool selected) { return value & -int32_t{selected}; }
double kept(float value, bool selected) {
  return std::bit_cast<float>(std::bit_cast<uint32_t>(value) & -uint32_t{selected});
}

template <class T, bool deviation, int channels, bool masked>
void loop(const MeanArgs<T>& a) {
  constexpr bool floats = std::is_same_v<T, float>;
  using Sum = std::conditional_t<floats, double, int32_t>;
  using Squares = std::conditional_t<floats, double, int64_t>;
  Sum sum = 0;
  Squares squares = 0;
  int32_t count = masked ? 0 : a.roi.width * a.roi.height;
  for (int y = 0; y < a.roi.height; ++y) {
    const T* src = row(a.src, a.srcStep, y) + a.coi - 1;
    const uint8_t* mask = row(a.mask, a.maskStep, y);
    std::conditional_t<floats, double, int32_t> row_squares = 0;
    for (int x = 0; x < a.roi.width; ++x) {
      const bool selected = !masked || mask[x] != 0;
      const Sum value = kept(src[x * channels], selected);
      sum += value;
      if (deviation) row_squares += value * value;
      if (masked) count += selected;
    }
    squares += row_squares;
  }
  if (deviation) {
    const double share = count == 0 ? 0.0 : 1.0 / count;
    *a.mean = static_cast<double>(sum) * share;
    *a.deviation = std::sqrt(static_cast<double>(squares) * share - *a.mean * *a.mean);
  } else {
    *a.mean = count == 0 ? 0.0 : static_cast<double>(sum) / count;
  }
}

}  // namespace

template <class T>
MeanLoop<T> plain_mean(bool deviation, int channels, bool masked) {
  if (!deviation) return channels == 1 ? loop<T, false, 1, true> : loop<T, false, 3, true>;
  if (channels == 1) return masked ? loop<T, true, 1, true> : loop<T, true, 1, false>;
  return masked ? loop<T, true, 3, true> : loop<T, true, 3, false>;
}
template MeanLoop<uint8_t> plain_mean<uint8_t>(bool, int, bool);
template MeanLoop<int8_t> plain_mean<int8_t>(bool, int, bool);
template MeanLoop<float> plain_mean<float>(bool, int, bool);

}  // namespace nuqi::bench::PLAIN_COMPILER

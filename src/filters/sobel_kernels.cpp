// Separable filters of 3, 5 or 7 columns and rows: first down the columns, then along the rows.
#include "core/simd/arithmetic.h"
#include "core/simd/pairs.h"
#include "filters/band.h"
#include "filters/sobel.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class V>
using SobelBand = Band<V, 4>;

template <int N>
NUQI_INLINE Vec<int16_t, N> plus(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  return add_saturated(a, b);
}
template <int N>
NUQI_INLINE Vec<float, N> plus(const Vec<float, N>& a, const Vec<float, N>& b) {
  return a + b;
}

// The neighbours at distance k: at(k) + at(-k), or at(k) - at(-k).
template <bool odd, class At>
NUQI_INLINE auto pair(const At& at, int k) {
  if constexpr (odd)
    return at(k) - at(-k);
  else
    return at(k) + at(-k);
}

// The sum of at(-half) ... at(half) times their weights, from the outside inwards. Even kernels begin
// with 1, odd ones have 0 in the middle.
template <int half, bool odd, class At, class V>
NUQI_INLINE V fold(const At& at, const V (&weights)[4]) {
  V sum = pair<odd>(at, half);
  if constexpr (odd) sum = sum * weights[half];
  if constexpr (half > 2) sum = plus(sum, pair<odd>(at, 2) * weights[2]);
  if constexpr (half > 1) sum = plus(sum, pair<odd>(at, 1) * weights[1]);
  if constexpr (!odd) sum = plus(sum, at(0) * weights[0]);
  return sum;
}

// The two passes are not inlined: 18 and 12 of them make the 36 filters.
template <int half, bool odd, class T, class V>
NUQI_NOINLINE void down(const T* const* rows, const V (&y)[4], SobelBand<V>& band,
                        const Columns& columns) {
  constexpr int N = kBlock<V>, kAtOnce = SobelBand<V>::kAtOnce, kRows = kAtOnce + 2 * half;
  const Vec<V, N> weights[4] = {broadcast<V, N>(y[0]), broadcast<V, N>(y[1]), broadcast<V, N>(y[2]),
                                broadcast<V, N>(y[3])};
  for (int first = 0; first < band.rows; first += kAtOnce) {
    const auto from = rows_at<kRows>(rows + first, columns.left);
    V* const to = band.row_at(first);
    for_whole_blocks<N>(columns.from, columns.to, [&](int64_t x) NUQI_FORCED {
      Vec<V, N> row[kRows];
      for_each<kRows>([&](int i) NUQI_FORCED { row[i] = convert<V>(load<N>(from.row[i] + x)); });
      for_each<kAtOnce>([&](int i) NUQI_FORCED {
        const auto at = [&](int k) NUQI_FORCED { return row[i + half + k]; };
        store(to + band.offset(i) + x, fold<half, odd>(at, weights));
      });
    });
  }
}

template <int half, bool odd, class V>
NUQI_NOINLINE void along(SobelBand<V>& band, const V (&x)[4], const Image<V>& dst, int32_t width) {
  constexpr int N = kBlock<V>;
  const Vec<V, N> weights[4] = {broadcast<V, N>(x[0]), broadcast<V, N>(x[1]), broadcast<V, N>(x[2]),
                                broadcast<V, N>(x[3])};
  const V x0 = x[0], x1 = x[1], x2 = x[2], x3 = x[3];  // or else read again after every store
  band.for_rows(0, band.rows, [&](int y, const V* from) NUQI_FORCED {
    V* to = row_of(dst, y);
    for_whole_blocks<N>(0, width, [&](int64_t column) NUQI_FORCED {
      const auto at = [&](int k) NUQI_FORCED { return load<N>(from + column + k); };
      if constexpr (half == 3 && !kIsFloat<V>) {
        // Only the pairs fit 16 bits.
        auto sum = add_pairs({}, pair<odd>(at, 3), pair<odd>(at, 2), x3, x2);
        sum = add_pairs(sum, pair<odd>(at, 1), at(0), x1, x0);
        store(to + column, pack_pairs(sum));
      } else {
        store(to + column, fold<half, odd>(at, weights));
      }
    });
  });
}

// One walk for all filters of a type: inlined into each of the 36 it would be two thirds of the code.
template <class T, class V>
NUQI_NOINLINE void walk(const WindowJob<T, V>& job, const SobelWeights<V>& weights, int half,
                        decltype(down<1, true, T, V>)* down_rows,
                        decltype(along<1, true, V>)* along_rows) {
  for_bands<SobelBand<V>>(
      job, half, SobelBand<V>::kRight,
      [&](SobelBand<V>& band, const T* const* rows, const Columns& columns)
          NUQI_FORCED { down_rows(rows, weights.y, band, columns); },
      [&](SobelBand<V>& band, const Image<V>& dst, const Columns& columns)
          NUQI_FORCED { along_rows(band, weights.x, dst, columns.width); });
}

template <int half, bool x_odd, bool y_odd, class T, class V>
void sobel(const WindowJob<T, V>& job, const SobelWeights<V>& weights) {
  walk<T, V>(job, weights, half, down<half, y_odd, T, V>, along<half, x_odd, V>);
}

template <class T, class V = FilterResult<T>>
constexpr SobelKernelsOf<T> kKernels = {{
    {{sobel<1, false, false, T, V>, sobel<1, false, true, T, V>},
     {sobel<1, true, false, T, V>, sobel<1, true, true, T, V>}},
    {{sobel<2, false, false, T, V>, sobel<2, false, true, T, V>},
     {sobel<2, true, false, T, V>, sobel<2, true, true, T, V>}},
    {{sobel<3, false, false, T, V>, sobel<3, false, true, T, V>},
     {sobel<3, true, false, T, V>, sobel<3, true, true, T, V>}},
}};

}  // namespace

const SobelKernels sobel_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

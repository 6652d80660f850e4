// The Laplace filters of 3, 5 or 7 columns and rows.
//
// Both terms of the sum contain the smoothing by [1 1], size - 3 times along x and as often along y.
// What remains is the same for all sizes: 2 * (the four diagonal neighbours - 4 * the pixel itself).
#include "core/simd/pairs.h"
#include "filters/band.h"
#include "filters/laplace.h"

namespace nuqi::NUQI_ISA {
namespace {

// With m the source smoothed down its columns: m above + m below, 4 * m, and where that was, of these
// two the bracket above.
enum Plane { kAboveAndBelow, kFourfold, kBrackets = kFourfold };
template <class V>
using LaplaceBand = Band<V, kIsFloat<V> ? 4 : 8, 2>;

// Passes are not inlined: signed and unsigned bytes share the second one, all sizes the walk.
template <int half, class T, class V>
NUQI_NOINLINE void down(const T* const* rows, LaplaceBand<V>& band, const Columns& columns) {
  constexpr int N = kBlock<V>, kAtOnce = LaplaceBand<V>::kAtOnce, kRows = kAtOnce + 2 * half;
  for (int first = 0; first < band.rows; first += kAtOnce) {
    const auto from = rows_at<kRows>(rows + first, columns.left);
    V* const to = band.row_at(first);
    for_whole_blocks<N>(columns.from, columns.to, [&](int64_t x) NUQI_FORCED {
      Vec<V, N> m[kRows];
      for_each<kRows>([&](int i) NUQI_FORCED { m[i] = convert<V>(load<N>(from.row[i] + x)); });
      if constexpr (half > 1) {
        for_each<2 * half - 2>([&](int) NUQI_FORCED {
          for_each<kRows - 1>([&](int i) NUQI_FORCED { m[i] = m[i] + m[i + 1]; });
        });
      }
      for_each<kAtOnce>([&](int i) NUQI_FORCED {
        store(to + band.offset(i, kAboveAndBelow) + x, m[i] + m[i + 2]);
        store(to + band.offset(i, kFourfold) + x, m[i + 1] * broadcast<V, N>(4));
      });
    });
  }
}

template <int N, class V>
NUQI_INLINE auto bracket(const V* diagonal, const V* middle) {
  return load<N>(diagonal - 1) + load<N>(diagonal + 1) - load<N>(middle);
}

// The brackets from column -2 to width + 2, and some beyond; aligned where the image is.
template <class V>
NUQI_INLINE void store_brackets(LaplaceBand<V>& band, int first, int end, int32_t width) {
  band.for_rows(first, end, [&](int, V* diagonal) NUQI_FORCED {
    V* middle = diagonal + band.offset(0, kFourfold);
    store(middle - 8, bracket<8>(diagonal - 8, middle - 8));
    for (int64_t x = 0; x < width + 2; x += kBlock<V>)
      store(middle + x, bracket<kBlock<V>>(diagonal + x, middle + x));
  });
}

template <int half, class V>
NUQI_NOINLINE void along(LaplaceBand<V>& band, const Image<V>& dst, int32_t width) {
  constexpr int N = kBlock<V>;
  // The sums' loads lie between the stores of the brackets, which ends store forwarding: hence all rows'
  // brackets first, as long as they stay in L1.
  const bool long_rows = width > 1024;
  if (half > 1 && !long_rows) store_brackets(band, 0, band.rows, width);
  band.for_rows(0, band.rows, [&](int y, const V* diagonal) NUQI_FORCED {
    if (half > 1 && long_rows) store_brackets(band, y, y + 1, width);
    const V* brackets = diagonal + band.offset(0, kBrackets);
    V* to = row_of(dst, y);
    for_whole_blocks<N>(0, width, [&](int64_t x) NUQI_FORCED {
      const auto z = [&](int k) NUQI_FORCED { return load<N>(brackets + x + k); };
      if constexpr (half == 1) {
        const auto sum = bracket<N>(diagonal + x, brackets + x);
        store(to + x, sum + sum);
      } else if constexpr (half == 2) {
        const auto sum = (z(-1) + z(1)) + (z(0) + z(0));
        store(to + x, sum + sum);
      } else if constexpr (!kIsFloat<V>) {
        auto sum = add_neighbours<N>({}, brackets + x - 2, 2, 8);
        sum = add_neighbours(sum, brackets + x, 12, 8);
        sum = add_neighbours(sum, brackets + x + 2, 2, 0);
        store(to + x, pack_neighbours(sum));
      } else {
        const auto sum =
            (z(-2) + z(2)) + (z(-1) + z(1)) * broadcast<V, N>(4) + z(0) * broadcast<V, N>(6);
        store(to + x, sum + sum);
      }
    });
  });
}

template <class T, class V>
NUQI_NOINLINE void walk(const WindowJob<T, V>& job, int half, decltype(down<1, T, V>)* down_rows,
                        decltype(along<1, V>)* along_rows) {
  using Band = LaplaceBand<V>;
  for_bands<Band>(
      job, half, half == 1 ? 8 : Band::kRight,
      [&](Band& band, const T* const* rows, const Columns& columns)
          NUQI_FORCED { down_rows(rows, band, columns); },
      [&](Band& band, const Image<V>& dst, const Columns& columns)
          NUQI_FORCED { along_rows(band, dst, columns.width); });
}

template <int half, class T, class V>
void laplace(const WindowJob<T, V>& job) {
  walk<T, V>(job, half, down<half, T, V>, along<half, V>);
}

template <class T>
constexpr LaplaceKernelsOf<T> kKernels = {{
    laplace<1, T, FilterResult<T>>,
    laplace<2, T, FilterResult<T>>,
    laplace<3, T, FilterResult<T>>,
}};

}  // namespace

const LaplaceKernels laplace_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

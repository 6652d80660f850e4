// The Laplace filters of 3, 5 or 7 columns and rows.
//
// Both terms of the sum contain the smoothing by [1 1], size - 3 times along x and as often along y.
// What remains is the same for all sizes: 2 * (the four diagonal neighbours - 4 * the pixel itself).
#include "core/simd/pairs.h"
#include "filters/laplace.h"
#include "filters/tile.h"

namespace nuqi::NUQI_ISA {
namespace {

// With m the source smoothed down its columns: m above + m below, 4 * m, and of these two the
// bracket above.
enum Plane { kAboveAndBelow, kFourfold };
template <class V>
struct LaplaceTile : Tile<V, sizeof(V) == 2 ? 8 : 4, 2> {
  alignas(64) V brackets[LaplaceTile::kRowStep];  // of one row
};

template <int half, class T, class V>
NUQI_INLINE void down(const T* const* rows, int64_t left, LaplaceTile<V>& tile, int32_t from,
                      int32_t to) {
  constexpr int N = kLanesOf<V>, kRows = LaplaceTile<V>::kRows + 2 * half;
  for_blocks_overlapping<N>(from, to, [&](int64_t x, auto part) NUQI_FORCED {
    Vec<V, N> m[kRows];
    for_each<kRows>([&](int i)
                        NUQI_FORCED { m[i] = convert<V>(load<N>(rows[i] + left + x, part)); });
    if constexpr (half > 1) {
      for_each<2 * half - 2>([&](int) NUQI_FORCED {
        for_each<kRows - 1>([&](int i) NUQI_FORCED { m[i] = m[i] + m[i + 1]; });
      });
    }
    for_each<LaplaceTile<V>::kRows>([&](int i) NUQI_FORCED {
      const int64_t at = i * tile.kRowStep + x;
      store(tile.at(at, kAboveAndBelow), m[i] + m[i + 2]);
      store(tile.at(at, kFourfold), m[i + 1] * broadcast<V, N>(4));
    });
  });
}

template <int half, class V>
NUQI_INLINE void along(LaplaceTile<V>& tile, int row, V* to, int32_t width) {
  constexpr int N = kLanesOf<V>;
  const V* diagonal = tile.at(row * tile.kRowStep, kAboveAndBelow);
  const V* middle = tile.at(row * tile.kRowStep, kFourfold);
  V* brackets = tile.brackets + tile.kMargin;
  const auto bracket = [&](int64_t x) NUQI_FORCED {
    return load<N>(diagonal + x - 1) + load<N>(diagonal + x + 1) - load<N>(middle + x);
  };
  if constexpr (half > 1)
    for (int64_t x = -N; x < width + half - 1; x += N) store(brackets + x, bracket(x));

  for_blocks_overlapping<N>(0, width, [&](int64_t x, auto part) NUQI_FORCED {
    const auto z = [&](int k) NUQI_FORCED { return load<N>(brackets + x + k); };
    if constexpr (half == 1) {
      const auto sum = bracket(x);
      store(to + x, sum + sum, part);
    } else if constexpr (half == 2) {
      const auto sum = (z(-1) + z(1)) + (z(0) + z(0));
      store(to + x, sum + sum, part);
    } else if constexpr (sizeof(V) == 2) {
      auto sum = add_neighbours<N>({}, brackets + x - 2, 2, 8);
      sum = add_neighbours(sum, brackets + x, 12, 8);
      sum = add_neighbours(sum, brackets + x + 2, 2, 0);
      store(to + x, pack_neighbours(sum), part);
    } else {
      const auto sum =
          (z(-2) + z(2)) + (z(-1) + z(1)) * broadcast<V, N>(4) + z(0) * broadcast<V, N>(6);
      store(to + x, sum + sum, part);
    }
  });
}

template <int half, class T, class V>
void laplace(const WindowJob<T, V>& job) {
  for_tiles<LaplaceTile<V>, half>(
      job.roi,
      [&](LaplaceTile<V>& tile, int32_t y, int32_t x, int32_t from, int32_t to)
          NUQI_FORCED { down<half>(job.rows + y, x, tile, from, to); },
      [&](LaplaceTile<V>& tile, int row, int32_t y, int32_t x, int32_t width)
          NUQI_FORCED { along<half>(tile, row, row_of(job.dst, y) + x, width); });
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

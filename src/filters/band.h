// The intermediate buffer of a separable filter: a band of rows, filtered down the columns and not yet
// along the rows, small enough to stay in L1.
#pragma once

#include "core/simd/memory.h"
#include "filters/window.h"

namespace nuqi::NUQI_ISA {
namespace {

// A block: lanes that fill a register with values of V, and 32 bytes at least, so that 16-bit values
// come of a register of bytes. Passes compute whole blocks only. Sixteen floats on SSE2 spill registers.
template <class V>
constexpr int kBlock = (kRegBytes > 32 ? kRegBytes : 32) / int{sizeof(V)};

// The first pass computes kRowsAtOnce rows together. Narrow images have more of them in the band, up to
// kBytes, so that the second pass finds them in the cache and not in the store buffer: its loads straddle
// the first pass's stores, which ends store forwarding.
template <class V, int kRowsAtOnce, int kPlanes = 1>
struct Band {
  static constexpr int kAtOnce = kRowsAtOnce;
  static constexpr int kBytes = 16384;
  // 68 KB of stack for 16-bit values, half for floats, which gain nothing from more.
  static constexpr int kMostRows = 32 / int{sizeof(V)} / kPlanes;
  // Narrower bands make the prefetchers find the source rows again too often: 1024 columns of 16 bits
  // took up to 1.15 times as long at 1920 columns.
  static constexpr int kWidth = 4096 / int{sizeof(V)};
  static constexpr int kMostColumns = kWidth + kBlock<V>;
  // Columns beyond the edges that extend() may fill.
  static constexpr int kLeft = kPlanes == 1 ? 8 : 16, kRight = kPlanes == 1 ? 8 : kBlock<V> + 8;
  static constexpr int kLine = 64 / int{sizeof(V)};
  // From row to row, for narrow images too: a constant, or each store of the first pass needs an address
  // of its own, which took up to 1.4 times as long. Sixteen rows begin in sixteen sets of the cache.
  static constexpr int64_t kStep = kWidth + 4 * kLine;
  static_assert(kLeft + kMostColumns + kRight <= kStep && kAtOnce <= kMostRows);

  int32_t rows;
  alignas(64) V values[2 * kLine + kMostRows * kPlanes * kStep];

  static constexpr int32_t rows_for(int32_t width) {
    constexpr int32_t kGroup = kPlanes * kAtOnce * int32_t{sizeof(V)};  // bytes of a column
    const int32_t fits = kBytes / (kGroup * width) * kAtOnce;
    return fits < kAtOnce ? kAtOnce : fits < kMostRows ? fits : kMostRows;
  }
  // From row 0 to row `row`.
  static constexpr int64_t offset(int row, int plane = 0) {
    return (int64_t{row} * kPlanes + plane) * kStep;
  }
  NUQI_INLINE V* row_at(int row) { return values + 2 * kLine + offset(row); }

  // body(y, row) for some rows, of the first plane
  template <class Body>
  NUQI_INLINE void for_rows(int first, int end, const Body& body) {
    V* row = row_at(first);
    for (int y = first; y < end; ++y, row += offset(1)) body(y, row);
  }

  // Repeats the first of the columns from `from` to `to` to the left, and the last one `beyond` times, a
  // multiple of 8, to the right: as far as the second pass may read, so that no garbage raises
  // floating-point exceptions.
  NUQI_INLINE void extend(int32_t from, int32_t to, int beyond) {
    for_rows(0, rows, [&](int, V* row) NUQI_FORCED {
      for (int plane = 0; plane < kPlanes; ++plane) {
        V *first = row + offset(0, plane) + from, *end = row + offset(0, plane) + to;
        store(first - kLeft, broadcast<V, kLeft>(first[0]));
        const auto right = broadcast<V, 8>(end[-1]);
        for (int i = 0; i < beyond; i += 8) store(end + i, right);
      }
    });
  }
};

// Columns count from the first one that is written; the second pass needs `half` more on either side.
struct Columns {
  int64_t left;      // the image's column 0
  int32_t from, to;  // what the first pass computes
  int32_t width;     // what the second pass writes
};

// Rows from column `left` on: copies, which no store can change.
template <int count, class T>
struct RowsAt {
  const T* row[count];
};
template <int count, class T>
NUQI_INLINE RowsAt<count, T> rows_at(const T* const* rows, int64_t left) {
  RowsAt<count, T> result;
  for_each<count>([&](int i) NUQI_FORCED { result.row[i] = rows[i] + left; });
  return result;
}

// Rows shorter than a block, copied to some of its length, the last pixel as often as that takes; or the
// image itself.
template <class T, class V>
struct Blocks {
  static constexpr int N = kBlock<V>;

  WindowJob<T, V> job;
  alignas(64) T from[kMostSources][2 * N];
  alignas(64) V to[kMostRows][N];
  const T* rows[kMostSources];

  NUQI_INLINE Blocks(const WindowJob<T, V>& all, int half) : job(all) {
    const auto [width, height] = all.roi;
    if (width >= N) return;
    for (int i = 0; i < height + 2 * half + kMostRowsAtOnce - 1; ++i) {
      rows[i] = from[i];
      store(from[i], load<N>(all.rows[i], First{width}));
      store(from[i] + width, broadcast<T, N>(load_one(all.rows[i] + width - 1)));
    }
    job = {.rows = rows, .dst = {to[0], sizeof to[0]}, .roi = {N, height}};
  }
  // Copies the results back.
  NUQI_INLINE void finish(const WindowJob<T, V>& all) const {
    if (all.roi.width >= N) return;
    for (int y = 0; y < all.roi.height; ++y)
      store(row_of(all.dst, y), load<N>(to[y]), First{all.roi.width});
  }
};

// Walks the image band by band.
//   down(band, rows, columns)      fills band.rows rows from the source rows
//   along(band, dst, columns)      writes them
template <class Band, class T, class V, class Down, class Along>
NUQI_INLINE void for_bands(const WindowJob<T, V>& job, int half, int beyond, const Down& down,
                           const Along& along) {
  static_assert(Band::kAtOnce <= kMostRowsAtOnce);
  const Blocks<T, V> blocks(job, half);
  const auto [width, height] = blocks.job.roi;
  Band band;
  for (int32_t x = 0, columns; x < width; x += columns) {
    const int32_t right = width - x;  // columns to the image's edge
    columns = right <= Band::kMostColumns ? right : Band::kWidth;
    const Columns range = {x, x > 0 ? -half : 0, right < columns + half ? right : columns + half,
                           columns};
    const int32_t most = Band::rows_for(columns);
    for (int32_t y = 0; y < height; y += most) {
      band.rows = height - y < most ? height - y : most;
      down(band, blocks.job.rows + y, range);
      band.extend(range.from, range.to, beyond);
      along(band, Image<V>{row_of(blocks.job.dst, y) + x, blocks.job.dst.step}, range);
    }
  }
  blocks.finish(job);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// A tile: what the first of two passes leaves to the second, small enough to stay in the fastest cache.
//
// A filter walks its output rows a few at a time and these in tiles: the first pass goes down the
// columns of the source into the tile, the second along the tile's rows into the destination. A Tile has
// kRows output rows, kWidth columns, and extend(from, to), which repeats its edge columns outwards.
#pragma once

#include "core/simd/memory.h"
#include "filters/window.h"

namespace nuqi::NUQI_ISA {
namespace {

// Columns of a tile of V. Narrower ones make the prefetchers find the rows again too often, wider ones
// leave the first cache.
template <class V>
constexpr int32_t kTileWidth = 4096 / sizeof(V);

// Columns count from the tile's first: the second pass writes those from 0 to width, and needs `half`
// more on either side.
//   down(tile, y, x, from, to)         fills columns `from` to `to` for the output rows from y on,
//                                      x being the image's column 0
//   along(tile, row, y, x, width)      writes columns of output row y, from the tile's row
template <class Tile, int half, class Down, class Along>
NUQI_INLINE void for_tiles(RoiSize roi, const Down& down, const Along& along) {
  static_assert(Tile::kRows <= kMostRowsAtOnce);
  Tile tile;
  for (int32_t y = 0; y < roi.height; y += Tile::kRows) {
    const int rows = roi.height - y < Tile::kRows ? roi.height - y : Tile::kRows;
    for (int32_t x = 0; x < roi.width; x += Tile::kWidth) {
      const int32_t right = roi.width - x;  // columns to the image's edge
      const int32_t width = right < Tile::kWidth ? right : Tile::kWidth;
      const int32_t from = x > 0 ? -half : 0;
      const int32_t to = right < width + half ? right : width + half;
      down(tile, y, x, from, to);
      tile.extend(from, to);
      for (int row = 0; row < rows; ++row) along(tile, row, y + row, x, width);
    }
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

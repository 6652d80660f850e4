// Template matching of bytes. Lanes are placements: a register of pixels from column x on holds, in 32-bit
// lane j, the pixels that the placement at x + kDotGroup * j multiplies by a group of neighbours of the
// template. So kDotGroup loads, one pixel apart, serve a stretch of columns without a gap; and each load
// serves several rows of results, by as many rows of the template.
#pragma once

#include "core/simd/dots.h"
#include "match/patch_sums.h"
#include "match/score.h"

namespace nuqi::NUQI_ISA {
namespace {

// Rows that share the loads of their pixels: as many as registers hold the sums of.
constexpr int kShared = kRegBytes == 64 ? 6 : kRegBytes == 32 ? 5 : 4;
// A block of results is computed from cells that are laid out once; of a template larger than a piece, one
// piece after the other.
constexpr int kRows = 4 * kShared;
constexpr int kPiece = 64;
constexpr int kStep = kColumns + kPiece;  // cells of a row of pixels
constexpr int kPlacements = kRegBytes / 4 * kDotGroup;

// Rows of a piece of the template, filled up with zeros to whole groups, and of the pixels that it meets.
template <class T>
struct Cells {
  int width, height;
  int32_t first;  // what sums of products start from
  DotCell<T> tpl[kPiece * kPiece];
  DotCell<T> src[(kPiece + kRows - 1) * kStep];
};

// Rows from `row` on of the results' columns from `x` on.
struct Block {
  int64_t x, row;
  int columns, rows;
};
// The next ones from row `row` on, of `height`. A block starts earlier where it would lack rows to share.
NUQI_INLINE Block next_block(int64_t x, int columns, int64_t row, int64_t height) {
  if (height < kShared) return {x, row, columns, int(height)};
  const int64_t rest = height - row, shared = rest / kShared * kShared;
  if (shared == 0) return {x, height - kShared, columns, kShared};
  return {x, row, columns, shared < kRows ? int(shared) : kRows};
}
struct Products {
  double of[kRows][kColumns];
};

// ---- Laying out cells

// Takes the piece of the template from its pixel (u, v) on.
template <class T>
void take_piece(const MatchJob<T>& job, int64_t u, int64_t v, Cells<T>& cells) {
  const int64_t width = job.tpl_roi.width - u, height = job.tpl_roi.height - v;
  cells.width = width < kPiece ? int(width) : kPiece;
  cells.height = height < kPiece ? int(height) : kPiece;
  uint32_t sum = 0;
  for (int y = 0; y < cells.height; ++y) {
    const T* const row = row_of(job.tpl, v + y) + u;
    DotCell<T>* const to = cells.tpl + y * kPiece;
    for (int x = 0; x < cells.width; ++x) sum += (uint32_t)(to[x] = row[x]);
    for (int x = cells.width; x % kDotGroup != 0; ++x) to[x] = 0;
  }
  cells.first = (int32_t)(sum * (uint32_t)kDotOffset<T>);
}

// Takes the pixels from (x, y) on that meet the piece in a block. Those behind them, to fill up registers,
// meet no weight but 0, or give sums that are not used.
template <class T>
void take_pixels(const MatchJob<T>& job, int64_t x, int64_t y, const Block& block,
                 Cells<T>& cells) {
  const int width = block.columns + cells.width - 1;
  for (int i = 0; i < block.rows + cells.height - 1; ++i) {
    const T* const from = row_of(job.src, y + i) + x;
    DotCell<T>* const to = cells.src + i * kStep;
    for_blocks(width, [&](int64_t at, auto part)
                          NUQI_FORCED { store(to + at, dot_cells(load(from + at, part))); });
  }
}

// ---- Products

// The sums of R rows and kPlacements columns; of the pixels, and of the sums, the first is given. A lane is
// the sum modulo 2^32.
template <int R, class T>
NUQI_NOINLINE void multiply(const Cells<T>& cells, const DotCell<T>* src, double* to, bool add) {
  constexpr int kLanes = kRegBytes / 4, kDoubles = kPlacements < 16 ? kPlacements : 16;
  Reg<int32_t> sums[R][kDotGroup];
  for_each<R>([&](int k) NUQI_FORCED {
    for_each<kDotGroup>([&](int p)
                            NUQI_FORCED { sums[k][p] = broadcast<int32_t, kLanes>(cells.first); });
  });
  const int width = cells.width, height = cells.height;
  for (int i = 0; i < height + R - 1; ++i) {
    const DotCell<T>*const row = src + i * kStep, *const tpl = cells.tpl + i * kPiece;
    const auto add_row = [&](const auto& meets) NUQI_FORCED {
      for (int c = 0; c < width; c += kDotGroup) {
        Reg<DotCell<T>> pixels[kDotGroup];
        for_each<kDotGroup>(
            [&](int p) NUQI_FORCED { pixels[p] = load<Reg<DotCell<T>>::kLanes>(row + c + p); });
        for_each<R>([&](int k) NUQI_FORCED {
          if (!meets(k)) return;
          const auto weights = broadcast_group(tpl + c - k * kPiece);
          for_each<kDotGroup>([&](int p) NUQI_FORCED {
            sums[k][p] = add_group_products<T>(sums[k][p], pixels[p], weights);
          });
        });
      }
    };
    if (i >= R - 1 && i < height)
      add_row([](int) NUQI_FORCED { return true; });
    else
      add_row([&](int k) NUQI_FORCED { return i >= k && i - k < height; });
  }
  using Sum = typename IfElse<kIsSigned<T>, int32_t, uint32_t>::Type;
  for (int k = 0; k < R; ++k) {
    Sum in_turns[kPlacements];
    store_in_turns((int32_t*)in_turns, sums[k]);
    for (int j = 0; j < kPlacements; j += kDoubles) {
      double* const at = to + k * kColumns + j;
      auto sum = to_doubles(load<kDoubles>(in_turns + j));
      if (add) sum = sum + load<kDoubles>(at);
      store(at, sum);
    }
  }
}

template <int R, class T>
void multiply_rows(const Cells<T>& cells, const Block& block, Products& products, bool add) {
  for (int k = 0; k < block.rows; k += R)
    for (int j = 0; j < block.columns; j += kPlacements)
      multiply<R>(cells, cells.src + k * kStep + j, products.of[k] + j, add);
}

// The products' sums of a block.
template <class T>
NUQI_NOINLINE void multiply_block(const MatchJob<T>& job, const Block& block, Cells<T>& cells,
                                  Products& products) {
  for (int64_t v = 0; v < job.tpl_roi.height; v += kPiece)
    for (int64_t u = 0; u < job.tpl_roi.width; u += kPiece) {
      take_piece(job, u, v, cells);
      take_pixels(job, block.x + u, block.row + v, block, cells);
      const bool add = u != 0 || v != 0;
      if (block.rows % kShared == 0)
        multiply_rows<kShared>(cells, block, products, add);
      else
        multiply_rows<1>(cells, block, products, add);
    }
}

// ---- The kernel

template <Measure m, class T>
void match(const MatchJob<T>& job) {
  constexpr bool differences = m == Measure::sq_diff || m == Measure::sq_diff_normed;
  using Sums = PatchSumsIf<needs_sums(m), Of::sums, T>;
  using Energies = PatchSumsIf<needs_energies(m) || differences, Of::energies, T>;
  const Totals tpl = totals_of(job.tpl, job.tpl_roi);
  const auto terms = template_terms<m, false>(job.tpl_roi, (int32_t)tpl.sum, (double)tpl.energy);
  const auto tpl_energy = broadcast((double)tpl.energy), two = broadcast(2.0);
  const int64_t width = job.dst_roi.width, height = job.dst_roi.height;
  const int columns = width < kColumns ? int(width) : kColumns;
  Cells<T> cells;
  Products products;
  for (int64_t start = 0; start < width; start += kColumns) {
    const int64_t x = start + columns <= width ? start : width - columns;
    Sums sums(job, x, columns);
    Energies energies(job, x, columns);
    for (int64_t y = 0; y < height;) {
      const Block block = next_block(x, columns, y, height);
      multiply_block(job, block, cells, products);
      for (; y < block.row + block.rows; ++y) {
        sums.at_row(y);
        energies.at_row(y);
        for_blocks(columns, [&](int64_t j, auto part) NUQI_FORCED {
          const auto energy = energies.at(j);
          auto raw = load(products.of[y - block.row] + j);
          if constexpr (differences) raw = (energy + tpl_energy) - two * raw;
          const auto result = score<m, false>(raw, sums.at(j), energy, terms);
          store(row_of(job.dst, y) + x + j, result, part);
        });
      }
    }
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

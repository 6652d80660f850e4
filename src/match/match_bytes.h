// Template matching of bytes. Lanes are placements: a register of pixels from column x on holds, in 32-bit
// lane j, the pixels that the placement at x + kDotGroup * j multiplies by a group of neighbours of the
// template. So kDotGroup loads, one pixel apart, serve a stretch of columns without a gap; and each load
// serves several rows of results, by as many rows of the template.
#pragma once

#include "core/simd/dots.h"
#include "match/match_transformed.h"

namespace nuqi::NUQI_ISA {
namespace {

// Rows that share the loads of their pixels: as many as registers hold the sums of.
constexpr int kShared = kRegBytes == 64 ? 6 : kRegBytes == 32 ? 5 : 4;
// A block of results is computed from cells that are laid out once; of a template larger than a piece, one
// piece after the other.
constexpr int kRows = 8 * kShared;
constexpr int kPiece = 64;
constexpr int kStep = kColumns + kPiece;  // cells of a row of pixels
constexpr int kPlacements = kRegBytes / 4 * kDotGroup;

// A piece of the template, its rows filled up with zeros to whole groups, and the pixels that it meets.
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
  int32_t of_piece[kRows][kColumns];  // modulo 2^32; where there is one piece alone, exact
  double of_all[kRows][kColumns];
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
    for (int x = 0; x < cells.width; ++x) {
      const int pixel = +row[x];
      to[x] = (DotCell<T>)pixel;
      sum += (uint32_t)pixel;
    }
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
    for_blocks<kDotBlock>(width, [&](int64_t at, auto part) NUQI_FORCED {
      store(to + at, dot_cells(load<kDotBlock>(from + at, part)));
    });
  }
}

// ---- Products

// The sums of R rows and kPlacements columns, of 32 bits, as To; of the pixels, and of the sums, the first is
// given. The template has R - 1 rows at least.
template <int R, class T, class To>
NUQI_NOINLINE void multiply(const Cells<T>& cells, const DotCell<T>* src, To* to, int64_t pitch) {
  constexpr int kLanes = kRegBytes / 4;
  Reg<int32_t> sums[R][kDotGroup];
  for_each<R>([&](int k) NUQI_FORCED {
    for_each<kDotGroup>([&](int p)
                            NUQI_FORCED { sums[k][p] = broadcast<int32_t, kLanes>(cells.first); });
  });
  // Row i of the pixels meets row i - k of the template for row k of the results, where there is one.
  const auto add_row = [&](int i, const auto& meets) NUQI_FORCED {
    const DotCell<T>* const row = src + i * kStep;
    for (int c = 0; c < cells.width; c += kDotGroup) {
      Reg<DotCell<T>> pixels[kDotGroup];
      for_each<kDotGroup>(
          [&](int p) NUQI_FORCED { pixels[p] = load<Reg<DotCell<T>>::kLanes>(row + c + p); });
      for_each<R>([&](int k) NUQI_FORCED {
        if (!meets(k)) return;
        const auto weights = broadcast_group(cells.tpl + (i - k) * kPiece + c);
        for_each<kDotGroup>([&](int p) NUQI_FORCED {
          sums[k][p] = add_group_products<T>(sums[k][p], pixels[p], weights);
        });
      });
    }
  };
  for_each<R - 1>([&](int i) NUQI_FORCED { add_row(i, [=](int k) { return k <= i; }); });
  for (int i = R - 1; i < cells.height; ++i) add_row(i, [](int) { return true; });
  for_each<R - 1>([&](int i)
                      NUQI_FORCED { add_row(cells.height + i, [=](int k) { return k > i; }); });
  for_each<R>([&](int k) NUQI_FORCED { store_in_turns(to + k * pitch, sums[k]); });
}

template <int R, class T, class To>
void multiply_rows(const Cells<T>& cells, const Block& block, To* to, int64_t pitch) {
  for (int k = 0; k < block.rows; k += R)
    for (int j = 0; j < block.columns; j += kPlacements)
      multiply<R>(cells, cells.src + k * kStep + j, to + k * pitch + j, pitch);
}

// The products' sums of a block with the piece in `cells`, which the template's pixel (u, v) starts.
template <class T, class To>
NUQI_NOINLINE void multiply_piece(const MatchJob<T>& job, const Block& block, int64_t u, int64_t v,
                                  Cells<T>& cells, To* to, int64_t pitch) {
  take_pixels(job, block.x + u, block.row + v, block, cells);
  if (block.rows % kShared == 0 && cells.height >= kShared - 1)
    multiply_rows<kShared>(cells, block, to, pitch);
  else if (block.rows % 2 == 0)
    multiply_rows<2>(cells, block, to, pitch);
  else
    multiply_rows<1>(cells, block, to, pitch);
}

// With all pieces, one after the other.
template <class T>
NUQI_NOINLINE void multiply_pieces(const MatchJob<T>& job, const Block& block, Cells<T>& cells,
                                   Products& products) {
  using Sum = typename IfElse<kIsSigned<T>, int32_t, uint32_t>::Type;
  for (int k = 0; k < block.rows; ++k)
    for (double& sum : products.of_all[k]) sum = 0;
  for (int64_t v = 0; v < job.tpl_roi.height; v += kPiece)
    for (int64_t u = 0; u < job.tpl_roi.width; u += kPiece) {
      take_piece(job, u, v, cells);
      multiply_piece(job, block, u, v, cells, products.of_piece[0], kColumns);
      for (int k = 0; k < block.rows; ++k)
        for (int j = 0; j < kColumns; j += 16) {
          double* const all = products.of_all[k] + j;
          store(all, load(all) + to_doubles(load((const Sum*)products.of_piece[k] + j)));
        }
    }
}

// For few columns, where most lanes would be idle, lanes are the pixels of a row, as they lie. So many fit 32
// bits with a sign.
constexpr int64_t kStretch = 32768;

template <class T>
double multiply_place(const MatchJob<T>& job, int64_t x, int64_t y) {
  constexpr int kChains = 4;  // hide the latency of dot products
  const int64_t width = job.tpl_roi.width, height = job.tpl_roi.height;
  const int64_t stretch = width < kStretch ? width : kStretch, rows = kStretch / stretch;
  double total = 0;
  for (int64_t u = 0; u < width; u += stretch)
    for (int64_t v = 0; v < height; v += rows) {
      Vec<int32_t, kDotBlock / kDotGroup> sums[kChains] = {};
      for (int64_t i = v; i < height && i < v + rows; ++i) {
        const T *const src = row_of(job.src, y + i) + x + u, *const tpl = row_of(job.tpl, i) + u;
        for_blocks_in_turns<kDotBlock, kChains>(
            width - u < stretch ? width - u : stretch,
            [&](int64_t c, auto part, int turn) NUQI_FORCED {
              sums[turn] =
                  add_group_products<T>(sums[turn], dot_cells(load<kDotBlock>(src + c, part)),
                                        weight_cells(load<kDotBlock>(tpl + c, part)));
            });
      }
      total += reduce_add((sums[0] + sums[1]) + (sums[2] + sums[3]));
    }
  return total;
}
template <class T>
NUQI_NOINLINE void multiply_narrow(const MatchJob<T>& job, const Block& block, const Totals& tpl,
                                   Products& products) {
  const double lacking = kDotOffset<T> * (double)tpl.sum;
  for (int k = 0; k < block.rows; ++k)
    for (int j = 0; j < block.columns; ++j)
      products.of_all[k][j] = multiply_place(job, block.x + j, block.row + k) + lacking;
}
// Whether that is faster, as measured: two loads for each dot product, which cross cache lines.
NUQI_INLINE bool is_narrow(int columns, int64_t tpl_width) {
  const int64_t blocks = (tpl_width + kDotBlock - 1) / kDotBlock;
  const int stretches = (columns + kPlacements - 1) / kPlacements;
  return 3 * columns * blocks < stretches * tpl_width;
}

// ---- The kernel

template <class T>
NUQI_NOINLINE void match_directly(const MatchJob<T>& job, const Scorer& scorer) {
  const int64_t width = job.dst_roi.width, height = job.dst_roi.height;
  const int columns = width < kColumns ? int(width) : kColumns;
  const bool narrow = is_narrow(columns, job.tpl_roi.width);
  const bool whole = !narrow && job.tpl_roi.width <= kPiece && job.tpl_roi.height <= kPiece;
  // Then registers of sums are stored as scores at once, which overlaps with the products that follow.
  const bool at_once = scorer.products_alone && whole && columns == kColumns;
  Cells<T> cells;
  Products products;
  if (whole) take_piece(job, 0, 0, cells);
  for (int64_t start = 0; start < width; start += kColumns) {
    const int64_t x = start + columns <= width ? start : width - columns;
    scorer.start(scorer.scores, x, columns);
    for (int64_t y = 0; y < height;) {
      const Block block = next_block(x, columns, y, height);
      const int64_t first = y - block.row;
      const int rows = block.rows - int(first);
      if (at_once) {
        multiply_piece(job, block, 0, 0, cells, row_of(job.dst, block.row) + x, job.dst.step / 4);
      } else {
        if (narrow)
          multiply_narrow(job, block, scorer.tpl, products);
        else if (whole)
          multiply_piece(job, block, 0, 0, cells, products.of_piece[0], kColumns);
        else
          multiply_pieces(job, block, cells, products);
        const int32_t* const ints = products.of_piece[first];
        const double* const all = products.of_all[first];
        scorer.put(scorer.scores, y, rows,
                   {whole ? ints : nullptr, whole ? nullptr : all, kColumns});
      }
      y += rows;
    }
  }
}

template <Measure m, class T>
void match(const MatchJob<T>& job) {
  ByteScores<m, T> scores(job);
  const TransformPlan plan(job);
  if (plan.is_faster())
    match_by_transforms(job, plan, scores.scorer());
  else
    match_directly(job, scores.scorer());
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

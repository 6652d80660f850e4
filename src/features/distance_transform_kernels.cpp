// Distance transforms: a pass down the rows, a pass up, and the distances as floats.
//
// Along a row each pixel depends on the one before it. A row is therefore cut into as many segments as a
// register has lanes: vector i holds pixel i of every segment. The dependency chains of all segments
// then run side by side, without a shuffle, and one scan over the segments' ends tells what each of
// them hands on to those after it. The rows lie like this in the destination until no other row needs
// them. Nothing exceeds 2^31 - 2: neither distances nor weights exceed kDistanceFar.
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/shuffle.h"
#include "core/simd/transpose.h"
#include "features/distance_transform.h"

namespace nuqi::NUQI_ISA {
namespace {

using Ints = Reg<int32_t>;
constexpr int kLanes = Ints::kLanes;
constexpr auto kLaneIndices = typename UpTo<kLanes>::Type{};

NUQI_INLINE Ints all(int32_t value) { return broadcast<int32_t, kLanes>(value); }
NUQI_INLINE Ints far() { return all(kDistanceFar); }

// ---- How rows lie

// A piece of a row, from pixel x on: at least two whole vectors, and one of whose lanes only the first
// `rest` are pixels, which the first segments have more than the others.
struct Block {
  int64_t x, count;
  int rest;

  NUQI_INLINE int64_t pixels() const { return kLanes * count + rest; }
  // Where a segment starts.
  NUQI_INLINE int64_t start(int lane) const { return lane * count + (lane < rest ? lane : rest); }
};

// The blocks of a row. All but the last have kMostVectors, and no rest.
constexpr int kMostVectors = 128;
class Blocks {
 public:
  NUQI_INLINE explicit Blocks(int64_t width)
      : vectors_(width / kLanes),
        last_((vectors_ - 2) / kMostVectors),
        rest_(int(width % kLanes)) {}

  NUQI_INLINE int64_t last() const { return last_; }
  NUQI_INLINE Block operator[](int64_t i) const {
    const int64_t first = i * kMostVectors;
    if (i < last_) return {first * kLanes, kMostVectors, 0};
    return {first * kLanes, vectors_ - first, rest_};
  }

 private:
  int64_t vectors_, last_;
  int rest_;
};

// Moves every lane to the segment k places to the right, or to the left.
template <bool right, int k = 1>
NUQI_INLINE Ints moved(const Ints& a, const Ints& in) {
  if constexpr (right)
    return lanes_up<k>(a, in);
  else
    return lanes_down<k>(a, in);
}

// The lanes of a block's rest from a, the others from b.
NUQI_INLINE Ints rest_of(const Block& block, const Ints& a, const Ints& b) {
  return select(lane_numbers<int32_t>(kLaneIndices) < all(block.rest), a, b);
}

// ---- A row of which all distances are known so far

template <int reach>
class Line {
 public:
  // A null row is one of kDistanceFar.
  NUQI_INLINE Line(const int32_t* row, const Blocks& blocks, int64_t i) : count_(blocks[i].count) {
    if (row == nullptr) {
      from_ = kNone;
      step_ = 0;
      for (Ints& a : before_) a = far();
      for (Ints& a : behind_) a = far();
      return;
    }
    const Block block = blocks[i];
    from_ = row + block.x;
    step_ = kLanes;
    const auto at = [&](int64_t k) NUQI_FORCED { return load<kLanes>(from_ + kLanes * k); };
    const Ints tail =
        block.rest == 0 ? far() : load<kLanes>(from_ + kLanes * count_, First{block.rest});
    for_each<reach>([&](int k) NUQI_FORCED {
      // The blocks next to this one have at least two vectors, and the left one has no rest.
      const int32_t left = i > 0 ? load_one(from_ - 1 - k * kLanes) : kDistanceFar;
      const int32_t right =
          i < blocks.last() ? load_one(from_ + kLanes * (count_ + k)) : kDistanceFar;
      Ints end = at(count_ - 1 - k);
      if (block.rest != 0) end = rest_of(block, k == 0 ? tail : at(count_ - k), end);
      before_[k] = moved<true>(end, all(left));
      behind_[k] = moved<false>(at(k), all(right));
    });
    if (block.rest != 0) {
      if constexpr (reach == 2) {
        behind_[2] = behind_[1];
        behind_[1] = rest_of(block, behind_[0], behind_[1]);
      } else {
        behind_[1] = behind_[0];
      }
      behind_[0] = rest_of(block, tail, behind_[0]);
    }
  }

  // The pixels at place i of every segment, or `reach` at most before or behind it.
  template <bool maybe_before, bool maybe_behind>
  NUQI_INLINE Ints at(int64_t i) const {
    if (maybe_before && i < 0) return before_[-1 - i];
    if (maybe_behind && i >= count_) return behind_[i - count_];
    return load<kLanes>(from_ + step_ * i);
  }

 private:
  alignas(64) static constexpr int32_t kNone[16] = {
      kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar,
      kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar,
      kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar};

  const int32_t* from_;
  int64_t step_, count_;
  Ints before_[reach], behind_[reach + 1];
};

// A place of a line with its neighbours up to `reach` away, going along the line.
template <int reach, bool right>
class Window {
 public:
  NUQI_INLINE Window(const Line<reach>& line, int64_t first) : line_(line) {
    for_each<2 * reach>([&](int k) NUQI_FORCED {
      const int64_t place = right ? first - reach + k : first + reach - k;
      at_[k + 1] = line_.template at<true, true>(place);
    });
  }
  // To place i, from the one before it.
  NUQI_INLINE void move_to(int64_t i) {
    for_each<2 * reach>([&](int k) NUQI_FORCED { at_[k] = at_[k + 1]; });
    at_[2 * reach] = line_.template at<!right, right>(right ? i + reach : i - reach);
  }
  // The place itself, and the nearer one of those k away on both sides.
  NUQI_INLINE const Ints& here() const { return at_[reach]; }
  template <int k>
  NUQI_INLINE Ints beside() const {
    return min(at_[reach - k], at_[reach + k]);
  }

 private:
  const Line<reach>& line_;
  Ints at_[2 * reach + 1];
};

// ---- Sweeps

// The steps' weights, in every lane.
struct Steps {
  Ints orthogonal, diagonal, knight;
};

// The weights of the ways through 1, 2, 4 ... segments, along which they hand on distances.
template <bool right>
struct Ways {
  static constexpr int kCount = kLanes == 4 ? 2 : kLanes == 8 ? 3 : 4;
  Ints of[kCount];

  NUQI_INLINE Ways(const Block& block, int32_t orthogonal) {
    const int64_t length = block.count * orthogonal;
    const Ints whole = all(length < kDistanceFar ? int32_t(length) : kDistanceFar);
    const Ints lengths = min(whole + rest_of(block, all(orthogonal), Ints{}), far());
    of[0] = moved<right>(lengths, far());
    for_each<kCount - 1>([&](int k)
                             NUQI_FORCED { of[k + 1] = min(of[k] + ahead(of[k], k), far()); });
  }
  // What every segment gets from all those before it, from what it gets from the last of them.
  NUQI_INLINE Ints spread(Ints carry) const {
    for_each<kCount>([&](int k) NUQI_FORCED { carry = min(carry, ahead(carry, k) + of[k]); });
    return carry;
  }

 private:
  NUQI_INLINE static Ints ahead(const Ints& a, int k) {
    return k == 0   ? moved<right, 1>(a, far())
           : k == 1 ? moved<right, 2>(a, far())
                    : k == 2
               ? moved < right,
           kLanes == 4 ? 1 : 4 > (a, far()) : moved < right, kLanes == 16 ? 8 : 1 > (a, far());
  }
};

// The rows of a sweep: the one that it is about, and the two before it in the pass, or null.
struct Rows {
  int32_t* here;
  const int32_t *near, *next;
};

// Along block i: each distance is the least of its present value and of those a step away, in the rows
// before this one and in the sweep's own.
template <bool is_5x5, bool right, class Present>
NUQI_INLINE void sweep(const Steps& steps, const Ways<right>& ways, const Rows& rows,
                       const Blocks& blocks, int64_t i, const Present& present) {
  constexpr int kReach = is_5x5 ? 2 : 1;
  const Block block = blocks[i];
  int32_t* const here = rows.here + block.x;
  const Line<kReach> near_line(rows.near, blocks, i);
  const Line<1> next_line(is_5x5 ? rows.next : nullptr, blocks, i);
  const int64_t first = right ? 0 : block.count - (block.rest == 0);
  Window<kReach, right> near(near_line, first);
  [[maybe_unused]] Window<1, right> next(next_line, first);

  const auto least = [&](int64_t k, auto part, const Ints& last) NUQI_FORCED {
    near.move_to(k);
    Ints d = min(present(k, part), near.template beside<1>() + steps.diagonal);
    if constexpr (is_5x5) {
      next.move_to(k);
      const Ints knights = min(near.template beside<2>(), next.template beside<1>());
      d = min(d, knights + steps.knight);
    }
    return min(d, min(near.here(), last) + steps.orthogonal);
  };
  const auto least_of_rest = [&](const Ints& last) NUQI_FORCED {
    const First part = {block.rest};
    const Ints d = least(block.count, part, last);
    store(here + kLanes * block.count, d, part);
    return d;
  };
  const auto each = [&](const auto& body) NUQI_FORCED {
    if constexpr (right)
      for (int64_t k = 0; k < block.count; ++k) body(k);
    else
      for (int64_t k = block.count - 1; k >= 0; --k) body(k);
  };

  // Within the segments. The lanes beyond a rest must not reach into any.
  Ints last = far();
  if (!right && block.rest != 0) last = rest_of(block, least_of_rest(last), far());
  each([&](int64_t k) NUQI_FORCED {
    last = least(k, Whole{}, last);
    store(here + kLanes * k, last);
  });
  if (right && block.rest != 0) last = rest_of(block, least_of_rest(last), last);

  // From segment to segment.
  const int32_t edge = right               ? (i > 0 ? load_one(here - 1) : kDistanceFar)
                       : i < blocks.last() ? load_one(here + kLanes * block.count)
                                           : kDistanceFar;
  Ints carry = ways.spread(moved<right>(last, all(edge)));
  const auto improve = [&](int64_t k, auto part) NUQI_FORCED {
    const Ints d = min(load<kLanes>(here + kLanes * k, part), carry + steps.orthogonal);
    store(here + kLanes * k, d, part);
    return d;
  };
  if (!right && block.rest != 0)
    carry = rest_of(block, improve(block.count, First{block.rest}), carry);
  each([&](int64_t k) NUQI_FORCED { carry = improve(k, Whole{}); });
  if (right && block.rest != 0) improve(block.count, First{block.rest});
}

// Bytes turned at a time.
constexpr int kColumns = 16;
constexpr int kMostFeatures = kLanes * (kMostVectors + 2 + kColumns);

// -1 for each pixel that is not zero and 0 for the others, in the order of a block's vectors. Writes
// whole blocks of kColumns.
NUQI_INLINE void find_features(const uint8_t* src, const Block& block, int8_t* features) {
  // Columns that end beyond the block come from a copy of its end.
  uint8_t copy[2 * kColumns] = {};
  const int64_t last = block.pixels() - kColumns;
  store(copy, load<kColumns>(src + last));

  const auto lanes = typename UpTo<kColumns>::Type{};
  for (int64_t x = 0; x < block.count + (block.rest != 0); x += kColumns) {
    Px<int8_t> rows[kLanes], turned[kLanes];
    for_each<kLanes>([&](int i) NUQI_FORCED {
      const int64_t at = block.start(i) + x;
      rows[i] = nonzero(load<kColumns>(at <= last ? src + at : copy + (at - last)));
    });
    for_each<Ways<true>::kCount>([&](int) NUQI_FORCED {
      for_each<kLanes / 2>([&](int i) NUQI_FORCED {
        turned[2 * i].r[0] = zip_low(rows[i].r[0], rows[i + kLanes / 2].r[0], lanes);
        turned[2 * i + 1].r[0] = zip_high(rows[i].r[0], rows[i + kLanes / 2].r[0], lanes);
      });
      for_each<kLanes>([&](int i) NUQI_FORCED { rows[i] = turned[i]; });
    });
    for_each<kLanes>([&](int i)
                         NUQI_FORCED { store(features + x * kLanes + i * kColumns, rows[i]); });
  }
}

template <bool is_5x5>
NUQI_NOINLINE void sweep_down(const Steps& steps, const Ways<true> (&ways)[2], const Rows& rows,
                              const Blocks& blocks, const uint8_t* src) {
  int8_t features[kMostFeatures];
  for (int64_t i = 0; i <= blocks.last(); ++i) {
    find_features(src + blocks[i].x, blocks[i], features);
    const auto present = [&](int64_t k, auto)
                             NUQI_FORCED { return load_widened(features + kLanes * k) & far(); };
    sweep<is_5x5, true>(steps, ways[i == blocks.last()], rows, blocks, i, present);
  }
}

template <bool is_5x5>
NUQI_NOINLINE void sweep_up(const Steps& steps, const Ways<false> (&ways)[2], const Rows& rows,
                            const Blocks& blocks) {
  for (int64_t i = blocks.last(); i >= 0; --i) {
    const int32_t* here = rows.here + blocks[i].x;
    const auto present = [&](int64_t k, auto part)
                             NUQI_FORCED { return load<kLanes>(here + kLanes * k, part); };
    sweep<is_5x5, false>(steps, ways[i == blocks.last()], rows, blocks, i, present);
  }
}

// ---- Output

constexpr float kUnit = 0x1p-18f;

// The pixels of a row in their order, as floats.
NUQI_NOINLINE void write(const Blocks& blocks, int32_t* row) {
  constexpr int n = kLanes < 8 ? kLanes : 8;  // larger squares take as long
  float pixels[kLanes * (kMostVectors + 2) + n];
  for (int64_t i = 0; i <= blocks.last(); ++i) {
    const Block block = blocks[i];
    int32_t* const here = row + block.x;
    // From the last columns to the first: what exceeds a segment is overwritten by the next one.
    for (int64_t x = (block.count - 1) / n * n; x >= 0; x -= n)
      for (int lane = 0; lane < kLanes; lane += n) {
        Vec<float, n> square[n];
        for_each<n>([&](int k) NUQI_FORCED {
          const int64_t column = x + k < block.count ? x + k : block.count - 1;
          square[k] =
              convert<float>(load<n>(here + column * kLanes + lane)) * broadcast<float, n>(kUnit);
        });
        transpose_square(square);
        for_each<n>([&](int k)
                        NUQI_FORCED { store(pixels + block.start(lane + k) + x, square[k]); });
      }
    for (int lane = 0; lane < block.rest; ++lane)
      pixels[block.start(lane) + block.count] =
          (float)load_one(here + kLanes * block.count + lane) * kUnit;
    __builtin_memcpy(here, pixels, block.pixels() * sizeof *pixels);
  }
}

template <bool is_5x5>
void transform_wide(const DistanceJob& job) {
  const Blocks blocks(job.roi.width);
  const Steps steps = {all(job.orthogonal), all(job.diagonal), all(job.knight)};
  const int32_t height = job.roi.height;
  const auto row = [&](int64_t y) NUQI_FORCED {
    return y < 0 || y >= height ? nullptr : (int32_t*)row_of(job.dst, y);
  };
  const Block first = blocks[0], last = blocks[blocks.last()];
  const Ways<true> down[2] = {{first, job.orthogonal}, {last, job.orthogonal}};
  const Ways<false> up[2] = {{first, job.orthogonal}, {last, job.orthogonal}};

  for (int64_t y = 0; y < height; ++y)
    sweep_down<is_5x5>(steps, down, {row(y), row(y - 1), row(y - 2)}, blocks, row_of(job.src, y));
  // Rows are written when no sweep needs them any more.
  constexpr int kReach = is_5x5 ? 2 : 1;
  for (int64_t y = height - 1; y >= 0; --y) {
    sweep_up<is_5x5>(steps, up, {row(y), row(y + 1), row(y + 2)}, blocks);
    if (y + kReach < height) write(blocks, row(y + kReach));
  }
  for (int64_t y = 0; y < kReach && y < height; ++y) write(blocks, row(y));
}

// ---- Rows too narrow for that, pixel by pixel

constexpr int kNarrow = 2 * kLanes > kColumns ? 2 * kLanes : kColumns;

// Three rows, with kDistanceFar on both sides.
struct NarrowRows {
  int32_t of[3][kNarrow + 4];

  NarrowRows() {
    for (auto& row : of)
      for (int32_t& d : row) d = kDistanceFar;
  }
  int32_t* operator[](int64_t y) { return of[y % 3] + 2; }
};

NUQI_INLINE int32_t least(int32_t a, int32_t b) { return a < b ? a : b; }

// A row from the two before it in the pass, `way` 1 for rightwards and -1 for leftwards.
template <bool is_5x5, int way>
NUQI_INLINE void sweep_narrow(const DistanceJob& job, int32_t* here, const int32_t* near,
                              const int32_t* next) {
  int32_t last = kDistanceFar;
  for (int32_t i = 0; i < job.roi.width; ++i) {
    const int32_t x = way > 0 ? i : job.roi.width - 1 - i;
    int32_t d = least(here[x], near[x] + job.orthogonal);
    d = least(d, least(near[x - 1], near[x + 1]) + job.diagonal);
    if constexpr (is_5x5) {
      const int32_t knights =
          least(least(near[x - 2], near[x + 2]), least(next[x - 1], next[x + 1]));
      d = least(d, knights + job.knight);
    }
    here[x] = last = least(d, last + job.orthogonal);
  }
}

template <bool is_5x5>
void transform_narrow(const DistanceJob& job) {
  const int32_t width = job.roi.width, height = job.roi.height;
  NarrowRows rows_down, rows_up;
  for (int64_t y = 0; y < height; ++y) {
    const uint8_t* src = row_of(job.src, y);
    int32_t* here = rows_down[y];
    for (int32_t x = 0; x < width; ++x) here[x] = src[x] == 0 ? 0 : kDistanceFar;
    sweep_narrow<is_5x5, 1>(job, here, rows_down[y + 2], rows_down[y + 1]);
    __builtin_memcpy((char*)row_of(job.dst, y), here, width * sizeof *here);
  }
  for (int64_t y = height - 1; y >= 0; --y) {
    int32_t* here = rows_up[y];
    __builtin_memcpy(here, (char*)row_of(job.dst, y), width * sizeof *here);
    sweep_narrow<is_5x5, -1>(job, here, rows_up[y + 1], rows_up[y + 2]);
    for (int32_t x = 0; x < width; ++x) store_one(row_of(job.dst, y) + x, (float)here[x] * kUnit);
  }
}

template <bool is_5x5>
void transform(const DistanceJob& job) {
  if (job.roi.width < kNarrow)
    transform_narrow<is_5x5>(job);
  else
    transform_wide<is_5x5>(job);
}

}  // namespace

const DistanceKernels distance_kernels = {{transform<false>, transform<true>}};

}  // namespace nuqi::NUQI_ISA

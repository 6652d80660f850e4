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
constexpr int kScanSteps = kLanes == 4 ? 2 : kLanes == 8 ? 3 : 4;  // kLanes is 2 to that power
constexpr auto kLaneIndices = typename UpTo<kLanes>::Type{};

NUQI_INLINE Ints all(int32_t value) { return broadcast<int32_t, kLanes>(value); }
NUQI_INLINE Ints far() { return all(kDistanceFar); }

// ---- How rows lie

// A piece of a row: at least two whole vectors, and one of whose lanes only the first `rest` are
// pixels, which the first segments have more than the others.
struct Block {
  int64_t count;
  int rest;
  int64_t starts[kLanes];  // of the segments

  NUQI_INLINE Block(int64_t vectors, int lanes) : count(vectors), rest(lanes) {
    for (int i = 0; i < kLanes; ++i) starts[i] = i * count + (i < rest ? i : rest);
  }
  NUQI_INLINE int64_t pixels() const { return kLanes * count + rest; }
};

// The blocks of a row. All but the last have kMostVectors, and no rest.
constexpr int kMostVectors = 128;
constexpr int kMostPixels = kLanes * (kMostVectors + 2);

struct Blocks {
  int64_t last;
  Block of[2];  // of the others, and the last

  NUQI_INLINE explicit Blocks(int64_t width)
      : last((width / kLanes - 2) / kMostVectors),
        of{{kMostVectors, 0}, {width / kLanes - last * kMostVectors, int(width % kLanes)}} {}

  NUQI_INLINE const Block& operator[](int64_t i) const { return of[i == last]; }
  // Its first pixel.
  NUQI_INLINE static int64_t x(int64_t i) { return i * kMostVectors * kLanes; }
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
    const Block& block = blocks[i];
    from_ = row + Blocks::x(i);
    step_ = kLanes;
    const auto at = [&](int64_t k) NUQI_FORCED { return load<kLanes>(from_ + kLanes * k); };
    const Ints tail =
        block.rest == 0 ? far() : load<kLanes>(from_ + kLanes * count_, First{block.rest});
    for_each<reach>([&](int k) NUQI_FORCED {
      // The blocks next to this one have at least two vectors, and the left one has no rest.
      const int32_t left = i > 0 ? load_one(from_ - 1 - k * kLanes) : kDistanceFar;
      const int32_t right =
          i < blocks.last ? load_one(from_ + kLanes * (count_ + k)) : kDistanceFar;
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
  Ints of[kScanSteps];

  NUQI_INLINE Ways(const Block& block, int32_t orthogonal) {
    const int64_t length = block.count * orthogonal;
    const Ints whole = all(length < kDistanceFar ? int32_t(length) : kDistanceFar);
    const Ints lengths = min(whole + rest_of(block, all(orthogonal), Ints{}), far());
    of[0] = moved<right>(lengths, far());
    for_each<kScanSteps - 1>([&](int k)
                                 NUQI_FORCED { of[k + 1] = min(of[k] + ahead(of[k], k), far()); });
  }
  // What every segment gets from all those before it, from what it gets from the last of them.
  NUQI_INLINE Ints spread(Ints carry) const {
    for_each<kScanSteps>([&](int k) NUQI_FORCED { carry = min(carry, ahead(carry, k) + of[k]); });
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
// before this one and in the sweep's own. present(k, part) is vector k of these values; meanwhile() does
// other work while the latency of the scan passes.
template <bool is_5x5, bool right, class Present, class Meanwhile>
NUQI_INLINE void sweep(const Steps& steps, const Ways<right>& ways, const Rows& rows,
                       const Blocks& blocks, int64_t i, const Present& present,
                       const Meanwhile& meanwhile) {
  constexpr int kReach = is_5x5 ? 2 : 1;
  const Block& block = blocks[i];
  int32_t* const here = rows.here + Blocks::x(i);
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
    d = min(d, near.here() + steps.orthogonal);
    return min(d, last + steps.orthogonal);
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
  const int32_t edge = right             ? (i > 0 ? load_one(here - 1) : kDistanceFar)
                       : i < blocks.last ? load_one(here + kLanes * block.count)
                                         : kDistanceFar;
  Ints carry = ways.spread(moved<right>(last, all(edge)));
  meanwhile();
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

// Columns of bytes that are turned at a time.
constexpr int kColumns = 8;

// -1 for each pixel that is not zero and 0 for the others, in the order of a block's vectors. Writes
// kColumns vectors at least.
NUQI_NOINLINE void find_features(const uint8_t* src, const Block& block, int8_t* features) {
  constexpr int kRegs = kLanes / 2;
  constexpr auto lanes = typename UpTo<16>::Type{};
  const auto turn = [&](int64_t x, const auto& from) NUQI_FORCED {
    Px<uint8_t> rows[kRegs];
    for_each<kRegs>([&](int i) NUQI_FORCED {
      const auto a = load_eight(from(i), Whole{}), b = load_eight(from(i + kRegs), Whole{});
      rows[i].r[0] = zip_low(a.r[0], b.r[0], lanes);
    });
    for_each<kScanSteps - 1>([&](int) NUQI_FORCED {
      Px<uint8_t> turned[kRegs];
      for_each<kRegs / 2>([&](int i) NUQI_FORCED {
        turned[2 * i].r[0] = zip_low(rows[i].r[0], rows[i + kRegs / 2].r[0], lanes);
        turned[2 * i + 1].r[0] = zip_high(rows[i].r[0], rows[i + kRegs / 2].r[0], lanes);
      });
      for_each<kRegs>([&](int i) NUQI_FORCED { rows[i] = turned[i]; });
    });
    for_each<kRegs>([&](int i) NUQI_FORCED {
      store(features + x * kLanes + i * 16, as<int8_t>(nonzero(rows[i])));
    });
  };

  if (block.count < kColumns) {
    // Columns that end beyond the block come from a copy of its end.
    uint8_t copy[2 * kColumns] = {};
    const int64_t last = block.pixels() - kColumns;
    __builtin_memcpy(copy, src + last, kColumns);
    turn(0, [&](int lane) NUQI_FORCED {
      const int64_t at = block.starts[lane];
      return at <= last ? src + at : copy + (at - last);
    });
  } else {
    // The last columns overlap those before them.
    for (int64_t x = 0; x < block.count; x += kColumns) {
      const int64_t first = x + kColumns <= block.count ? x : block.count - kColumns;
      turn(first, [&](int lane) NUQI_FORCED { return src + first + block.starts[lane]; });
    }
  }
  for (int lane = 0; lane < block.rest; ++lane)
    features[kLanes * block.count + lane] = src[block.starts[lane] + block.count] != 0 ? -1 : 0;
}

// ---- Output

constexpr float kUnit = 0x1p-18f;

// A block's pixels in their order, as floats.
NUQI_INLINE void turn_back(const Block& block, const int32_t* from, float* pixels) {
  constexpr int n = kLanes < 8 ? kLanes : 8;  // larger squares take longer
  const auto turn = [&](int64_t x, const auto& column) NUQI_FORCED {
    for (int lane = 0; lane < kLanes; lane += n) {
      Vec<float, n> square[n];
      for_each<n>([&](int k) NUQI_FORCED {
        square[k] = convert<float>(load<n>(column(k) + lane)) * broadcast<float, n>(kUnit);
      });
      transpose_square(square);
      for_each<n>([&](int k)
                      NUQI_FORCED { store(pixels + block.starts[lane + k] + x, square[k]); });
    }
  };
  if (block.count < n) {
    // What exceeds a segment is overwritten by the next one.
    turn(0, [&](int k)
                NUQI_FORCED { return from + kLanes * (k < block.count ? k : block.count - 1); });
  } else {
    for (int64_t x = 0; x < block.count; x += n) {
      const int64_t first = x + n <= block.count ? x : block.count - n;
      turn(first, [&](int k) NUQI_FORCED { return from + kLanes * (first + k); });
    }
  }
  for (int lane = 0; lane < block.rest; ++lane)
    pixels[block.starts[lane] + block.count] =
        (float)load_one(from + kLanes * block.count + lane) * kUnit;
}

NUQI_NOINLINE void write(const Block& block, float* here) {
  float pixels[kMostPixels + kLanes];
  turn_back(block, (const int32_t*)here, pixels);
  __builtin_memcpy((char*)here, pixels, block.pixels() * sizeof *pixels);
}

// ---- Passes

template <bool is_5x5>
class Transform {
 public:
  explicit Transform(const DistanceJob& job)
      : job_(job),
        blocks_(job.roi.width),
        steps_{all(job.orthogonal), all(job.diagonal), all(job.knight)} {}

  NUQI_NOINLINE void down() const {
    const Ways<true> ways[2] = {{blocks_.of[0], job_.orthogonal}, {blocks_.of[1], job_.orthogonal}};
    int8_t features[2][kMostPixels + kLanes * kColumns];
    find_features(row_of(job_.src, 0), blocks_[0], features[0]);
    bool turn = false;
    for (int64_t y = 0; y < job_.roi.height; ++y)
      for (int64_t i = 0; i <= blocks_.last; ++i) {
        const bool ends = i == blocks_.last;
        const int64_t next_y = y + ends, next = ends ? 0 : i + 1;
        sweep<is_5x5, true>(
            steps_, ways[ends], {row(y), row(y - 1), row(y - 2)}, blocks_, i,
            [&](int64_t k, auto)
                NUQI_FORCED { return load_widened(features[turn] + kLanes * k) & far(); },
            [&]() NUQI_FORCED {
              if (next_y < job_.roi.height)
                find_features(row_of(job_.src, next_y) + Blocks::x(next), blocks_[next],
                              features[!turn]);
            });
        turn = !turn;
      }
  }

  // Rows are written when no sweep needs them any more.
  NUQI_NOINLINE void up() const {
    constexpr int kReach = is_5x5 ? 2 : 1;
    const Ways<false> ways[2] = {{blocks_.of[0], job_.orthogonal},
                                 {blocks_.of[1], job_.orthogonal}};
    const auto write_block = [&](int64_t y, int64_t i) NUQI_FORCED {
      if (y < job_.roi.height) write(blocks_[i], row_of(job_.dst, y) + Blocks::x(i));
    };
    for (int64_t y = job_.roi.height - 1; y >= 0; --y)
      for (int64_t i = blocks_.last; i >= 0; --i) {
        const int32_t* here = row(y) + Blocks::x(i);
        sweep<is_5x5, false>(
            steps_, ways[i == blocks_.last], {row(y), row(y + 1), row(y + 2)}, blocks_, i,
            [&](int64_t k, auto part) NUQI_FORCED { return load<kLanes>(here + kLanes * k, part); },
            [&]() NUQI_FORCED { write_block(y + kReach + 1, i); });
      }
    for (int64_t y = 0; y <= kReach; ++y)
      for (int64_t i = 0; i <= blocks_.last; ++i) write_block(y, i);
  }

 private:
  NUQI_INLINE int32_t* row(int64_t y) const {
    return y < 0 || y >= job_.roi.height ? nullptr : (int32_t*)row_of(job_.dst, y);
  }

  const DistanceJob& job_;
  Blocks blocks_;
  Steps steps_;
};

// ---- Rows too narrow for that, pixel by pixel

constexpr int kNarrow = 2 * kLanes;

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
  if (job.roi.width < kNarrow) return transform_narrow<is_5x5>(job);
  const Transform<is_5x5> passes(job);
  passes.down();
  passes.up();
}

}  // namespace

const DistanceKernels distance_kernels = {{transform<false>, transform<true>}};

}  // namespace nuqi::NUQI_ISA

// Distance transforms: a pass down the rows, a pass up, and the distances as floats.
//
// Along a row each pixel depends on the one before it. A block of a row is therefore cut into as many
// segments as a register has lanes, one below the other: vector i holds pixel i of every segment. The
// dependency chains of all segments then run side by side, without a shuffle, and one scan over the
// segments' ends tells what each of them hands on to those behind it. The rows lie like this in the
// destination until no other row needs them.
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/shuffle.h"
#include "core/simd/transpose.h"
#include "features/distance_transform.h"

namespace nuqi::NUQI_ISA {
namespace {

using Ints = Reg<int32_t>;
constexpr int kLanes = Ints::kLanes;
constexpr int kMostVectors = 64;  // of a block; the last block of whole vectors may have one more

NUQI_INLINE Ints all(int32_t value) { return broadcast<int32_t, kLanes>(value); }

struct Block {
  int64_t x;      // its first pixel
  int64_t count;  // its vectors
  int lanes;      // a row's last pixels may be fewer than lanes: a vector of their own
};

// How a row is cut. Blocks of whole vectors have at least two of them, unless the row has only one.
class Blocks {
 public:
  explicit Blocks(int64_t width)
      : vectors_(width / kLanes),
        rest_(int(width % kLanes)),
        whole_(vectors_ < 2 ? vectors_ : (vectors_ - 2) / kMostVectors + 1) {}

  int64_t count() const { return whole_ + (rest_ != 0); }
  Block operator[](int64_t i) const {
    if (i == whole_) return {vectors_ * kLanes, 1, rest_};
    const int64_t first = i * kMostVectors;
    return {first * kLanes, i + 1 < whole_ ? kMostVectors : vectors_ - first, kLanes};
  }

 private:
  int64_t vectors_;
  int rest_;
  int64_t whole_;
};

// The pixel next to a block, and the one behind that.
struct Edge {
  int32_t near = kDistanceFar, next = kDistanceFar;
};

Edge left_edge(const int32_t* row, const Blocks& blocks, int64_t i) {
  if (i == 0) return {};
  const Block left = blocks[i - 1];
  const int32_t* last = row + left.x + left.count * kLanes - 1;
  return {load_one(last), load_one(last - (left.count > 1 ? kLanes : 1))};
}
Edge right_edge(const int32_t* row, const Blocks& blocks, int64_t i) {
  if (i + 1 == blocks.count()) return {};
  const Block right = blocks[i + 1];
  const int32_t* first = row + right.x;
  if (right.lanes == 1) return {load_one(first)};
  return {load_one(first), load_one(first + (right.count > 1 ? kLanes : 1))};
}

// What lies beyond a row must not reach into it: its lanes become kDistanceFar.
NUQI_INLINE Ints inside(Whole, const Ints& a) { return a; }
NUQI_INLINE Ints inside(First part, const Ints& a) {
  const auto numbers = lane_numbers<int32_t>(typename UpTo<kLanes>::Type{});
  return select(numbers < all(part.lanes), a, all(kDistanceFar));
}

// Moves every lane to the segment that a sweep comes to k segments later; `in` fills the first ones.
template <bool rightwards, int k = 1>
NUQI_INLINE Ints moved(const Ints& a, const Ints& in) {
  if constexpr (rightwards)
    return lanes_up<k>(a, in);
  else
    return lanes_down<k>(a, in);
}

alignas(64) constexpr int32_t kNoRow[16] = {kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar,
                                            kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar,
                                            kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar,
                                            kDistanceFar, kDistanceFar, kDistanceFar, kDistanceFar};

// A sweep along a block of finished distances: vector i with its neighbours up to `reach` away.
template <int reach, bool rightwards, class Part>
class Window {
 public:
  // A null row is one of kDistanceFar.
  NUQI_INLINE Window(const int32_t* row, const Blocks& blocks, int64_t i, Part part)
      : from_(kNoRow), step_(0), count_(blocks[i].count), part_(part) {
    Edge before, behind;
    if (row != nullptr) {
      const Edge left = left_edge(row, blocks, i), right = right_edge(row, blocks, i);
      before = rightwards ? left : right;
      behind = rightwards ? right : left;
      from_ = row + blocks[i].x + (rightwards ? 0 : kLanes * (count_ - 1));
      step_ = rightwards ? kLanes : -kLanes;
    }
    // The first vector's predecessors are the last ones, of the segments before; and so at the end.
    at[reach] = moved<rightwards>(vector(count_ - 1), all(before.near));
    behind_[0] = moved<!rightwards>(vector(0), all(behind.near));
    at[reach + 1] = vector(0);
    if constexpr (reach == 2) {
      const bool one = count_ == 1;
      at[1] = moved<rightwards>(one ? at[2] : vector(count_ - 2), all(before.next));
      behind_[1] = moved<!rightwards>(one ? behind_[0] : vector(1), all(behind.next));
      at[4] = one ? behind_[0] : vector(1);
    }
  }
  // To vector i, from the one before it.
  NUQI_INLINE void move_to(int64_t i) {
    for_each<2 * reach>([&](int k) NUQI_FORCED { at[k] = at[k + 1]; });
    const int64_t next = i + reach;
    at[2 * reach] = next < count_ ? vector(next) : behind_[next - count_];
  }

  Ints at[2 * reach + 1];  // the vector itself in the middle

 private:
  NUQI_INLINE Ints vector(int64_t i) const {
    return inside(part_, load<kLanes>(from_ + step_ * i, part_));
  }

  const int32_t* from_;
  int64_t step_, count_;
  Part part_;
  Ints behind_[reach];
};

// The steps' weights, in every lane.
struct Steps {
  Ints orthogonal, diagonal, knight;
};

// The rows of a sweep: the one that it is about, and those before it, if there are any.
struct Rows {
  int32_t* here;
  const int32_t *near, *next;
};

// Along a block: each distance is the least of its present value and of those a step away, in the rows
// before this one and in the sweep's own.
template <bool is_5x5, bool rightwards, class Part, class Present>
NUQI_INLINE void sweep(const Steps& steps, const Rows& rows, const Blocks& blocks, int64_t i,
                       Part part, const Present& present) {
  const Block block = blocks[i];
  int32_t* const here = rows.here + block.x;
  const auto place = [&](int64_t k) NUQI_FORCED {
    return here + kLanes * (rightwards ? k : block.count - 1 - k);
  };
  Window<is_5x5 ? 2 : 1, rightwards, Part> near(rows.near, blocks, i, part);
  constexpr int m = is_5x5 ? 2 : 1;
  [[maybe_unused]] Window<1, rightwards, Part> next(is_5x5 ? rows.next : nullptr, blocks, i, part);

  Ints last = all(kDistanceFar);
  for (int64_t k = 0; k < block.count; ++k) {
    near.move_to(k);
    Ints d = min(present(place(k) - here), near.at[m] + steps.orthogonal);
    d = min(d, min(near.at[m - 1], near.at[m + 1]) + steps.diagonal);
    if constexpr (is_5x5) {
      next.move_to(k);
      const Ints knights = min(min(near.at[0], near.at[4]), min(next.at[0], next.at[2]));
      d = min(d, knights + steps.knight);
    }
    last = min(inside(part, d), last + steps.orthogonal);
    store(place(k), last, part);
  }

  // What each segment gets from those before it: from the last one, from two, four, eight, all.
  const Edge before =
      rightwards ? left_edge(rows.here, blocks, i) : right_edge(rows.here, blocks, i);
  const int64_t length = block.count * steps.orthogonal.r[0][0];
  Ints carry = moved<rightwards>(last, all(before.near));
  const auto spread = [&]<int k>() NUQI_FORCED {
    if constexpr (k < kLanes) {
      const int64_t way = k * length;
      const Ints weight = all(way < kDistanceFar ? int32_t(way) : kDistanceFar);
      carry = min(carry, moved<rightwards, k>(carry, all(kDistanceFar)) + weight);
    }
  };
  spread.template operator()<1>();
  spread.template operator()<2>();
  spread.template operator()<4>();
  spread.template operator()<8>();
  for (int64_t k = 0; k < block.count; ++k) {
    carry = min(load<kLanes>(place(k), part), carry + steps.orthogonal);
    store(place(k), carry, part);
  }
}

template <class Body>
NUQI_INLINE void with_part(const Block& block, const Body& body) {
  if (block.lanes == kLanes)
    body(Whole{});
  else
    body(First{block.lanes});
}

// -1 for each pixel that is not zero and 0 for the others, in the order of a block's vectors.
NUQI_INLINE void find_features(const uint8_t* src, const Block& block, int8_t* features) {
  constexpr int kColumns = 16;
  const auto lanes = typename UpTo<kColumns>::Type{};
  if (block.count < kColumns) {
    for (int lane = 0; lane < block.lanes; ++lane)
      for (int64_t i = 0; i < block.count; ++i)
        features[i * kLanes + lane] = src[lane * block.count + i] != 0 ? -1 : 0;
    return;
  }
  // The last columns overlap those before them.
  for (int64_t x = 0; x < block.count; x += kColumns) {
    const int64_t first = x + kColumns <= block.count ? x : block.count - kColumns;
    Px<int8_t> rows[kLanes], turned[kLanes];
    for_each<kLanes>([&](int i) NUQI_FORCED {
      rows[i] = nonzero(load<kColumns>(src + i * block.count + first));
    });
    for (int n = 1; n < kLanes; n *= 2) {
      for_each<kLanes / 2>([&](int i) NUQI_FORCED {
        turned[2 * i].r[0] = zip_low(rows[i].r[0], rows[i + kLanes / 2].r[0], lanes);
        turned[2 * i + 1].r[0] = zip_high(rows[i].r[0], rows[i + kLanes / 2].r[0], lanes);
      });
      for_each<kLanes>([&](int i) NUQI_FORCED { rows[i] = turned[i]; });
    }
    for_each<kLanes>([&](int i)
                         NUQI_FORCED { store(features + first * kLanes + i * kColumns, rows[i]); });
  }
}

template <bool is_5x5>
NUQI_NOINLINE void sweep_down(const Steps& steps, const Rows& rows, const Blocks& blocks,
                              const uint8_t* src) {
  int8_t features[kLanes * (kMostVectors + 1)];
  for (int64_t i = 0; i < blocks.count(); ++i) {
    const Block block = blocks[i];
    find_features(src + block.x, block, features);
    with_part(block, [&](auto part) NUQI_FORCED {
      sweep<is_5x5, true>(steps, rows, blocks, i, part, [&](int64_t at) NUQI_FORCED {
        return load_widened(features + at) & all(kDistanceFar);
      });
    });
  }
}

template <bool is_5x5>
NUQI_NOINLINE void sweep_up(const Steps& steps, const Rows& rows, const Blocks& blocks) {
  for (int64_t i = blocks.count() - 1; i >= 0; --i) {
    const Block block = blocks[i];
    with_part(block, [&](auto part) NUQI_FORCED {
      sweep<is_5x5, false>(steps, rows, blocks, i, part, [&](int64_t at) NUQI_FORCED {
        return load<kLanes>(rows.here + block.x + at, part);
      });
    });
  }
}

NUQI_INLINE Reg<float> as_distances(const Ints& units) {
  return convert<float>(units) * broadcast<float, kLanes>(0x1p-18f);
}

// The pixels of a row in their order, as floats.
NUQI_NOINLINE void write(const Blocks& blocks, int32_t* row) {
  float pixels[kLanes * (kMostVectors + 1) + kLanes];
  for (int64_t i = 0; i < blocks.count(); ++i) {
    const Block block = blocks[i];
    int32_t* const here = row + block.x;
    if (block.count == 1) {
      with_part(block, [&](auto part) NUQI_FORCED {
        store((float*)here, as_distances(load<kLanes>(here, part)), part);
      });
      continue;
    }
    // From the last columns to the first: what exceeds a segment is overwritten by the next one.
    for (int64_t x = (block.count - 1) / kLanes * kLanes; x >= 0; x -= kLanes) {
      Reg<float> square[kLanes];
      for_each<kLanes>([&](int k) NUQI_FORCED {
        const int64_t column = x + k < block.count ? x + k : block.count - 1;
        square[k] = as_distances(load<kLanes>(here + column * kLanes));
      });
      transpose_square(square);
      for_each<kLanes>([&](int k) NUQI_FORCED { store(pixels + k * block.count + x, square[k]); });
    }
    __builtin_memcpy(here, pixels, kLanes * block.count * sizeof *pixels);
  }
}

template <bool is_5x5>
void transform(const DistanceJob& job) {
  const Blocks blocks(job.roi.width);
  const Steps steps = {all(job.orthogonal), all(job.diagonal), all(job.knight)};
  const int32_t height = job.roi.height;
  const auto row = [&](int64_t y) NUQI_FORCED {
    return y < 0 || y >= height ? nullptr : (int32_t*)row_of(job.dst, y);
  };
  for (int64_t y = 0; y < height; ++y)
    sweep_down<is_5x5>(steps, {row(y), row(y - 1), row(y - 2)}, blocks, row_of(job.src, y));
  // Rows are written when no sweep needs them any more.
  constexpr int kReach = is_5x5 ? 2 : 1;
  for (int64_t y = height - 1; y >= 0; --y) {
    sweep_up<is_5x5>(steps, {row(y), row(y + 1), row(y + 2)}, blocks);
    if (y + kReach < height) write(blocks, row(y + kReach));
  }
  for (int64_t y = 0; y < kReach && y < height; ++y) write(blocks, row(y));
}

}  // namespace

const DistanceKernels distance_kernels = {{transform<false>, transform<true>}};

}  // namespace nuqi::NUQI_ISA

// Distance transforms: a pass down the rows, a pass up, and the distances as floats.
//
// Along a row each pixel depends on the one before it, so rows lie in segments (distance_segments.h) in
// the destination until no other row needs them: one scan over the segments' ends tells what each of
// them hands on to those after it. Nothing exceeds 2^31 - 2: neither distances nor weights exceed
// kDistanceFar.
#include "features/distance_segments.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- A row of which all distances are known so far

template <int kLanes, int reach>
class Line {
 public:
  // A null row is one of kDistanceFar.
  NUQI_INLINE Line(const int32_t* row, const Blocks<kLanes>& blocks, int64_t i)
      : count_(blocks[i].count) {
    if (row == nullptr) {
      from_ = kNone;
      step_ = 0;
      for (Ints<kLanes>& a : before_) a = far<kLanes>();
      for (Ints<kLanes>& a : behind_) a = far<kLanes>();
      return;
    }
    const Block<kLanes>& block = blocks[i];
    from_ = row + Blocks<kLanes>::x(i);
    step_ = kLanes;
    const auto at = [&](int64_t k) NUQI_FORCED { return load<kLanes>(from_ + kLanes * k); };
    const Ints<kLanes> tail =
        block.rest == 0 ? far<kLanes>() : load<kLanes>(from_ + kLanes * count_, First{block.rest});
    for_each<reach>([&](int k) NUQI_FORCED {
      // The blocks next to this one have at least two vectors, and the left one has no rest.
      const int32_t left = i > 0 ? load_one(from_ - 1 - k * kLanes) : kDistanceFar;
      const int32_t right =
          i < blocks.last ? load_one(from_ + kLanes * (count_ + k)) : kDistanceFar;
      Ints<kLanes> end = at(count_ - 1 - k);
      if (block.rest != 0) end = rest_of(block, k == 0 ? tail : at(count_ - k), end);
      before_[k] = moved<true>(end, all<kLanes>(left));
      behind_[k] = moved<false>(at(k), all<kLanes>(right));
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
  NUQI_INLINE Ints<kLanes> at(int64_t i) const {
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
  Ints<kLanes> before_[reach], behind_[reach + 1];
};

// A place of a line with its neighbours up to `reach` away, going along the line.
template <int kLanes, int reach, bool right>
class Window {
 public:
  NUQI_INLINE Window(const Line<kLanes, reach>& line, int64_t first) : line_(line) {
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
  NUQI_INLINE const Ints<kLanes>& here() const { return at_[reach]; }
  template <int k>
  NUQI_INLINE Ints<kLanes> beside() const {
    return min(at_[reach - k], at_[reach + k]);
  }

 private:
  const Line<kLanes, reach>& line_;
  Ints<kLanes> at_[2 * reach + 1];
};

// ---- Sweeps

// The steps' weights, in every lane.
template <int kLanes>
struct Steps {
  Ints<kLanes> orthogonal, diagonal, knight;
};

// The weights of the ways through 1, 2, 4 ... segments, along which they hand on distances.
template <int kLanes, bool right>
struct Ways {
  static constexpr int kSteps = kLog2<kLanes>;
  Ints<kLanes> of[kSteps];

  NUQI_INLINE Ways(const Block<kLanes>& block, int32_t orthogonal) {
    const int64_t length = block.count * orthogonal;
    const Ints<kLanes> whole = all<kLanes>(length < kDistanceFar ? int32_t(length) : kDistanceFar);
    const Ints<kLanes> lengths =
        min(whole + rest_of(block, all<kLanes>(orthogonal), Ints<kLanes>{}), far<kLanes>());
    of[0] = moved<right>(lengths, far<kLanes>());
    lengthen(typename UpTo<kSteps - 1>::Type{});
  }
  // What every segment gets from all those before it, from what it gets from the last of them.
  NUQI_INLINE Ints<kLanes> spread(const Ints<kLanes>& carry) const {
    return spread(carry, typename UpTo<kSteps>::Type{});
  }

 private:
  template <int... K>
  NUQI_INLINE void lengthen(Indices<K...>) {
    ((of[K + 1] = min(of[K] + moved<right, 1 << K>(of[K], far<kLanes>()), far<kLanes>())), ...);
  }
  template <int... K>
  NUQI_INLINE Ints<kLanes> spread(Ints<kLanes> carry, Indices<K...>) const {
    ((carry = min(carry, moved<right, 1 << K>(carry, far<kLanes>()) + of[K])), ...);
    return carry;
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
template <bool is_5x5, bool right, int kLanes, class Present, class Meanwhile>
NUQI_INLINE void sweep(const Steps<kLanes>& steps, const Ways<kLanes, right>& ways,
                       const Rows& rows, const Blocks<kLanes>& blocks, int64_t i,
                       const Present& present, const Meanwhile& meanwhile) {
  constexpr int kReach = is_5x5 ? 2 : 1;
  const Block<kLanes>& block = blocks[i];
  int32_t* const here = rows.here + Blocks<kLanes>::x(i);
  const Line<kLanes, kReach> near_line(rows.near, blocks, i);
  const Line<kLanes, 1> next_line(is_5x5 ? rows.next : nullptr, blocks, i);
  const int64_t first = right ? 0 : block.count - (block.rest == 0);
  Window<kLanes, kReach, right> near(near_line, first);
  [[maybe_unused]] Window<kLanes, 1, right> next(next_line, first);

  const auto least = [&](int64_t k, auto part, const Ints<kLanes>& last) NUQI_FORCED {
    near.move_to(k);
    Ints<kLanes> d = min(present(k, part), near.template beside<1>() + steps.diagonal);
    if constexpr (is_5x5) {
      next.move_to(k);
      const Ints<kLanes> knights = min(near.template beside<2>(), next.template beside<1>());
      d = min(d, knights + steps.knight);
    }
    d = min(d, near.here() + steps.orthogonal);
    return min(d, last + steps.orthogonal);
  };
  const auto least_of_rest = [&](const Ints<kLanes>& last) NUQI_FORCED {
    const First part = {block.rest};
    const Ints<kLanes> d = least(block.count, part, last);
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
  Ints<kLanes> last = far<kLanes>();
  if (!right && block.rest != 0) last = rest_of(block, least_of_rest(last), far<kLanes>());
  each([&](int64_t k) NUQI_FORCED {
    last = least(k, Whole{}, last);
    store(here + kLanes * k, last);
  });
  if (right && block.rest != 0) last = rest_of(block, least_of_rest(last), last);

  // From segment to segment.
  const int32_t edge = right             ? (i > 0 ? load_one(here - 1) : kDistanceFar)
                       : i < blocks.last ? load_one(here + kLanes * block.count)
                                         : kDistanceFar;
  Ints<kLanes> carry = ways.spread(moved<right>(last, all<kLanes>(edge)));
  meanwhile();
  const auto improve = [&](int64_t k, auto part) NUQI_FORCED {
    const Ints<kLanes> d = min(load<kLanes>(here + kLanes * k, part), carry + steps.orthogonal);
    store(here + kLanes * k, d, part);
    return d;
  };
  if (!right && block.rest != 0)
    carry = rest_of(block, improve(block.count, First{block.rest}), carry);
  each([&](int64_t k) NUQI_FORCED { carry = improve(k, Whole{}); });
  if (right && block.rest != 0) improve(block.count, First{block.rest});
}

template <int kLanes>
NUQI_NOINLINE void write(const Block<kLanes>& block, float* here) {
  float pixels[kMostPixels<kLanes> + kLanes];
  turn_back(block, (const int32_t*)here, pixels);
  __builtin_memcpy((char*)here, pixels, block.pixels() * sizeof *pixels);
}

// ---- Passes

template <int kLanes, bool is_5x5>
class Transform {
 public:
  explicit Transform(const DistanceJob& job)
      : job_(job),
        blocks_(job.roi.width),
        steps_{all<kLanes>(job.orthogonal), all<kLanes>(job.diagonal), all<kLanes>(job.knight)} {}

  void run() const {
    down();
    up();
  }

 private:
  NUQI_NOINLINE void down() const {
    const Ways<kLanes, true> ways[2] = {{blocks_.of[0], job_.orthogonal},
                                        {blocks_.of[1], job_.orthogonal}};
    int8_t features[2][kMostPixels<kLanes> + kLanes * kColumns];
    find_features(row_of(job_.src, 0), blocks_[0], features[0]);
    bool turn = false;
    for (int64_t y = 0; y < job_.roi.height; ++y)
      for (int64_t i = 0; i <= blocks_.last; ++i) {
        const bool ends = i == blocks_.last;
        const int64_t next_y = y + ends, next = ends ? 0 : i + 1;
        sweep<is_5x5, true>(
            steps_, ways[ends], {row(y), row(y - 1), row(y - 2)}, blocks_, i,
            [&](int64_t k, auto) NUQI_FORCED {
              return load_widened<kLanes>(features[turn] + kLanes * k) & far<kLanes>();
            },
            [&]() NUQI_FORCED {
              if (next_y < job_.roi.height)
                find_features(row_of(job_.src, next_y) + Blocks<kLanes>::x(next), blocks_[next],
                              features[!turn]);
            });
        turn = !turn;
      }
  }

  // Rows are written when no sweep needs them any more.
  NUQI_NOINLINE void up() const {
    constexpr int kReach = is_5x5 ? 2 : 1;
    const Ways<kLanes, false> ways[2] = {{blocks_.of[0], job_.orthogonal},
                                         {blocks_.of[1], job_.orthogonal}};
    const auto write_block = [&](int64_t y, int64_t i) NUQI_FORCED {
      if (y < job_.roi.height) write(blocks_[i], row_of(job_.dst, y) + Blocks<kLanes>::x(i));
    };
    for (int64_t y = job_.roi.height - 1; y >= 0; --y)
      for (int64_t i = blocks_.last; i >= 0; --i) {
        const int32_t* here = row(y) + Blocks<kLanes>::x(i);
        sweep<is_5x5, false>(
            steps_, ways[i == blocks_.last], {row(y), row(y + 1), row(y + 2)}, blocks_, i,
            [&](int64_t k, auto part) NUQI_FORCED { return load<kLanes>(here + kLanes * k, part); },
            [&]() NUQI_FORCED { write_block(y + kReach + 1, i); });
      }
    for (int64_t y = 0; y <= kReach; ++y)
      for (int64_t i = 0; i <= blocks_.last; ++i) write_block(y, i);
  }

  NUQI_INLINE int32_t* row(int64_t y) const {
    return y < 0 || y >= job_.roi.height ? nullptr : (int32_t*)row_of(job_.dst, y);
  }

  const DistanceJob& job_;
  Blocks<kLanes> blocks_;
  Steps<kLanes> steps_;
};

// ---- Rows too narrow for that, pixel by pixel

// Shorter vectors have less latency, in the scans above all.
constexpr int kFull = Reg<int32_t>::kLanes, kHalf = kFull < 16 ? kFull : kFull / 2;
constexpr int kNarrow = 16, kWide = 160;
static_assert(kNarrow >= 2 * kHalf);

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

// Row y from the two before it in the pass, `way` 1 for a pass down and -1 for one up: present(x) is a
// distance so far, and done(x, d) gets the new one.
template <bool is_5x5, int way, class Present, class Done>
NUQI_INLINE void sweep_narrow(const DistanceJob& job, NarrowRows& rows, int64_t y,
                              const Present& present, const Done& done) {
  int32_t* const here = rows[y];
  const int32_t *near = rows[y + (way > 0 ? 2 : 1)], *next = rows[y + (way > 0 ? 1 : 2)];
  int32_t last = kDistanceFar;
  for (int32_t i = 0; i < job.roi.width; ++i) {
    const int32_t x = way > 0 ? i : job.roi.width - 1 - i;
    int32_t d = least(present(x), near[x] + job.orthogonal);
    d = least(d, least(near[x - 1], near[x + 1]) + job.diagonal);
    if constexpr (is_5x5) {
      const int32_t knights =
          least(least(near[x - 2], near[x + 2]), least(next[x - 1], next[x + 1]));
      d = least(d, knights + job.knight);
    }
    here[x] = last = least(d, last + job.orthogonal);
    done(x, last);
  }
}

template <bool is_5x5>
NUQI_NOINLINE void transform_narrow(const DistanceJob& job) {
  NarrowRows rows_down, rows_up;
  for (int64_t y = 0; y < job.roi.height; ++y) {
    const uint8_t* const src = row_of(job.src, y);
    int32_t* const dst = (int32_t*)row_of(job.dst, y);
    sweep_narrow<is_5x5, 1>(
        job, rows_down, y, [&](int32_t x) NUQI_FORCED { return src[x] == 0 ? 0 : kDistanceFar; },
        [&](int32_t x, int32_t d) NUQI_FORCED { store_one(dst + x, d); });
  }
  for (int64_t y = job.roi.height - 1; y >= 0; --y) {
    float* const dst = row_of(job.dst, y);
    sweep_narrow<is_5x5, -1>(
        job, rows_up, y, [&](int32_t x) NUQI_FORCED { return load_one((int32_t*)dst + x); },
        [&](int32_t x, int32_t d) NUQI_FORCED { store_one(dst + x, (float)d * kUnit); });
  }
}

template <bool is_5x5>
void transform(const DistanceJob& job) {
  if (job.roi.width < kNarrow) return transform_narrow<is_5x5>(job);
  if (job.roi.width < kWide) return Transform<kHalf, is_5x5>(job).run();
  Transform<kFull, is_5x5>(job).run();
}

}  // namespace

const DistanceKernels distance_kernels = {{transform<false>, transform<true>}};

}  // namespace nuqi::NUQI_ISA

// 3x3 or 5x5 bytes around their anchor, where bytes permute across two registers: along two rows of the
// result at once. Rows are read as they lie, reduced down the columns, and only then along the row, in
// registers. Copies beyond the ends of the rows are left out: the pixel that they repeat is in the
// window already.
#pragma once

#include "core/simd/selection.h"
#include "core/simd/shuffle.h"
#include "morph/extremum.h"
#include "morph/window.h"

namespace nuqi::NUQI_ISA {
namespace {

template <class T>
constexpr bool kPairsRows = Machine::kPermutesBytes && sizeof(T) == 1;

using Bytes = Reg<uint8_t>;

using ByteLanes = Vec<int8_t, kRegBytes>;

NUQI_INLINE ByteLanes lane_bytes(int64_t first) {
  return lane_numbers<uint8_t>(typename UpTo<kRegBytes>::Type{}) +
         broadcast<int8_t, kRegBytes>((int8_t)first);
}

// Where the neighbours of a register's pixels are found: one and two pixels on, and as far back as a
// window begins.
struct Neighbours {
  ByteLanes one_on, two_on, back;

  NUQI_INLINE Neighbours(int size, int64_t channels)
      : one_on(lane_bytes(channels)),
        two_on(lane_bytes(2 * channels)),
        back(lane_bytes(kRegBytes - size / 2 * channels)) {}
};

// Windows of `size` pixels around those of one register after the other: pairs of neighbours, of size 5
// two pairs and the last pixel.
template <Extremum extremum, int size>
class Along {
 public:
  NUQI_INLINE explicit Along(const Bytes& first, const Neighbours& to)
      : here_(first), pairs_(worst<extremum, uint8_t>()) {
    // The first pixel is in a pair that begins before it.
    if constexpr (size == 5) pairs_ = permute_bytes(pairs_, first, to.one_on);
  }
  // Gives the windows of the register before.
  NUQI_INLINE Bytes push(const Bytes& next, const Neighbours& to) {
    const Bytes pairs = best<extremum>(here_, permute_bytes(here_, next, to.one_on));
    Bytes result = best<extremum>(pairs, permute_bytes(pairs_, pairs, to.back));
    if constexpr (size == 5) result = best<extremum>(result, permute_bytes(here_, next, to.two_on));
    here_ = next;
    pairs_ = pairs;
    return result;
  }

 private:
  Bytes here_, pairs_;
};

// Nothing that an extremum keeps stands behind the pixels.
template <Extremum extremum>
NUQI_INLINE Bytes worst_behind(const Bytes& pixels, Whole) {
  return pixels;
}
template <Extremum extremum>
NUQI_INLINE Bytes worst_behind(const Bytes& pixels, First part) {
  return extremum == Extremum::greatest ? pixels : pixels | ~first_lanes<kRegBytes>(part.lanes);
}

struct TwoRows {
  Bytes upper, lower;
};

// The source rows of two rows of the result, or of one twice.
template <Extremum extremum, int size, bool cross>
struct RowPair {
  const uint8_t *shared[size - 1], *highest, *lowest, *middle;

  NUQI_INLINE RowPair(const uint8_t* const* rows, int64_t apart)
      : highest(rows[0]), lowest(rows[size - 1 + apart]), middle(rows[size / 2 + apart]) {
    for_each<size - 1>([&](int i) NUQI_FORCED { shared[i] = rows[i + 1]; });
  }
  template <class Part>
  NUQI_INLINE TwoRows down(int64_t x, Part part) const {
    const auto row = [&](const uint8_t* from)
                         NUQI_FORCED { return load<kRegBytes>(from + x, part); };
    Bytes both = row(shared[0]);
    for_each<size - 2>([&](int i) NUQI_FORCED { both = best<extremum>(both, row(shared[i + 1])); });
    return {best<extremum>(both, row(highest)), best<extremum>(both, row(lowest))};
  }
  // What is reduced along the row.
  template <class Part>
  NUQI_INLINE TwoRows across(int64_t x, Part part) const {
    if constexpr (!cross) return down(x, part);
    return {load<kRegBytes>(shared[size / 2 - 1] + x, part), load<kRegBytes>(middle + x, part)};
  }
  template <class Part>
  NUQI_INLINE void finish(TwoRows result, uint8_t* upper, uint8_t* lower, int64_t x,
                          Part part) const {
    if constexpr (cross) {
      const TwoRows column = down(x, part);
      result = {best<extremum>(result.upper, column.upper),
                best<extremum>(result.lower, column.lower)};
    }
    store(lower + x, result.lower, part);
    store(upper + x, result.upper, part);
  }
};

// ---- Rows of several registers

template <Extremum extremum, int size, bool cross>
NUQI_INLINE void two_rows(const RowPair<extremum, size, cross>& rows, const Neighbours& to,
                          uint8_t* upper, uint8_t* lower, int64_t count) {
  constexpr int N = kRegBytes;
  const auto across = [&](int64_t x, auto part) NUQI_FORCED {
    const TwoRows pixels = rows.across(x, part);
    return TwoRows{worst_behind<extremum>(pixels.upper, part),
                   worst_behind<extremum>(pixels.lower, part)};
  };
  const TwoRows first = across(0, Whole{});
  Along<extremum, size> along_upper(first.upper, to), along_lower(first.lower, to);
  const auto push = [&](const TwoRows& next) NUQI_FORCED {
    return TwoRows{along_upper.push(next.upper, to), along_lower.push(next.lower, to)};
  };
  int64_t x = 0;
  for (; x + 2 * N <= count; x += N)
    rows.finish(push(across(x + N, Whole{})), upper, lower, x, Whole{});
  const TwoRows none = {worst<extremum, uint8_t>(), worst<extremum, uint8_t>()};
  if (x + N < count) {
    const First rest = {int(count - x - N)};
    rows.finish(push(across(x + N, rest)), upper, lower, x, Whole{});
    rows.finish(push(none), upper, lower, x + N, rest);
  } else {
    rows.finish(push(none), upper, lower, x, Whole{});
  }
}

// ---- Rows of one register: pixels beyond its ends are replaced by others of the window

template <Extremum extremum, int size>
class AlongOne {
  static constexpr int N = kRegBytes;

 public:
  NUQI_INLINE AlongOne(int count, int channels) {
    const ByteLanes here = lane_bytes(0), end = broadcast<int8_t, N>((int8_t)count);
    const auto on = [&](int lanes) NUQI_FORCED {
      const ByteLanes there = lane_bytes(lanes);
      return select(there < end, there, here);
    };
    const auto back_or = [&](int lanes, const ByteLanes& otherwise) NUQI_FORCED {
      const ByteLanes there = lane_bytes(-lanes);
      return select(there < ByteLanes{}, otherwise, there);
    };
    one_on_ = on(channels);
    two_on_ = on(2 * channels);
    back_ = back_or(channels, here);
    if constexpr (size == 5) back_ = back_or(2 * channels, back_);
  }
  NUQI_INLINE Bytes operator()(const Bytes& pixels) const {
    const Bytes pairs = best<extremum>(pixels, permute_bytes(pixels, one_on_));
    const Bytes result = best<extremum>(pairs, permute_bytes(pairs, back_));
    return size == 3 ? result : best<extremum>(result, permute_bytes(pixels, two_on_));
  }

 private:
  ByteLanes one_on_, two_on_, back_;
};

// ---- All rows

// compute(rows, upper, lower) makes two rows of the result.
template <Extremum extremum, int size, bool cross, class Compute>
NUQI_INLINE void for_row_pairs(const ElementJob<uint8_t>& job, const Compute& compute) {
  for (int64_t y = 0; y < job.height; y += 2) {
    // A last row alone is its own second: the upper one is stored last.
    const int64_t apart = y + 1 < job.height;
    compute(RowPair<extremum, size, cross>(job.rows + y, apart), row_of(job.dst, y),
            row_of(job.dst, y + apart));
  }
}

template <Extremum extremum, int size, bool cross>
NUQI_NOINLINE void narrow_rows(const ElementJob<uint8_t>& job) {
  const AlongOne<extremum, size> along((int)job.count, job.channels);
  const auto walk = [&](auto part) NUQI_FORCED {
    for_row_pairs<extremum, size, cross>(
        job, [&](const auto& rows, uint8_t* upper, uint8_t* lower) NUQI_FORCED {
          const TwoRows pixels = rows.across(0, part);
          rows.finish({along(pixels.upper), along(pixels.lower)}, upper, lower, 0, part);
        });
  };
  job.count == kRegBytes ? walk(Whole{}) : walk(First{int(job.count)});
}

template <Extremum extremum, int size, bool cross>
NUQI_NOINLINE void wide_rows(const ElementJob<uint8_t>& job) {
  const Neighbours to(size, job.channels);
  for_row_pairs<extremum, size, cross>(
      job, [&](const auto& rows, uint8_t* upper, uint8_t* lower)
               NUQI_FORCED { two_rows(rows, to, upper, lower, job.count); });
}

template <Extremum extremum, int size, bool cross>
NUQI_INLINE void row_pairs(const ElementJob<uint8_t>& job) {
  job.count <= kRegBytes ? narrow_rows<extremum, size, cross>(job)
                         : wide_rows<extremum, size, cross>(job);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

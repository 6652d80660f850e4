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

// The lanes from lane `from` on of two registers in a row.
struct Places {
  Bytes::Native at;
  NUQI_INLINE explicit Places(int64_t from) {
    const auto first = lane_numbers<uint8_t>(typename UpTo<kRegBytes>::Type{});
    at = as<uint8_t>(first + broadcast<int8_t, kRegBytes>((int8_t)from)).r[0];
  }
  NUQI_INLINE Bytes operator()(const Bytes& low, const Bytes& high) const {
    return {{machine::permute_bytes(low.r[0], high.r[0], at)}};
  }
};

// Where the neighbours of a register's pixels are found: one and two pixels on, and as far back as a
// window begins.
struct Neighbours {
  Places one_on, two_on, back;

  NUQI_INLINE Neighbours(int size, int64_t channels)
      : one_on(channels), two_on(2 * channels), back(kRegBytes - size / 2 * channels) {}
};

// Windows of `size` pixels around those of one register after the other: pairs of neighbours, of size 5
// two pairs and the last pixel.
template <Extremum extremum, int size>
class Along {
 public:
  NUQI_INLINE explicit Along(const Bytes& first, const Neighbours& to)
      : here_(first), pairs_(worst<extremum, uint8_t>()) {
    // The first pixel is in a pair that begins before it.
    if constexpr (size == 5) pairs_ = to.one_on(pairs_, first);
  }
  // Gives the windows of the register before.
  NUQI_INLINE Bytes push(const Bytes& next, const Neighbours& to) {
    const Bytes pairs = best<extremum>(here_, to.one_on(here_, next));
    Bytes result = best<extremum>(pairs, to.back(pairs_, pairs));
    if constexpr (size == 5) result = best<extremum>(result, to.two_on(here_, next));
    here_ = next;
    pairs_ = pairs;
    return result;
  }

 private:
  Bytes here_, pairs_;
};

// Nothing that an extremum keeps stands behind the pixels.
template <Extremum extremum>
NUQI_INLINE Bytes load_pixels_or_worst(const uint8_t* from, Whole) {
  return load<kRegBytes>(from);
}
template <Extremum extremum>
NUQI_INLINE Bytes load_pixels_or_worst(const uint8_t* from, First part) {
  const Bytes pixels = load<kRegBytes>(from, part);
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
                         NUQI_FORCED { return load_pixels_or_worst<extremum>(from + x, part); };
    Bytes both = row(shared[0]);
    for_each<size - 2>([&](int i) NUQI_FORCED { both = best<extremum>(both, row(shared[i + 1])); });
    return {best<extremum>(both, row(highest)), best<extremum>(both, row(lowest))};
  }
  // What is reduced along the row.
  template <class Part>
  NUQI_INLINE TwoRows across(int64_t x, Part part) const {
    if constexpr (cross)
      return {load_pixels_or_worst<extremum>(shared[size / 2 - 1] + x, part),
              load_pixels_or_worst<extremum>(middle + x, part)};
    else
      return down(x, part);
  }
};

template <Extremum extremum, int size, bool cross>
NUQI_INLINE void two_rows(const RowPair<extremum, size, cross>& rows, const Neighbours& to,
                          uint8_t* upper, uint8_t* lower, int64_t count) {
  constexpr int N = kRegBytes;
  const auto rest = [&](int64_t x) NUQI_FORCED { return First{int(count - x)}; };
  const TwoRows first = count < N ? rows.across(0, rest(0)) : rows.across(0, Whole{});
  Along<extremum, size> along_upper(first.upper, to), along_lower(first.lower, to);
  const auto finish = [&](int64_t x, const TwoRows& next, auto part) NUQI_FORCED {
    TwoRows result = {along_upper.push(next.upper, to), along_lower.push(next.lower, to)};
    if constexpr (cross) {
      const TwoRows column = rows.down(x, part);
      result = {best<extremum>(result.upper, column.upper),
                best<extremum>(result.lower, column.lower)};
    }
    store(lower + x, result.lower, part);
    store(upper + x, result.upper, part);
  };
  int64_t x = 0;
  for (; x + 2 * N <= count; x += N) finish(x, rows.across(x + N, Whole{}), Whole{});
  if (x + N < count) {
    finish(x, rows.across(x + N, rest(x + N)), Whole{});
    x += N;
  }
  const TwoRows none = {worst<extremum, uint8_t>(), worst<extremum, uint8_t>()};
  if (x + N == count)
    finish(x, none, Whole{});
  else
    finish(x, none, rest(x));
}

template <Extremum extremum, int size, bool cross>
NUQI_NOINLINE void row_pairs(const WindowJob<uint8_t>& job) {
  const Neighbours to(size, job.channels);
  for (int64_t y = 0; y < job.height; y += 2) {
    // A last row alone is its own second: the upper one is stored last.
    const int64_t apart = y + 1 < job.height;
    two_rows(RowPair<extremum, size, cross>(job.rows + y, apart), to, row_of(job.dst, y),
             row_of(job.dst, y + apart), job.count);
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

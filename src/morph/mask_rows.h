// Arbitrary masks of bytes, where bytes permute across two registers. Rows of the element that are alike
// are one pattern: what lies below them is reduced down the columns first, then once along the row, in
// registers. Rows are read as they lie.
#pragma once

#include "morph/row_pairs.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr int kMostColumns = 9;

// Calls f for each bit that is set.
template <class F>
NUQI_INLINE void for_bits(uint32_t bits, const F& f) {
  for (; bits != 0; bits &= bits - 1) f(__builtin_ctz(bits));
}

// A bit for each column that these rows have inside, and for each row of the element that is so.
struct Pattern {
  uint32_t columns, rows;
};

struct Patterns {
  int count = 0;
  Pattern of[kSmallHeight];

  NUQI_INLINE explicit Patterns(const ElementJob<uint8_t>& job) {
    const uint8_t* inside = job.inside;
    for (int r = 0; r < job.element.height; ++r) {
      uint32_t columns = 0;
      for (int c = 0; c < job.element.width; ++c, inside += kMaskEntry<uint8_t>)
        columns |= uint32_t{*inside != 0} << c;
      if (columns == 0) continue;
      int i = 0;
      while (i < count && of[i].columns != columns) ++i;
      if (i == count) of[count++] = {columns, 0};
      of[i].rows |= 1u << r;
    }
  }
};

// One by one: GCC 12 fills an array by halves of registers, whose whole is then loaded too early.
template <Extremum extremum, int n>
NUQI_INLINE void start(Bytes (&results)[n]) {
  const Bytes none = worst<extremum, uint8_t>();
  for_each<n>([&](int k) NUQI_FORCED { results[k] = none; });
}

// down[i] becomes what lies below a pattern's rows: load_row(i, r) gives it for one row of the element.
template <Extremum extremum, int n, class Load>
NUQI_INLINE void reduce_down(Bytes (&down)[n], const Pattern& p, const Load& load_row) {
  const int first = __builtin_ctz(p.rows);
  for_each<n>([&](int i) NUQI_FORCED { down[i] = load_row(i, first); });
  for_bits(p.rows & (p.rows - 1), [&](int r) NUQI_FORCED {
    for_each<n>([&](int i) NUQI_FORCED { down[i] = best<extremum>(down[i], load_row(i, r)); });
  });
}

// Some rows of the result at once; below the job's last one is that one again.
constexpr int kRowsAtOnce = 4;

struct FourRows {
  int64_t at[kRowsAtOnce];

  NUQI_INLINE FourRows(int64_t y, int64_t height) {
    for_each<kRowsAtOnce>([&](int k) NUQI_FORCED { at[k] = y + k < height ? y + k : height - 1; });
  }
};

// ---- Places of a pixel's neighbours

NUQI_INLINE ByteLanes pixels_before(const ByteLanes& lanes, int end, int channels) {
  const auto last = broadcast<int8_t, kRegBytes>((int8_t)(end - 1));
  return select(last < lanes, lanes - broadcast<int8_t, kRegBytes>((int8_t)channels), lanes);
}
NUQI_INLINE ByteLanes pixels_behind(const ByteLanes& lanes, int channels) {
  return select(lanes < ByteLanes{}, lanes + broadcast<int8_t, kRegBytes>((int8_t)channels), lanes);
}
// ---- Rows of one register

// Where each column of the element finds its pixels, of so many; copies stand beside them.
struct ColumnPlaces {
  ByteLanes of[kMostColumns];

  NUQI_INLINE ColumnPlaces(const ElementJob<uint8_t>& job, int count) {
    const auto pixel = broadcast<int8_t, kRegBytes>((int8_t)job.channels);
    const auto here = lane_bytes(0);
    of[job.anchor.x] = here;
    ByteLanes at = here;
    for (int c = job.anchor.x + 1; c < job.element.width; ++c)
      of[c] = at = pixels_before(at + pixel, count, job.channels);
    at = here;
    for (int c = job.anchor.x - 1; c >= 0; --c)
      of[c] = at = pixels_behind(at - pixel, job.channels);
  }
};

template <Extremum extremum, class Part>
NUQI_INLINE void narrow_mask(const ElementJob<uint8_t>& job, Part part) {
  const Patterns patterns(job);
  const ColumnPlaces places(job, lane_count<kRegBytes>(part));
  for (int64_t y = 0; y < job.height; y += kRowsAtOnce) {
    const FourRows rows(y, job.height);
    Bytes results[kRowsAtOnce], down[kRowsAtOnce];
    start<extremum>(results);
    for (int i = 0; i < patterns.count; ++i) {
      reduce_down<extremum>(down, patterns.of[i], [&](int k, int r) NUQI_FORCED {
        return load<kRegBytes>(job.rows[rows.at[k] + r], part);
      });
      for_bits(patterns.of[i].columns, [&](int c) NUQI_FORCED {
        for_each<kRowsAtOnce>([&](int k) NUQI_FORCED {
          results[k] = best<extremum>(results[k], permute_bytes(down[k], places.of[c]));
        });
      });
    }
    for_each<kRowsAtOnce>(
        [&](int k) NUQI_FORCED { store(row_of(job.dst, rows.at[k]), results[k], part); });
  }
}

// ---- Rows of several registers

// Where copies are found: of the first pixel, ahead of the first register; of the last one, behind it in
// the last register and the one after that, if that last one holds `count` pixels. The latter in two
// registers, of which the last is the second.
struct Copies {
  ByteLanes ahead, behind, rest;

  NUQI_INLINE Copies(const ElementJob<uint8_t>& job, int count) {
    ByteLanes before = lane_bytes(-kRegBytes), last = lane_bytes(0), next = last;
    // The next register's lanes are counted on from the last one's.
    next = next + broadcast<int8_t, kRegBytes>(kRegBytes);
    for (int i = 0; i < kMostColumns; ++i) before = pixels_behind(before, job.channels);
    for (int i = 0; i < 2 * kMostColumns; ++i) {
      last = pixels_before(last, count, job.channels);
      next = pixels_before(next, count, job.channels);
    }
    const auto second = broadcast<int8_t, kRegBytes>(kRegBytes);
    ahead = before;
    rest = last + second;
    behind = next + second;
  }
};

template <Extremum extremum>
class WideMask {
  static constexpr int N = kRegBytes, kAtOnce = 4;

 public:
  NUQI_INLINE explicit WideMask(const ElementJob<uint8_t>& job)
      : job_(job),
        own_(1u << job.anchor.x),
        patterns_(job),
        rest_((int)((job.count - 1) % N) + 1),
        copies_(job, rest_) {
    for (int c = 0; c < job.element.width; ++c)
      places_[c] = lane_bytes((c - job.anchor.x) * job.channels + (c < job.anchor.x ? N : 0));
  }
  NUQI_INLINE void run() const {
    for (int64_t y = 0; y < job_.height; y += kRowsAtOnce) {
      const FourRows rows(y, job_.height);
      int64_t x = N;
      job_.count < 2 * N ? ends<true, false>(rows, 0) : ends<true, true>(rows, 0);
      for (; x + (kAtOnce + 1) * N <= job_.count; x += kAtOnce * N)
        for (int64_t at = y; at < job_.height && at < y + kRowsAtOnce; ++at) inside(at, x);
      for (; x + 2 * N <= job_.count; x += N) ends<false, true>(rows, x);
      for (; x < job_.count; x += N) ends<false, false>(rows, x);
    }
  }

 private:
  // Registers of a row of which none is at an end.
  NUQI_INLINE void inside(int64_t y, int64_t x) const {
    Bytes results[kAtOnce];
    reduce<kAtOnce, 1>(results, [&](Bytes(&down)[kAtOnce + 2], const Pattern& p) NUQI_FORCED {
      reduce_down<extremum>(down, p, [&](int i, int r) NUQI_FORCED {
        return load<N>(job_.rows[y + r] + x + (i - 1) * N);
      });
    });
    uint8_t* to = row_of(job_.dst, y) + x;
    for_each<kAtOnce>([&](int k) NUQI_FORCED { store(to + k * N, results[k]); });
  }
  // One register of each row: the first or another, with a whole one behind it or maybe not.
  template <bool first, bool whole>
  NUQI_NOINLINE void ends(const FourRows& rows, int64_t x) const {
    const int64_t left = job_.count - x;
    const bool last = !whole && left <= N, next_last = !whole && !last && left < 2 * N;
    const First here = {last ? rest_ : N}, next = {last ? 0 : next_last ? rest_ : N};
    const auto load_some = [&](const uint8_t* from, First part)
                               NUQI_FORCED { return whole ? load<N>(from) : load<N>(from, part); };
    Bytes results[kRowsAtOnce];
    reduce<kRowsAtOnce, 3>(
        results, [&](Bytes(&down)[3 * kRowsAtOnce], const Pattern& p) NUQI_FORCED {
          reduce_down<extremum>(down, p, [&](int i, int r) NUQI_FORCED {
            const uint8_t* from = job_.rows[rows.at[i / 3] + r] + x;
            if (i % 3 == 0) return load<N>(first ? from : from - N);
            return i % 3 == 1 ? load_some(from, here) : load_some(from + N, next);
          });
          for_each<kRowsAtOnce>([&](int k) NUQI_FORCED {
            Bytes &before = down[3 * k], &own = down[3 * k + 1], &behind = down[3 * k + 2];
            if (first) before = permute_bytes(before, copies_.ahead);
            if (last) {
              behind = permute_bytes(before, own, copies_.behind);
              own = permute_bytes(before, own, copies_.rest);
            }
            if (next_last) behind = permute_bytes(own, behind, copies_.rest);
          });
        });
    for_each<kRowsAtOnce>([&](int k) NUQI_FORCED {
      uint8_t* to = row_of(job_.dst, rows.at[k]) + x;
      whole ? store(to, results[k]) : store(to, results[k], here);
    });
  }
  // Register k of the results comes from three of what lies below, from register k * apart on.
  template <int n, int apart, class Load>
  NUQI_INLINE void reduce(Bytes (&results)[n], const Load& load_down) const {
    start<extremum>(results);
    for (int i = 0; i < patterns_.count; ++i) {
      const Pattern& p = patterns_.of[i];
      Bytes down[apart * (n - 1) + 3];
      load_down(down, p);
      const auto take = [&](uint32_t columns, int from) NUQI_FORCED {
        for_bits(columns, [&](int c) NUQI_FORCED {
          for_each<n>([&](int k) NUQI_FORCED {
            const Bytes* at = down + k * apart + from;
            results[k] = best<extremum>(results[k], permute_bytes(at[0], at[1], places_[c]));
          });
        });
      };
      take(p.columns & (own_ - 1), 0);
      take(p.columns & (0 - 2 * own_), 1);
      if (p.columns & own_)
        for_each<n>([&](int k) NUQI_FORCED {
          results[k] = best<extremum>(results[k], down[k * apart + 1]);
        });
    }
  }

  const ElementJob<uint8_t>& job_;
  uint32_t own_;  // the bit of the anchor's column
  Patterns patterns_;
  int rest_;  // pixels in the last register
  Copies copies_;
  ByteLanes places_[kMostColumns];
};

template <Extremum extremum>
NUQI_NOINLINE void mask_rows(const ElementJob<uint8_t>& job) {
  if (job.count > kRegBytes) return WideMask<extremum>(job).run();
  if (job.count == kRegBytes) return narrow_mask<extremum>(job, Whole{});
  narrow_mask<extremum>(job, First{int(job.count)});
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Arbitrary masks of bytes, where bytes permute across two registers. Rows of the element that are alike
// are one pattern: what lies below them is reduced down the columns first, then once along the row, in
// registers. Rows are read as they lie.
#pragma once

#include "morph/row_pairs.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr int kMostColumns = 9;

// Rows of the element that are alike, and their pixels' columns: `before` the anchor, behind it, and
// maybe its own.
struct Pattern {
  int rows = 0, before = 0, behind = 0;
  bool own = false;
  uint8_t row[kSmallHeight], column_before[kMostColumns], column_behind[kMostColumns];
};

struct Patterns {
  int count = 0;
  Pattern of[kSmallHeight];

  NUQI_INLINE explicit Patterns(const WindowJob<uint8_t>& job) {
    constexpr int kEntry = 8;
    uint32_t columns_of[kSmallHeight];
    const uint8_t* inside = job.inside;
    for (int r = 0; r < job.element.height; ++r) {
      uint32_t columns = 0;
      for (int c = 0; c < job.element.width; ++c, inside += kEntry)
        columns |= uint32_t{*inside != 0} << c;
      if (columns == 0) continue;
      int i = 0;
      while (i < count && columns_of[i] != columns) ++i;
      if (i == count) {
        columns_of[count++] = columns;
        add_columns(of[i], columns, job.anchor.x);
      }
      of[i].row[of[i].rows++] = (uint8_t)r;
    }
  }

 private:
  static NUQI_INLINE void add_columns(Pattern& p, uint32_t columns, int anchor) {
    p.own = columns >> anchor & 1;
    for (int c = 0; c < kMostColumns; ++c) {
      if ((columns >> c & 1) == 0 || c == anchor) continue;
      if (c < anchor)
        p.column_before[p.before++] = (uint8_t)c;
      else
        p.column_behind[p.behind++] = (uint8_t)c;
    }
  }
};

using Lanes = Vec<int8_t, kRegBytes>;

NUQI_INLINE Lanes lanes_from(int64_t first) {
  return lane_numbers<uint8_t>(typename UpTo<kRegBytes>::Type{}) +
         broadcast<int8_t, kRegBytes>((int8_t)first);
}
// Lanes outside 0 to end - 1 become those of the same channel that are nearest to them, of those that a
// small element reaches.
NUQI_INLINE Lanes clamped(Lanes lanes, int end, int channels, int steps) {
  const Lanes pixel = broadcast<int8_t, kRegBytes>((int8_t)channels);
  const Lanes last = broadcast<int8_t, kRegBytes>((int8_t)(end - 1));
  for (int i = 0; i < steps; ++i) {
    lanes = select(lanes < Lanes{}, lanes + pixel, lanes);
    lanes = select(last < lanes, lanes - pixel, lanes);
  }
  return lanes;
}

// ---- Rows of one register, four at a time

template <Extremum extremum, class Part>
NUQI_INLINE void mask_narrow(const WindowJob<uint8_t>& job, const Patterns& patterns, Part part) {
  constexpr int kAtOnce = 4;
  const int lanes = lane_count<kRegBytes>(part);
  Bytes places[kMostColumns];
  for (int c = 0; c < job.element.width; ++c)
    places[c] = as<uint8_t>(clamped(lanes_from(int64_t{c - job.anchor.x} * job.channels), lanes,
                                    job.channels, job.element.width));
  for (int64_t y = 0; y < job.height; y += kAtOnce) {
    // Rows below the last one are the last one again.
    int64_t at[kAtOnce];
    for_each<kAtOnce>([&](int k)
                          NUQI_FORCED { at[k] = y + k < job.height ? y + k : job.height - 1; });
    Bytes results[kAtOnce];
    for_each<kAtOnce>([&](int k) NUQI_FORCED { results[k] = worst<extremum, uint8_t>(); });
    for (int i = 0; i < patterns.count; ++i) {
      const Pattern& p = patterns.of[i];
      Bytes down[kAtOnce];
      for_each<kAtOnce>(
          [&](int k) NUQI_FORCED { down[k] = load<kRegBytes>(job.rows[at[k] + p.row[0]], part); });
      for (int r = 1; r < p.rows; ++r)
        for_each<kAtOnce>([&](int k) NUQI_FORCED {
          down[k] = best<extremum>(down[k], load<kRegBytes>(job.rows[at[k] + p.row[r]], part));
        });
      const auto take = [&](int c) NUQI_FORCED {
        for_each<kAtOnce>([&](int k) NUQI_FORCED {
          const Bytes there = {{machine::permute_bytes(down[k].r[0], places[c].r[0])}};
          results[k] = best<extremum>(results[k], there);
        });
      };
      if (p.own)
        for_each<kAtOnce>([&](int k)
                              NUQI_FORCED { results[k] = best<extremum>(results[k], down[k]); });
      for (int j = 0; j < p.before; ++j) take(p.column_before[j]);
      for (int j = 0; j < p.behind; ++j) take(p.column_behind[j]);
    }
    for_each<kAtOnce>([&](int k) NUQI_FORCED { store(row_of(job.dst, at[k]), results[k], part); });
  }
}

// ---- Rows of several registers

// Where copies of the first and the last pixel are found, when the last register holds `rest` pixels.
struct Copies {
  Bytes ahead, behind, rest;

  NUQI_INLINE Copies(const WindowJob<uint8_t>& job, int lanes)
      : ahead(as<uint8_t>(clamped(lanes_from(-kRegBytes), kRegBytes, job.channels, kMostColumns))) {
    const Lanes register_on = lanes_from(kRegBytes) - lanes_from(0);
    const auto in_last = [&](int64_t first) NUQI_FORCED {
      const Lanes pixel = broadcast<int8_t, kRegBytes>((int8_t)job.channels);
      const Lanes last = broadcast<int8_t, kRegBytes>((int8_t)(lanes - 1));
      Lanes to = lanes_from(first);
      for (int i = 0; i < 2 * kMostColumns; ++i) to = select(last < to, to - pixel, to);
      return as<uint8_t>(to + register_on);
    };
    rest = in_last(0);
    behind = in_last(kRegBytes);
  }
};

NUQI_INLINE Bytes permute_two(const Bytes& low, const Bytes& high, const Bytes& places) {
  return {{machine::permute_bytes(low.r[0], high.r[0], places.r[0])}};
}

template <Extremum extremum>
class MaskAcross {
 public:
  NUQI_INLINE explicit MaskAcross(const WindowJob<uint8_t>& job)
      : job_(job),
        patterns_(job),
        rest_((int)((job.count - 1) % kRegBytes) + 1),
        copies_(job, rest_) {
    for (int c = 0; c < job.element.width; ++c) {
      const int64_t from = int64_t{c - job.anchor.x} * job.channels;
      places_[c] = as<uint8_t>(lanes_from(from < 0 ? kRegBytes + from : from));
    }
  }
  NUQI_INLINE void run() const {
    constexpr int N = kRegBytes, kAtOnce = 4;
    for (int64_t y = 0; y < job_.height; ++y) {
      ends<true>(y, 0);
      int64_t x = N;
      for (; x + (kAtOnce + 1) * N <= job_.count; x += kAtOnce * N) inside<kAtOnce>(y, x);
      for (; x + 2 * N <= job_.count; x += N) inside<1>(y, x);
      for (; x < job_.count; x += N) ends<false>(y, x);
    }
  }

 private:
  // What lies below a pattern: load_row(k, row) gives register k of a row.
  template <int n, class Load>
  NUQI_INLINE void reduce_down(Bytes (&down)[n], const Pattern& p, int64_t y,
                               const Load& load_row) const {
    const uint8_t* const* rows = job_.rows + y;
    const auto set = [&](int r, const auto& join) NUQI_FORCED {
      const uint8_t* row = rows[p.row[r]];
      for_each<n>([&](int k) NUQI_FORCED { down[k] = join(down[k], load_row(k, row)); });
    };
    set(0, [](const Bytes&, const Bytes& pixels) NUQI_FORCED { return pixels; });
    for (int r = 1; r < p.rows; ++r)
      set(r, [](const Bytes& a, const Bytes& b) NUQI_FORCED { return best<extremum>(a, b); });
  }
  // n registers, and those around them, of which none is at an end.
  template <int n>
  NUQI_INLINE void inside(int64_t y, int64_t x) const {
    reduce<n>(y, x, Whole{}, [&](Bytes(&down)[n + 2], const Pattern& p) NUQI_FORCED {
      reduce_down(down, p, y, [&](int k, const uint8_t* row) NUQI_FORCED {
        return load<kRegBytes>(row + x + (k - 1) * kRegBytes);
      });
    });
  }
  // The first register, or one whose neighbour is not whole.
  template <bool first>
  NUQI_NOINLINE void ends(int64_t y, int64_t x) const {
    const int64_t left = job_.count - x;
    const bool last = left <= kRegBytes, next_last = !last && left < 2 * kRegBytes;
    const First here = {last ? rest_ : kRegBytes};
    const First next = {last ? 0 : next_last ? rest_ : kRegBytes};
    const auto load_down = [&](Bytes(&down)[3], const Pattern& p) NUQI_FORCED {
      reduce_down(down, p, y, [&](int k, const uint8_t* row) NUQI_FORCED {
        const uint8_t* from = row + x + (k - 1) * kRegBytes;
        return k == 0 ? load<kRegBytes>(first ? from + kRegBytes : from)
                      : load<kRegBytes>(from, k == 1 ? here : next);
      });
      if (first) down[0] = {{machine::permute_bytes(down[0].r[0], copies_.ahead.r[0])}};
      if (last) {
        down[2] = permute_two(down[0], down[1], copies_.behind);
        down[1] = permute_two(down[0], down[1], copies_.rest);
      }
      if (next_last) down[2] = permute_two(down[1], down[2], copies_.rest);
    };
    reduce<1>(y, x, here, load_down);
  }
  template <int n, class Part, class Load>
  NUQI_INLINE void reduce(int64_t y, int64_t x, Part part, const Load& load_down) const {
    Bytes results[n];
    for_each<n>([&](int k) NUQI_FORCED { results[k] = worst<extremum, uint8_t>(); });
    for (int i = 0; i < patterns_.count; ++i) {
      const Pattern& p = patterns_.of[i];
      Bytes down[n + 2];
      load_down(down, p);
      const auto take = [&](int k, const Bytes& pixels)
                            NUQI_FORCED { results[k] = best<extremum>(results[k], pixels); };
      if (p.own) for_each<n>([&](int k) NUQI_FORCED { take(k, down[k + 1]); });
      for (int j = 0; j < p.before; ++j) {
        const Bytes places = places_[p.column_before[j]];
        for_each<n>([&](int k) NUQI_FORCED { take(k, permute_two(down[k], down[k + 1], places)); });
      }
      for (int j = 0; j < p.behind; ++j) {
        const Bytes places = places_[p.column_behind[j]];
        for_each<n>([&](int k)
                        NUQI_FORCED { take(k, permute_two(down[k + 1], down[k + 2], places)); });
      }
    }
    for_each<n>([&](int k) NUQI_FORCED {
      store(row_of(job_.dst, y) + x + k * kRegBytes, results[k], part);
    });
  }

  const WindowJob<uint8_t>& job_;
  Patterns patterns_;
  int rest_;
  Copies copies_;
  Bytes places_[kMostColumns];
};

template <Extremum extremum>
NUQI_NOINLINE void mask_rows(const WindowJob<uint8_t>& job) {
  if (job.count > kRegBytes) return MaskAcross<extremum>(job).run();
  const Patterns patterns(job);
  if (job.count == kRegBytes) return mask_narrow<extremum>(job, patterns, Whole{});
  mask_narrow<extremum>(job, patterns, First{int(job.count)});
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Pixels of a row with their neighbours, and weighted sums of three bytes. A pixel at an end of its row
// is its own neighbour; nothing beyond it is touched.
#pragma once

#include "core/simd/arithmetic.h"
#include "core/simd/memory.h"
#include "core/simd/shuffle.h"

namespace nuqi::NUQI_ISA {
namespace {

// Where a register of pixels lies: away from both ends of its row, or maybe at them.
struct Inside {
  static constexpr bool start = false, end = false;
};
struct AtEnds {
  bool start, end;
};

template <class T>
struct Around {
  Reg<T> left, centre, right;
};

template <class T>
NUQI_INLINE Around<T> load_around(const T* at, Inside, Whole) {
  constexpr int n = Reg<T>::kLanes;
  return {load<n>(at - 1), load<n>(at), load<n>(at + 1)};
}

template <class T, class Part>
NUQI_INLINE Around<T> load_around(const T* at, AtEnds where, Part part) {
  constexpr int n = Reg<T>::kLanes;
  const auto here = load<n>(at, part);
  if constexpr (Machine::kMasks && sizeof(T) == 4) {
    const int lanes = 0xFFFF >> (16 - lane_count<n>(part));
    const auto load_others = [&](const T* from, int lanes) NUQI_FORCED {
      return Reg<T>{{machine::load_or(from, lanes, here.r[0])}};
    };
    return {load_others(at - 1, where.start ? lanes << 1 : lanes), here,
            load_others(at + 1, where.end ? lanes >> 1 : lanes)};
  } else {
    return {where.start ? repeat_first(here) : load<n>(at - 1, part), here,
            where.end ? repeat_last(here, lane_count<n>(part)) : load<n>(at + 1, part)};
  }
}

// ---- left * l + centre * c + right * r, for registers of bytes whose sums have room in 16 bits. The
// sums are in an order of their own, which depends on whether the centre counts, until in_row_order().

// Where the weights add up to 0, adding 128 to every byte changes nothing and leaves none negative.
template <class T, int N>
NUQI_INLINE Vec<uint8_t, N> unsigned_bytes(const Vec<T, N>& a) {
  return kIsSigned<T> ? as<uint8_t>(a) ^ broadcast<uint8_t, N>(128) : as<uint8_t>(a);
}

// By widening them.
template <int l, int c, int r, class T>
NUQI_INLINE Vec<int16_t, kRegBytes> weigh_widened(const Around<T>& p) {
  static_assert(l == r || l == -r);
  const auto left = widen<int16_t>(p.left), right = widen<int16_t>(p.right);
  const auto outer = l == r ? left + right : right - left;
  const auto weighted = r == 1 ? outer : outer * broadcast<int16_t, kRegBytes>(r);
  return c == 0 ? weighted : weighted + widen<int16_t>(p.centre) * broadcast<int16_t, kRegBytes>(c);
}

// By multiply-adds of pairs. Three bytes are one pair of neighbours and one byte of another pair: in
// even columns the first pair begins with the left neighbour, in odd ones with the centre of the pixel
// before.
template <int l, int c, int r, class T>
NUQI_INLINE Vec<int16_t, kRegBytes> weigh_pairs(const Around<T>& p) {
  if constexpr (kIsSigned<T> && (l < 0 || c < 0)) {
    static_assert(l + c + r == 0);
    return weigh_pairs<l, c, r>(
        Around<uint8_t>{unsigned_bytes(p.left), unsigned_bytes(p.centre), unsigned_bytes(p.right)});
  } else if constexpr (c == 0) {
    return multiply_pairs<l, r>(zip_groups(concat(p.left, p.right)));
  } else {
    return concat(multiply_pairs<l, c>(p.left) + multiply_pairs<r, 0>(p.right),
                  multiply_pairs<l, c>(p.centre) + multiply_pairs<0, r>(p.right));
  }
}

template <int l, int c, int r, class T>
NUQI_INLINE Vec<int16_t, kRegBytes> weigh(const Around<T>& p) {
  if constexpr (Machine::kMultipliesBytes)
    return weigh_pairs<l, c, r>(p);
  else
    return weigh_widened<l, c, r>(p);
}

// Where bytes permute across the register: two registers of pairs each, a pixel's neighbours, and the
// pixel twice.
template <class T>
struct Pairs {
  Vec<T, 2 * kRegBytes> neighbours, centre;
};

// Permutes bytes into pairs. The lower half of the pixels is found in a load that begins one pixel
// before them, the upper half in one that begins one pixel after; at an end of the row both loads
// stay inside it, and lanes are permuted instead.
template <class T, class Part>
class PairLoader {
  static constexpr int n = Reg<T>::kLanes;

 public:
  NUQI_INLINE PairLoader(bool start, bool end, Part part) : start_(start), end_(end), part_(part) {
    const auto last = broadcast<uint8_t, n>(uint8_t(lane_count<n>(part) - 1));
    const auto before = broadcast<uint8_t, n>(start);
    const auto after = broadcast<uint8_t, n>(uint8_t(n / 2 - 2 + end));
    const auto lanes = typename UpTo<n>::Type{};
    const auto neighbours = pair_lanes<0, 2>(lanes), centre = pair_lanes<1, 0>(lanes);
    for_each<2>([&](int half) NUQI_FORCED {
      const auto from = [&](const Reg<uint8_t>& first) NUQI_FORCED {
        return min(half == 0 ? max(first, before) - before : first + after, last);
      };
      neighbours_[half] = from(neighbours);
      centre_[half] = from(centre);
    });
  }
  NUQI_INLINE Pairs<T> operator()(const T* at) const {
    const auto low = load<n>(at - !start_, part_), high = load<n>(at + !end_, part_);
    return {{{pick(low, neighbours_[0]), pick(high, neighbours_[1])}},
            {{pick(low, centre_[0]), pick(high, centre_[1])}}};
  }

 private:
  template <int first, int apart, int... I>
  static NUQI_INLINE Reg<uint8_t> pair_lanes(Indices<I...>) {
    return {{Reg<uint8_t>::Native{(first + I / 2 + I % 2 * apart)...}}};
  }
  static NUQI_INLINE auto pick(const Reg<T>& a, const Reg<uint8_t>& lanes) {
    return machine::permute_bytes(a.r[0], lanes.r[0]);
  }

  bool start_, end_;
  Part part_;
  Reg<uint8_t> neighbours_[2], centre_[2];
};

template <int l, int c, int r, class T>
NUQI_INLINE Vec<int16_t, kRegBytes> weigh(const Pairs<T>& p) {
  if constexpr (l < 0) {
    static_assert(l + r == 0 && c == 0);
    return multiply_pairs<l, r>(unsigned_bytes(p.neighbours));
  } else {
    const auto outer = multiply_pairs<l, r>(p.neighbours);
    if constexpr (c < 0)
      return outer - multiply_pairs<-c, 0>(p.centre);
    else
      return outer + multiply_pairs<c, 0>(p.centre);
  }
}

// What weigh() gave, each lane in its place.
template <bool centre>
NUQI_INLINE Vec<int16_t, kRegBytes> in_row_order(const Vec<int16_t, kRegBytes>& sums) {
  if constexpr (Machine::kPermutesBytes || !Machine::kMultipliesBytes)
    return sums;
  else
    return in_order(centre ? zip_groups(sums) : sums);
}

// Loads the pixels of row after row, at the same place in each: what weigh() takes, or Around<T>.
template <class T, class Where, class Part>
NUQI_INLINE auto loader_around(Where where, Part part) {
  if constexpr (Machine::kPermutesBytes && sizeof(T) == 1)
    return PairLoader<T, Part>(where.start, where.end, part);
  else
    return [=](const T* at) NUQI_FORCED { return load_around(at, where, part); };
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

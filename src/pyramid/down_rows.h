// Sums along a row for pyramid levels down: blocks of columns, each with sum<weight>(row), the sums times
// the weight, and store_result(row, sums), which takes those of both directions.
#pragma once

#include "pyramid/sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Bytes

// Of pairs s(2j), s(2j+1): those before, here and after, the latter's first alone.
template <int weight, class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> sum_pairs_around(const Vec<T, N>& before, const Vec<T, N>& here,
                                                 const Vec<T, N>& after) {
  if constexpr (Machine::kMultipliesBytes)
    return multiply_pairs<weight, 4 * weight>(before) +
           multiply_pairs<6 * weight, 4 * weight>(here) + multiply_pairs<weight, 0>(after);
  else
    return times(even_bytes(before) + even_bytes(after), weight) +
           times(odd_bytes(before) + odd_bytes(here), 4 * weight) +
           times(even_bytes(here), 6 * weight);
}

// One channel, away from the edges.
template <class T>
class DownPairs {
 public:
  static constexpr int kSums = 16;

  NUQI_INLINE DownPairs(int64_t x, Whole) : x_(x) {}
  template <int weight>
  NUQI_INLINE Vec<int16_t, kSums> sum(const T* row) const {
    const auto pairs = [&](int ahead) NUQI_FORCED { return load<2 * kSums>(row + 2 * x_ + ahead); };
    return sum_pairs_around<weight>(pairs(-2), pairs(0), pairs(2));
  }
  NUQI_INLINE void store_result(T* row, const Vec<int16_t, kSums>& sums) const {
    store((uint8_t*)row + x_, high_bytes(sums + broadcast<int16_t, kSums>(128)));
  }

 private:
  int64_t x_;
};

// Three channels, away from the edges: sums at all places of a register, those of odd columns for nothing.
template <class T>
class DownTriples {
 public:
  static constexpr int kSums = 9;

  NUQI_INLINE DownTriples(int64_t x, Whole) : x_(x) {}
  template <int weight>
  NUQI_INLINE Vec<int16_t, 16> sum(const T* row) const {
    const auto s = [&](int ahead)
                       NUQI_FORCED { return convert<int16_t>(load<16>(row + 2 * x_ + ahead)); };
    return times(s(-6) + s(6), weight) + times(s(-3) + s(3), 4 * weight) + times(s(0), 6 * weight);
  }
  NUQI_INLINE void store_result(T* row, const Vec<int16_t, 16>& sums) const {
    alignas(16) uint8_t lanes[16];
    store(lanes, high_bytes(sums + broadcast<int16_t>(128)));
    // The fourth byte is written again later.
    for_each<3>([&](int i) NUQI_FORCED { __builtin_memcpy(row + x_ + 3 * i, lanes + 6 * i, 4); });
  }

 private:
  int64_t x_;
};

// Where bytes permute across the register: blocks of one channel or three, also at the row's start or end,
// where one load serves the pairs around it too.
template <int channels, class T, bool start, bool end, class Part>
class DownPermuted {
  static constexpr int n = Reg<T>::kLanes;

 public:
  static constexpr int kSums = kBlockSums<channels, T>;

  NUQI_INLINE DownPermuted(int64_t x, Part part) : x_(x), part_(part) {
    const auto next = pairs_from<2 * channels>(lanes());
    const uint8_t bytes = uint8_t(2 * lane_count<kSums>(part));
    after_ =
        end ? Reg<uint8_t>{{next.r[0] < bytes ? next.r[0] : pairs_from<0>(lanes()).r[0]}} : next;
  }
  template <int weight>
  NUQI_INLINE Vec<int16_t, n / 2> sum(const T* row) const {
    const auto window = [&](int ahead, int more) NUQI_FORCED {
      if constexpr (Part::kWhole && 2 * kSums == n)
        return load<n>(row + 2 * x_ + ahead);
      else
        return load<n>(row + 2 * x_ + ahead, First{2 * lane_count<kSums>(part_) + more});
    };
    const auto pairs = [&](const Reg<T>& from) NUQI_FORCED {
      return channels == 1 ? from : permute_bytes(from, pairs_from<0>(lanes()));
    };
    // Of the pairs after, the first pixels alone count: of three channels, the register still has them.
    constexpr bool kHasAfter = end || channels == 3;
    const auto here = window(0, kHasAfter && !end ? channels : 0);
    return sum_pairs_around<weight>(
        start ? permute_bytes(here, mirrored_pairs(lanes()))
              : pairs(window(start ? 0 : -2 * channels, 0)),
        pairs(here),
        kHasAfter ? permute_bytes(here, after_) : window(kHasAfter ? 0 : 2 * channels, 0));
  }
  NUQI_INLINE void store_result(T* row, const Vec<int16_t, n / 2>& sums) const {
    const auto result = high_bytes(sums + broadcast<int16_t, n / 2>(128));
    if constexpr (Part::kWhole && 2 * kSums == n)
      store((uint8_t*)row + x_, result);
    else
      store((uint8_t*)row + x_, result, First{lane_count<kSums>(part_)});
  }

 private:
  static NUQI_INLINE auto lanes() { return typename UpTo<n>::Type{}; }
  // Pixel 2 * j of each sum's channel, `ahead` bytes later, and the one behind it.
  static constexpr int place(int lane) {
    return lane / 2 / channels * 2 * channels + lane / 2 % channels + lane % 2 * channels;
  }
  template <int ahead, int... I>
  static NUQI_INLINE Reg<uint8_t> pairs_from(Indices<I...>) {
    return {{typename Reg<uint8_t>::Native{uint8_t(place(I) + ahead)...}}};
  }
  // The pairs before: that of the row's first column is the pixels 2 and 1.
  template <int... I>
  static NUQI_INLINE Reg<uint8_t> mirrored_pairs(Indices<I...>) {
    return {{typename Reg<uint8_t>::Native{
        uint8_t(I / 2 < channels ? I / 2 + (2 - I % 2) * channels : place(I) - 2 * channels)...}}};
  }

  int64_t x_;
  Part part_;
  Reg<uint8_t> after_;  // at the end, the last column's own pixel again
};

// ---- Floats

// Floats are added in the contract's order.
template <class S>
NUQI_INLINE S five_taps(const S& a, const S& b, const S& c, const S& d, const S& e, Place place) {
  if (place.first && place.last) return times(c + d, 8);
  if (place.first) return times(times(c, 3) + times(d, 4) + e, 2);
  const S before = a + times(b + d, 4);
  return place.last ? before + times(c, 7) : before + times(c, 6) + e;
}

// By lane permutations of two registers. Where there are masks also at the row's start or end, where one
// load serves the pixels around it too, and the first or last pixel is summed once more in its own way.
template <int channels, bool start, bool end, class Part>
class DownFloats {
  static constexpr int n = Reg<float>::kLanes;

 public:
  static constexpr int kSums = kBlockSums<channels, float>;

  NUQI_INLINE DownFloats(int64_t x, Part part) : x_(x), part_(part) {}
  template <int>
  NUQI_INLINE Reg<float> sum(const float* row) const {
    const Window here = window(row);
    const Window before = start ? here : window(row - (start ? 0 : 2 * channels));
    const Window after = end ? here : window(row + (end ? 0 : 2 * channels));
    constexpr int kBack = start ? -2 * channels : 0, kAhead = end ? 2 * channels : 0;
    const auto a = take<kBack>(before), b = take<kBack + channels>(before);
    const auto c = take<0>(here), d = take<channels>(here), e = take<kAhead>(after);
    auto sums = five_taps(a, b, c, d, e, kInside);
    if (start)
      sums = select(lanes_below<float, n>(channels), five_taps(a, b, c, d, e, {true, false}), sums);
    if (end)
      sums = select(lanes_below<float, n>(lane_count<kSums>(part_) - channels), sums,
                    five_taps(a, b, c, d, e, {false, true}));
    return sums;
  }
  NUQI_INLINE void store_result(float* row, const Reg<float>& sums) const {
    const auto result = sums * broadcast<float, n>(0.00390625f);
    if constexpr (kWhole)
      store(row + x_, result);
    else
      store(row + x_, result, First{lane_count<kSums>(part_)});
  }

 private:
  static constexpr bool kWhole = Part::kWhole && kSums == n;
  struct Window {
    Reg<float> low, high;
  };

  NUQI_INLINE Window window(const float* row) const {
    const float* const from = row + 2 * x_;
    if constexpr (kWhole) {
      return {load<n>(from), load<n>(from + n)};
    } else {
      const First all = {2 * lane_count<kSums>(part_)};
      return {load<n>(from, part_from<n>(all, 0)), load<n>(from + n, part_from<n>(all, n))};
    }
  }
  // The even pixels of a window that begins `first` elements later.
  template <int first>
  static NUQI_INLINE Reg<float> take(const Window& window) {
    return take_at<first>(window, typename UpTo<n>::Type{});
  }
  template <int first, int... I>
  static NUQI_INLINE Reg<float> take_at(const Window& window, Indices<I...>) {
    constexpr auto place = [](int lane) {
      return (lane / channels * 2 * channels + lane % channels + first + 2 * n) % (2 * n);
    };
    return {{__builtin_shufflevector(window.low.r[0], window.high.r[0], place(I)...)}};
  }

  int64_t x_;
  Part part_;
};

// A pixel of three channels, as it lies, away from the edges.
class DownFloatTriple {
 public:
  static constexpr int kSums = 3;

  NUQI_INLINE DownFloatTriple(int64_t x, Whole) : x_(x) {}
  template <int>
  NUQI_INLINE Vec<float, 4> sum(const float* row) const {
    const auto s = [&](int ahead) NUQI_FORCED { return load<4>(row + 2 * x_ + ahead); };
    return five_taps(s(-6), s(-3), s(0), s(3), s(6), kInside);
  }
  NUQI_INLINE void store_result(float* row, const Vec<float, 4>& sums) const {
    store(row + x_, sums * broadcast<float, 4>(0.00390625f));
  }

 private:
  int64_t x_;
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

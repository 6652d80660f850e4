// Sums along a row for pyramid levels up: blocks of columns, each with sums(row), those of even and odd
// columns, and store_result(row, sums), which takes those of both directions.
#pragma once

#include "pyramid/sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// Of three neighbours in either direction, the sums at b and between b and c.
template <class S>
struct UpSums {
  S even, odd;
};

template <class S>
NUQI_INLINE UpSums<S> three_taps(const S& a, const S& b, const S& c) {
  return {a + c + times(b, 6), times(b + c, 4)};
}
// Floats are added in the contract's order.
template <class S>
NUQI_INLINE UpSums<S> float_taps(const S& a, const S& b, const S& c, Place place) {
  if (place.first && place.last) return {times(b, 8), times(b, 8)};
  if (place.last) return {a + times(b, 7), times(b, 8)};
  const S odd = times(b + c, 4);
  return {place.first ? times(times(b, 3) + c, 2) : a + times(b, 6) + c, odd};
}

// ---- Bytes

// Sums along a row are 16 times as large, and 64 more: so much that a result, 64 times a pixel by its
// weights, lies in the upper byte, rounded. Signed bytes count from -128, so that no sum is negative.
template <class T, int N>
NUQI_INLINE UpSums<Vec<uint16_t, N>> offset(const Vec<int16_t, N>& even,
                                            const Vec<int16_t, N>& odd) {
  const auto by = broadcast<int16_t, N>(64 + (kIsSigned<T> ? 16 * 8 * 128 : 0));
  return {as<uint16_t>(even + by), as<uint16_t>(odd + by)};
}
template <class T, int N>
NUQI_INLINE Vec<uint8_t, N> without_offset(const Vec<uint8_t, N>& a) {
  return kIsSigned<T> ? a ^ broadcast<uint8_t, N>(128) : a;
}
// The averages are exact: a, b and c are multiples of 16, but for an offset common to all.
template <int N>
NUQI_INLINE UpSums<Vec<uint16_t, N>> offset_taps(const Vec<uint16_t, N>& a,
                                                 const Vec<uint16_t, N>& b,
                                                 const Vec<uint16_t, N>& c) {
  return {average(average(a, c), b) + b, b + c};
}

// Away from the edges.
template <int channels, class T>
class UpWidened {
 public:
  static constexpr int kSums = 16 / channels * channels;

  NUQI_INLINE UpWidened(int64_t x, Whole) : x_(x) {}
  NUQI_INLINE UpSums<Px<uint16_t>> sums(const T* row) const {
    const auto s = [&](int ahead)
                       NUQI_FORCED { return convert<int16_t>(load<16>(row + x_ + ahead)); };
    const auto [even, odd] = three_taps(s(-channels), s(0), s(channels));
    return offset<T>(times(even, 16), times(odd, 16));
  }
  NUQI_INLINE void store_result(T* row, const UpSums<Px<uint16_t>>& sums) const {
    uint8_t* const to = (uint8_t*)row + 2 * x_;
    const auto even = without_offset<T>(high_bytes(sums.even));
    const auto odd = without_offset<T>(high_bytes(sums.odd));
    if constexpr (channels == 1) {
      const auto lanes = typename UpTo<16>::Type{};
      store(to, Px<uint8_t>{{zip_half<0>(even.r[0], odd.r[0], lanes)}});
      store(to + 16, Px<uint8_t>{{zip_half<1>(even.r[0], odd.r[0], lanes)}});
    } else {
      alignas(16) uint8_t lanes[2][16];
      store(lanes[0], even);
      store(lanes[1], odd);
      for_each<10>([&](int i)
                       NUQI_FORCED { __builtin_memcpy(to + 3 * i, lanes[i % 2] + i / 2 * 3, 4); });
    }
  }

 private:
  int64_t x_;
};

// Where bytes permute across the register: blocks of one channel or three, also at the row's start or end.
template <int channels, class T, bool start, bool end, class Part>
class UpPermuted {
  static constexpr int n = Reg<T>::kLanes;
  using Sums = Vec<uint16_t, n / 2>;

 public:
  static constexpr int kSums = kBlockSums<channels, T>;

  NUQI_INLINE UpPermuted(int64_t x, Part part) : x_(x), part_(part) {
    left_ = start ? inside(mirrored_pairs(lanes())) : pairs_from<0>(lanes());
    right_ = inside(pairs_from<kBefore>(lanes()));
  }
  NUQI_INLINE UpSums<Sums> sums(const T* row) const {
    const auto window = load<n>(row + x_ - kBefore, First{bytes()});
    const Reg<T> left = permute_bytes(window, left_), right = permute_bytes(window, right_);
    return offset<T>(multiply_pairs<16, 48>(left) + multiply_pairs<48, 16>(right),
                     multiply_pairs<64, 64>(right));
  }
  NUQI_INLINE void store_result(T* row, const UpSums<Sums>& sums) const {
    const auto [even, odd] = sums;
    const auto result = without_offset<T>(permute_bytes(
        lanes_as<uint8_t>(even), lanes_as<uint8_t>(odd), high_bytes_in_turns(lanes())));
    if constexpr (Part::kWhole && 2 * kSums == n)
      store((uint8_t*)row + 2 * x_, result);
    else
      store((uint8_t*)row + 2 * x_, result, First{2 * lane_count<kSums>(part_)});
  }

 private:
  static constexpr int kBefore = start ? 0 : channels;

  static NUQI_INLINE auto lanes() { return typename UpTo<n>::Type{}; }
  // Of the window that all pairs come from.
  NUQI_INLINE int bytes() const {
    return kBefore + lane_count<kSums>(part_) + (end ? 0 : channels);
  }
  // Beyond the last pixel stands that one again, before the first the second, if there is one.
  NUQI_INLINE Reg<uint8_t> inside(const Reg<uint8_t>& places) const {
    const auto& p = places.r[0];
    return {{p < uint8_t(bytes()) ? p : p - uint8_t(channels)}};
  }
  // The element of each sum, `ahead` bytes later, and that of the next pixel.
  template <int ahead, int... I>
  static NUQI_INLINE Reg<uint8_t> pairs_from(Indices<I...>) {
    return {{typename Reg<uint8_t>::Native{uint8_t(I / 2 + I % 2 * channels + ahead)...}}};
  }
  // That of the pixel before, in the first pixel that of the next, and the sum's own.
  template <int... I>
  static NUQI_INLINE Reg<uint8_t> mirrored_pairs(Indices<I...>) {
    return {{typename Reg<uint8_t>::Native{uint8_t(I % 2 == 1         ? I / 2
                                                   : I / 2 < channels ? I / 2 + channels
                                                                      : I / 2 - channels)...}}};
  }
  // Pixels of two registers of sums in turns.
  template <int... I>
  static NUQI_INLINE Reg<uint8_t> high_bytes_in_turns(Indices<I...>) {
    return {
        {typename Reg<uint8_t>::Native{uint8_t(2 * (I / (2 * channels) * channels + I % channels) +
                                               1 + (I / channels % 2 == 0 ? 0 : n))...}}};
  }

  int64_t x_;
  Part part_;
  Reg<uint8_t> left_, right_;
};

// ---- Floats

// Blocks of N lanes; of three channels, whole pixels. Where there are masks also at the row's start or end,
// where the first or last pixel is summed once more in its own way.
template <int channels, int N, bool start, bool end, class Part>
class UpFloats {
 public:
  static constexpr int kSums = N / channels * channels;

  NUQI_INLINE UpFloats(int64_t x, Part part) : x_(x), part_(part) {}
  NUQI_INLINE UpSums<Vec<float, N>> sums(const float* row) const {
    const auto s = [&](int ahead) NUQI_FORCED {
      if constexpr (kWhole)
        return load<N>(row + x_ + ahead);
      else
        return load<N>(row + x_ + ahead, First{lane_count<kSums>(part_)});
    };
    const auto b = s(0);
    const auto a = start ? lanes_up<channels>(b, b) : s(start ? 0 : -channels);
    const auto c = end ? lanes_down<channels>(b, b) : s(end ? 0 : channels);
    auto sums = float_taps(a, b, c, kInside);
    if (start)
      sums.even = select(lanes_below<float, N>(channels), float_taps(a, b, c, {true, false}).even,
                         sums.even);
    if (end) {
      const auto others = lanes_below<float, N>(lane_count<kSums>(part_) - channels);
      const auto last = float_taps(a, b, c, {false, true});
      sums = {select(others, sums.even, last.even), select(others, sums.odd, last.odd)};
    }
    return sums;
  }
  NUQI_INLINE void store_result(float* row, const UpSums<Vec<float, N>>& sums) const {
    const auto scale = broadcast<float, N>(0.015625f);
    const auto even = sums.even * scale, odd = sums.odd * scale;
    float* const to = row + 2 * x_;
    if constexpr (N == 4 && channels == 3) {  // the fourth lane is written again later
      store(to, even);
      store(to + 3, odd);
    } else {
      const auto lanes = typename UpTo<N>::Type{};
      const auto low = in_turns<0>(even, odd, lanes), high = in_turns<N>(even, odd, lanes);
      if constexpr (kWhole) {
        store(to, low);
        store(to + N, high);
      } else {
        const First all = {2 * lane_count<kSums>(part_)};
        store(to, low, part_from<N>(all, 0));
        store(to + N, high, part_from<N>(all, N));
      }
    }
  }

 private:
  static constexpr bool kWhole = Part::kWhole && (kSums == N || !Machine::kMasks);

  // Pixels in turns: lanes `first` and on of the result.
  template <int first, int... I>
  static NUQI_INLINE Vec<float, N> in_turns(const Vec<float, N>& even, const Vec<float, N>& odd,
                                            Indices<I...>) {
    constexpr auto place = [](int i) {
      return (i / (2 * channels) * channels + i % channels) % N + (i / channels % 2 == 0 ? 0 : N);
    };
    return {{__builtin_shufflevector(even.r[0], odd.r[0], place(first + I)...)}};
  }

  int64_t x_;
  Part part_;
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

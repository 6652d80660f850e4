// From vectors to fewer lanes: bits of comparisons, horizontal reductions, sums of neighbouring lanes;
// and accumulators of bytes.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// A bit for each lane where a is below, or equals, b, the first lane's in the lowest place.
template <class T, int N>
NUQI_INLINE uint64_t bits_below(const Vec<T, N>& a, const Vec<T, N>& b) {
  uint64_t bits = 0;
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    bits |= machine::bits(machine::below(a.r[i], b.r[i])) << i * Vec<T, N>::kLanesPerReg;
  });
  return bits;
}
template <class T, int N>
NUQI_INLINE uint64_t bits_equal(const Vec<T, N>& a, const Vec<T, N>& b) {
  uint64_t bits = 0;
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    bits |= machine::bits(machine::equal(a.r[i], b.r[i])) << i * Vec<T, N>::kLanesPerReg;
  });
  return bits;
}
// A bit for each lane where a is below or above b: with a NaN neither holds.
template <class T, int N>
NUQI_INLINE uint64_t bits_apart(const Vec<T, N>& a, const Vec<T, N>& b) {
  uint64_t bits = 0;
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    using Predicate = decltype(machine::below(a.r[i], b.r[i]));
    const Predicate apart = machine::below(a.r[i], b.r[i]) | machine::below(b.r[i], a.r[i]);
    bits |= machine::bits(apart) << i * Vec<T, N>::kLanesPerReg;
  });
  return bits;
}

// Whether any bit is set.
template <class T, int N>
NUQI_INLINE bool any(const Vec<T, N>& a) {
  if constexpr (Vec<T, N>::kRegs > 1) {
    using Half = Vec<T, N / 2>;
    return any(generate<Half>([&](int i) NUQI_FORCED { return a.r[i] | a.r[Half::kRegs + i]; }));
  } else {
    return machine::any(a.r[0]);
  }
}

// ---- Horizontal reductions

// The lanes from I + Down on; zeros follow them.
template <int Down, class Native, int... I>
NUQI_INLINE Native lanes_from(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, Native{}, (I + Down)...);
}
template <int Lanes, class T, int N, class Op>
NUQI_INLINE T reduce_first(const Vec<T, N>& a, const Op& op) {
  if constexpr (Lanes == 1) {
    return a.r[0][0];
  } else {
    using All = typename UpTo<N>::Type;
    return reduce_first<Lanes / 2>(op(a, Vec<T, N>{{lanes_from<Lanes / 2>(a.r[0], All{})}}), op);
  }
}
// op of the upper half of the lanes and the lower one, until one lane is left: one order everywhere.
template <class T, int N, class Op>
NUQI_INLINE T reduce(const Vec<T, N>& a, const Op& op) {
  using V = Vec<T, N>;
  using Half = Vec<T, N / 2>;
  if constexpr (V::kBytes == 16) {
    return reduce_first<N>(a, op);
  } else if constexpr (V::kRegs == 1) {
    using Lanes = typename UpTo<N / 2>::Type;
    return reduce(op(Half{{low_half(a.r[0], Lanes{})}}, Half{{high_half(a.r[0], Lanes{})}}), op);
  } else {
    return reduce(op(generate<Half>([&](int i) NUQI_FORCED { return a.r[i]; }),
                     generate<Half>([&](int i) NUQI_FORCED { return a.r[Half::kRegs + i]; })),
                  op);
  }
}
template <class T, int N>
NUQI_INLINE T reduce_add(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return x + y; });
}
template <class T, int N>
NUQI_INLINE T reduce_min(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return min(x, y); });
}
template <class T, int N>
NUQI_INLINE T reduce_max(const Vec<T, N>& a) {
  return reduce(a, [](const auto& x, const auto& y) NUQI_FORCED { return max(x, y); });
}

// The sums of two neighbours each, in lanes of twice the size.
template <class To, class From, int N>
NUQI_INLINE Vec<To, N / 2> sum_pairs(const Vec<From, N>& a) {
  static_assert(sizeof(To) == 2 * sizeof(From) && kIsSigned<To> == kIsSigned<From>);
  const Vec<To, N / 2> pairs = lanes_as<To>(a);
  constexpr int kBits = 8 * sizeof(From);
  return ((pairs << kBits) >> kBits) + (pairs >> kBits);
}

// The sums of eight neighbours each.
template <int N>
NUQI_INLINE Vec<uint64_t, N / 8> sum_eights(const Vec<uint8_t, N>& a) {
  return generate<Vec<uint64_t, N / 8>>([&](int i)
                                            NUQI_FORCED { return machine::sum_eights(a.r[i]); });
}

// The sums of two neighbours' products each.
template <int N>
NUQI_INLINE Vec<int32_t, N / 2> dot_pairs(const Vec<int16_t, N>& a, const Vec<int16_t, N>& b) {
  return generate<Vec<int32_t, N / 2>>(
      [&](int i) NUQI_FORCED { return machine::dot_pairs(a.r[i], b.r[i]); });
}

// ---- Accumulators of bytes

// Running sums of bytes and of their squares, by dot products of bytes.
template <class T, bool squares>
class ByteSumsByDots {
 public:
  static constexpr int kTurns = 4;  // accumulators, to hide the dot product's latency of 5 cycles
  static constexpr int kRoom = 16384;  // additions of extremes that a 32-bit lane holds

  // Makes room for `blocks` additions, kRoom at most.
  NUQI_INLINE void reserve(int blocks) {
    if (used_ + blocks > kRoom) collect();
    used_ += blocks;
  }
  NUQI_INLINE void add(const Reg<T>& a, int turn) {
    // The dot product's factors are an unsigned and a signed byte: x + 128 and x, or x and x - 128.
    const auto one = broadcast<int8_t, Reg<T>::kLanes>(1);
    const auto other = a ^ broadcast<T, Reg<T>::kLanes>(T(128));
    if constexpr (kIsSigned<T>) {
      add_dots(sums_.r[turn], as<uint8_t>(one), a);
      if constexpr (squares) add_dots(products_.r[turn], as<uint8_t>(other), a);
    } else {
      add_dots(sums_.r[turn], a, one);
      if constexpr (squares) add_dots(products_.r[turn], a, as<int8_t>(other));
    }
  }
  NUQI_INLINE void collect() {
    const int64_t sum = reduce_add(sum_pairs<int64_t>(sums_));
    sum_ += sum;
    squares_ += reduce_add(sum_pairs<int64_t>(products_)) + (kIsSigned<T> ? -128 : 128) * sum;
    sums_ = products_ = {};
    used_ = 0;
  }
  NUQI_INLINE int64_t sum() const { return sum_; }
  NUQI_INLINE int64_t squares_sum() const { return squares_; }

 private:
  using Sums = Vec<int32_t, kRegBytes / 4 * kTurns>;
  static NUQI_INLINE void add_dots(Sums::Native& sums, const Reg<uint8_t>& a,
                                   const Reg<int8_t>& b) {
    sums = machine::add_dots(sums, a.r[0], b.r[0]);
  }

  Sums sums_ = {}, products_ = {};
  int64_t sum_ = 0, squares_ = 0;
  int used_ = 0;
};

// The same by sums of eight bytes, and dot products of pairs of 16-bit lanes.
template <class T, bool squares>
class ByteSumsByPairs {
 public:
  static constexpr int kTurns = 1;
  static constexpr int kRoom = 16384;

  NUQI_INLINE void reserve(int blocks) {
    if (used_ + blocks > kRoom) collect();
    used_ += blocks;
  }
  NUQI_INLINE void add(const Reg<T>& a, int) {
    // Signed bytes are summed as x + 128.
    const auto x = as<uint8_t>(kIsSigned<T> ? a ^ broadcast<T, Reg<T>::kLanes>(T(128)) : a);
    sums_ = sums_ + sum_eights(x);
    if constexpr (squares) {
      const auto even = even_bytes(x), odd = odd_bytes(x);
      squares_lanes_ = squares_lanes_ + as<uint32_t>(dot_pairs(even, even) + dot_pairs(odd, odd));
    }
  }
  NUQI_INLINE void collect() {
    const int64_t lanes = kIsSigned<T> ? int64_t{used_} * Reg<T>::kLanes : 0;
    const int64_t sum = static_cast<int64_t>(reduce_add(sums_));
    sum_ += sum - 128 * lanes;
    squares_ += static_cast<int64_t>(reduce_add(sum_pairs<uint64_t>(squares_lanes_)));
    if (kIsSigned<T>) squares_ += 16384 * lanes - 256 * sum;
    sums_ = {};
    squares_lanes_ = {};
    used_ = 0;
  }
  NUQI_INLINE int64_t sum() const { return sum_; }
  NUQI_INLINE int64_t squares_sum() const { return squares_; }

 private:
  Reg<uint64_t> sums_ = {};
  Reg<uint32_t> squares_lanes_ = {};
  int64_t sum_ = 0, squares_ = 0;
  int used_ = 0;
};

template <class T, bool squares>
using ByteSums = typename IfElse<Machine::kDotsBytes, ByteSumsByDots<T, squares>,
                                 ByteSumsByPairs<T, squares>>::Type;

}  // namespace
}  // namespace nuqi::NUQI_ISA

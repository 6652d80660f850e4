// Lane permutations: by one place, and interleaving two registers.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

// 0, 1, 2, ... as integers of T's size.
template <class T, int... I>
NUQI_INLINE Mask<T, int{sizeof...(I)}> lane_numbers(Indices<I...>) {
  return {{typename Mask<T, int{sizeof...(I)}>::Native{I...}}};
}

// The first n lanes.
template <class T, int N>
NUQI_INLINE Mask<T, N> lanes_below(int n) {
  using Number = typename Mask<T, N>::Lane;
  return lane_numbers<T>(typename UpTo<N>::Type{}) < broadcast<Number, N>((Number)n);
}

// The bytes of a register, or of two in a row, from these places; where bytes permute across registers.
template <class T, class P, int N>
NUQI_INLINE Vec<T, N> permute_bytes(const Vec<T, N>& a, const Vec<P, N>& places) {
  return {{machine::permute_bytes(a.r[0], as<uint8_t>(places).r[0])}};
}
template <class T, class P, int N>
NUQI_INLINE Vec<T, N> permute_bytes(const Vec<T, N>& low, const Vec<T, N>& high,
                                    const Vec<P, N>& places) {
  return {{machine::permute_bytes(low.r[0], high.r[0], as<uint8_t>(places).r[0])}};
}

// Shifts in a zero: one instruction everywhere, while GCC 12 expands other byte shuffles to fifty on SSE2.
template <class Native, int... I>
NUQI_INLINE Native one_up(const Native& a, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, Native{}, (I == 0 ? n : I - 1)...);
}
template <class Native, int... I>
NUQI_INLINE Native one_down(const Native& a, Indices<I...>) {
  return __builtin_shufflevector(a, Native{}, (I + 1)...);
}

// One lane up: a0 a0 a1 a2 ...
template <class T, int N>
NUQI_INLINE Vec<T, N> repeat_first(const Vec<T, N>& a) {
  static_assert(Vec<T, N>::kRegs == 1);
  const auto lanes = typename UpTo<N>::Type{};
  return select(lane_numbers<T>(lanes) == Mask<T, N>{}, a, Vec<T, N>{{one_up(a.r[0], lanes)}});
}
// One lane down, of the first n: a1 ... a(n - 2) a(n - 1) a(n - 1).
template <class T, int N>
NUQI_INLINE Vec<T, N> repeat_last(const Vec<T, N>& a, int n) {
  static_assert(Vec<T, N>::kRegs == 1);
  using Number = typename Mask<T, N>::Lane;
  const auto lanes = typename UpTo<N>::Type{};
  const auto last = broadcast<Number, N>(static_cast<Number>(n - 1));
  return select(lane_numbers<T>(lanes) == last, a, Vec<T, N>{{one_down(a.r[0], lanes)}});
}

// k lanes up, or down: the last, or the first, k lanes of `in` come in at the other end.
template <int k, class Native, int... I>
NUQI_INLINE Native lanes_moved(const Native& a, const Native& b, Indices<I...>) {
  return __builtin_shufflevector(a, b, (k + I)...);
}
template <int k, class T, int N>
NUQI_INLINE Vec<T, N> lanes_up(const Vec<T, N>& a, const Vec<T, N>& in) {
  static_assert(Vec<T, N>::kRegs == 1);
  return {{lanes_moved<N - k>(in.r[0], a.r[0], typename UpTo<N>::Type{})}};
}
template <int k, class T, int N>
NUQI_INLINE Vec<T, N> lanes_down(const Vec<T, N>& a, const Vec<T, N>& in) {
  static_assert(Vec<T, N>::kRegs == 1);
  return {{lanes_moved<k>(a.r[0], in.r[0], typename UpTo<N>::Type{})}};
}

template <class Native, int... I>
NUQI_INLINE Native last_lane(const Native& a, Indices<I...>) {
  constexpr int last = sizeof...(I) - 1;
  return __builtin_shufflevector(a, a, (I < last ? last : I)...);
}
// Each lane and those before it, added up.
template <class T, int N>
NUQI_INLINE Vec<T, N> running_sums(const Vec<T, N>& a) {
  constexpr int n = Vec<T, N>::kLanesPerReg;
  const auto lanes = typename UpTo<n>::Type{};
  const typename Vec<T, N>::Native zero = {};
  auto before = zero;
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED {
    auto sum = a.r[i];
    sum += lanes_moved<n - 1>(zero, sum, lanes);
    sum += lanes_moved<n - 2>(zero, sum, lanes);
    if constexpr (n > 4) sum += lanes_moved<n - 4>(zero, sum, lanes);
    if constexpr (n > 8) sum += lanes_moved<n - 8>(zero, sum, lanes);
    sum += before;
    before = last_lane(sum, lanes);
    return sum;
  });
}
// The last lane in every one.
template <class T, int N>
NUQI_INLINE Vec<T, N> last_everywhere(const Vec<T, N>& a) {
  using V = Vec<T, N>;
  return generate<V>([&](int) NUQI_FORCED {
    return last_lane(a.r[V::kRegs - 1], typename UpTo<V::kLanesPerReg>::Type{});
  });
}

// Two vectors of one register as one of two.
template <class T, int N>
NUQI_INLINE Vec<T, 2 * N> concat(const Vec<T, N>& a, const Vec<T, N>& b) {
  static_assert(Vec<T, 2 * N>::kRegs == 2);
  return {{a.r[0], b.r[0]}};
}

// The lanes of two vectors interleaved: a0 b0 a1 b1 ...
template <class T, int N>
NUQI_INLINE Vec<T, 2 * N> zip(const Vec<T, N>& a, const Vec<T, N>& b) {
  using Out = Vec<T, 2 * N>;
  if constexpr (Out::kRegs == Vec<T, N>::kRegs)
    return {{(typename Out::Native)machine::zip(a.r[0], b.r[0])}};
  else
    return generate<Out>([&](int i) NUQI_FORCED {
      const typename UpTo<Out::kLanesPerReg>::Type lanes;
      return i % 2 == 0 ? zip_low(a.r[i / 2], b.r[i / 2], lanes)
                        : zip_high(a.r[i / 2], b.r[i / 2], lanes);
    });
}

// The lanes of two registers interleaved, a0 b0 a1 b1 ..., within groups of sixteen bytes: the first
// register gets the lower halves of all groups, the second one the upper halves.
template <class T, int N>
NUQI_INLINE Vec<T, N> zip_groups(const Vec<T, N>& a) {
  static_assert(Vec<T, N>::kRegs == 2);
  const auto lanes = typename UpTo<N / 2>::Type{};
  return {{zip_half<0>(a.r[0], a.r[1], lanes), zip_half<1>(a.r[0], a.r[1], lanes)}};
}

// Undoes the grouping: the first groups of both registers, then the second ones, and so on.
template <int half, class Native, int... I>
NUQI_INLINE Native order_half(const Native& a, const Native& b, Indices<I...>) {
  typedef int64_t Halves __attribute__((vector_size(sizeof(Native))));
  constexpr int n = sizeof...(I);
  return (Native)__builtin_shufflevector((Halves)a, (Halves)b,
                                         (half * n / 2 + I / 4 * 2 + I % 2 + I / 2 % 2 * n)...);
}
template <class T, int N>
NUQI_INLINE Vec<T, N> in_order(const Vec<T, N>& a) {
  using Native = typename Vec<T, N>::Native;
  static_assert(Vec<T, N>::kRegs == 2);
  if constexpr (sizeof(Native) == 16) {
    return a;
  } else {
    const auto halves = typename UpTo<sizeof(Native) / 8>::Type{};
    return {{order_half<0>(a.r[0], a.r[1], halves), order_half<1>(a.r[0], a.r[1], halves)}};
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

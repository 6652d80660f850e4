// Vectors of lanes: as many native registers as that takes, with operators, comparisons and choices.
#pragma once

#include "core/simd/machine.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr int kRegBytes = Machine::kRegBytes;

// N lanes of T. Sixteen bytes at least: GCC 12 turns narrower vectors into scalar code.
template <class T, int N>
struct Vec {
  using Lane = T;
  static constexpr int kLanes = N;
  static constexpr int kBytes = N * int{sizeof(T)};
  static_assert(kBytes >= 16);
  static constexpr int kRegs = kBytes > kRegBytes ? kBytes / kRegBytes : 1;
  static constexpr int kLanesPerReg = N / kRegs;
  using Native = typename NativeOf<T, kBytes / kRegs>::Type;

  Native r[kRegs];
};

// Sixteen lanes on every machine, so that sums do not depend on the machine.
template <class T>
using Px = Vec<T, 16>;

// One native register: for integers, where the number of lanes cannot show in the result.
template <class T>
using Reg = Vec<T, kRegBytes / int{sizeof(T)}>;

// What comparing vectors of T gives: lanes with all bits set, or none.
template <class T, int N>
using Mask = Vec<typename IntOf<sizeof(T)>::Type, N>;

// ---- Register by register

template <class V, class F, int... I>
NUQI_INLINE V generate_at(const F& f, Indices<I...>) {
  return V{{(typename V::Native)f(I)...}};
}
// The vector whose register i is f(i).
template <class V, class F>
NUQI_INLINE V generate(const F& f) {
  return generate_at<V>(f, typename UpTo<V::kRegs>::Type{});
}

// ---- Constants and reinterpretation

template <class T, int N = 16>
NUQI_INLINE Vec<T, N> broadcast(T value) {
  // Subtracting zero keeps -0.0, where adding it would not.
  return generate<Vec<T, N>>([&](int) NUQI_FORCED { return value - typename Vec<T, N>::Native{}; });
}

// The same bits, seen as lanes of T of the same size.
template <class T, class S, int N>
NUQI_INLINE Vec<T, N> as(const Vec<S, N>& a) {
  static_assert(sizeof(T) == sizeof(S));
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return (typename Vec<T, N>::Native)a.r[i]; });
}

// The same bits, seen as lanes of another size.
template <class T, class S, int N>
NUQI_INLINE auto lanes_as(const Vec<S, N>& a) {
  using Out = Vec<T, N* int{sizeof(S)} / int{sizeof(T)}>;
  return generate<Out>([&](int i) NUQI_FORCED { return (typename Out::Native)a.r[i]; });
}

// ---- Arithmetic, lane by lane; integers wrap

#define NUQI_LANEWISE(op)                                                            \
  template <class T, int N>                                                          \
  NUQI_INLINE Vec<T, N> operator op(const Vec<T, N>& a, const Vec<T, N>& b) {        \
    return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return a.r[i] op b.r[i]; }); \
  }
NUQI_LANEWISE(+)
NUQI_LANEWISE(-)
NUQI_LANEWISE(*)
NUQI_LANEWISE(/)
NUQI_LANEWISE(&)
NUQI_LANEWISE(|)
NUQI_LANEWISE(^)
#undef NUQI_LANEWISE

template <class T, int N>
NUQI_INLINE Vec<T, N> operator~(const Vec<T, N>& a) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return ~a.r[i]; });
}
template <class T, int N>
NUQI_INLINE Vec<T, N> operator-(const Vec<T, N>& a) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return -a.r[i]; });
}
// Shifts every lane by the same count, below the lane's width.
template <class T, int N>
NUQI_INLINE Vec<T, N> operator<<(const Vec<T, N>& a, int count) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return a.r[i] << count; });
}
template <class T, int N>
NUQI_INLINE Vec<T, N> operator>>(const Vec<T, N>& a, int count) {
  return generate<Vec<T, N>>([&](int i)
                                 NUQI_FORCED { return machine::shift_right(a.r[i], count); });
}

// ---- Comparison and choice

#define NUQI_COMPARE(op)                                                              \
  template <class T, int N>                                                           \
  NUQI_INLINE Mask<T, N> operator op(const Vec<T, N>& a, const Vec<T, N>& b) {        \
    return generate<Mask<T, N>>([&](int i) NUQI_FORCED { return a.r[i] op b.r[i]; }); \
  }
NUQI_COMPARE(<)
NUQI_COMPARE(>)
NUQI_COMPARE(==)
#undef NUQI_COMPARE

// All bits set where a is not zero.
template <class T, int N>
NUQI_INLINE Mask<T, N> nonzero(const Vec<T, N>& a) {
  return ~(a == Vec<T, N>{});
}

// a where the mask is set, b elsewhere. Lanes of the mask are all ones or all zeros, so testing the sign
// is enough: it compiles to a blend, where GCC 12 would compare the mask with zero once more.
template <class T, int N>
NUQI_INLINE Vec<T, N> select(const Mask<T, N>& mask, const Vec<T, N>& a, const Vec<T, N>& b) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return mask.r[i] < 0 ? a.r[i] : b.r[i]; });
}
// a where the mask is set, all bits zero elsewhere.
template <class T, int N>
NUQI_INLINE Vec<T, N> keep(const Mask<T, N>& mask, const Vec<T, N>& a) {
  using Bits = typename Mask<T, N>::Lane;
  return as<T>(as<Bits>(a) & mask);
}

// Clears the sign, a NaN's too.
template <class T, int N>
requires kIsFloat<T> NUQI_INLINE Vec<T, N> abs(const Vec<T, N>& a) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return machine::clear_sign(a.r[i]); });
}

// The second operand where either is NaN, as the machines' instructions have it.
template <class T, int N>
NUQI_INLINE Vec<T, N> min(const Vec<T, N>& a, const Vec<T, N>& b) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return a.r[i] < b.r[i] ? a.r[i] : b.r[i]; });
}
template <class T, int N>
NUQI_INLINE Vec<T, N> max(const Vec<T, N>& a, const Vec<T, N>& b) {
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return a.r[i] > b.r[i] ? a.r[i] : b.r[i]; });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

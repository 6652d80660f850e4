// One native register: its type, its lanes, and shuffles that every machine has instructions for.
//
// All of the vector layer lives in an unnamed namespace inside the level's own and is forced inline: a
// function that the linker may share between levels would run AVX instructions on machines without them.
#pragma once

#include <stdint.h>

#define NUQI_NOINLINE __attribute__((noinline))
#define NUQI_FORCED   __attribute__((always_inline))
#define NUQI_INLINE   NUQI_FORCED inline

namespace nuqi::NUQI_ISA {
namespace {

// ---- Types

template <class T, int Bytes>
struct NativeOf {
  typedef T Type __attribute__((vector_size(Bytes)));
};
// A register like V, of lanes of T.
template <class T, class V>
using NativeAs = typename NativeOf<T, sizeof(V)>::Type;

template <class T>
struct Unreferenced {
  using Type = T;
};
template <class T>
struct Unreferenced<T&> {
  using Type = T;
};
template <class V>
using LaneOf = typename Unreferenced<decltype(V{}[0])>::Type;

template <class T>
constexpr bool kIsSigned = T(-1) < T(0);
template <class T>
constexpr bool kIsFloat = T(0.5) > T(0);

template <bool condition, class A, class B>
struct IfElse {
  using Type = A;
};
template <class A, class B>
struct IfElse<false, A, B> {
  using Type = B;
};

template <int Bytes>
struct IntOf;
template <>
struct IntOf<1> {
  using Type = int8_t;
};
template <>
struct IntOf<2> {
  using Type = int16_t;
};
template <>
struct IntOf<4> {
  using Type = int32_t;
};
template <>
struct IntOf<8> {
  using Type = int64_t;
};

// ---- Pack expansion, since GCC -O2 leaves loops over registers rolled.

template <int... I>
struct Indices {};
template <class Half, int odd>
struct Twice;
template <int... I>
struct Twice<Indices<I...>, 0> {
  using Type = Indices<I..., (int{sizeof...(I)} + I)...>;
};
template <int... I>
struct Twice<Indices<I...>, 1> {
  using Type = Indices<I..., (int{sizeof...(I)} + I)..., 2 * int{sizeof...(I)}>;
};

// Indices<0, 1, ... N - 1>.
template <int N>
struct UpTo {
  using Type = typename Twice<typename UpTo<N / 2>::Type, N % 2>::Type;
};
template <>
struct UpTo<1> {
  using Type = Indices<0>;
};

template <class F, int... I>
NUQI_INLINE void for_each_at(const F& f, Indices<I...>) {
  (f(I), ...);
}
// f(0), f(1), ... f(N - 1), unrolled.
template <int N, class F>
NUQI_INLINE void for_each(const F& f) {
  if constexpr (N > 0) for_each_at(f, typename UpTo<N>::Type{});
}

// ---- Shuffles. The last argument numbers the lanes of V.

// Half a register.
template <class V, int... I>
NUQI_INLINE auto low_half(const V& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, I...);
}
template <class V, int... I>
NUQI_INLINE auto high_half(const V& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, (int{sizeof...(I)} + I)...);
}

// a0 b0 a1 b1 ... from the lower, or the upper, halves of two registers.
template <class V, int... I>
NUQI_INLINE V zip_low(const V& a, const V& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (I / 2 + I % 2 * n)...);
}
template <class V, int... I>
NUQI_INLINE V zip_high(const V& a, const V& b, Indices<I...>) {
  constexpr int n = sizeof...(I);
  return __builtin_shufflevector(a, b, (n / 2 + I / 2 + I % 2 * n)...);
}
// The same within every group of sixteen bytes: one instruction, where whole registers take several.
template <int half, class V, int... I>
NUQI_INLINE V zip_half(const V& a, const V& b, Indices<I...>) {
  constexpr int n = sizeof...(I), group = 16 * n / int{sizeof(V)};
  return __builtin_shufflevector(
      a, b, (I / group * group + half * group / 2 + I % group / 2 + I % 2 * n)...);
}

// a0 a2 ... b0 b2 ...: on little-endian machines, the lower halves of lanes of twice the size.
template <class V, int... I>
NUQI_INLINE V even_lanes(const V& a, const V& b, Indices<I...>) {
  return __builtin_shufflevector(a, b, (2 * I)...);
}

// The upper eight bytes of every sixteen in front of the lower ones.
template <class Halves, int... I>
NUQI_INLINE Halves swap_halves_at(const Halves& a, Indices<I...>) {
  return __builtin_shufflevector(a, a, (I ^ 1)...);
}
template <class V>
NUQI_INLINE V swap_halves(const V& a) {
  return (V)swap_halves_at((NativeAs<int64_t, V>)a, typename UpTo<sizeof(V) / 8>::Type{});
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

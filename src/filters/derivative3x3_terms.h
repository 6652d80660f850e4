// The arithmetic of the fixed 3x3 derivatives, on a column of pixels one vector wide.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/shuffle.h"
#include "filters/derivative3x3.h"

namespace nuqi::NUQI_ISA {
namespace {

// The results of a column. Of bytes, a register of pixels gives two of 16-bit integers, which hold
// every sum; their lanes are in the order that is cheapest until finish().
template <class T>
struct ColumnOf {
  using Type = Vec<int16_t, kRegBytes>;
};
template <>
struct ColumnOf<float> {
  using Type = Reg<float>;
};
template <class T>
using Column = typename ColumnOf<T>::Type;

// Pixels of one row, and their neighbours.
template <class T>
struct Pixels {
  Vec<T, Column<T>::kLanes> left, centre, right;
};

// What a row adds to its neighbours' results and, in Scharr Dx, to its own.
template <class T>
struct Term {
  Column<T> outer, own;
};

// The shift of Scharr's integers; its weights for floats, which hold the factor.
template <class T>
struct Scale {
  NUQI_INLINE explicit Scale(const DerivativeJob<T>& job) : shift(job.shift) {}
  int shift;
};
template <>
struct Scale<float> {
  NUQI_INLINE explicit Scale(const DerivativeJob<float>& job)
      : three(broadcast<float, Reg<float>::kLanes>(3 * job.scale)),
        ten(broadcast<float, Reg<float>::kLanes>(10 * job.scale)) {}
  Reg<float> three, ten;
};

constexpr bool takes_differences(Derivative d) {
  return d == Derivative::dx || d == Derivative::dxdy || d == Derivative::scharr_dx;
}

// Adding 128 to every pixel changes no derivative and makes signed bytes unsigned.
template <class T, int N>
NUQI_INLINE Vec<uint8_t, N> unsigned_bytes(const Vec<T, N>& a) {
  return kIsSigned<T> ? as<uint8_t>(a) ^ broadcast<uint8_t, N>(128) : as<uint8_t>(a);
}

// (outer, inner, outer) times the pixels. Even and odd columns stay apart: of a pixel and its
// neighbours, two lie in one pair of `left` in even columns, of `centre` in odd ones.
template <int outer, int inner, class T, int N>
NUQI_INLINE Vec<int16_t, N> weigh(const Vec<T, N>& left, const Vec<T, N>& centre,
                                  const Vec<T, N>& right) {
  return join(multiply_pairs<outer, inner>(left) + multiply_pairs<outer, 0>(right),
              multiply_pairs<outer, inner>(centre) + multiply_pairs<0, outer>(right));
}

template <Derivative derivative, class T>
NUQI_INLINE Term<T> term_of(const Pixels<T>& p, const Scale<T>&) {
  using enum Derivative;
  if constexpr (takes_differences(derivative)) {
    const auto pairs = zip_groups(join(unsigned_bytes(p.left), unsigned_bytes(p.right)));
    if constexpr (derivative == scharr_dx)
      return {multiply_pairs<-3, 3>(pairs), multiply_pairs<-10, 10>(pairs)};
    else
      return {multiply_pairs<-1, 1>(pairs), {}};
  } else if constexpr (derivative == d2x) {
    return {weigh<1, -2>(unsigned_bytes(p.left), unsigned_bytes(p.centre), unsigned_bytes(p.right)),
            {}};
  } else if constexpr (derivative == scharr_dy) {
    return {weigh<3, 10>(p.left, p.centre, p.right), {}};
  } else {
    return {weigh<1, 2>(p.left, p.centre, p.right), {}};
  }
}

template <Derivative derivative>
NUQI_INLINE Term<float> term_of(const Pixels<float>& p, const Scale<float>& scale) {
  using enum Derivative;
  // Weighted before they are added: a small factor keeps large values finite.
  if constexpr (derivative == dx)
    return {p.right - p.left, {}};
  else if constexpr (derivative == dy)
    return {(p.left + p.right) + (p.centre + p.centre), {}};
  else if constexpr (derivative == scharr_dx)
    return {(p.right - p.left) * scale.three, (p.right - p.left) * scale.ten};
  else
    return {(p.left * scale.three + p.right * scale.three) + p.centre * scale.ten, {}};
}

// A row's results. Going down a column, a sum or difference of two rows serves the results of both.
template <Derivative derivative, class T>
NUQI_INLINE Column<T> combine(const Term<T>& above, const Term<T>& here, const Term<T>& below) {
  using enum Derivative;
  if constexpr (derivative == dx || derivative == d2x)
    return (above.outer + here.outer) + (here.outer + below.outer);
  else if constexpr (derivative == d2y)
    return (below.outer - here.outer) - (here.outer - above.outer);
  else if constexpr (derivative == scharr_dx)
    return (above.outer + below.outer) + here.own;
  else
    return below.outer - above.outer;
}

// Ends the arithmetic: shifts the integers of Scharr, and puts the lanes in the pixels' order.
template <Derivative derivative, class T>
NUQI_INLINE Column<T> finish(Column<T> result, const Scale<T>& scale) {
  using enum Derivative;
  if constexpr (kIsFloat<T>) {
    return result;
  } else {
    if constexpr (derivative == scharr_dx || derivative == scharr_dy)
      result = result >> scale.shift;
    if constexpr (!takes_differences(derivative)) result = zip_groups(result);
    return in_order(result);
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

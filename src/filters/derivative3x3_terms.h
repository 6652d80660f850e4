// The arithmetic of the fixed 3x3 derivatives, on a column of pixels one register wide.
#pragma once

#include "core/simd/neighbours.h"
#include "filters/derivative3x3.h"

namespace nuqi::NUQI_ISA {
namespace {

// The results of a column of pixels: of bytes, in integers that hold every sum.
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

// A row's horizontal term: what it adds to its neighbours' results and, in Scharr Dx, to its own.
template <class T>
struct RowTerm {
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

constexpr bool centre_counts(Derivative d) {
  return d != Derivative::dx && d != Derivative::dxdy && d != Derivative::scharr_dx;
}

// Of bytes.
template <Derivative derivative, class T, class Pixels>
NUQI_INLINE RowTerm<T> term_of(const Pixels& p, const Scale<T>&) {
  using enum Derivative;
  if constexpr (derivative == dx || derivative == dxdy)
    return {weigh<-1, 0, 1>(p), {}};
  else if constexpr (derivative == scharr_dx)
    return {weigh<-3, 0, 3>(p), weigh<-10, 0, 10>(p)};
  else if constexpr (derivative == d2x)
    return {weigh<1, -2, 1>(p), {}};
  else if constexpr (derivative == scharr_dy)
    return {weigh<3, 10, 3>(p), {}};
  else
    return {weigh<1, 2, 1>(p), {}};
}

// Of floats. They are weighted before they are added: a small factor keeps large values finite.
template <Derivative derivative>
NUQI_INLINE RowTerm<float> term_of(const Around<float>& p, const Scale<float>& scale) {
  using enum Derivative;
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
NUQI_INLINE Column<T> combine(const RowTerm<T>& above, const RowTerm<T>& here,
                              const RowTerm<T>& below) {
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

// What is left to do with the integers: Scharr's shift, and the order of the pixels.
template <Derivative derivative, class T>
NUQI_INLINE Column<T> finish(const Column<T>& result, const Scale<T>& scale) {
  using enum Derivative;
  if constexpr (kIsFloat<T>)
    return result;
  else if constexpr (derivative == scharr_dx || derivative == scharr_dy)
    return in_row_order<centre_counts(derivative)>(result >> scale.shift);
  else
    return in_row_order<centre_counts(derivative)>(result);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

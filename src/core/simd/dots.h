// Dot products of groups of neighbours: of four bytes where the machine has such an instruction, else of two
// 16-bit lanes. Pixels and the weights that they meet lie as cells of the size that it takes.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/shuffle.h"
#include "core/simd/transpose.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr int kDotGroup = Machine::kDotsBytes ? 4 : 2;

template <class T>
using DotCell = typename IfElse<Machine::kDotsBytes, T, int16_t>::Type;

// The instruction for bytes multiplies unsigned ones by signed ones. So the pixels are taken less 128 of
// unsigned bytes, and more 128 of signed ones: products lack so many times their weight.
template <class T>
constexpr int32_t kDotOffset = !Machine::kDotsBytes ? 0
                               : kIsSigned<T>       ? -128
                                                    : 128;

// Pixels as cells. A weight is one as it is.
template <class T>
NUQI_INLINE Px<DotCell<T>> dot_cells(const Px<T>& pixels) {
  if constexpr (Machine::kDotsBytes)
    return pixels ^ broadcast<T>(T(128));
  else
    return convert<int16_t>(pixels);
}

// A group of weights in every 32-bit lane.
template <class Cell>
NUQI_INLINE Reg<Cell> broadcast_group(const Cell* weights) {
  const int32_t group = load_one((const int32_t*)weights);
  return lanes_as<Cell>(broadcast<int32_t, kRegBytes / 4>(group));
}

// The sums of kDotGroup registers in turns: lane j of register p becomes number kDotGroup * j + p.
template <class T>
NUQI_INLINE void store_in_turns(T* to, Reg<T> (&a)[kDotGroup]) {
  if constexpr (kDotGroup == 2) {
    store(to, in_order(zip_groups(concat(a[0], a[1]))));
  } else {
    transpose_four<1, 4>(a[0], a[1], a[2], a[3]);
    transpose_four<4, 16>(a[0], a[1], a[2], a[3]);
    for_each<4>([&](int i) NUQI_FORCED { store(to + i * Reg<T>::kLanes, a[i]); });
  }
}

// sums + each group's products of pixels and weights.
template <class T>
NUQI_INLINE Reg<int32_t> add_group_products(const Reg<int32_t>& sums, const Reg<DotCell<T>>& pixels,
                                            const Reg<DotCell<T>>& weights) {
  if constexpr (!Machine::kDotsBytes)
    return {{machine::add_dot_pairs(sums.r[0], pixels.r[0], weights.r[0])}};
  else if constexpr (kIsSigned<T>)
    return {
        {machine::add_dots(sums.r[0], (typename Reg<uint8_t>::Native)pixels.r[0], weights.r[0])}};
  else
    return {
        {machine::add_dots(sums.r[0], weights.r[0], (typename Reg<int8_t>::Native)pixels.r[0])}};
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

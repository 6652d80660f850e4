// Dot products of groups of neighbours: of four bytes where the machine has such an instruction, else of two
// 16-bit lanes. Pixels and the weights that they meet lie as cells of the size that it takes.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/shuffle.h"

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

// Pixels, and weights, as cells: kDotBlock of them at once.
constexpr int kDotBlock = Machine::kDotsBytes ? kRegBytes : 16;

template <class T, int N>
NUQI_INLINE Vec<DotCell<T>, N> dot_cells(const Vec<T, N>& pixels) {
  if constexpr (Machine::kDotsBytes)
    return pixels ^ broadcast<T, N>(T(128));
  else
    return convert<int16_t>(pixels);
}

template <class T, int N>
NUQI_INLINE Vec<DotCell<T>, N> weight_cells(const Vec<T, N>& weights) {
  if constexpr (Machine::kDotsBytes)
    return weights;
  else
    return convert<int16_t>(weights);
}

// A group of weights in every 32-bit lane.
template <class Cell>
NUQI_INLINE Reg<Cell> broadcast_group(const Cell* weights) {
  const int32_t group = load_one((const int32_t*)weights);
  return lanes_as<Cell>(broadcast<int32_t, kRegBytes / 4>(group));
}

// The lanes of kDotGroup registers in turns, as To: lane j of register p becomes number kDotGroup * j + p.
template <class To>
NUQI_INLINE void store_in_turns(To* to, const Reg<int32_t> (&a)[kDotGroup]) {
  constexpr int n = Reg<int32_t>::kLanes;
  const auto put = [&](int i, const auto& lanes) NUQI_FORCED {
    store(to + i * n, convert<To>(Reg<int32_t>{{(Reg<int32_t>::Native)lanes}}));
  };
  if constexpr (kDotGroup == 2) {
    const auto lanes = in_order(zip_groups(concat(a[0], a[1])));
    for_each<2>([&](int i) NUQI_FORCED { put(i, lanes.r[i]); });
  } else {
    // Two and two, then pairs of them.
    using Pairs = Reg<int64_t>::Native;
    const typename UpTo<n>::Type lanes;
    const typename UpTo<n / 2>::Type pairs;
    const auto low = [&](int p)
                         NUQI_FORCED { return (Pairs)zip_low(a[p].r[0], a[p + 1].r[0], lanes); };
    const auto high = [&](int p)
                          NUQI_FORCED { return (Pairs)zip_high(a[p].r[0], a[p + 1].r[0], lanes); };
    put(0, zip_low(low(0), low(2), pairs));
    put(1, zip_high(low(0), low(2), pairs));
    put(2, zip_low(high(0), high(2), pairs));
    put(3, zip_high(high(0), high(2), pairs));
  }
}

// sums + each group's products of pixels and weights.
template <class T, int N>
NUQI_INLINE Vec<int32_t, N> add_group_products(const Vec<int32_t, N>& sums,
                                               const Vec<DotCell<T>, N * kDotGroup>& pixels,
                                               const Vec<DotCell<T>, N * kDotGroup>& weights) {
  return generate<Vec<int32_t, N>>([&](int i) NUQI_FORCED {
    const auto &p = pixels.r[i], &w = weights.r[i];
    if constexpr (!Machine::kDotsBytes)
      return machine::add_dot_pairs(sums.r[i], p, w);
    else if constexpr (kIsSigned<T>)
      return machine::add_dots(sums.r[i], (typename Reg<uint8_t>::Native)p, w);
    else
      return machine::add_dots(sums.r[i], w, (typename Reg<int8_t>::Native)p);
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

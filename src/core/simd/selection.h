// What mask bytes select: the pixels where they are not zero. Sixteen of them go with sixteen lanes, the
// first eight with eight floats, a register of them with a register of bytes.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/reduce.h"
#include "core/simd/shuffle.h"

namespace nuqi::NUQI_ISA {
namespace {

// a where selected, zero elsewhere.
template <class T, int N, int M>
NUQI_INLINE Vec<T, N> keep_selected(const Vec<uint8_t, M>& mask, const Vec<T, N>& a) {
  static_assert(M == N || M == 16);
  const auto selected = machine::selected(mask.r[0]);
  return generate<Vec<T, N>>([&](int i) NUQI_FORCED { return machine::keep(selected, a.r[i], i); });
}

// a where selected, b elsewhere.
template <class T, int N>
NUQI_INLINE Vec<T, N> choose(const Vec<uint8_t, N>& mask, const Vec<T, N>& a, const Vec<T, N>& b) {
  const auto selected = machine::selected(mask.r[0]);
  return generate<Vec<T, N>>(
      [&](int i) NUQI_FORCED { return machine::choose(selected, a.r[i], b.r[i], i); });
}

// The selected floats from memory as doubles, zeros elsewhere.
template <class Part>
NUQI_INLINE Px<double> load_doubles(const float* from, const Px<uint8_t>& mask, Part part) {
  using Out = Px<double>;
  if constexpr (Machine::kMasks && Part::kWhole) {
    const auto selected = machine::selected(mask.r[0]);
    return generate<Out>([&](int i) NUQI_FORCED {
      return machine::load_doubles<Out::Native>(from + i * Out::kLanesPerReg, selected, i);
    });
  } else {
    return to_doubles(keep_selected(mask, load(from, part)));
  }
}

// Mask bytes that select the first n pixels.
template <int N>
NUQI_INLINE Vec<uint8_t, N> first_lanes(int n) {
  return as<uint8_t>(lanes_below<uint8_t, N>(n));
}

// How many are selected.
template <int N>
class SelectedCount {
 public:
  NUQI_INLINE void add(const Vec<uint8_t, N>& mask) {
    if constexpr (Machine::kMasks)
      count_ += __builtin_popcountll(machine::selected(mask.r[0]));
    else
      sums_ = sums_ + sum_eights(min(mask, broadcast<uint8_t, N>(1)));
  }
  NUQI_INLINE uint32_t total() const {
    return count_ + static_cast<uint32_t>(Machine::kMasks ? 0 : reduce_add(sums_));
  }

 private:
  uint32_t count_ = 0;
  Vec<uint64_t, N / 8> sums_ = {};
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Sums of two neighbouring bytes.
#pragma once

#include "core/simd/convert.h"

namespace nuqi::NUQI_ISA {
namespace {

// The sums of every two bytes, as 16-bit integers.
template <class T, int N>
NUQI_INLINE Vec<int16_t, N / 2> pair_sums(const Vec<T, N>& a) {
  if constexpr (Machine::kMultipliesBytes) {
    // As products with one: the instruction takes unsigned bytes times signed ones.
    const auto ones = broadcast<T, N>(1);
    return generate<Vec<int16_t, N / 2>>([&](int i) NUQI_FORCED {
      return kIsSigned<T> ? machine::multiply_add_bytes(ones.r[i], a.r[i])
                          : machine::multiply_add_bytes(a.r[i], ones.r[i]);
    });
  } else {
    return even_bytes(a) + odd_bytes(a);
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

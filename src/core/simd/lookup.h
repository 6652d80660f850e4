// Tables of bytes held in registers, and sums of their entries, for machines that permute bytes across
// registers.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

// The entries of all values of a byte.
template <class V = Reg<uint8_t>>
struct ByteTable {
  static_assert(V::kLanes == 64);
  V of[4];

  NUQI_INLINE explicit ByteTable(const uint8_t* from) { __builtin_memcpy(of, from, sizeof of); }
};

// The entry of every byte: of those in even places in one table, of those in odd places in the other.
template <class V>
NUQI_INLINE V look_up_pairs(const ByteTable<V>& even, const ByteTable<V>& odd, const V& bytes) {
  const auto is_odd = as<int8_t>(lanes_as<uint8_t>(broadcast<uint16_t, V::kLanes / 2>(0xFF00)));
  const auto below_128 = [&](int i) NUQI_FORCED {
    const auto entry = [&](const ByteTable<V>& table) NUQI_FORCED {
      return V{{machine::permute_bytes(table.of[i].r[0], table.of[i + 1].r[0], bytes.r[0])}};
    };
    return select(is_odd, entry(odd), entry(even));
  };
  return select(as<int8_t>(bytes) < Vec<int8_t, V::kLanes>{}, below_128(2), below_128(0));
}

// even byte + odd byte * times, in 16 bits.
template <int N>
NUQI_INLINE Vec<uint16_t, N / 2> add_multiple(const Vec<uint8_t, N>& bytes, int8_t times) {
  const auto weights = broadcast<int16_t, N / 2>(static_cast<int16_t>(times * 256 + 1));
  using Out = typename Vec<uint16_t, N / 2>::Native;
  return {{(Out)machine::multiply_add_bytes(bytes.r[0], lanes_as<int8_t>(weights).r[0])}};
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

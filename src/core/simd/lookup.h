// Tables of bytes held in registers.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

#if NUQI_LEVEL == 2

// 256 bytes.
struct ByteTable {
  __m512i of[4];
};
NUQI_INLINE ByteTable load_table(const uint8_t* from) {
  return {{_mm512_loadu_si512(from), _mm512_loadu_si512(from + 64), _mm512_loadu_si512(from + 128),
           _mm512_loadu_si512(from + 192)}};
}

// The entry of every byte: of those in even places in one table, of those in odd places in the other.
NUQI_INLINE Reg<uint8_t> look_up_pairs(const ByteTable& even, const ByteTable& odd,
                                       const Reg<uint8_t>& bytes) {
  const auto index = (__m512i)bytes.r[0];
  const auto half = [&](int i) NUQI_FORCED {
    return _mm512_mask_blend_epi8(0xAAAAAAAAAAAAAAAA,
                                  _mm512_permutex2var_epi8(even.of[i], index, even.of[i + 1]),
                                  _mm512_permutex2var_epi8(odd.of[i], index, odd.of[i + 1]));
  };
  return {
      {(Reg<uint8_t>::Reg)_mm512_mask_blend_epi8(_mm512_movepi8_mask(index), half(0), half(2))}};
}

// even byte + odd byte * times, in 16 bits.
NUQI_INLINE Vec<uint16_t, 32> add_multiple(const Reg<uint8_t>& bytes, int8_t times) {
  const auto weights = _mm512_set1_epi16(static_cast<int16_t>(times * 256 + 1));
  return {{(Vec<uint16_t, 32>::Reg)_mm512_maddubs_epi16((__m512i)bytes.r[0], weights)}};
}

#endif

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Loads and stores of whole vectors and of their first lanes, and the loop that walks a row with them.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

// How much of a vector a load or store touches: all lanes, or the first 1 to N - 1.
struct Whole {};
struct First {
  int lanes;
};

// One element, wherever it lies.
template <class T>
NUQI_INLINE T load_one(const T* from) {
  T value;
  __builtin_memcpy(&value, from, sizeof value);
  return value;
}
template <class T>
NUQI_INLINE void store_one(T* to, T value) {
  __builtin_memcpy(to, &value, sizeof value);
}

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, Whole = {}) {
  using V = Vec<T, N>;
  return generate<V>([&](int i) NUQI_FORCED {
    typename V::Native reg;
    __builtin_memcpy(&reg, from + i * V::kLanesPerReg, sizeof reg);
    return reg;
  });
}
template <class T, int N>
NUQI_INLINE void store(T* to, const Vec<T, N>& a, Whole = {}) {
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    __builtin_memcpy(to + i * Vec<T, N>::kLanesPerReg, &a.r[i], sizeof a.r[i]);
  });
}

#if NUQI_LEVEL == 2

// The first `bytes` of a register; masked-out bytes are not touched, whatever page they lie in.
template <class Native>
NUQI_INLINE Native load_bytes(const void* from, int64_t bytes) {
  const uint64_t mask = bytes >= int{sizeof(Native)} ? ~uint64_t{0} : (uint64_t{1} << bytes) - 1;
  if constexpr (sizeof(Native) == 64)
    return (Native)_mm512_maskz_loadu_epi8(mask, from);
  else if constexpr (sizeof(Native) == 32)
    return (Native)_mm256_maskz_loadu_epi8((__mmask32)mask, from);
  else
    return (Native)_mm_maskz_loadu_epi8((__mmask16)mask, from);
}
template <class Native>
NUQI_INLINE void store_bytes(void* to, const Native& a, int64_t bytes) {
  const uint64_t mask = bytes >= int{sizeof(Native)} ? ~uint64_t{0} : (uint64_t{1} << bytes) - 1;
  if constexpr (sizeof(Native) == 64)
    _mm512_mask_storeu_epi8(to, mask, (__m512i)a);
  else if constexpr (sizeof(Native) == 32)
    _mm256_mask_storeu_epi8(to, (__mmask32)mask, (__m256i)a);
  else
    _mm_mask_storeu_epi8(to, (__mmask16)mask, (__m128i)a);
}

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, First part) {
  using V = Vec<T, N>;
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  return generate<V>([&](int i) NUQI_FORCED {
    const int before = i * int{sizeof(typename V::Native)};
    return bytes > before
               ? load_bytes<typename V::Native>((const char*)from + before, bytes - before)
               : typename V::Native{};
  });
}
template <class T, int N>
NUQI_INLINE void store(T* to, const Vec<T, N>& a, First part) {
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    const int before = i * int{sizeof a.r[i]};
    if (bytes > before) store_bytes((char*)to + before, a.r[i], bytes - before);
  });
}

#else

// Sixteen bytes, of which the first `bytes` come from memory. Shorter than that they are read in two
// pieces that overlap: bytes that went through the stack would stall the load that follows them. Not
// inlined, since tails are many, and short.
typedef uint64_t Few __attribute__((vector_size(16)));

__attribute__((noinline, unused)) Few load_few(const char* from, int64_t bytes) {
  const auto ends = [&](auto piece, auto* low, auto* high) NUQI_FORCED {
    __builtin_memcpy(low, from, sizeof piece);
    __builtin_memcpy(high, from + bytes - sizeof piece, sizeof piece);
  };
  uint64_t low = 0, high = 0;
  if (bytes >= 16) {
    Few all;
    __builtin_memcpy(&all, from, sizeof all);  // not as a Few: Clang would take it for aligned
    return all;
  } else if (bytes >= 8) {
    ends(low, &low, &high);
    return Few{low, high >> 8 >> (120 - 8 * bytes)};
  } else if (bytes >= 4) {
    ends(uint32_t{}, &low, &high);
    return Few{low | high << (8 * bytes - 32), 0};
  } else if (bytes >= 2) {
    ends(uint16_t{}, &low, &high);
    return Few{low | high << (8 * bytes - 16), 0};
  } else {
    return Few{bytes == 1 ? (uint8_t)*from : uint64_t{0}, 0};
  }
}
__attribute__((noinline, unused)) void store_few(char* to, Few a, int64_t bytes) {
  const auto ends = [&](auto piece, uint64_t high) NUQI_FORCED {
    __builtin_memcpy(to, &a, sizeof piece);
    __builtin_memcpy(to + bytes - sizeof piece, &high, sizeof piece);
  };
  if (bytes >= 16)
    __builtin_memcpy(to, &a, sizeof a);
  else if (bytes >= 8)
    ends(uint64_t{}, a[0] >> (8 * bytes - 64) | a[1] << 8 << (120 - 8 * bytes));
  else if (bytes >= 4)
    ends(uint32_t{}, a[0] >> (8 * bytes - 32));
  else if (bytes >= 2)
    ends(uint16_t{}, a[0] >> (8 * bytes - 16));
  else if (bytes == 1)
    *to = (char)a[0];
}

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, First part) {
  using V = Vec<T, N>;
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  return generate<V>([&](int i) NUQI_FORCED {
    constexpr int kSize = sizeof(typename V::Native);
    const auto piece = [&](int j) NUQI_FORCED {
      const int before = i * kSize + j * 16;
      return load_few((const char*)from + before, bytes - before);
    };
    if constexpr (kSize == 16)
      return piece(0);
    else
      return __builtin_shufflevector(piece(0), piece(1), 0, 1, 2, 3);
  });
}
template <class T, int N>
NUQI_INLINE void store(T* to, const Vec<T, N>& a, First part) {
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  for_each<N* int{sizeof(T)} / 16>([&](int i) NUQI_FORCED {
    Few piece;
    __builtin_memcpy(&piece, (const char*)&a + 16 * i, 16);
    store_few((char*)to + 16 * i, piece, bytes - 16 * i);
  });
}

#endif

// How much of N lanes a part touches.
template <int N>
NUQI_INLINE int lane_count(Whole) {
  return N;
}
template <int N>
NUQI_INLINE int lane_count(First part) {
  return part.lanes;
}
// What a part leaves for the N lanes from lane `start` on: none of them, some or all.
template <int N>
NUQI_INLINE Whole part_from(Whole part, int) {
  return part;
}
template <int N>
NUQI_INLINE First part_from(First part, int start) {
  const int lanes = part.lanes - start;
  return {lanes < 0 ? 0 : lanes > N ? N : lanes};
}
// Eight bytes; eight zeros follow them.
NUQI_INLINE Px<uint8_t> load_eight(const uint8_t* from, Whole) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return {{(Px<uint8_t>::Native)Halves{load_one((const int64_t*)from)}}};
}
NUQI_INLINE Px<uint8_t> load_eight(const uint8_t* from, First part) { return load(from, part); }

// Walks a row: body(x, Whole{}) for each block of N pixels, then body(x, First{rest}).
template <int N = 16, class Body>
NUQI_INLINE void for_blocks(int64_t width, const Body& body) {
  int64_t x = 0;
  for (; x + N <= width; x += N) body(x, Whole{});
  if (x < width) body(x, First{int(width - x)});
}

// The same with body(x, part, turn): blocks take the turns 0 to Turns - 1, so that a kernel whose sums
// are slow to follow each other can keep several.
template <int N, int Turns, class Body>
NUQI_INLINE void for_blocks_in_turns(int64_t width, const Body& body) {
  int64_t x = 0;
  for (; x + Turns * N <= width; x += Turns * N)
    for_each<Turns>([&](int turn) NUQI_FORCED { body(x + turn * N, Whole{}, turn); });
  if constexpr (Turns > 1)
    for (; x + N <= width; x += N) body(x, Whole{}, 0);
  if (x < width) body(x, First{int(width - x)}, 0);
}

// Walks the pixels from `from` to `to` for a body that may compute a pixel twice: where the last block
// is not a whole one, it goes back over pixels already done. body(x, First{...}) if all are under N.
template <int N = 16, class Body>
NUQI_INLINE void for_blocks_overlapping(int64_t from, int64_t to, const Body& body) {
  if (to - from < N) return body(from, First{int(to - from)});
  for (; from + N <= to; from += N) body(from, Whole{});
  if (from < to) body(to - N, Whole{});
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

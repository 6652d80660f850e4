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
    typename V::Reg reg;
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
template <class Reg>
NUQI_INLINE Reg load_bytes(const void* from, int64_t bytes) {
  const uint64_t mask = bytes >= int{sizeof(Reg)} ? ~uint64_t{0} : (uint64_t{1} << bytes) - 1;
  if constexpr (sizeof(Reg) == 64)
    return (Reg)_mm512_maskz_loadu_epi8(mask, from);
  else if constexpr (sizeof(Reg) == 32)
    return (Reg)_mm256_maskz_loadu_epi8((__mmask32)mask, from);
  else
    return (Reg)_mm_maskz_loadu_epi8((__mmask16)mask, from);
}
template <class Reg>
NUQI_INLINE void store_bytes(void* to, const Reg& a, int64_t bytes) {
  const uint64_t mask = bytes >= int{sizeof(Reg)} ? ~uint64_t{0} : (uint64_t{1} << bytes) - 1;
  if constexpr (sizeof(Reg) == 64)
    _mm512_mask_storeu_epi8(to, mask, (__m512i)a);
  else if constexpr (sizeof(Reg) == 32)
    _mm256_mask_storeu_epi8(to, (__mmask32)mask, (__m256i)a);
  else
    _mm_mask_storeu_epi8(to, (__mmask16)mask, (__m128i)a);
}

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, First part) {
  using V = Vec<T, N>;
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  return generate<V>([&](int i) NUQI_FORCED {
    const int before = i * int{sizeof(typename V::Reg)};
    return bytes > before ? load_bytes<typename V::Reg>((const char*)from + before, bytes - before)
                          : typename V::Reg{};
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

// Copies 0 to 127 bytes. One function per level instead of inlined moves: tails are many, and short.
__attribute__((noinline, unused)) void copy_bytes(char* to, const char* from, int bytes) {
  const auto move = [&](auto chunk) NUQI_FORCED {
    constexpr int kSize = sizeof chunk;
    if ((bytes & kSize) == 0) return;
    __builtin_memcpy(to, from, kSize);
    to += kSize;
    from += kSize;
  };
  struct Chunk32 {
    char bytes[32];
  };
  struct Chunk64 {
    char bytes[64];
  };
  move(Chunk64{});
  move(Chunk32{});
  move(Vec<char, 16>{});
  move(int64_t{});
  move(int32_t{});
  move(int16_t{});
  move(char{});
}

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, First part) {
  alignas(64) T lanes[N] = {};
  copy_bytes((char*)lanes, (const char*)from, part.lanes * int{sizeof(T)});
  return load<N>(lanes);
}
template <class T, int N>
NUQI_INLINE void store(T* to, const Vec<T, N>& a, First part) {
  alignas(64) T lanes[N];
  store(lanes, a);
  copy_bytes((char*)to, (const char*)lanes, part.lanes * int{sizeof(T)});
}

#endif

// The first, and the second, eight lanes of a block of sixteen.
NUQI_INLINE Whole eight_of(Whole part, int) { return part; }
NUQI_INLINE First eight_of(First part, int half) {
  const int lanes = part.lanes - 8 * half;
  return {lanes < 0 ? 0 : lanes > 8 ? 8 : lanes};
}
// Eight bytes; eight zeros follow them.
NUQI_INLINE Px<uint8_t> load_eight(const uint8_t* from, Whole) {
  typedef int64_t Halves __attribute__((vector_size(16)));
  return {{(Px<uint8_t>::Reg)Halves{load_one((const int64_t*)from)}}};
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

}  // namespace
}  // namespace nuqi::NUQI_ISA

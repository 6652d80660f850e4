// Loads and stores of whole vectors and of their first lanes, and the loops that walk a row with them:
// its whole blocks, then its tail.
#pragma once

#include "core/simd/vec.h"

namespace nuqi::NUQI_ISA {
namespace {

// How much of a vector a load or store touches: all lanes, or the first 1 to N - 1.
struct Whole {
  static constexpr bool kWhole = true;
};
struct First {
  static constexpr bool kWhole = false;
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

template <int N = 16, class T>
NUQI_INLINE Vec<T, N> load(const T* from, First part) {
  using V = Vec<T, N>;
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  return generate<V>([&](int i) NUQI_FORCED {
    const int before = i * int{sizeof(typename V::Native)};
    return machine::load_first<typename V::Native>((const char*)from + before, bytes - before);
  });
}
template <class T, int N>
NUQI_INLINE void store(T* to, const Vec<T, N>& a, First part) {
  const int64_t bytes = int64_t{part.lanes} * int{sizeof(T)};
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
    const int before = i * int{sizeof a.r[i]};
    machine::store_first((char*)to + before, a.r[i], bytes - before);
  });
}

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

// Asks for the cache line of an address, which need not be readable.
NUQI_INLINE void prefetch(const void* at) { __builtin_prefetch(at); }

// Walks elements from `from` to `to`, N or more, in blocks: body(x). The last block overlaps the one
// before it.
template <int N, class Body>
NUQI_INLINE void for_whole_blocks(int64_t from, int64_t to, const Body& body) {
  for (; from < to - N; from += N) body(from);
  body(to - N);
}

// Walks a row: body(x, Whole{}) for each block of N pixels, then body(x, First{rest}).
template <int N = 16, class Body>
NUQI_INLINE void for_blocks(int64_t width, const Body& body) {
  int64_t x = 0;
  for (; x + N <= width; x += N) body(x, Whole{});
  if (x < width) body(x, First{int(width - x)});
}

// The same with body(x, part, turn): blocks take the turns 0 to Turns - 1, each with an accumulator of
// its own, where one dependency chain would be bound by the latency of its additions.
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

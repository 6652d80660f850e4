// What the words need of a machine, in plain C++: the defaults, which NEON and unknown machines use as
// they are. Another machine's file overloads what it has an instruction for; docs/simd.md says how.
#pragma once

#include "core/simd/registers.h"
#include "core/square_root.h"

namespace nuqi::NUQI_ISA {
namespace {
namespace machine {

// What words that depend on it must know. A machine's own derives from this.
struct Plain {
  static constexpr int kRegBytes = 16;
  // Bytes move to places that a register gives: within groups of sixteen, or across the register.
  static constexpr bool kShufflesBytes = false, kPermutesBytes = false;
  static constexpr bool kMultipliesBytes = false;    // multiply_add_bytes
  static constexpr bool kDotsBytes = false;          // add_dots
  static constexpr bool kOrdersSignedBytes = false;  // min and max have instructions
  // A predicate is an integer, a bit for each lane; loads and stores take one.
  static constexpr bool kMasks = false;
};

// Those that only a machine with the constant of Plain above has.
template <class V>
V load_groups(const void* low, const void* high);  // of sixteen bytes each
template <class V>
V shuffle_bytes(V a, NativeAs<int8_t, V> places);
template <class V>
V permute_bytes(V a, NativeAs<uint8_t, V> places);
template <class V>
V permute_bytes(V low, V high, NativeAs<uint8_t, V> places);  // of two registers
template <class U, class S>
NativeAs<int16_t, U> multiply_add_bytes(U a, S b);
template <class V, class U, class S>
V add_dots(V sums, U a, S b);
template <class V, class K>
V load_or(const void* from, K lanes, V otherwise);
template <class V, class K>
V load_doubles(const float* from, K lanes, int i);

template <class V>
auto zip(const V& a, const V& b);  // in a register of twice the size

// ---- Memory

// Sixteen bytes, of which the first `bytes` come from memory. Shorter than that they are read in two
// pieces that overlap: a copy through the stack would fail store forwarding, since the load spans several
// stores. Not inlined, since tails are many, and short.
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

// The first `bytes` of a register, zeros behind them; nothing else is touched. `bytes` may be more
// than a register has, or negative.
template <class V>
NUQI_INLINE V load_first(const char* from, int64_t bytes) {
  if constexpr (sizeof(V) == 16)
    return (V)load_few(from, bytes);
  else
    return (V)__builtin_shufflevector(load_few(from, bytes), load_few(from + 16, bytes - 16), 0, 1,
                                      2, 3);
}
template <class V>
NUQI_INLINE void store_first(char* to, const V& a, int64_t bytes) {
  for_each<sizeof(V) / 16>([&](int i) NUQI_FORCED {
    Few piece;
    __builtin_memcpy(&piece, (const char*)&a + 16 * i, 16);
    store_few(to + 16 * i, piece, bytes - 16 * i);
  });
}

// As many floats as V has lanes, as doubles.
template <class V>
NUQI_INLINE V load_doubles(const float* from) {
  float in[2];
  __builtin_memcpy(in, from, sizeof in);
  return V{in[0], in[1]};
}

// ---- Conversion

// The lanes of the lower, or the upper, half as lanes of twice the size.
template <class To, class V>
NUQI_INLINE auto widen_low(const V& a) {
  const typename UpTo<sizeof(V) / sizeof(LaneOf<V>)>::Type lanes;
  if constexpr (kIsSigned<LaneOf<V>>)
    return (NativeAs<To, V>)zip_low(a, a, lanes) >> int{8 * sizeof(LaneOf<V>)};
  else
    return (NativeAs<To, V>)zip_low(a, V{}, lanes);
}
template <class To, class V>
NUQI_INLINE auto widen_high(const V& a) {
  const typename UpTo<sizeof(V) / sizeof(LaneOf<V>)>::Type lanes;
  if constexpr (kIsSigned<LaneOf<V>>)
    return (NativeAs<To, V>)zip_high(a, a, lanes) >> int{8 * sizeof(LaneOf<V>)};
  else
    return (NativeAs<To, V>)zip_high(a, V{}, lanes);
}
// All lanes in a register of twice the size.
template <class Out, class V>
NUQI_INLINE Out widen_all(const V& a) {
  return __builtin_convertvector(a, Out);
}
// Sixteen bytes as 32-bit integers: register i of them.
template <class Out, class V>
NUQI_INLINE Out widen_bytes(const V& a, int i) {
  const auto half = i / 2 == 0 ? widen_low<int16_t>(a) : widen_high<int16_t>(a);
  return i % 2 == 0 ? widen_low<int32_t>(half) : widen_high<int32_t>(half);
}
// As many signed bytes as Out has lanes, from memory.
template <class Out>
NUQI_INLINE Out load_widened(const int8_t* from) {
  int32_t four;
  __builtin_memcpy(&four, from, sizeof four);
  return widen_low<int32_t>(widen_low<int16_t>((NativeAs<int8_t, Out>)Out{four}));
}

// Half a register of floats or 32-bit integers as doubles; two registers of doubles rounded to floats.
template <class V>
NUQI_INLINE auto to_doubles(const V& a, int half) {
  using Out = NativeAs<double, V>;
  return half == 0 ? Out{(double)a[0], (double)a[1]} : Out{(double)a[2], (double)a[3]};
}
template <class V>
NUQI_INLINE auto round_to_floats(const V& low, const V& high) {
  return NativeAs<float, V>{(float)low[0], (float)low[1], (float)high[0], (float)high[1]};
}

// 64 bits to bytes, the lowest first: 255 where the bit is set. Register i of them.
template <class V>
NUQI_INLINE V bytes_of_bits(uint64_t bits, int i) {
  // Each lane gets the byte that holds its bit, and looks at that bit alone.
  constexpr uint64_t kOnes = 0x0101010101010101, kLaneBits = 0x8040201008040201;
  const auto spread = [&](int byte) NUQI_FORCED { return (bits >> 8 * byte & 0xFF) * kOnes; };
  const V lane_bits = (V)Few{kLaneBits, kLaneBits};
  return (V)(((V)Few{spread(2 * i), spread(2 * i + 1)} & lane_bits) == lane_bits);
}

// ---- Arithmetic of 16-bit lanes

template <class V>
NUQI_INLINE V shift_right(const V& a, int count) {
  return a >> count;
}

template <class V>
NUQI_INLINE V add_saturated(const V& a, const V& b) {
  using Wrapping = NativeAs<uint16_t, V>;
  const V sum = (V)((Wrapping)a + (Wrapping)b), limit = (V)(0x7FFF - (Wrapping)(a >> 15));
  return ((a ^ sum) & (b ^ sum)) < V{} ? limit : sum;
}
template <class V>
NUQI_INLINE V subtract_saturated(const V& a, const V& b) {
  using Wrapping = NativeAs<uint16_t, V>;
  const V rest = (V)((Wrapping)a - (Wrapping)b), limit = (V)(0x7FFF - (Wrapping)(a >> 15));
  return ((a ^ b) & (a ^ rest)) < V{} ? limit : rest;
}

// Of unsigned lanes, rounded up.
template <class V>
NUQI_INLINE V average(const V& a, const V& b) {
  return (a | b) - ((a ^ b) >> 1);
}

// The upper halves of the products.
template <class V>
NUQI_INLINE V multiply_high(const V& a, const V& b) {
  using Pairs = NativeAs<int32_t, V>;
  const Pairs x = (Pairs)a, y = (Pairs)b;
  const Pairs even = (x << 16 >> 16) * (y << 16 >> 16), odd = (x >> 16) * (y >> 16);
  return (V)((even >> 16 & 0xFFFF) | (odd & ~0xFFFF));
}

// The products of two neighbours each, added up, and added to sums.
template <class V>
NUQI_INLINE auto dot_pairs(const V& a, const V& b) {
  using Pairs = NativeAs<int32_t, V>;
  const Pairs x = (Pairs)a, y = (Pairs)b;
  return (x << 16 >> 16) * (y << 16 >> 16) + (x >> 16) * (y >> 16);
}
template <class V, class Pairs>
NUQI_INLINE V add_dot_pairs(const V& sums, const Pairs& a, const Pairs& b) {
  return sums + dot_pairs(a, b);
}

// 32-bit lanes to 16 bits, saturated: those of `low` in front of those of `high`, within every group
// of sixteen bytes.
template <class V>
NUQI_INLINE auto pack_saturated(const V& low, const V& high) {
  using Out = NativeAs<int16_t, V>;
  const V least = V{} - 32768, most = V{} + 32767;
  const auto held = [&](const V& a) NUQI_FORCED {
    const V above = a > least ? a : least;
    return (Out)(above < most ? above : most);
  };
  return even_lanes(held(low), held(high), typename UpTo<sizeof(V) / 2>::Type{});
}

// ---- Arithmetic of bytes

// Magnitudes: 128 of -128.
template <class V>
NUQI_INLINE auto magnitude(const V& a) {
  using Out = NativeAs<uint8_t, V>;
  const Out bits = (Out)a, negated = Out{} - bits;
  return bits < negated ? bits : negated;
}

// The products of bytes that have been widened to 32 bits.
template <bool is_signed, class V>
NUQI_INLINE V multiply_bytes(const V& a, const V& b) {
  return a * b;
}

// The sums of eight neighbours each.
template <class V>
NUQI_INLINE auto sum_eights(const V& a) {
  const auto twos = (NativeAs<uint16_t, V>)a;
  const auto fours = (NativeAs<uint32_t, V>)((twos & 0xFF) + (twos >> 8));
  const auto eights = (NativeAs<uint64_t, V>)((fours & 0xFFFF) + (fours >> 16));
  return (eights & 0xFFFFFFFF) + (eights >> 32);
}

// ---- Arithmetic of floats

template <class V>
NUQI_INLINE V clear_sign(const V& a) {
  using Bits = typename IntOf<sizeof(LaneOf<V>)>::Type;
  return (V)((NativeAs<Bits, V>)a & ~(Bits{1} << (8 * sizeof(Bits) - 1)));
}

// Of doubles.
template <class V>
NUQI_INLINE V square_root(const V& a) {
  return V{nuqi::square_root(a[0]), nuqi::square_root(a[1])};
}

// sum + a * b where products are exact, so that a fused operation gives the same.
template <class V>
NUQI_INLINE V add_exact_product(const V& sum, const V& a, const V& b) {
  return sum + a * b;
}

// ---- Predicates

// Whether any bit is set.
template <class V>
NUQI_INLINE bool any(const V& a) {
  const Few halves = (Few)a;
  return (halves[0] | halves[1]) != 0;
}

// Where a < b, or a = b: as a predicate; and its bits, the first lane's in the lowest place.
template <class V>
NUQI_INLINE auto below(const V& a, const V& b) {
  return a < b;
}
template <class V>
NUQI_INLINE auto equal(const V& a, const V& b) {
  return a == b;
}
template <int... I, class V>
NUQI_INLINE V lane_bits(Indices<I...>, V) {
  return V{LaneOf<V>(1u << I % 8)...};
}
template <class V>
NUQI_INLINE uint64_t bits(const V& predicate) {
  constexpr int n = sizeof(V) / sizeof(LaneOf<V>);
  const Few found = (Few)(predicate & lane_bits(typename UpTo<n>::Type{}, V{}));
  // Eight lanes are or-ed together, or all where there are no more.
  const auto gather = [](uint64_t half) NUQI_FORCED {
    half |= half >> 32;
    if (n > 4) half |= half >> 16;
    if (n > 8) half |= half >> 8;
    return half & 0xFF;
  };
  if constexpr (n > 8)
    return gather(found[0]) | gather(found[1]) << 8;
  else
    return gather(found[0] | found[1]);
}

// Which lanes mask bytes select, kept as those that they do not: a comparison with zero gives these.
template <class V>
struct Selected {
  V others;
};
template <class V>
NUQI_INLINE auto selected(const V& mask) {
  return Selected<NativeAs<int8_t, V>>{mask == V{}};
}

}  // namespace machine
}  // namespace
}  // namespace nuqi::NUQI_ISA

// Pixels of three, four or six channels: interleaved as they lie, or a register for each channel.
#pragma once

#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

// C registers: one for each channel, or as many interleaved pixels.
template <class T, int C>
struct Regs {
  Reg<T> v[C];
};

// ---- Memory

template <int C, class T>
NUQI_INLINE Regs<T, C> load_pixels(const T* from, Whole = {}) {
  constexpr int n = Reg<T>::kLanes;
  Regs<T, C> in;
  for_each<C>([&](int k) NUQI_FORCED { in.v[k] = load<n>(from + k * n); });
  return in;
}
template <class T, int C>
NUQI_INLINE void store_pixels(T* to, const Regs<T, C>& out, Whole = {}) {
  for_each<C>([&](int k) NUQI_FORCED { store(to + k * Reg<T>::kLanes, out.v[k]); });
}

template <int C, class T>
NUQI_INLINE Regs<T, C> load_pixels(const T* from, First part) {
  constexpr int n = Reg<T>::kLanes;
  Regs<T, C> in;
  for_each<C>([&](int k) NUQI_FORCED {
    in.v[k] = load<n>(from + k * n, part_from<n>(First{C * part.lanes}, k * n));
  });
  return in;
}
template <class T, int C>
NUQI_INLINE void store_pixels(T* to, const Regs<T, C>& out, First part) {
  constexpr int n = Reg<T>::kLanes;
  for_each<C>([&](int k) NUQI_FORCED {
    store(to + k * n, out.v[k], part_from<n>(First{C * part.lanes}, k * n));
  });
}

// ---- Registers

// The same bits, seen as lanes of T of any size.
template <class T, class S, int C>
NUQI_INLINE Regs<T, C> recast(const Regs<S, C>& a) {
  Regs<T, C> out;
  for_each<C>([&](int k) NUQI_FORCED { out.v[k] = lanes_as<T>(a.v[k]); });
  return out;
}

constexpr int kChunks = kRegBytes / 16;
constexpr int kWords = kRegBytes / 4;

// ---- By shuffles, of bytes too
//
// Three channels: fields of one size, a unit of n fields in each of three registers, n a power of two.
// Field j of register k is number n * k + j of 3 * n, and belongs to channel (n * k + j) mod 3. So the
// fields of a channel lie at different places of the three units: two blends bring them into one, a
// permutation into order. n * n = 1 mod 3, and 43 * 3 = 1 mod 64.
template <class T, int fields>
struct Unit {
  static constexpr int n = fields;
  static constexpr int per_field = sizeof(T) == 8 ? 2 : 1;  // a 16-byte field is two lanes
  static constexpr int field(int lane) { return lane / per_field % n; }
  static constexpr int lane_of(int lane, int field) {
    return lane / (n * per_field) * (n * per_field) + field * per_field + lane % per_field;
  }
};

// Field j from field (times * j + plus) mod n of the same unit.
template <class U, int times, int plus, class T, int N, int... I>
NUQI_INLINE Vec<T, N> permute_at(const Vec<T, N>& a, Indices<I...>) {
  return {{__builtin_shufflevector(a.r[0], a.r[0],
                                   U::lane_of(I, (times * U::field(I) + plus) % U::n)...)}};
}
template <class U, int times, int plus, class T, int N>
NUQI_INLINE Vec<T, N> permute(const Vec<T, N>& a) {
  return permute_at<U, times, plus>(a, typename UpTo<N>::Type{});
}

// Field j from register (times * j + plus) mod 3, at the same place.
template <class U, int times, int plus, class T, int N, int... I>
NUQI_INLINE Vec<T, N> blend_at(const Regs<T, 3>& in, Indices<I...>) {
  constexpr auto reg = [](int lane) { return (times * U::field(lane) + plus) % 3; };
  const auto& [a, b, c] = in.v;
  const auto ab = __builtin_shufflevector(a.r[0], b.r[0], (reg(I) == 1 ? N + I : I)...);
  return {{__builtin_shufflevector(ab, c.r[0], (reg(I) == 2 ? N + I : I)...)}};
}
template <class U, int times, int plus, class T>
NUQI_INLINE Reg<T> blend(const Regs<T, 3>& in) {
  constexpr int n = Reg<T>::kLanes;
  return blend_at<U, times, plus, T, n>(in, typename UpTo<n>::Type{});
}

template <class U, class T>
NUQI_INLINE Regs<T, 3> deinterleave_fields(const Regs<T, 3>& in) {
  constexpr int n = U::n;
  return {{permute<U, 3, 0>(blend<U, 2 * n, 0>(in)), permute<U, 3, 1>(blend<U, 2 * n, n>(in)),
           permute<U, 3, 2>(blend<U, 2 * n, 2 * n>(in))}};
}
template <class U, class T>
NUQI_INLINE Regs<T, 3> interleave_fields(const Regs<T, 3>& planes) {
  constexpr int n = U::n;
  const Regs<T, 3> in = {{permute<U, 43, 0>(planes.v[0]), permute<U, 43, 43 * (n - 1)>(planes.v[1]),
                          permute<U, 43, 43 * (2 * n - 2)>(planes.v[2])}};
  return {{blend<U, 1, 0>(in), blend<U, 1, n>(in), blend<U, 1, 2 * n>(in)}};
}

// Words permute across the register everywhere, bytes on some machines. Where they do so only within
// a chunk of sixteen, chunks are permuted first.
template <class T>
constexpr bool kAcross = sizeof(T) == 4 || Machine::kPermutesBytes;
using Chunks = Unit<int64_t, kChunks>;

template <class T>
NUQI_INLINE Regs<T, 3> deinterleave_by_shuffles(const Regs<T, 3>& in) {
  if constexpr (kAcross<T>)
    return deinterleave_fields<Unit<T, Reg<T>::kLanes>>(in);
  else
    return deinterleave_fields<Unit<T, 16>>(
        recast<T>(deinterleave_fields<Chunks>(recast<int64_t>(in))));
}
template <class T>
NUQI_INLINE Regs<T, 3> interleave_by_shuffles(const Regs<T, 3>& planes) {
  if constexpr (kAcross<T>)
    return interleave_fields<Unit<T, Reg<T>::kLanes>>(planes);
  else
    return recast<T>(
        interleave_fields<Chunks>(recast<int64_t>(interleave_fields<Unit<T, 16>>(planes))));
}

// Four channels. Every chunk is rotated, by the number k of its register, so that word q of it is
// of channel (q - k) mod 4; then the words of a channel lie at different places, as above.
template <int k, bool split, class T, int N, int... I>
NUQI_INLINE Vec<T, N> rotate_chunk(const Vec<T, N>& a, Indices<I...>) {
  constexpr auto from = [](int lane) {
    if (sizeof(T) == 4) return lane / 4 * 4 + (lane + (split ? 4 - k : k)) % 4;
    const int word = lane / 4 % 4, byte = lane % 4;
    return lane / 16 * 16 + (split ? 4 * byte + (word + 4 - k) % 4 : (byte + k) % 4 * 4 + word);
  };
  return {{__builtin_shufflevector(a.r[0], a.r[0], from(I)...)}};
}
template <bool split, class T>
NUQI_INLINE Regs<T, 4> rotate_chunks(const Regs<T, 4>& in) {
  const typename UpTo<Reg<T>::kLanes>::Type lanes;
  return {{rotate_chunk<0, split>(in.v[0], lanes), rotate_chunk<1, split>(in.v[1], lanes),
           rotate_chunk<2, split>(in.v[2], lanes), rotate_chunk<3, split>(in.v[3], lanes)}};
}

// Of every `period` words the first half from a, the second from b.
template <int period, int... I>
NUQI_INLINE Reg<uint32_t> halves(const Reg<uint32_t>& a, const Reg<uint32_t>& b, Indices<I...>) {
  return {{__builtin_shufflevector(a.r[0], b.r[0], (I % period < period / 2 ? I : kWords + I)...)}};
}
// Word q of every chunk of register c from register (q - c) mod 4, at the same place.
NUQI_INLINE Regs<uint32_t, 4> exchange(const Regs<uint32_t, 4>& in) {
  const auto& [a, b, c, d] = in.v;
  const UpTo<kWords>::Type words;
  const auto ab = halves<2>(a, b, words), bc = halves<2>(b, c, words);
  const auto cd = halves<2>(c, d, words), da = halves<2>(d, a, words);
  return {{halves<4>(ab, cd, words), halves<4>(da, bc, words), halves<4>(cd, ab, words),
           halves<4>(bc, da, words)}};
}

// Register c: from the order of exchange() to the order of pixels, or back.
template <int c, bool split, int... I>
NUQI_INLINE Reg<uint32_t> order_at(const Reg<uint32_t>& a, Indices<I...>) {
  constexpr auto from = [](int i) {
    return split ? i % kChunks * 4 + (i / kChunks + c) % 4 : (i % 4 + 4 - c) % 4 * kChunks + i / 4;
  };
  return {{__builtin_shufflevector(a.r[0], a.r[0], from(I)...)}};
}
template <bool split>
NUQI_INLINE Regs<uint32_t, 4> order(const Regs<uint32_t, 4>& in) {
  const UpTo<kWords>::Type words;
  return {{order_at<0, split>(in.v[0], words), order_at<1, split>(in.v[1], words),
           order_at<2, split>(in.v[2], words), order_at<3, split>(in.v[3], words)}};
}

template <class T>
NUQI_INLINE Regs<T, 4> deinterleave_by_shuffles(const Regs<T, 4>& in) {
  return recast<T>(order<true>(exchange(recast<uint32_t>(rotate_chunks<true>(in)))));
}
template <class T>
NUQI_INLINE Regs<T, 4> interleave_by_shuffles(const Regs<T, 4>& planes) {
  return rotate_chunks<false>(recast<T>(exchange(order<false>(recast<uint32_t>(planes)))));
}

// ---- By zips
//
// Three channels: planes of elements become planes of pairs, Pair being two elements wide. Of
// a0 b0 c0 a1 b1 c1 ... the pairs are a0 b0, c0 a1 and b1 c1, and so on.
template <int Bytes>
struct PairOf;
template <>
struct PairOf<1> {
  using Type = uint16_t;
};
template <>
struct PairOf<2> {
  using Type = uint32_t;
};
template <>
struct PairOf<4> {
  using Type = uint64_t;
};

// The lower or upper half of every lane, the other half being clear.
template <class T, int N>
NUQI_INLINE Vec<T, N> lower(const Vec<T, N>& a) {
  return a & broadcast<T, N>(static_cast<T>(T(-1) >> 4 * sizeof(T)));
}
template <class T, int N>
NUQI_INLINE Vec<T, N> upper(const Vec<T, N>& a) {
  return a & broadcast<T, N>(static_cast<T>(T(-1) << 4 * sizeof(T)));
}

template <class T>
NUQI_INLINE Regs<T, 3> deinterleave_by_zips(const Regs<T, 3>& in) {
  if constexpr (sizeof(T) == 8) {
    const auto a = in.v[0].r[0], b = in.v[1].r[0], c = in.v[2].r[0];
    return {{{{__builtin_shufflevector(a, b, 0, 3)}},
             {{__builtin_shufflevector(a, c, 1, 2)}},
             {{__builtin_shufflevector(b, c, 0, 3)}}}};
  } else {
    using Pair = typename PairOf<sizeof(T)>::Type;
    constexpr int kHalf = 8 * sizeof(T);
    const auto pairs = deinterleave_by_zips(recast<Pair>(in));
    const auto& [ab, ca, bc] = pairs.v;
    return recast<T>(
        Regs<Pair, 3>{{lower(ab) | upper(ca), ab >> kHalf | bc << kHalf, lower(ca) | upper(bc)}});
  }
}
template <class T>
NUQI_INLINE Regs<T, 3> interleave_by_zips(const Regs<T, 3>& planes) {
  if constexpr (sizeof(T) == 8) {
    const auto a = planes.v[0].r[0], b = planes.v[1].r[0], c = planes.v[2].r[0];
    return {{{{__builtin_shufflevector(a, b, 0, 2)}},
             {{__builtin_shufflevector(c, a, 0, 3)}},
             {{__builtin_shufflevector(b, c, 1, 3)}}}};
  } else {
    using Pair = typename PairOf<sizeof(T)>::Type;
    constexpr int kHalf = 8 * sizeof(T);
    const auto in = recast<Pair>(planes);
    const auto& [a, b, c] = in.v;
    return recast<T>(interleave_by_zips(
        Regs<Pair, 3>{{lower(a) | b << kHalf, lower(c) | upper(a), b >> kHalf | upper(c)}}));
  }
}

// Four channels: perfect shuffles, which interleave the halves of n elements in four registers. Element
// i moves to 2 * i mod (n - 1). Twice, that interleaves planes; log2(n / 4) times, it deinterleaves.
template <int half, class T, int N, int... I>
NUQI_INLINE Vec<T, N> zip_at(const Vec<T, N>& a, const Vec<T, N>& b, Indices<I...>) {
  return {{__builtin_shufflevector(a.r[0], b.r[0], (half * N / 2 + I / 2 + I % 2 * N)...)}};
}
template <class T>
NUQI_INLINE Regs<T, 4> riffle(const Regs<T, 4>& in) {
  const auto& [a, b, c, d] = in.v;
  const typename UpTo<Reg<T>::kLanes>::Type lanes;
  return {{zip_at<0>(a, c, lanes), zip_at<1>(a, c, lanes), zip_at<0>(b, d, lanes),
           zip_at<1>(b, d, lanes)}};
}

template <class T>
NUQI_INLINE Regs<T, 4> deinterleave_by_zips(const Regs<T, 4>& in) {
  const auto twice = riffle(riffle(in));
  if constexpr (sizeof(T) == 4)
    return twice;
  else
    return riffle(riffle(twice));
}
template <class T>
NUQI_INLINE Regs<T, 4> interleave_by_zips(const Regs<T, 4>& planes) {
  return riffle(riffle(planes));
}

// ---- Either

// Interleaved pixels to one register a channel, and back.
template <class T, int C>
NUQI_INLINE Regs<T, C> deinterleave(const Regs<T, C>& pixels) {
  if constexpr (Machine::kShufflesBytes)
    return deinterleave_by_shuffles(pixels);
  else
    return deinterleave_by_zips(pixels);
}
template <class T, int C>
NUQI_INLINE Regs<T, C> interleave(const Regs<T, C>& planes) {
  if constexpr (Machine::kShufflesBytes)
    return interleave_by_shuffles(planes);
  else
    return interleave_by_zips(planes);
}

// ---- Six floats a pixel

// Of three registers of 64-bit lanes, register k of the lanes a0 b0 c0 a1 b1 c1 ...
template <int k, class Native, int... I>
NUQI_INLINE Native interleave_at(const Native& a, const Native& b, const Native& c, Indices<I...>) {
  constexpr int n = sizeof...(I);
  constexpr auto channel = [](int lane) { return (k * n + lane) % 3; };
  constexpr auto pixel = [](int lane) { return (k * n + lane) / 3; };
  const auto ab = __builtin_shufflevector(a, b, (pixel(I) + (channel(I) == 1 ? n : 0))...);
  return __builtin_shufflevector(ab, c, (channel(I) == 2 ? n + pixel(I) : I)...);
}

// Pixels of six floats, value i of all of them in a[i].
NUQI_INLINE void store_six(float* to, const Reg<float> (&a)[6]) {
  constexpr int n = Reg<float>::kLanes;
  const typename UpTo<n>::Type lanes;
  const typename UpTo<n / 2>::Type pairs;
  const auto pair = [&](int first, int half) NUQI_FORCED {
    const auto &x = a[first].r[0], &y = a[first + 1].r[0];
    return (Reg<double>::Native)(half == 0 ? zip_low(x, y, lanes) : zip_high(x, y, lanes));
  };
  for_each<2>([&](int half) NUQI_FORCED {
    const auto x = pair(0, half), y = pair(2, half), z = pair(4, half);
    double* const at = (double*)(to + 3 * n * half);
    store(at, Reg<double>{{interleave_at<0>(x, y, z, pairs)}});
    store(at + n / 2, Reg<double>{{interleave_at<1>(x, y, z, pairs)}});
    store(at + n, Reg<double>{{interleave_at<2>(x, y, z, pairs)}});
  });
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

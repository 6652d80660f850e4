// Arithmetic modulo two primes in 16-bit lanes, by Montgomery's method, for the transforms of rows. Numbers
// stand for their residues and are not held below the prime: the bounds at the end say why none overflows.
#pragma once

#include "core/simd/arithmetic.h"

namespace nuqi::NUQI_ISA {
namespace {

using Band = Reg<int16_t>;
constexpr int kBand = Band::kLanes;  // rows of a band: a lane each

// Points of a transform; both primes have roots of unity of twice that order.
constexpr int kPoints = 64;
constexpr int kOrder = 2 * kPoints;

// What multiplies by w: w * 2^16 modulo the prime p, and that over p modulo 2^16. Twice, so that 32 bits hold
// two lanes, which SSE2 broadcasts with half the instructions.
struct Factor {
  int16_t value[2], quotient[2];
};

struct Field {
  int16_t prime, prime_inverse;  // modulo 2^16
  Factor one;
  Factor forward[2][kPoints], inverse[2][kPoints];  // [half][node of the tree], see transform.h
  Factor for_template;                              // 2^16 / kOrder
};

constexpr int64_t power_of(int64_t base, int exponent, int prime) {
  int64_t result = 1;
  for (int i = 0; i < exponent; ++i) result = result * base % prime;
  return result;
}
// Of least magnitude.
constexpr int16_t centred(int64_t a, int prime) {
  const int64_t rest = a % prime;
  return int16_t(rest > prime / 2 ? rest - prime : rest);
}
// 1 / a modulo 2^16 by Newton's steps, each of which doubles the bits.
constexpr int16_t inverse_of(int a) {
  uint32_t inverse = 1;
  for (int i = 0; i < 5; ++i) inverse *= 2 - (uint32_t)a * inverse;
  return (int16_t)inverse;
}
constexpr Factor factor_of(int64_t w, int prime) {
  const int16_t value = centred((w << 16) % prime, prime);
  const int16_t quotient = (int16_t)((uint32_t)value * (uint32_t)inverse_of(prime));
  return {{value, value}, {quotient, quotient}};
}
constexpr int64_t root_of_unity(int prime) {
  for (int64_t base = 2;; ++base) {
    const int64_t root = power_of(base, (prime - 1) / kOrder, prime);
    if (power_of(root, kPoints, prime) == prime - 1) return root;
  }
}
constexpr Field field_of(int prime) {
  Field f = {};
  f.prime = (int16_t)prime;
  f.prime_inverse = inverse_of(prime);
  f.one = factor_of(1, prime);
  f.for_template =
      factor_of((int64_t{1} << 16) * power_of(kOrder, prime - 2, prime) % prime, prime);
  const int64_t root = root_of_unity(prime);
  for (int half = 0; half < 2; ++half) {
    // Node i halves polynomials modulo x^n - root^exponent[i].
    int exponent[2 * kPoints] = {0, half == 0 ? 0 : kPoints};
    for (int i = 1; i < kPoints; ++i) {
      const int split = exponent[i] / 2;
      exponent[2 * i] = split, exponent[2 * i + 1] = split + kPoints;
      f.forward[half][i] = factor_of(power_of(root, split, prime), prime);
      f.inverse[half][i] = factor_of(power_of(root, kOrder - split, prime), prime);
    }
  }
  return f;
}
constexpr int kPrimes[2] = {12289, 11777};
constexpr Field kFields[2] = {field_of(kPrimes[0]), field_of(kPrimes[1])};

// ---- Lanes

NUQI_INLINE Band broadcast_pair(const int16_t (&pair)[2]) {
  return lanes_as<int16_t>(broadcast<int32_t, kBand / 2>(load_one((const int32_t*)pair)));
}
NUQI_INLINE Band low_product(const Band& a, const Band& b) {
  return as<int16_t>(as<uint16_t>(a) * as<uint16_t>(b));
}
// a / 2^16, where a has the upper halves `high` and whose lower ones are p * `quotient` modulo 2^16.
NUQI_INLINE Band reduced(const Band& high, const Band& quotient, const Band& prime) {
  return high - multiply_high(quotient, prime);
}
NUQI_INLINE Band multiply(const Band& a, const Factor& w, const Band& prime) {
  const Band quotient = low_product(a, broadcast_pair(w.quotient));
  return reduced(multiply_high(a, broadcast_pair(w.value)), quotient, prime);
}
// Of least magnitude, where it is less than 3/2 of the prime.
NUQI_INLINE Band least(const Band& a, int prime) {
  const Band all = broadcast<int16_t, kBand>((int16_t)prime);
  const Band half = broadcast<int16_t, kBand>((int16_t)(prime / 2));
  return a - keep(a > half, all) + keep(a < -half, all);
}

// ---- Bounds

// Products of a piece's pixels, less 128, are at most 2^14; so two residues tell their sum.
constexpr int kPiecePixels = 64 * 64;
// Pairs of rows whose products are added up before the sum is made smaller.
constexpr int kPairsAtOnce = 12;

constexpr bool within_16_bits(int prime) {
  const int64_t one = centred(65536, prime), unit = one < 0 ? -one : one, half = prime / 2 + 1;
  const auto any = [=](int64_t a) { return half + a * half / 65536 + 1; };  // times whatever factor
  const auto once = [=](int64_t a) { return half + a * unit / 65536; };     // times 1
  const auto split = [=](int64_t a) { return a + any(a); };
  // The forward transform, of sums of two pixels.
  const int64_t third = split(split(split(256))), a = once(third);
  const int64_t fourth = a + any(third), sixth = split(split(fourth)), spectrum = once(sixth);
  // Sums of products, when they are made smaller and at the end.
  const int64_t smaller = 32768 + 32768 * unit;
  const int64_t sum = smaller + 2 * kPairsAtOnce * spectrum * half;
  const int64_t product = sum / 65536 + 1 + half, start = once(product);
  // Three steps of the inverse one: two of sums, after which the largest are reduced, and another.
  const auto most = [](int64_t a, int64_t b) { return a > b ? a : b; };
  const auto join = [=](int64_t a) {
    return 2 * most(2 * any(2 * a), most(any(4 * a), once(4 * a)));
  };
  const int64_t middle = once(join(start)), end = once(join(middle));
  return sixth < 32768 && sum < INT32_MAX && product < 32768 && 4 * start < 32768 &&
         join(start) < 32768 && 4 * middle < 32768 && join(middle) < 32768 && 2 * end < 16384;
}
static_assert(within_16_bits(kPrimes[0]) && within_16_bits(kPrimes[1]));
// Of residues below 2^14: what sums are multiples of the first prime by, beside these.
constexpr int kMostMultiple = (kPiecePixels * 16384 + 16384) / kPrimes[0] + 1;

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Exact sums of products along rows by number-theoretic transforms (docs/match.md). A row of kOrder pixels is
// a polynomial; its `half` 0 is that modulo x^64 - 1, half 1 that modulo x^64 + 1. Lanes are rows, so that a
// transform shuffles nothing.
#pragma once

#include "core/simd/pairs.h"
#include "core/simd/reduce.h"
#include "core/simd/transpose.h"
#include "match/residues.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Columns of a band

// Pixels of a band's rows, less 128 of unsigned ones. Column 2i is in the lower bytes of columns[i], column
// 2i + 1 in the upper ones.
constexpr int kGroups = kBand / 8;
struct BandPixels {
  Vec<int8_t, 16> rows[kOrder / 16][8][kGroups];  // sixteen columns of row 8 * group + i
  Band columns[kPoints];

  NUQI_INLINE void clear() {
    for (auto& columns : rows)
      for (auto& eight : columns)
        for (auto& row : eight) row = {};
  }
  NUQI_INLINE Vec<int8_t, 16>& at(int row, int column) {
    return rows[column / 16][row % 8][row / 8];
  }
  NUQI_NOINLINE void transpose() {
    for (int i = 0; i < kOrder / 16; ++i) {
      Band eight[8];
      for_each<8>([&](int k) NUQI_FORCED { eight[k] = load<kBand>((const int16_t*)rows[i][k]); });
      transpose_eight(eight);
      for_each<8>([&](int k) NUQI_FORCED { columns[8 * i + k] = eight[k]; });
    }
  }
};

template <class T>
constexpr T kCentre = kIsSigned<T> ? 0 : 128;

// Rows from y on, `count` of them, of which the first `width` pixels from x on. What lies behind both stays as
// it was: it gives no sum that is used.
template <class T>
NUQI_NOINLINE void take_band(const Image<const T>& image, int64_t x, int64_t y, int64_t width,
                             int64_t count, BandPixels& band) {
  for (int i = 0; i < kBand && i < count; ++i) {
    const T* const row = row_of(image, y + i) + x;
    for_blocks<16>(width < kOrder ? width : kOrder, [&](int64_t c, auto part) NUQI_FORCED {
      band.at(i, (int)c) = as<int8_t>(load(row + c, part) ^ broadcast(kCentre<T>));
    });
  }
  band.transpose();
}

// The template's rows, each turned round: its column u becomes -u modulo kOrder, since x^-u shifts by u.
template <class T>
NUQI_NOINLINE void take_template_band(const Image<const T>& image, int64_t x, int64_t y, int width,
                                      int64_t count, BandPixels& band) {
  band.clear();
  for (int i = 0; i < kBand && i < count; ++i) {
    const T* const row = row_of(image, y + i) + x;
    for (int u = 0; u < width; ++u) {
      const int column = -u & (kOrder - 1);
      ((int8_t*)&band.at(i, column))[column % 16] = (int8_t)(row[u] ^ kCentre<T>);
    }
  }
  band.transpose();
}

// ---- Transforms of eight points, with the twiddle factors of node `node` of the tree and those below it

NUQI_INLINE void split_eight(Band (&v)[8], const Factor* factors, int node, const Band& prime) {
  for_each<3>([&](int level) NUQI_FORCED {
    const int span = 4 >> level;
    for_each<4>([&](int i) NUQI_FORCED {
      const int block = i / span, low = block * 2 * span + i % span;
      const Band product = multiply(v[low + span], factors[(node << level) + block], prime);
      v[low + span] = v[low] - product;
      v[low] = v[low] + product;
    });
  });
}
NUQI_INLINE void join_eight(Band (&v)[8], const Field& field, const Factor* factors, int node,
                            const Band& prime) {
  for_each<3>([&](int step) NUQI_FORCED {
    const int level = 2 - step, span = 1 << step;
    if (level == 0)
      for_each<2>([&](int i) NUQI_FORCED { v[4 * i] = multiply(v[4 * i], field.one, prime); });
    for_each<4>([&](int i) NUQI_FORCED {
      const int block = i / span, low = block * 2 * span + i % span;
      const Band difference = v[low] - v[low + span];
      v[low] = v[low] + v[low + span];
      v[low + span] = multiply(difference, factors[(node << level) + block], prime);
    });
  });
}

// ---- Whole transforms. Point i of a band's rows lies at i * pitch.

template <int half>
NUQI_NOINLINE void transform(const BandPixels& band, const Field& field, int16_t* to,
                             int64_t pitch) {
  const Band prime = broadcast<int16_t, kBand>(field.prime);
  const auto fold = [&](int j, bool odd) NUQI_FORCED {
    Band v[8];
    for_each<8>([&](int k) NUQI_FORCED {
      const auto column = [&](int i) NUQI_FORCED {
        const auto both = lanes_as<int8_t>(band.columns[i]);
        return odd ? odd_bytes(both) : even_bytes(both);
      };
      const Band low = column(j / 2 + 4 * k), high = column(j / 2 + 4 * k + kPoints / 2);
      v[k] = half == 0 ? low + high : low - high;
    });
    split_eight(v, field.forward[half], 1, prime);
    for_each<8>([&](int k) NUQI_FORCED { store(to + (j + 8 * k) * pitch, v[k]); });
  };
  for (int j = 0; j < 8; j += 2) fold(j, false), fold(j + 1, true);
  for (int i = 0; i < 8; ++i) {
    int16_t* const at = to + 8 * i * pitch;
    Band v[8];
    for_each<8>([&](int k) NUQI_FORCED { v[k] = load<kBand>(at + k * pitch); });
    for_each<4>([&](int k) NUQI_FORCED { v[k] = multiply(v[k], field.one, prime); });
    split_eight(v, field.forward[half], 8 + i, prime);
    for_each<8>([&](int k)
                    NUQI_FORCED { store(at + k * pitch, multiply(v[k], field.one, prime)); });
  }
}

// Back to columns. Half 0 gives half of c + d, where c are the first kPoints columns and d those behind them;
// half 1 gives half of c - d, after which `to` holds c and d, as far as there are `columns`.
template <int half>
NUQI_NOINLINE void invert(int16_t* from, int64_t pitch, const Field& field, int16_t* to,
                          int64_t to_pitch, int columns) {
  const Band prime = broadcast<int16_t, kBand>(field.prime);
  for (int i = 0; i < 8; ++i) {
    int16_t* const at = from + 8 * i * pitch;
    Band v[8];
    for_each<8>([&](int k) NUQI_FORCED { v[k] = load<kBand>(at + k * pitch); });
    join_eight(v, field, field.inverse[half], 8 + i, prime);
    for_each<8>([&](int k)
                    NUQI_FORCED { store(at + k * pitch, multiply(v[k], field.one, prime)); });
  }
  for (int j = 0; j < 8; ++j) {
    Band v[8];
    for_each<8>([&](int k) NUQI_FORCED { v[k] = load<kBand>(from + (j + 8 * k) * pitch); });
    join_eight(v, field, field.inverse[half], 1, prime);
    for_each<8>([&](int k) NUQI_FORCED {
      const Band column = multiply(v[k], field.one, prime);
      int16_t* const at = to + (j + 8 * k) * to_pitch;
      if constexpr (half == 0) {
        store(at, column);
      } else {
        const Band sum = load<kBand>(at);
        store(at, sum + column);
        if (j + 8 * k + kPoints < columns) store(at + kPoints * to_pitch, sum - column);
      }
    });
  }
}

// ---- Down the rows

// The transform of a template's rows: of a point, a zero, the rows, and zeros. So pairs from both even and odd
// places on can be had.
constexpr int kSpectrumPitch = kPoints + 4;
struct Spectrum {
  int16_t of[kPoints][kSpectrumPitch];
};

template <int half>
NUQI_INLINE void transform_template(const BandPixels& band, const Field& field, int start,
                                    Spectrum& to) {
  const Band prime = broadcast<int16_t, kBand>(field.prime);
  transform<half>(band, field, to.of[0] + 1 + start, kSpectrumPitch);
  for (auto& row : to.of) {
    int16_t* const at = row + 1 + start;
    store(at, least(multiply(load<kBand>(at), field.for_template, prime), field.prime));
  }
}

// The sum modulo the prime, within what kPairsAtOnce can add to: upper half * 2^16 + lower half with a sign.
NUQI_INLINE Reg<int32_t> smaller(const Reg<int32_t>& sum, const Band& one) {
  constexpr int n = Reg<int32_t>::kLanes;
  const auto halves = (sum + broadcast<int32_t, n>(0x8000)) ^ broadcast<int32_t, n>(0x8000);
  return dot_pairs(lanes_as<int16_t>(halves), one);
}

// R bands of sums from their first row on, in place of these: `from` is a point's rows.
template <int R>
NUQI_INLINE void multiply_bands(int16_t* from, const int16_t* weights, int pairs,
                                const Field& field) {
  using Sums = Reg<int32_t>;
  constexpr int n = Sums::kLanes;
  const Band prime = broadcast<int16_t, kBand>(field.prime);
  const Band one = lanes_as<int16_t>(
      broadcast<int32_t, n>((int32_t)((uint32_t)(uint16_t)field.one.value[0] << 16 | 1)));
  Sums even[R] = {}, odd[R] = {};
  for (int start = 0; start < pairs; start += kPairsAtOnce) {
    if (start != 0)
      for_each<R>([&](int r) NUQI_FORCED {
        even[r] = smaller(even[r], one), odd[r] = smaller(odd[r], one);
      });
    const int end = start + kPairsAtOnce < pairs ? start + kPairsAtOnce : pairs;
    for (int k = start; k < end; ++k) {
      const auto pair = [&](int at) NUQI_FORCED {
        return lanes_as<int16_t>(broadcast<int32_t, n>(load_one((const int32_t*)(weights + at))));
      };
      // Rows 2j and 2j + 1 meet the template's rows -1 and 0 for a sum at row 2j + 1.
      const Band for_odd = pair(2 * k), for_even = pair(2 * k + 1);
      for_each<R>([&](int r) NUQI_FORCED {
        const Band rows = load<kBand>(from + r * kBand + 2 * k);
        even[r] = add_dot_pairs(even[r], rows, for_even);
        odd[r] = add_dot_pairs(odd[r], rows, for_odd);
      });
    }
  }
  for_each<R>([&](int r) NUQI_FORCED {
    const auto a = as<uint32_t>(even[r]), b = as<uint32_t>(odd[r]);
    const auto low_half = broadcast<uint32_t, n>(0xFFFF);
    const Band low = lanes_as<int16_t>((a & low_half) | b << 16);
    const Band high = lanes_as<int16_t>(a >> 16 | (b & ~low_half));
    // Divided by 2^16, which the template's transform has been multiplied by.
    const Band inverse = broadcast<int16_t, kBand>(field.prime_inverse);
    const Band sum = reduced(high, low_product(low, inverse), prime);
    store(from + r * kBand, multiply(sum, field.one, prime));
  });
}
NUQI_NOINLINE void multiply_points(int16_t* points, int64_t pitch, int bands, const Spectrum& tpl,
                                   int tpl_rows, const Field& field) {
  const int pairs = tpl_rows / 2 + 1;
  for (int i = 0; i < kPoints; ++i) {
    int16_t* at = points + i * pitch;
    int left = bands;
    for (; left >= 4; left -= 4, at += 4 * kBand) multiply_bands<4>(at, tpl.of[i], pairs, field);
    if (left >= 2) multiply_bands<2>(at, tpl.of[i], pairs, field), left -= 2, at += 2 * kBand;
    if (left == 1) multiply_bands<1>(at, tpl.of[i], pairs, field);
  }
}

// ---- The sums themselves

// Of a band, `columns` of them, from their residues a and b; those of a row lie one behind the other in `to`.
// By the Chinese remainder theorem a sum is a + 12289 * k, where k is (b - a) / 12289 modulo 11777.
NUQI_NOINLINE void combine(const int16_t* a, const int16_t* b, int64_t pitch, int columns,
                           int32_t* to, int64_t to_pitch) {
  constexpr Factor kInverse =
      factor_of(power_of(kPrimes[0], kPrimes[1] - 2, kPrimes[1]), kPrimes[1]);
  // The primes are 512 apart, so that the factor is 128: what it gives is k, not k and the prime.
  static_assert(kMostMultiple + kPrimes[1] / 2 + 1 + kInverse.value[0] / 2 < kPrimes[1]);
  const Band prime = broadcast<int16_t, kBand>((int16_t)kPrimes[1]);
  const Band factors =
      lanes_as<int16_t>(broadcast<int32_t, kBand / 2>((int32_t)((uint32_t)kPrimes[0] << 16 | 1)));
  for (int c = 0; c < columns; c += 4) {
    Reg<int32_t> low[4], high[4];
    for_each<4>([&](int i) NUQI_FORCED {
      const int64_t at = (c + i) * pitch;
      const Band x = load<kBand>(a + at), difference = load<kBand>(b + at) - x;
      const Band k = multiply(difference, kInverse, prime);
      const typename UpTo<kBand>::Type lanes;
      low[i] = dot_pairs(Band{{zip_half<0>(x.r[0], k.r[0], lanes)}}, factors);
      high[i] = dot_pairs(Band{{zip_half<1>(x.r[0], k.r[0], lanes)}}, factors);
    });
    transpose_four<1, 4>(low[0], low[1], low[2], low[3]);
    transpose_four<1, 4>(high[0], high[1], high[2], high[3]);
    for_each<4>([&](int i) NUQI_FORCED {
      for_each<kGroups>([&](int g) NUQI_FORCED {
        int32_t* const row = to + (8 * g + i) * to_pitch + c;
        __builtin_memcpy(row, (const char*)&low[i] + 16 * g, 16);
        __builtin_memcpy(row + 4 * to_pitch, (const char*)&high[i] + 16 * g, 16);
      });
    });
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

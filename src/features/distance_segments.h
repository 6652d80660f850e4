// Rows of distances cut into segments, as the kernels of the distance transforms lay them, and what brings
// pixels into that order and back.
//
// As many segments as a vector has lanes: vector i holds pixel i of every segment. So pixels that depend
// on each other lie in one lane, and the dependency chains of all segments run side by side.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/shuffle.h"
#include "core/simd/transpose.h"
#include "features/distance_transform.h"

namespace nuqi::NUQI_ISA {
namespace {

template <int kLanes>
using Ints = Vec<int32_t, kLanes>;
template <int kLanes>
constexpr int kLog2 = 1 + kLog2<kLanes / 2>;
template <>
constexpr int kLog2<1> = 0;

template <int kLanes>
NUQI_INLINE Ints<kLanes> all(int32_t value) {
  return broadcast<int32_t, kLanes>(value);
}
template <int kLanes>
NUQI_INLINE Ints<kLanes> far() {
  return all<kLanes>(kDistanceFar);
}

// ---- How rows lie

// A piece of a row: at least two whole vectors, and one of whose lanes only the first `rest` are
// pixels, which the first segments have more than the others.
template <int kLanes>
struct Block {
  int64_t count;
  int rest;
  int64_t starts[kLanes];  // of the segments

  NUQI_INLINE Block(int64_t vectors, int lanes) : count(vectors), rest(lanes) {
    for (int i = 0; i < kLanes; ++i) starts[i] = i * count + (i < rest ? i : rest);
  }
  NUQI_INLINE int64_t pixels() const { return kLanes * count + rest; }
};

// The blocks of a row. All but the last have kMostVectors, and no rest.
constexpr int kMostVectors = 128;
template <int kLanes>
constexpr int kMostPixels = kLanes*(kMostVectors + 2);

template <int kLanes>
struct Blocks {
  int64_t last;
  Block<kLanes> of[2];  // of the others, and the last

  NUQI_INLINE explicit Blocks(int64_t width)
      : last((width / kLanes - 2) / kMostVectors),
        of{{kMostVectors, 0}, {width / kLanes - last * kMostVectors, int(width % kLanes)}} {}

  NUQI_INLINE const Block<kLanes>& operator[](int64_t i) const { return of[i == last]; }
  // Its first pixel.
  NUQI_INLINE static int64_t x(int64_t i) { return i * kMostVectors * kLanes; }
};

// Moves every lane to the segment k places to the right, or to the left.
template <bool right, int k = 1, int kLanes>
NUQI_INLINE Ints<kLanes> moved(const Ints<kLanes>& a, const Ints<kLanes>& in) {
  if constexpr (right)
    return lanes_up<k>(a, in);
  else
    return lanes_down<k>(a, in);
}

// The lanes of a block's rest from a, the others from b.
template <int kLanes>
NUQI_INLINE Ints<kLanes> rest_of(const Block<kLanes>& block, const Ints<kLanes>& a,
                                 const Ints<kLanes>& b) {
  return select(lanes_below<int32_t, kLanes>(block.rest), a, b);
}

// ---- Into that order and back

// Columns of bytes that are turned at a time.
constexpr int kColumns = 8;

// -1 for each pixel that is not zero and 0 for the others, in the order of a block's vectors. Writes
// kColumns vectors at least.
template <int kLanes>
NUQI_NOINLINE void find_features(const uint8_t* src, const Block<kLanes>& block, int8_t* features) {
  constexpr int kRegs = kLanes / 2;
  constexpr auto lanes = typename UpTo<16>::Type{};
  const auto turn = [&](int64_t x, const auto& from) NUQI_FORCED {
    Px<uint8_t> rows[kRegs];
    for_each<kRegs>([&](int i) NUQI_FORCED {
      const auto a = load_eight(from(i), Whole{}), b = load_eight(from(i + kRegs), Whole{});
      rows[i].r[0] = zip_low(a.r[0], b.r[0], lanes);
    });
    for_each<kLog2<kLanes> - 1>([&](int) NUQI_FORCED {
      Px<uint8_t> turned[kRegs];
      for_each<kRegs / 2>([&](int i) NUQI_FORCED {
        turned[2 * i].r[0] = zip_low(rows[i].r[0], rows[i + kRegs / 2].r[0], lanes);
        turned[2 * i + 1].r[0] = zip_high(rows[i].r[0], rows[i + kRegs / 2].r[0], lanes);
      });
      for_each<kRegs>([&](int i) NUQI_FORCED { rows[i] = turned[i]; });
    });
    for_each<kRegs>([&](int i) NUQI_FORCED {
      store(features + x * kLanes + i * 16, as<int8_t>(nonzero(rows[i])));
    });
  };

  if (block.count < kColumns) {
    // Columns that end beyond the block come from a copy of its end.
    uint8_t copy[2 * kColumns] = {};
    const int64_t last = block.pixels() - kColumns;
    __builtin_memcpy(copy, src + last, kColumns);
    turn(0, [&](int lane) NUQI_FORCED {
      const int64_t at = block.starts[lane];
      return at <= last ? src + at : copy + (at - last);
    });
  } else {
    // The last columns overlap those before them.
    for (int64_t x = 0; x < block.count; x += kColumns) {
      const int64_t first = x + kColumns <= block.count ? x : block.count - kColumns;
      turn(first, [&](int lane) NUQI_FORCED { return src + first + block.starts[lane]; });
    }
  }
  for (int lane = 0; lane < block.rest; ++lane)
    features[kLanes * block.count + lane] = src[block.starts[lane] + block.count] != 0 ? -1 : 0;
}

constexpr float kUnit = 0x1p-18f;

// A block's pixels in their order, as floats.
template <int kLanes>
NUQI_INLINE void turn_back(const Block<kLanes>& block, const int32_t* from, float* pixels) {
  constexpr int n = kLanes > 8 ? kLanes / 2 : kLanes;  // larger squares take longer
  const auto turn = [&](int64_t x, const auto& column) NUQI_FORCED {
    for (int lane = 0; lane < kLanes; lane += n) {
      Vec<float, n> square[n];
      for_each<n>([&](int k) NUQI_FORCED {
        square[k] = convert<float>(load<n>(column(k) + lane)) * broadcast<float, n>(kUnit);
      });
      transpose_square(square);
      for_each<n>([&](int k)
                      NUQI_FORCED { store(pixels + block.starts[lane + k] + x, square[k]); });
    }
  };
  if (block.count < n) {
    // What exceeds a segment is overwritten by the next one.
    turn(0, [&](int k)
                NUQI_FORCED { return from + kLanes * (k < block.count ? k : block.count - 1); });
  } else {
    for (int64_t x = 0; x < block.count; x += n) {
      const int64_t first = x + n <= block.count ? x : block.count - n;
      turn(first, [&](int k) NUQI_FORCED { return from + kLanes * (first + k); });
    }
  }
  for (int lane = 0; lane < block.rest; ++lane)
    pixels[block.starts[lane] + block.count] =
        (float)load_one(from + kLanes * block.count + lane) * kUnit;
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

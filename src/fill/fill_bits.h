// Words of 64 pixels: counting them, spreading within them, painting them.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/selection.h"
#include "fill/fill_words.h"

namespace nuqi::NUQI_ISA {
namespace {

NUQI_INLINE int first_bit(uint64_t bits) { return __builtin_ctzll(bits); }
NUQI_INLINE int last_bit(uint64_t bits) { return 63 - __builtin_clzll(bits); }

NUQI_INLINE int count_bits(uint64_t bits) {
#ifdef __POPCNT__
  return __builtin_popcountll(bits);
#else
  // Without the instruction GCC calls a function that looks up byte by byte.
  bits -= bits >> 1 & 0x5555555555555555;
  bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
  return int(((bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F) * 0x0101010101010101 >> 56);
#endif
}

// Steps in a row: bit i of `right` leads from pixel i to pixel i + 1, of `left` the other way; the last
// bits lead to and from the next word.
struct RowSteps {
  uint64_t right, left;
};

// What they reach among open pixels of a word. To the right an addition's carry propagates along the
// steps; to the left each round doubles the distance.
NUQI_INLINE uint64_t spread(const RowSteps& steps, uint64_t open, uint64_t seeds) {
  const uint64_t right = steps.right & open >> 1;
  uint64_t left = steps.left & open, found = ((right + (seeds & right)) ^ right) | seeds;
  if ((found >> 1 & left & ~found) == 0) return found;
  for_each<6>([&](int i) NUQI_FORCED {
    const int distance = 1 << i;
    found |= found >> distance & left;
    left &= left >> distance;
  });
  return found;
}

// ---- Painting

template <class Part>
NUQI_INLINE void paint(uint8_t* at, uint64_t pixels, uint8_t value, Part part) {
  const auto old = load<kFillWordPixels>(at, part);
  const auto mask = as<int8_t>(bytes_of_bits(pixels));
  store(at, select(mask, broadcast<uint8_t, kFillWordPixels>(value), old), part);
}
template <class Part>
NUQI_INLINE void paint(float* at, uint64_t pixels, float value, Part part) {
  uint8_t masks[kFillWordPixels];
  store(masks, bytes_of_bits(pixels));
  for (int i = 0; i < kFillWordPixels; i += 16) {
    const uint64_t some = pixels >> i & 0xFFFF;
    if (some == 0) continue;  // nor are there lanes where the part ends before
    const auto here = part_from<16>(part, i);
    if (some == 0xFFFF) {
      store(at + i, broadcast(value));
      continue;
    }
    store(at + i, choose(load(masks + i), broadcast(value), load(at + i, here)), here);
  }
}

template <class T>
NUQI_NOINLINE void paint_first(T* at, uint64_t pixels, T value, int32_t rest) {
  paint(at, pixels, value, First{rest});
}
// A word that begins at a pixel and may end with the row, `rest` pixels on.
template <class T>
NUQI_INLINE void paint_at(T* at, uint64_t pixels, T value, int32_t rest) {
  if (rest < kFillWordPixels)
    paint_first(at, pixels, value, rest);
  else if (sizeof(T) > 1 && ~pixels == 0)
    store(at, broadcast<T, kFillWordPixels>(value));
  else
    paint(at, pixels, value, Whole{});
}
template <class T>
NUQI_NOINLINE void paint_word(const FillJob<T>& job, int32_t y, int32_t k, uint64_t pixels) {
  const int32_t x = k * kFillWordPixels;
  paint_at(row_of(job.image, y) + x, pixels, job.value, job.roi.width - x);
}
template <class T>
NUQI_INLINE void paint(const FillJob<T>& job, int32_t y, int32_t k, uint64_t pixels) {
  if ((pixels & (pixels - 1)) != 0) return paint_word(job, y, k, pixels);
  store_one(row_of(job.image, y) + k * kFillWordPixels + first_bit(pixels), job.value);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// Finds and paints a region, 64 pixels at a time; what joins is a rule's business.
//
// A rule knows the pixels as they were before the call. It gives
//   matching(y, k)          the pixels of a word that may belong to the region
//   in_row(y, k, open)      the steps within a word from pixel to pixel
//   steps(y, k, dx, dy)     the pixels of a word from which a step leads dx columns and dy rows further
//   joins(x, y, dx, dy)     whether such a step leads on from one pixel
// Steps are held against `open`: what they say of pixels that are not open makes no difference.
#pragma once

#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/reduce.h"
#include "core/simd/selection.h"
#include "fill/fill_words.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Bits

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

// Steps within a word: bit i of `right` leads from pixel i to pixel i + 1, of `left` the other way.
struct RowSteps {
  uint64_t right, left;
};

// What they reach. To the right an addition's carry propagates along the steps; to the left each round
// doubles the distance.
NUQI_INLINE uint64_t spread(const RowSteps& steps, uint64_t seeds) {
  const uint64_t right = steps.right;
  uint64_t left = steps.left, found = ((right + (seeds & right)) ^ right) | seeds;
  if ((found >> 1 & left & ~found) == 0) return found;
  for_each<6>([&](int i) NUQI_FORCED {
    const int distance = 1 << i;
    found |= found >> distance & left;
    left &= left >> distance;
  });
  return found;
}

// ---- The search

constexpr uint64_t kFirstPixel = 1, kLastPixel = kFirstPixel << 63;

// Breadth first, by words: a word waits in the queue while more of its pixels are reached.
//
// A visit turns at least one open pixel into a filled one, so there are no more visits than pixels.
// Words hold nothing until the region comes near: of each row those between the leftmost and the
// rightmost that were asked for.
template <bool diagonal, class Rule, class T>
class Search {
 public:
  NUQI_INLINE Search(const Rule& rule, const FillJob<T>& job) : rule_(rule), job_(job) {}

  NUQI_INLINE void run() {
    const PixelPoint seed = job_.seed;
    top_ = seed.y, bottom_ = seed.y - 1;
    offer(seed.y, seed.x / kFillWordPixels, kFirstPixel << seed.x % kFillWordPixels);
    while (waiting_ != 0) {
      const FillPlace place = job_.queue[head_];
      if (++head_ == ring_) head_ = 0;
      --waiting_;
      visit(place.y, place.k);
    }
  }
  int32_t top() const { return top_; }
  int32_t bottom() const { return bottom_; }

 private:
  // The word. It is made ready before, with all between it and those that are.
  NUQI_INLINE FillWord& ready(int32_t y, int32_t k) {
    if (y < top_ || y > bottom_ || k < job_.rows[y].first || k >= job_.rows[y].end) prepare(y, k);
    return job_.words[y * job_.row_words + k];
  }
  __attribute__((noinline)) void prepare(int32_t y, int32_t k) {
    if (y < top_) job_.rows[top_ = y] = {k, k};
    if (y > bottom_) job_.rows[bottom_ = y] = {k, k};
    FillRow& row = job_.rows[y];
    FillWord* const words = job_.words + y * job_.row_words;
    for (; k < row.first; --row.first)
      words[row.first - 1] = {rule_.matching(y, row.first - 1), 0, 0};
    for (; k >= row.end; ++row.end) words[row.end] = {rule_.matching(y, row.end), 0, 0};
  }

  NUQI_INLINE void offer(int32_t y, int32_t k, uint64_t pixels) {
    FillWord& word = ready(y, k);
    const uint64_t hit = word.open & pixels;
    if (hit == 0) return;
    if (word.pending == 0) {
      int64_t tail = head_ + waiting_++;
      if (tail >= ring_) tail -= ring_;
      job_.queue[tail] = {y, k};
    }
    word.pending |= hit;
  }

  NUQI_INLINE void visit(int32_t y, int32_t k) {
    FillWord& word = job_.words[y * job_.row_words + k];
    const uint64_t open = word.open, seeds = word.pending;
    const uint64_t found = spread(rule_.in_row(y, k, open), seeds);
    word.open = open & ~found;
    word.filled |= found;
    word.pending = 0;

    beside<-1>(y, k, 0, found);
    beside<1>(y, k, 0, found);
    if (y > 0) next_row(y, k, -1, found);
    if (y + 1 < job_.roi.height) next_row(y, k, 1, found);
  }

  // From the word's end pixel to the neighbour beyond it.
  template <int dx>
  NUQI_INLINE void beside(int32_t y, int32_t k, int dy, uint64_t found) {
    const uint64_t from = dx < 0 ? kFirstPixel : kLastPixel;
    if ((found & from) == 0 || (dx < 0 ? k == 0 : k + 1 == job_.row_words)) return;
    const int32_t x = k * kFillWordPixels + (dx < 0 ? 0 : kFillWordPixels - 1);
    if (rule_.joins(x, y, dx, dy)) offer(y + dy, k + dx, dx < 0 ? kLastPixel : kFirstPixel);
  }

  NUQI_INLINE void next_row(int32_t y, int32_t k, int dy, uint64_t found) {
    const uint64_t near = diagonal ? found | found << 1 | found >> 1 : found;
    const uint64_t open = ready(y + dy, k).open;
    if ((near & open) != 0) {
      uint64_t hit = found & rule_.steps(y, k, 0, dy);
      if constexpr (diagonal)
        hit |= (found & rule_.steps(y, k, 1, dy)) << 1 | (found & rule_.steps(y, k, -1, dy)) >> 1;
      offer(y + dy, k, hit);
    }
    if constexpr (diagonal) {
      beside<-1>(y, k, dy, found);
      beside<1>(y, k, dy, found);
    }
  }

  const Rule& rule_;
  const FillJob<T>& job_;
  const int64_t ring_ = job_.row_words * job_.roi.height;
  int64_t head_ = 0, waiting_ = 0;
  int32_t top_ = 0, bottom_ = 0;
};

// ---- Output

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
    if ((pixels >> i & 0xFFFF) == 0) continue;  // nor are there lanes where the part ends before
    const auto here = part_from<16>(part, i);
    store(at + i, choose(load(masks + i), broadcast(value), load(at + i, here)), here);
  }
}

// Paints what is filled, and measures it.
template <class T>
NUQI_INLINE FillRegion write(const FillJob<T>& job, int32_t top, int32_t bottom) {
  int64_t area = 0;
  int32_t left = job.roi.width, right = -1, first = bottom, last = top;
  for (int32_t y = top; y <= bottom; ++y) {
    const FillRow row = job.rows[y];
    const FillWord* words = job.words + y * job.row_words;
    T* const pixels = row_of(job.image, y);
    bool any = false;
    for (int32_t k = row.first; k < row.end; ++k) {
      const uint64_t filled = words[k].filled;
      if (filled == 0) continue;
      const int32_t x = k * kFillWordPixels, rest = job.roi.width - x;
      any = true;
      area += count_bits(filled);
      if (x < left && x + first_bit(filled) < left) left = x + first_bit(filled);
      if (x + last_bit(filled) > right) right = x + last_bit(filled);
      if (rest >= kFillWordPixels)
        paint(pixels + x, filled, job.value, Whole{});
      else
        paint(pixels + x, filled, job.value, First{rest});
    }
    if (any) last = y;
    if (any && y < first) first = y;
  }
  return {(double)area, (double)job.value, left, first, right - left + 1, last - first + 1};
}

template <bool diagonal, class Rule, class T>
NUQI_INLINE FillRegion fill_words(const Rule& rule, const FillJob<T>& job) {
  Search<diagonal, Rule, T> search(rule, job);
  search.run();
  return write(job, search.top(), search.bottom());
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

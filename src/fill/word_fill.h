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

// Rows whose range of words is known, if only to be empty.
struct RowRange {
  int32_t top, bottom;
};

constexpr uint64_t kFirstPixel = 1, kLastPixel = kFirstPixel << 63;

// Breadth first, by words: a word waits in the queue while more of its pixels are reached. A visit takes
// all words of the row that its region runs into on either side, and then looks at the rows next to it.
//
// A visit turns at least one open pixel into a filled one, so there are no more visits than pixels.
// Words hold nothing until the region comes near: of each row those between the leftmost and the
// rightmost that were asked for.
template <bool diagonal, class Rule, class T>
class Search {
 public:
  NUQI_INLINE Search(const Rule& rule, const FillJob<T>& job)
      : rule_(rule),
        job_(job),
        row_words_(job.row_words),
        ring_(job.row_words * job.roi.height),
        height_(job.roi.height),
        rows_(job.rows),
        words_(job.words),
        queue_(job.queue) {}

  NUQI_INLINE RowRange run() {
    const PixelPoint seed = job_.seed;
    RowRange known = {seed.y, seed.y};
    known_ = &known;
    rows_[seed.y] = {0, 0};
    const int32_t k = seed.x / kFillWordPixels;
    offer(ready(seed.y, k, seed.y), seed.y, k, kFirstPixel << seed.x % kFillWordPixels);
    while (waiting_ != 0 || next_.y >= 0) {
      FillPlace place = next_;
      next_.y = -1;
      if (place.y < 0) {
        place = queue_[head_];
        if (++head_ == ring_) head_ = 0;
        --waiting_;
      }
      row_words(place.y)[place.k].queued = 0;
      visit(place.y, place.k);
    }
    return known;
  }

 private:
  NUQI_INLINE FillWord* row_words(int32_t y) const { return words_ + y * row_words_; }

  // The word, which is made ready first; it is asked for from row `from`.
  NUQI_INLINE FillWord& ready(int32_t y, int32_t k, int32_t from) {
    const FillRow row = rows_[y];
    if (uint32_t(k - row.first) >= uint32_t(row.count)) prepare(rule_, job_, *known_, y, k, from);
    return row_words(y)[k];
  }
  // With it all that the region will ask for, as the words of row `from` tell, and what lies between.
  static __attribute__((noinline)) void prepare(const Rule& rule, const FillJob<T>& job,
                                                RowRange& known, int32_t y, int32_t k,
                                                int32_t from) {
    if (y > 0 && y == known.top) job.rows[--known.top] = {0, 0};
    if (y + 1 < job.roi.height && y == known.bottom) job.rows[++known.bottom] = {0, 0};
    const FillRow other = job.rows[from];
    const FillWord* const beside = job.words + from * job.row_words;
    int32_t first = k, end = k + 1;
    if (from != y) {
      while (first > other.first && beside[first - 1].filled != 0) --first;
      while (end < other.first + other.count && beside[end].filled != 0) ++end;
    }

    FillWord* const words = job.words + y * job.row_words;
    FillRow row = job.rows[y];
    if (row.count == 0) row.first = first;
    for (int32_t i = row.first; i-- > first;) words[i] = {rule.matching(y, i), 0, 0, 0};
    for (int32_t i = row.first + row.count; i < end; ++i) words[i] = {rule.matching(y, i), 0, 0, 0};
    if (end < row.first + row.count) end = row.first + row.count;
    if (first > row.first) first = row.first;
    job.rows[y] = {first, end - first};
  }

  NUQI_INLINE void push(int32_t y, int32_t k) {
    int64_t tail = head_ + waiting_++;
    if (tail >= ring_) tail -= ring_;
    queue_[tail] = {y, k};
  }
  NUQI_INLINE void offer(FillWord& word, int32_t y, int32_t k, uint64_t pixels) {
    const uint64_t hit = word.open & pixels;
    if (hit == 0) return;
    word.pending |= hit;
    if (word.queued != 0) return;
    word.queued = 1;
    if (next_.y < 0)
      next_ = {y, k};
    else
      push(y, k);
  }

  NUQI_INLINE void visit(int32_t y, int32_t k) {
    FillWord* const words = row_words(y);
    if (words[k].pending == 0) return;  // taken along by a word beside it
    int32_t first = k, last = k;
    uint64_t found = take(words[k], y, k);
    for (uint64_t end = found; crosses<1>(y, last, end); ++last) {
      words[last + 1].pending |= kFirstPixel;
      end = take(words[last + 1], y, last + 1);
    }
    for (uint64_t end = found; crosses<-1>(y, first, end); --first) {
      words[first - 1].pending |= kLastPixel;
      end = take(words[first - 1], y, first - 1);
    }
    if (y > 0) next_row(y, first, last, -1);
    if (y + 1 < height_) next_row(y, first, last, 1);
  }
  // Fills what is reached within the word; gives it.
  NUQI_INLINE uint64_t take(FillWord& word, int32_t y, int32_t k) {
    const uint64_t open = word.open;
    const uint64_t found = spread(rule_.in_row(y, k, open), word.pending);
    word.open = open & ~found;
    word.filled |= found;
    word.pending = 0;
    return found;
  }
  // Whether the region goes on from the word's end pixel to the next word of the row.
  template <int dx>
  NUQI_INLINE bool crosses(int32_t y, int32_t k, uint64_t found) {
    if (!has_beside<dx>(k, found)) return false;
    if ((ready(y, k + dx, y).open & (dx < 0 ? kLastPixel : kFirstPixel)) == 0) return false;
    return rule_.joins(end_pixel<dx>(k), y, dx, 0);
  }

  template <int dx>
  NUQI_INLINE bool has_beside(int32_t k, uint64_t found) const {
    return (found & (dx < 0 ? kFirstPixel : kLastPixel)) != 0 &&
           (dx < 0 ? k > 0 : k + 1 < row_words_);
  }
  template <int dx>
  NUQI_INLINE static int32_t end_pixel(int32_t k) {
    return k * kFillWordPixels + (dx < 0 ? 0 : kFillWordPixels - 1);
  }

  // Offers what is reached from a row's words to the row dy further on.
  NUQI_INLINE void next_row(int32_t y, int32_t first, int32_t last, int dy) {
    for (int32_t k = first; k <= last; ++k) {
      const uint64_t filled = row_words(y)[k].filled;
      const uint64_t near = diagonal ? filled | filled << 1 | filled >> 1 : filled;
      FillWord& word = ready(y + dy, k, y);
      if ((near & word.open) != 0) {
        uint64_t reached = filled & rule_.steps(y, k, 0, dy);
        if constexpr (diagonal)
          reached |=
              (filled & rule_.steps(y, k, 1, dy)) << 1 | (filled & rule_.steps(y, k, -1, dy)) >> 1;
        offer(word, y + dy, k, reached);
      }
      if constexpr (diagonal) {
        corner<-1>(y, k, dy, filled);
        corner<1>(y, k, dy, filled);
      }
    }
  }
  template <int dx>
  NUQI_INLINE void corner(int32_t y, int32_t k, int dy, uint64_t filled) {
    if (has_beside<dx>(k, filled) && rule_.joins(end_pixel<dx>(k), y, dx, dy))
      offer(ready(y + dy, k + dx, y), y + dy, k + dx, dx < 0 ? kLastPixel : kFirstPixel);
  }

  const Rule& rule_;
  const FillJob<T>& job_;
  // Copies: as far as the compiler knows, what is stored to words might change the job.
  const int64_t row_words_, ring_;
  const int32_t height_;
  FillRow* const rows_;
  FillWord* const words_;
  FillPlace* const queue_;
  RowRange* known_ = nullptr;
  int64_t head_ = 0, waiting_ = 0;
  FillPlace next_ = {-1, 0};  // visited before those of the queue; none where y is negative
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
NUQI_INLINE FillRegion write(const FillJob<T>& job, RowRange range) {
  int64_t area = 0;
  int32_t left = job.roi.width, right = -1, first = range.bottom, last = range.top;
  for (int32_t y = range.top; y <= range.bottom; ++y) {
    const FillRow row = job.rows[y];
    const FillWord* words = job.words + y * job.row_words;
    T* const pixels = row_of(job.image, y);
    bool any = false;
    for (int32_t k = row.first; k < row.first + row.count; ++k) {
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
  return write(job, search.run());
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

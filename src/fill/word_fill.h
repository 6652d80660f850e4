// Finds and paints a region, 64 pixels at a time; what joins is a rule's business.
//
// A rule knows the pixels as they were before the call. It gives
//   matching(y, k)          the pixels of a word that may belong to the region
//   in_row(y, k, open)      the steps within a word from pixel to pixel
//   steps(y, k, dx, dy)     the pixels of a word from which a step leads dx columns and dy rows further
//   joins(x, y, dx, dy)     whether such a step leads on from one pixel
//   kLocal                  whether every open pixel joins, wherever it is reached from
// What it says of steps to pixels that are not open makes no difference. Under a local rule pixels are
// painted as they are found, under another one at the end, since steps compare pixels as they were.
#pragma once

#include "fill/fill_bits.h"

namespace nuqi::NUQI_ISA {
namespace {

// Rows whose range of words is known, if only to be empty.
struct RowRange {
  int32_t top, bottom;
};

// Of words of a row: the first and last, and how many of those between count.
struct WordRange {
  int32_t first, last, count;
};
// Regions that run on for so many words are swept by rows.
constexpr int32_t kWide = 2;

// How far the region reaches.
struct Extent {
  int64_t area;
  int32_t left, right, top, bottom;

  NUQI_INLINE void add_columns(int32_t first, int32_t last) {
    if (first < left) left = first;
    if (last > right) right = last;
  }
  NUQI_INLINE void add_row(int32_t y) {
    if (y < top) top = y;
    if (y > bottom) bottom = y;
  }
};

constexpr uint64_t kFirstPixel = 1, kLastPixel = kFirstPixel << 63;

// Adds [first, end) to the row's range of words, with what lies between.
template <class Rule, class T>
NUQI_NOINLINE void prepare(const Rule& rule, const FillJob<T>& job, RowRange& known, int32_t y,
                           int32_t first, int32_t end) {
  if (y == known.top && y > 0) job.rows[known.top = y - 1] = {0, 0};
  if (y == known.bottom && y + 1 < job.roi.height) job.rows[known.bottom = y + 1] = {0, 0};
  FillWord* const words = job.words + y * job.row_words;
  FillRow row = job.rows[y];
  if (row.first == row.end) row = {first, first};
  while (row.first > first || row.end < end) {
    const int32_t k = row.first > first ? --row.first : row.end++;
    words[k] = {rule.matching(y, k), 0, 0, 0};
  }
  job.rows[y] = row;
}

// By words: a word waits in the queue while more of its pixels are reached, and one is visited at once,
// which saves corridors the queue. A visit takes all words of the row that its region runs into on either
// side, and then looks at the rows next to it.
//
// A visit turns at least one open pixel into a found one, so there are no more visits than pixels. Words
// hold nothing until the region comes near: of each row those between the leftmost and the rightmost
// that were asked for.
template <bool diagonal, class Rule, class T>
class Search {
 public:
  NUQI_INLINE Search(const Rule& rule, const FillJob<T>& job, RowRange& known)
      : rule_(rule),
        job_(job),
        known_(known),
        row_words_(job.row_words),
        ring_(job.row_words * job.roi.height),
        height_(job.roi.height),
        rows_(job.rows),
        words_(job.words),
        queue_(job.queue) {}

  NUQI_INLINE void run() {
    const PixelPoint seed = job_.seed;
    const int32_t k = seed.x / kFillWordPixels;
    rows_[seed.y] = {0, 0};
    ready(seed.y, k, k);
    offer(seed.y, k, kFirstPixel << seed.x % kFillWordPixels);
    for (;;) {
      FillPlace place = next_;
      next_.y = -1;
      if (place.y < 0) {
        if (waiting_ == 0) break;
        place = queue_[head_];
        if (++head_ == ring_) head_ = 0;
        --waiting_;
      }
      row_words(place.y)[place.k].queued = 0;
      int32_t y = place.y;
      if constexpr (Rule::kLocal)
        if (follow(y, place.k)) continue;
      visit(y, place.k);
    }
  }
  NUQI_INLINE const Extent& extent() const { return extent_; }

 private:
  NUQI_INLINE bool has_row(int32_t y) const { return uint32_t(y) < uint32_t(height_); }
  NUQI_INLINE FillWord* row_words(int32_t y) const { return words_ + y * row_words_; }

  // Before words of a row are looked at.
  NUQI_INLINE void ready(int32_t y, int32_t first, int32_t last) {
    const FillRow row = rows_[y];
    if (first < row.first || last >= row.end) prepare(rule_, job_, known_, y, first, last + 1);
  }

  NUQI_INLINE void offer(int32_t y, int32_t k, uint64_t pixels) {
    FillWord& word = row_words(y)[k];
    const uint64_t hit = word.open & pixels;
    if (hit == 0) return;
    word.pending |= hit;
    if (word.queued != 0) return;
    word.queued = 1;
    if (next_.y < 0) {
      next_ = {y, k};
    } else {
      int64_t tail = head_ + waiting_++;
      if (tail >= ring_) tail -= ring_;
      queue_[tail] = {y, k};
    }
  }

  // A visit, and those that it leads to, as long as they stay in one column of words: what winds is
  // bound by the work at each visit. False where the last one, in row y, is left to do.
  NUQI_INLINE bool follow(int32_t& y, int32_t k) {
    const uint64_t ends = (k > 0 ? kFirstPixel : 0) | (k + 1 < row_words_ ? kLastPixel : 0);
    uint64_t seeds = row_words(y)[k].pending, columns = 0;
    bool done = true;
    while (seeds != 0) {
      FillWord& word = row_words(y)[k];
      const uint64_t open = word.open;
      const uint64_t found = spread(rule_.in_row(y, k, open), seeds);
      if ((found & ends) != 0) {
        word.pending = seeds;
        done = false;
        break;
      }
      word.open = open & ~found;
      word.pending = 0;
      extent_.area += count_bits(found);
      extent_.add_row(y);
      columns |= found;
      paint(job_, y, k, found);
      const uint64_t near = diagonal ? found | found << 1 | found >> 1 : found;
      uint64_t up = 0, down = 0;
      if (y > 0) {
        ready(y - 1, k, k);
        up = near & (&word)[-row_words_].open;
      }
      if (y + 1 < height_) {
        ready(y + 1, k, k);
        down = near & (&word)[row_words_].open;
      }
      if (up != 0) {
        if (down != 0) offer(y + 1, k, down);
        seeds = up | (&word)[-row_words_].pending;
        --y;
      } else if (down != 0) {
        seeds = down | (&word)[row_words_].pending;
        ++y;
      } else {
        break;
      }
    }
    if (columns != 0)
      extent_.add_columns(k * kFillWordPixels + first_bit(columns),
                          k * kFillWordPixels + last_bit(columns));
    return done;
  }

  NUQI_INLINE void visit(int32_t y, int32_t k) {
    FillWord* const words = row_words(y);
    if (words[k].pending == 0) return;  // taken along by a word beside it
    int32_t first = k, last = k;
    take(words[k], y, k);
    for (; crosses<1>(y, last); ++last) take(words[last + 1], y, last + 1, kFirstPixel);
    for (; crosses<-1>(y, first); --first) take(words[first - 1], y, first - 1, kLastPixel);
    extent_.add_columns(first * kFillWordPixels + first_bit(words[first].found),
                        last * kFillWordPixels + last_bit(words[last].found));
    extent_.add_row(y);
    if constexpr (Rule::kLocal)
      if (last - first >= kWide) return sweep(y, first, last);
    for (int dy = -1; dy <= 1; dy += 2)
      if (has_row(y + dy)) next_row(y, first, last, dy);
  }

  // From words of a row that have been visited, through the rows above or below as long as many of their
  // words are reached. The rows on the other side are left to the queue.
  NUQI_INLINE void sweep(int32_t y, int32_t first, int32_t last) {
    int dy = -1;
    for (bool started = false;;) {
      const WordRange reached = reach(y, first, last, dy);
      if (reached.count == 0 && !started && dy < 0) {
        dy = 1;
        continue;
      }
      started = true;
      if (has_row(y - dy)) next_row(y, first, last, -dy);
      if (reached.count == 0) return;
      y += dy, first = reached.first, last = reached.last;
      if (last - first > 4 * reached.count) break;
      take_range(y, first, last);
    }
    for (int32_t k = first; k <= last; ++k) offer(y, k, row_words(y)[k].pending);
  }
  // Makes pending what is reached from a row's words in the row dy further on.
  NUQI_INLINE WordRange reach(int32_t y, int32_t first, int32_t last, int dy) {
    if (!has_row(y + dy)) return {0, 0, 0};
    const FillWord* const here = row_words(y);
    FillWord* const words = row_words(y + dy);
    const bool left = diagonal && has_beside<-1>(first, here[first].found);
    const bool right = diagonal && has_beside<1>(last, here[last].found);
    first -= left, last += right;
    ready(y + dy, first, last);
    WordRange reached = {last + 1, first - 1, 0};
    for (int32_t k = first; k <= last; ++k) {
      uint64_t near = 0;
      if (k >= first + left && k <= last - right) near = here[k].found;
      if constexpr (diagonal) {
        near |= near << 1 | near >> 1;
        if (k > first + left) near |= here[k - 1].found >> 63;
        if (k < last - right) near |= here[k + 1].found << 63;
      }
      const uint64_t hit = near & words[k].open;
      words[k].pending |= hit;
      if (hit == 0) continue;
      if (reached.count++ == 0) reached.first = k;
      reached.last = k;
    }
    return reached;
  }
  // A visit of many words of a row; the region may lead on beyond them.
  NUQI_INLINE void take_range(int32_t y, int32_t& first, int32_t& last) {
    FillWord* const words = row_words(y);
    uint64_t carry = 0;
    for (int32_t k = first;; ++k) {
      if (k > last) {
        if (carry == 0 || k == row_words_) break;
        ready(y, k, k);
        if ((words[k].open & kFirstPixel) == 0) break;
        last = k;
      }
      const uint64_t open = words[k].open, seeds = words[k].pending | (carry & open);
      words[k].found = (((open + seeds) ^ open) | seeds) & open;
      carry = words[k].found >> 63;
    }
    carry = 0;
    for (int32_t k = last;; --k) {
      if (k < first) {
        if (carry == 0 || k < 0) break;
        ready(y, k, k);
        if ((words[k].open & kLastPixel) == 0) break;
        first = k;
        words[k].found = 0;
      }
      const uint64_t open = words[k].open, pending = words[k].pending;
      const uint64_t found =
          spread({open & open >> 1, open}, words[k].found | pending | (carry << 63 & open));
      carry = found & 1;
      words[k].open = open & ~found;
      words[k].pending = 0;
      words[k].found = found;
      if (found == 0) continue;
      extent_.area += count_bits(found);
      extent_.add_columns(k * kFillWordPixels + first_bit(found),
                          k * kFillWordPixels + last_bit(found));
      paint(job_, y, k, found);
    }
    extent_.add_row(y);
  }

  // Finds what is reached within the word.
  NUQI_INLINE void take(FillWord& word, int32_t y, int32_t k, uint64_t more = 0) {
    const uint64_t open = word.open;
    const uint64_t found = spread(rule_.in_row(y, k, open), word.pending | more);
    word.open = open & ~found;
    word.pending = 0;
    word.found = found;
    extent_.area += count_bits(found);
    if constexpr (Rule::kLocal) paint(job_, y, k, found);
  }
  // Whether the region goes on from the word's end pixel to the next word of the row.
  template <int dx>
  NUQI_INLINE bool crosses(int32_t y, int32_t k) {
    if (!has_beside<dx>(k, row_words(y)[k].found)) return false;
    ready(y, k + dx, k + dx);
    if ((row_words(y)[k + dx].open & (dx < 0 ? kLastPixel : kFirstPixel)) == 0) return false;
    return rule_.joins(end_pixel<dx>(k), y, dx, 0);
  }

  // Whether the word's end pixel is found and has a word beside it.
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
    const FillWord* const words = row_words(y);
    const FillWord* const there = row_words(y + dy);
    const bool left = diagonal && has_beside<-1>(first, words[first].found);
    const bool right = diagonal && has_beside<1>(last, words[last].found);
    ready(y + dy, first - left, last + right);
    for (int32_t k = first; k <= last; ++k) {
      const uint64_t found = words[k].found;
      const uint64_t near = diagonal ? found | found << 1 | found >> 1 : found;
      if ((near & there[k].open) != 0) {
        uint64_t reached = found & rule_.steps(y, k, 0, dy);
        if constexpr (diagonal)
          reached |=
              (found & rule_.steps(y, k, 1, dy)) << 1 | (found & rule_.steps(y, k, -1, dy)) >> 1;
        offer(y + dy, k, reached);
      }
      if constexpr (diagonal) {
        corner<-1>(y, k, dy, found);
        corner<1>(y, k, dy, found);
      }
    }
  }
  template <int dx>
  NUQI_INLINE void corner(int32_t y, int32_t k, int dy, uint64_t found) {
    if (has_beside<dx>(k, found) && rule_.joins(end_pixel<dx>(k), y, dx, dy))
      offer(y + dy, k + dx, dx < 0 ? kLastPixel : kFirstPixel);
  }

  const Rule& rule_;
  const FillJob<T>& job_;
  RowRange& known_;
  // Copies: as far as the compiler knows, what is stored to words might change the job.
  const int64_t row_words_, ring_;
  const int32_t height_;
  FillRow* const rows_;
  FillWord* const words_;
  FillPlace* const queue_;
  int64_t head_ = 0, waiting_ = 0;
  FillPlace next_ = {-1, 0};  // to be visited before those of the queue; none where y is negative
  Extent extent_ = {0, job_.roi.width, -1, job_.seed.y, job_.seed.y};
};

template <bool diagonal, class Rule, class T>
NUQI_INLINE FillRegion fill_words(const Rule& rule, const FillJob<T>& job) {
  RowRange known = {job.seed.y, job.seed.y};
  Search<diagonal, Rule, T> search(rule, job, known);
  search.run();
  const Extent extent = search.extent();
  if constexpr (!Rule::kLocal)
    for (int32_t y = extent.top; y <= extent.bottom; ++y)
      for (int32_t k = job.rows[y].first; k < job.rows[y].end; ++k) {
        const uint64_t found = rule.matching(y, k) & ~job.words[y * job.row_words + k].open;
        if (found != 0) paint(job, y, k, found);
      }
  return {(double)extent.area,
          (double)job.value,
          extent.left,
          extent.top,
          extent.right - extent.left + 1,
          extent.bottom - extent.top + 1};
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

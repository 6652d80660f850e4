// Finds and paints a region, 64 pixels at a time, or span by span where it is thin; what joins is a rule's
// business.
//
// A rule knows the pixels as they were before the call. It gives
//   matching(y, k)          the pixels of a word that may belong to the region
//   in_row(y, k, open)      the steps within a word from pixel to pixel
//   steps(y, k, dx, dy)     the pixels of a word from which a step leads dx columns and dy rows further
//   joins(x, y, dx, dy)     whether such a step leads on from one pixel
//   kLocal                  whether every open pixel joins, wherever it is reached from
//   matches(x, y)           of a local rule, whether a pixel may join and has not been painted
//   kEffort                 the pixels that are reached span by span in the time that a local rule takes to
//                           compare a word, another one to visit it
// What it says of steps to pixels that are not open makes no difference. Under a local rule pixels are
// painted as they are found, under another one at the end, since steps compare pixels as they were.
#pragma once

#include "fill/fill_map.h"

namespace nuqi::NUQI_ISA {
namespace {

// Of words of a row: the first and last, and how many of those between count.
struct WordRange {
  int32_t first, last, count;
};
// Regions that run on for so many words are swept by rows.
constexpr int32_t kWide = 2;

constexpr uint64_t kFirstPixel = 1, kLastPixel = kFirstPixel << 63;

// The pixels that are reached span by span in the time of a word.
template <bool diagonal, class Rule>
constexpr int32_t effort() {
  return diagonal && !Rule::kLocal ? 2 * Rule::kEffort : Rule::kEffort;
}

// Words wait while more of their pixels are reached, and one is visited at once. A visit takes all words of
// the row that its region runs into on either side, and then looks at the rows next to it.
//
// A visit turns at least one open pixel into a found one, so there are no more visits than pixels. Words
// hold nothing until the region comes near.
//
// Words pay where much of them is found. Their effort is what `credit` holds against the pixels that it
// brought: below 0, thin regions are walked span by span. These leave words as they are, and what has been
// painted no longer matches.
template <bool diagonal, class Rule, class T>
class Search {
 public:
  static constexpr bool kLocal = Rule::kLocal;

  NUQI_INLINE Search(const Rule& rule, const FillJob<T>& job, FillState& state)
      : rule_(rule),
        job_(job),
        state_(state),
        height_(job.roi.height),
        row_words_(job.row_words),
        row_groups_(job.row_groups),
        groups_(job.groups),
        words_(job.words) {}

  NUQI_INLINE void run() {
    PixelPoint from = job_.seed;
    for (;;) {
      FillPlace place;
      if (from.y >= 0) {
        place = walk_from<diagonal>(rule_, job_, state_, from);
        from.y = -1;
        if (place.y < 0) continue;
      } else {
        place = state_.next;
        state_.next.y = -1;
        if (place.y < 0) place = next_waiting(job_, state_);
        if (place.y < 0) break;
        FillWord& word = row_words(place.y)[place.k];
        const uint64_t pending = word.pending;
        if (pending == 0) continue;  // taken along by a word beside it
        if (seems_thin(place.y, place.k)) {
          word.pending = pending & (pending - 1);
          if (word.pending != 0) leave_waiting(job_, state_, place);
          from = {place.k * kFillWordPixels + first_bit(pending), place.y};
          continue;
        }
        if (state_.credit > kMostCredit) state_.credit = kMostCredit;
      }
      int32_t y = place.y;
      if constexpr (kLocal)
        if (follow(y, place.k)) continue;
      visit(y, place.k);
    }
  }

 private:
  static constexpr int32_t kEffort = effort<diagonal, Rule>();
  static constexpr int32_t kMostCredit = 8 * kEffort;

  NUQI_INLINE bool has_row(int32_t y) const { return uint32_t(y) < uint32_t(height_); }
  NUQI_INLINE FillWord* row_words(int32_t y) const { return words_ + y * row_words_; }

  NUQI_INLINE bool all_ready(int32_t y, int32_t first, int32_t last) const {
    const int32_t g = first / kFillGroupWords;
    if (last / kFillGroupWords != g) return false;
    const uint64_t bits = ~uint64_t{0} >> (63 - (last - first)) << first % kFillGroupWords;
    return (bits & ~groups_[y * row_groups_ + g].ready) == 0;
  }
  NUQI_INLINE bool is_ready(int32_t y, int32_t k) const {
    return (groups_[y * row_groups_ + k / kFillGroupWords].ready >> k % kFillGroupWords & 1) != 0;
  }
  // Whether to walk on from a word: where that spares words.
  NUQI_INLINE bool seems_thin(int32_t y, int32_t k) const {
    if (state_.credit >= 0) return false;
    return !kLocal || !((y == 0 || is_ready(y - 1, k)) && (y + 1 == height_ || is_ready(y + 1, k)));
  }
  // Before words of a row are looked at.
  NUQI_INLINE void ready(int32_t y, int32_t first, int32_t last) {
    if (all_ready(y, first, last)) return;
    prepare(rule_, job_, state_, y, first, last + 1);
  }
  NUQI_INLINE void ready(int32_t y, int32_t k) {
    if (!is_ready(y, k)) prepare(rule_, job_, state_, y, k, k + 1);
  }
  NUQI_INLINE void offer(int32_t y, int32_t k, uint64_t pixels) {
    FillWord& word = row_words(y)[k];
    const uint64_t before = word.pending, hit = word.open & pixels;
    if (hit == 0) return;
    word.pending = before | hit;
    if (before == 0) wait(y, k);
  }
  NUQI_INLINE void wait(int32_t y, int32_t k) {
    if (state_.next.y < 0 && y / kFillBandRows == state_.y / kFillBandRows)
      state_.next = {y, k};
    else
      leave_waiting(job_, state_, {y, k});
  }

  // A visit, and those that it leads to, as long as they stay in one column of words and in the band of
  // rows: what winds is bound by the work at each visit. False where the last one, in row y, is left to do.
  NUQI_INLINE bool follow(int32_t& y, int32_t k) {
    const uint64_t ends = (k > 0 ? kFirstPixel : 0) | (k + 1 < row_words_ ? kLastPixel : 0);
    uint64_t seeds = row_words(y)[k].pending, columns = 0;
    const int32_t band = state_.y / kFillBandRows;
    int32_t area = 0, top = y, bottom = y;
    bool done = true;
    while (seeds != 0) {
      FillWord& word = row_words(y)[k];
      if (y / kFillBandRows != band) {
        word.pending = seeds;
        leave_waiting(job_, state_, {y, k});
        break;
      }
      if (columns != 0 && seems_thin(y, k)) {
        word.pending = seeds;
        wait(y, k);
        break;
      }
      const uint64_t open = word.open;
      const uint64_t found = spread(rule_.in_row(y, k, open), seeds);
      if ((found & ends) != 0) {
        word.pending = seeds;
        done = false;
        break;
      }
      word.open = open & ~found;
      word.pending = 0;
      area += count_bits(found);
      top = y < top ? y : top, bottom = y > bottom ? y : bottom;
      columns |= found;
      paint(job_, y, k, found);
      const uint64_t near = diagonal ? found | found << 1 | found >> 1 : found;
      uint64_t up = 0, down = 0;
      if (y > 0) {
        ready(y - 1, k);
        up = near & (&word)[-row_words_].open;
      }
      if (y + 1 < height_) {
        ready(y + 1, k);
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
    if (columns == 0) return done;
    state_.extent.area += area;
    state_.credit += area;
    state_.extent.add_row(top);
    state_.extent.add_row(bottom);
    state_.extent.add_columns(k * kFillWordPixels + first_bit(columns),
                              k * kFillWordPixels + last_bit(columns));
    return done;
  }

  NUQI_INLINE void visit(int32_t y, int32_t k) {
    FillWord* const words = row_words(y);
    int32_t first = k, last = k;
    take(words[k], y, k);
    for (; crosses<1>(y, last); ++last) take(words[last + 1], y, last + 1, kFirstPixel);
    for (; crosses<-1>(y, first); --first) take(words[first - 1], y, first - 1, kLastPixel);
    state_.extent.add_columns(first * kFillWordPixels + first_bit(words[first].found),
                              last * kFillWordPixels + last_bit(words[last].found));
    state_.extent.add_row(y);
    if constexpr (kLocal)
      if (last - first >= kWide) return sweep(y, first, last);
    for (int dy = -1; dy <= 1; dy += 2)
      if (has_row(y + dy)) next_row(y, first, last, dy);
  }

  // From words of a row that have been visited, through the rows above or below as long as many of their
  // words are reached and words pay. The rows on the other side are left waiting.
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
      if (last - first > 4 * reached.count || state_.credit < 0) break;
      take_range(y, first, last);
    }
    for (int32_t k = first; k <= last; ++k)
      if (row_words(y)[k].pending != 0) leave_waiting(job_, state_, {y, k});
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
        ready(y, k);
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
        ready(y, k);
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
      const int count = count_bits(found);
      state_.extent.area += count;
      state_.credit += count;
      state_.extent.add_columns(k * kFillWordPixels + first_bit(found),
                                k * kFillWordPixels + last_bit(found));
      paint(job_, y, k, found);
    }
    state_.extent.add_row(y);
  }

  // Finds what is reached within the word.
  NUQI_INLINE void take(FillWord& word, int32_t y, int32_t k, uint64_t more = 0) {
    const uint64_t open = word.open;
    const uint64_t found = spread(rule_.in_row(y, k, open), word.pending | more);
    word.open = open & ~found;
    word.pending = 0;
    word.found = found;
    const int count = count_bits(found);
    state_.extent.area += count;
    state_.credit += count - (kLocal ? 0 : kEffort);
    if constexpr (kLocal) paint(job_, y, k, found);
  }
  // Whether the region goes on from the word's end pixel to the next word of the row.
  template <int dx>
  NUQI_INLINE bool crosses(int32_t y, int32_t k) {
    if (!has_beside<dx>(k, row_words(y)[k].found)) return false;
    ready(y, k + dx);
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
  FillState& state_;
  // Copies: as far as the compiler knows, what is stored to words might change the others.
  const int32_t height_;
  const int64_t row_words_, row_groups_;
  FillGroup* const groups_;
  FillWord* const words_;
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

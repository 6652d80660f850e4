// Finds and paints a region, 64 pixels at a time, or span by span where it is thin; what joins is a rule's
// business.
//
// A rule knows the pixels as they were before the call. It gives
//   matching(y, k)          the pixels of a word that may belong to the region
//   in_row(y, k)            the steps from pixel to pixel of a word
//   steps(y, k, dx, dy)     the pixels of a word from which a step leads dx columns and dy rows further
//   joins(x, y, dx, dy)     whether such a step leads on from one pixel
//   kLocal                  whether every open pixel joins, wherever it is reached from
//   matches(x, y)           of a local rule, whether a pixel may join and has not been painted
//   kEffort                 the pixels that are reached span by span in the time that a local rule takes to
//                           compare a word, another one to visit it
// What it says of steps to pixels that are not open makes no difference. Under a local rule pixels are
// painted as they are found, under another one at the end, since steps compare pixels as they were.
#pragma once

#include "fill/fill_rows.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr uint64_t kFirstPixel = 1, kLastPixel = kFirstPixel << 63;

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
        limit_credit<diagonal, Rule>(state_);
      }
      int32_t y = place.y;
      if constexpr (kLocal)
        if (follow(y, place.k)) continue;
      visit(y, place.k);
    }
  }

 private:
  static constexpr int32_t kEffort = effort<diagonal, Rule>();
  // Rows whose words go on for so many are swept. Narrower ones of a local rule are followed.
  static constexpr int32_t kSwept = kLocal ? 2 : 0;

  NUQI_INLINE bool has_row(int32_t y) const { return uint32_t(y) < uint32_t(height_); }
  NUQI_INLINE FillWord* row_words(int32_t y) const { return words_ + y * row_words_; }

  NUQI_INLINE bool all_ready(int32_t y, int32_t first, int32_t last) const {
    const int32_t g = first / kFillGroupWords;
    if (last / kFillGroupWords != g) return false;
    const uint64_t bits = ~uint64_t{0} >> (63 - (last - first)) << first % kFillGroupWords;
    return (bits & ~groups_[y * row_groups_ + g].ready) == 0;
  }
  NUQI_INLINE bool is_ready(int32_t y, int32_t k) const {
    return NUQI_ISA::is_ready(groups_ + y * row_groups_, k);
  }
  // Whether to walk on from a word: where that spares words.
  NUQI_INLINE bool seems_thin(int32_t y, int32_t k) const {
    if (state_.credit >= 0) return false;
    return !kLocal || !((y == 0 || is_ready(y - 1, k)) && (y + 1 == height_ || is_ready(y + 1, k)));
  }
  // Before words of a row are looked at.
  NUQI_INLINE void ready(int32_t y, int32_t first, int32_t last) {
    if (all_ready(y, first, last)) return;
    prepare(rule_, job_, state_, y, first, last);
  }
  NUQI_INLINE void ready(int32_t y, int32_t k) {
    if (!is_ready(y, k)) prepare(rule_, job_, state_, y, k, k);
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
      const RowSteps steps = rule_.in_row(y, k);
      const uint64_t found = spread(steps, open, seeds);
      if ((found & ends) != 0 && ((has_beside<-1>(k, found) && leads_beside<-1>(y, k)) ||
                                  (has_beside<1>(k, found) && leads_beside<1>(y, k)))) {
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

  // Whether the region leads on from a word's end pixel, which is found, to the words beside it.
  template <int dx>
  NUQI_INLINE bool leads_beside(int32_t y, int32_t k) {
    for (int32_t row = y - diagonal; row <= y + diagonal; ++row) {
      if (!has_row(row)) continue;
      ready(row, k + dx);
      if ((row_words(row)[k + dx].open & (dx < 0 ? kLastPixel : kFirstPixel)) != 0) return true;
    }
    return false;
  }

  // From a word up or down, as long as rows are wide, many of their words are reached, and words pay. What
  // is reached in the rows on the other side is left waiting.
  NUQI_INLINE void visit(int32_t y, int32_t k) {
    const auto further = [&](const RowVisit& row, int dy) NUQI_FORCED {
      const int32_t between = row.words.last - row.words.first;
      const bool goes_on = between >= kSwept && between <= 4 * row.count && state_.credit >= 0;
      return goes_on && has_row(y + dy) ? take_row(y + dy, row.words, dy) : kNoVisit;
    };
    RowVisit row = take_row(y, {k, k}, 0);
    row.leads_back = true;
    int dy = -1;
    RowVisit next = further(row, dy);
    if (next.count == 0) next = further(row, dy = 1);
    while (next.count != 0) {
      if (row.leads_back) leave_row(y, row.words, -dy);
      y += dy, row = next;
      next = further(row, dy);
    }
    leave_row(y, row.words, -1);
    leave_row(y, row.words, 1);
  }

  // Visits a row: words that are pending or reached from those of the row behind, `from`, which have just
  // been visited; and words on either side into which the region leads. Without a row behind, where dy is 0,
  // these are words of the row itself.
  NUQI_NOINLINE RowVisit take_row(int32_t y, const WordRange from, const int dy) {
    FillWord* const words = row_words(y);
    const FillWord* const behind = row_words(y - dy);
    const WordRange near = dy == 0 ? from : next_to(y - dy, from);
    ready(y, near.first, near.last);
    T* const row = row_of(job_.image, y);
    const int32_t width = job_.roi.width;
    const T value = job_.value;
    // To the right, what leaves a word is carried into the next one.
    uint64_t carry = 0, leads_left = 0, leads_back = 0;
    int32_t end = near.last + 1, count = 0, area = 0;
    FoundNear<diagonal> found_behind(behind, dy == 0 ? kNoVisit.words : from, near.first);
    for (int32_t k = near.first; k < end || carry != 0; found_behind.advance(++k)) {
      if (k == end) {
        if (k == row_words_) break;
        ready(y, k);
        ++end;
      }
      const uint64_t open = words[k].open, pending = words[k].pending | (carry & open);
      const uint64_t seeds = pending | arriving(y - dy, found_behind, k, dy, open & ~pending);
      carry = 0;
      words[k].found = 0;
      if (seeds == 0) continue;
      const int32_t x = k * kFillWordPixels;
      const RowSteps steps = rule_.in_row(y, k);
      const uint64_t found = spread(steps, open, seeds);
      area += take(words[k], open, found);
      if constexpr (kLocal) paint_at(row + x, found, value, width - x);
      ++count;
      carry = (found & steps.right) >> 63;
      leads_left |= found & (k > near.first ? words[k - 1].open >> 63 : 1);
      leads_back |= next_to_open(behind, from, k, found);
    }
    if (count == 0) return kNoVisit;
    count_in(area, count);
    WordRange range = {near.first, end - 1};
    if ((leads_left & kFirstPixel) != 0 && take_left(y, range)) leads_back = 1;
    while (words[range.first].found == 0) ++range.first;
    while (words[range.last].found == 0) --range.last;
    if (range.first < from.first || range.last > from.last) leads_back = 1;
    state_.extent.add_columns(range.first * kFillWordPixels + first_bit(words[range.first].found),
                              range.last * kFillWordPixels + last_bit(words[range.last].found));
    state_.extent.add_row(y);
    return {range, count, leads_back != 0};
  }
  // And to the left: what words of a row lead to in those before them. Whether that is anything.
  NUQI_NOINLINE bool take_left(int32_t y, WordRange& range) {
    FillWord* const words = row_words(y);
    uint64_t carry = 0;
    int32_t area = 0;
    for (int32_t k = range.last; k >= range.first || carry != 0; --k) {
      if (k < range.first) {
        if (k < 0) break;
        ready(y, k);
        words[k].found = 0;
        range.first = k;
      }
      const uint64_t open = words[k].open, before = words[k].found;
      if ((carry << 63 & open) != 0 && rule_.joins((k + 1) * kFillWordPixels, y, -1, 0)) {
        const uint64_t found = spread(rule_.in_row(y, k), open, kLastPixel);
        area += take(words[k], open, found);
        if constexpr (kLocal) paint(job_, y, k, found);
        words[k].found |= before;
      }
      carry = words[k].found & kFirstPixel;
    }
    count_in(area, 0);
    return area != 0;
  }
  // What visits find, and what they take.
  NUQI_INLINE void count_in(int32_t area, int32_t visits) {
    state_.extent.area += area;
    state_.credit += area - (kLocal ? 0 : kEffort * visits);
  }
  // Of a word's open pixels these are found in a visit; how many there are.
  NUQI_INLINE static int take(FillWord& word, uint64_t open, uint64_t found) {
    word.open = open & ~found;
    word.pending &= ~found;
    word.found = found;
    return count_bits(found);
  }
  // Leaves waiting what is reached in the row dy further on, where there is one, from words of row y.
  NUQI_NOINLINE void leave_row(int32_t y, const WordRange from, const int dy) {
    if (!has_row(y + dy)) return;
    const WordRange near = next_to(y, from);
    ready(y + dy, near.first, near.last);
    const FillWord* const there = row_words(y + dy);
    FoundNear<diagonal> found(row_words(y), from, near.first);
    for (int32_t k = near.first; k <= near.last; ++k, found.advance(k))
      offer(y + dy, k, arriving(y, found, k, dy, there[k].open & ~there[k].pending));
  }
  // Whether, in bits of any places, pixels found in a word are next to open ones of the row behind, of which
  // these words are ready.
  NUQI_INLINE uint64_t next_to_open(const FillWord* behind, const WordRange& ready, int32_t k,
                                    uint64_t found) const {
    if constexpr (!diagonal) return found & behind[k].open;
    uint64_t left = has_beside<-1>(k, found), right = has_beside<1>(k, found);
    if (k > ready.first) left = found << 63 & behind[k - 1].open;
    if (k < ready.last) right = found >> 63 & behind[k + 1].open;
    return ((found | found << 1 | found >> 1) & behind[k].open) | left | right;
  }
  // The words of the rows beside it that a row's words may lead to.
  NUQI_INLINE WordRange next_to(int32_t y, const WordRange& from) const {
    if (!diagonal) return from;
    const FillWord* const words = row_words(y);
    return {from.first - has_beside<-1>(from.first, words[from.first].found),
            from.last + has_beside<1>(from.last, words[from.last].found)};
  }
  // Whether the word's end pixel is found and has a word beside it.
  template <int dx>
  NUQI_INLINE bool has_beside(int32_t k, uint64_t found) const {
    return (found & (dx < 0 ? kFirstPixel : kLastPixel)) != 0 &&
           (dx < 0 ? k > 0 : k + 1 < row_words_);
  }
  // Of some open pixels of word k of the row dy further on, those that are reached from row y.
  NUQI_INLINE uint64_t arriving(int32_t y, const FoundNear<diagonal>& found, int32_t k, int dy,
                                uint64_t open) const {
    const uint64_t here = found.here, left = found.before >> 63, right = found.next << 63;
    if constexpr (kLocal)
      return (diagonal ? here | here << 1 | here >> 1 | left | right : here) & open;
    uint64_t reached = 0;
    if ((here & open) != 0) reached = here & rule_.steps(y, k, 0, dy);
    if constexpr (diagonal) {
      const uint64_t missing = open & ~reached;
      const int32_t x = k * kFillWordPixels;
      if (((here << 1 | here >> 1) & missing) != 0)
        reached |= (here & rule_.steps(y, k, 1, dy)) << 1 | (here & rule_.steps(y, k, -1, dy)) >> 1;
      if ((left & missing) != 0 && rule_.joins(x - 1, y, 1, dy)) reached |= left;
      if ((right & missing) != 0 && rule_.joins(x + kFillWordPixels, y, -1, dy)) reached |= right;
    }
    return reached & open;
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

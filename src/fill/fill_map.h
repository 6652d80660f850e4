// The words of the rows that a region comes near: made ready as they are asked for, waiting to be visited.
#pragma once

#include "fill/span_walk.h"

namespace nuqi::NUQI_ISA {
namespace {

// Kept apart from what the search holds in registers, since functions that are not inline change it.
struct FillState {
  int32_t top, bottom;  // rows whose groups hold anything, if only that no word of theirs does
  int32_t waiting_rows;
  int32_t y, direction;  // the row whose turn it is to be visited, and which way the next one lies
  int32_t onwards;       // which way the next band of rows lies
  FillPlace next;        // a word that is visited before those; none where y is negative
  int32_t credit;        // see Search
  Extent extent;         // of what has been found
};

// The pixels that are reached span by span in the time of a word.
template <bool diagonal, class Rule>
constexpr int32_t effort() {
  return diagonal && !Rule::kLocal ? 2 * Rule::kEffort : Rule::kEffort;
}

// Words do not gain more than they may lose again soon.
template <bool diagonal, class Rule>
NUQI_INLINE void limit_credit(FillState& state) {
  constexpr int32_t most = 8 * effort<diagonal, Rule>();
  if (state.credit > most) state.credit = most;
}

template <class T>
NUQI_INLINE void start_row(const FillJob<T>& job, int32_t y, bool clears) {
  for (int64_t g = 0; g < job.row_groups; ++g) job.groups[y * job.row_groups + g] = {0, 0};
  if (clears) job.row_bits[y / kFillBandRows].waiting = 0;
}
template <class T>
NUQI_INLINE FillState start_map(const FillJob<T>& job) {
  FillState state = {.top = job.seed.y,
                     .bottom = job.seed.y,
                     .waiting_rows = 0,
                     .y = job.seed.y,
                     .direction = 1,
                     .onwards = 1,
                     .next = {-1, 0},
                     .credit = -1,
                     .extent = empty_extent(job)};
  start_row(job, job.seed.y, true);
  return state;
}
// Before the rows next to row y, whose own groups hold something, are asked about.
template <class T>
NUQI_INLINE void reach_row(const FillJob<T>& job, FillState& state, int32_t y) {
  if (y == state.top && y > 0) start_row(job, --state.top, y % kFillBandRows == 0);
  if (y == state.bottom && y + 1 < job.roi.height)
    start_row(job, ++state.bottom, (y + 1) % kFillBandRows == 0);
}

// Whether word k of a row, of which these are the groups, holds anything.
NUQI_INLINE bool is_ready(const FillGroup* groups, int32_t k) {
  return (groups[k / kFillGroupWords].ready >> k % kFillGroupWords & 1) != 0;
}

// Makes words of a row ready, those from `first` to `last`.
template <class Rule, class T>
NUQI_NOINLINE void prepare(const Rule& shared_rule, const FillJob<T>& job, FillState& state,
                           int32_t y, int32_t first, int32_t last) {
  const Rule rule = shared_rule;  // a copy: see WordField
  reach_row(job, state, y);
  FillGroup* const groups = job.groups + y * job.row_groups;
  FillWord* const words = job.words + y * job.row_words;
  for (int32_t k = first; k <= last; ++k) {
    FillGroup& group = groups[k / kFillGroupWords];
    if (is_ready(groups, k)) continue;
    group.ready |= uint64_t{1} << k % kFillGroupWords;
    if constexpr (Rule::kLocal) state.credit -= Rule::kEffort;
    words[k] = {rule.matching(y, k), 0, 0};
  }
}

// Makes a pixel pending; whether the word waits already.
template <class Rule, class T>
NUQI_NOINLINE bool reach(const Rule& rule, const FillJob<T>& job, FillState& state, PixelPoint at) {
  const int32_t k = at.x / kFillWordPixels;
  prepare(rule, job, state, at.y, k, k);
  FillWord& word = job.words[at.y * job.row_words + k];
  const bool waits = word.pending != 0;
  word.pending |= uint64_t{1} << at.x % kFillWordPixels;
  return waits;
}

// Leaves a word, which is ready, to be visited later.
template <class T>
NUQI_NOINLINE void leave_waiting(const FillJob<T>& job, FillState& state, FillPlace place) {
  job.groups[place.y * job.row_groups + place.k / kFillGroupWords].waiting |=
      uint64_t{1} << place.k % kFillGroupWords;
  FillRowBits& rows = job.row_bits[place.y / kFillBandRows];
  const uint64_t bit = uint64_t{1} << place.y % kFillBandRows;
  state.waiting_rows += (rows.waiting & bit) == 0;
  rows.waiting |= bit;
}

// The next row with waiting words, where there is one. A band of rows, which stays in the cache, is gone
// through up and down until none of its words wait.
template <class T>
NUQI_INLINE int32_t next_waiting_row(const FillJob<T>& job, FillState& state) {
  int32_t band = state.y / kFillBandRows;
  uint64_t bits = job.row_bits[band].waiting;
  if (bits != 0) {
    const uint64_t before = (uint64_t{1} << state.y % kFillBandRows) - 1;
    const uint64_t ahead = state.direction < 0 ? bits & before : bits & ~before << 1;
    if (ahead != 0)
      bits = ahead;
    else
      state.direction = -state.direction;
  } else {
    const int32_t first = state.top / kFillBandRows, last = state.bottom / kFillBandRows;
    do {
      if (band == (state.onwards < 0 ? first : last)) state.onwards = -state.onwards;
      if (first != last) band += state.onwards;
      bits = job.row_bits[band].waiting;
    } while (bits == 0);
    state.direction = state.onwards;
  }
  return band * kFillBandRows + (state.direction < 0 ? last_bit(bits) : first_bit(bits));
}

// The next waiting word, which waits no longer; y is -1 without one. Rows are gone through up and down by
// turns: more of a word has been reached when its turn comes.
template <class T>
NUQI_NOINLINE FillPlace next_waiting(const FillJob<T>& job, FillState& state) {
  while (state.waiting_rows != 0) {
    const int32_t y = state.y;
    FillRowBits& rows = job.row_bits[y / kFillBandRows];
    const uint64_t bit = uint64_t{1} << y % kFillBandRows;
    if ((rows.waiting & bit) != 0) {
      for (int32_t g = 0; g < job.row_groups; ++g) {
        FillGroup& group = job.groups[y * job.row_groups + g];
        if (group.waiting == 0) continue;
        const int k = first_bit(group.waiting);
        group.waiting &= group.waiting - 1;
        return {y, g * kFillGroupWords + k};
      }
      rows.waiting &= ~bit;
      --state.waiting_rows;
      continue;
    }
    state.y = next_waiting_row(job, state);
  }
  return {-1, 0};
}

// ---- Walks over the map

// Thin parts of the region, to be walked. Of a local rule words are left as they are where they are not
// ready: what is painted no longer matches.
template <class Rule, class T>
class WordField {
 public:
  static constexpr bool kLocal = Rule::kLocal;

  NUQI_INLINE WordField(const Rule& rule, const FillJob<T>& job, FillState& state)
      : shared_rule_(rule),
        job_(job),
        state_(state),
        rule_(rule),
        image_(job.image),
        value_(job.value),
        width_(job.roi.width),
        height_(job.roi.height),
        row_words_(job.row_words),
        row_groups_(job.row_groups),
        groups_(job.groups),
        words_(job.words),
        extent_(state.extent) {}

  NUQI_INLINE int32_t width() const { return width_; }
  NUQI_INLINE int32_t height() const { return height_; }
  NUQI_INLINE bool open(int32_t x, int32_t y) {
    if constexpr (kLocal) return rule_.matches(x, y);
    const int32_t k = x / kFillWordPixels;
    if (!is_ready(y, k)) prepare(shared_rule_, job_, state_, y, k, k);
    return (word(y, k).open >> x % kFillWordPixels & 1) != 0;
  }
  NUQI_INLINE bool joins(int32_t x, int32_t y, int dx, int dy) const {
    return rule_.joins(x, y, dx, dy);
  }
  NUQI_INLINE bool leads(int32_t x, int32_t y, int dx, int dy) {
    return open(x + dx, y + dy) && joins(x, y, dx, dy);
  }
  NUQI_INLINE Span take(int32_t x, int32_t y) {
    const Span span = span_at(*this, x, y, kLongestSpan);
    if (span.right - span.left >= kLongestSpan) {
      wide_ = {y, x / kFillWordPixels};
      reach(shared_rule_, job_, state_, {x, y});
      return kNoSpan;
    }
    extent_.add_span(y, span.left, span.right);
    turns_ += span.right - span.left + 1;
    close(span);
    return span;
  }
  NUQI_INLINE bool take_straight(Span& span) {
    const int32_t y = span.y + span.direction;
    if (uint32_t(y) >= uint32_t(height_)) return false;
    if (span.left > 0 && open(span.left - 1, y)) return false;
    if (span.right + 1 < width_ && open(span.right + 1, y)) return false;
    for (int32_t x = span.left; x <= span.right; ++x)
      if (!open(x, y)) return false;
    span.y = y;
    extent_.area += span.right - span.left + 1;
    extent_.add_row(y);
    close(span);
    return true;
  }
  NUQI_INLINE int32_t leave(int32_t x, int32_t y) {
    const FillPlace place = {y, x / kFillWordPixels};
    if (is_ready(y, place.k) && (word(y, place.k).pending >> x % kFillWordPixels & 1) != 0)
      return x;
    if (!reach(shared_rule_, job_, state_, {x, y})) leave_waiting(job_, state_, place);
    return x;
  }
  // Where a region begins that is not thin; y is negative without one.
  NUQI_INLINE FillPlace wide() const { return wide_; }
  NUQI_INLINE const Extent& extent() const { return extent_; }
  // Pixels that were not taken straight on.
  NUQI_INLINE int32_t turns() const { return turns_; }

 private:
  static constexpr int32_t kLongestSpan = 16;

  NUQI_INLINE FillWord& word(int32_t y, int32_t k) const { return words_[y * row_words_ + k]; }
  NUQI_INLINE bool is_ready(int32_t y, int32_t k) const {
    return NUQI_ISA::is_ready(groups_ + y * row_groups_, k);
  }
  // Paints, where pixels are painted as they are found, and takes from the words that are ready.
  NUQI_INLINE void close(const Span& span) {
    const int32_t y = span.y;
    reach_row(job_, state_, y);
    if constexpr (kLocal)
      for (int32_t x = span.left; x <= span.right; ++x) store_one(row_of(image_, y) + x, value_);
    const uint64_t bits = ~uint64_t{0} >> (63 - (span.right - span.left));
    const int32_t k = span.left / kFillWordPixels, shift = span.left % kFillWordPixels;
    close(y, k, bits << shift);
    if (span.right / kFillWordPixels != k) close(y, k + 1, bits >> (64 - shift));
  }
  NUQI_INLINE void close(int32_t y, int32_t k, uint64_t pixels) {
    if (!is_ready(y, k)) {
      if constexpr (kLocal) return;
      prepare(shared_rule_, job_, state_, y, k, k);  // the seed's
    }
    FillWord& closed = word(y, k);
    closed.open &= ~pixels;
    closed.pending &= ~pixels;
  }

  const Rule& shared_rule_;
  const FillJob<T>& job_;
  FillState& state_;
  // Copies: as far as the compiler knows, what is stored to pixels might change the others.
  const Rule rule_;
  const Image<T> image_;
  const T value_;
  const int32_t width_, height_;
  const int64_t row_words_, row_groups_;
  FillGroup* const groups_;
  FillWord* const words_;
  Extent extent_;
  FillPlace wide_ = {-1, 0};
  int32_t turns_ = 0;
};

// Walks from a pixel that has been reached. The word in which the region is no longer thin, one of whose
// pixels is pending; y is negative where all has been walked.
template <bool diagonal, class Rule, class T>
NUQI_NOINLINE FillPlace walk_from(const Rule& rule, const FillJob<T>& job, FillState& state,
                                  PixelPoint from) {
  WordField<Rule, T> field(rule, job, state);
  walk<diagonal>(field, field.take(from.x, from.y));
  // What winds in a narrow space is more for words of a local rule, which are compared but once.
  state.credit += Rule::kLocal ? field.turns() : field.turns() / 8;
  limit_credit<diagonal, Rule>(state);
  state.extent = field.extent();
  return field.wide();
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

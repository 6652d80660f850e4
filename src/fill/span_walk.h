// Thin regions, span by span: where comparing words of 64 pixels takes longer than looking at the few that
// are reached.
#pragma once

#include "fill/fill_bits.h"

namespace nuqi::NUQI_ISA {
namespace {

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
  NUQI_INLINE void add_span(int32_t y, int32_t first, int32_t last) {
    area += last - first + 1;
    add_columns(first, last);
    add_row(y);
  }
  template <class Value>
  NUQI_INLINE FillRegion region(Value value) const {
    return {(double)area, (double)value, left, top, right - left + 1, bottom - top + 1};
  }
};
template <class T>
NUQI_INLINE Extent empty_extent(const FillJob<T>& job) {
  return {0, job.roi.width, -1, job.seed.y, job.seed.y};
}

// Pixels of a row that have been taken, and those of the row behind it from which they were reached; none
// of these where they lie right of the image.
struct Span {
  int32_t y, left, right;
  int32_t direction;  // -1 or 1: away from the row behind
  int32_t behind_left, behind_right;
};
constexpr int32_t kNoneBehind = INT32_MAX - 1;
constexpr Span kNoSpan = {-1, 0, -1, 1, kNoneBehind, kNoneBehind};

// The pixels reached within a row from one of them, or more than `most` of them.
template <class Field>
NUQI_INLINE Span span_at(Field& field, int32_t x, int32_t y, int32_t most) {
  int32_t left = x, right = x;
  const int32_t last = field.width() - 1 - x < most ? field.width() - 1 : x + most;
  while (right < last && field.leads(right, y, 1, 0)) ++right;
  const int32_t first = right < most ? 0 : right - most;
  while (left > first && field.leads(left, y, -1, 0)) --left;
  return {y, left, right, 1, kNoneBehind, kNoneBehind};
}

// Whether a pixel in the row dy further on is reached from a span.
template <bool diagonal, class Field>
NUQI_INLINE bool reached(Field& field, const Span& span, int32_t x, int dy) {
  if constexpr (Field::kLocal) return field.open(x, span.y + dy);
  if (!field.open(x, span.y + dy)) return false;
  if (x >= span.left && x <= span.right && field.joins(x, span.y, 0, dy)) return true;
  return diagonal && ((x > span.left && field.joins(x - 1, span.y, 1, dy)) ||
                      (x < span.right && field.joins(x + 1, span.y, -1, dy)));
}

// Goes on from a span that has been taken, as long as one leads to another. A field tells
//   width(), height()       the image's
//   open(x, y)              whether a pixel may join and has not been taken
//   joins(x, y, dx, dy)     whether a step leads from a pixel to its neighbour, which is open
//   leads(x, y, dx, dy)     both
//   kLocal                  whether every open pixel joins, wherever it is reached from
//   take(x, y)              what is taken of a row with a pixel that has been reached, kNoSpan where that
//                           is left to others
//   take_straight(span)     of a local rule: takes just the same columns of the row ahead and makes them the
//                           span, where no others beside them are open
//   leave(x, y)             what a span has reached besides the one that it leads to; the last pixel of
//                           the row that is done with
template <bool diagonal, class Field>
NUQI_INLINE void walk(Field& field, Span span) {
  while (span.y >= 0) {
    if constexpr (Field::kLocal)
      if (span.behind_left == span.left && span.behind_right == span.right)
        while (field.take_straight(span)) {
        }
    Span next = kNoSpan;
    bool done = false;
    int32_t first = span.left, last = span.right;
    if constexpr (diagonal) first -= first > 0, last += last + 1 < field.width();
    // Ahead, and on either side of what lies behind.
    for (int part = 0; part < 3; ++part) {
      int32_t x = first, end = last;
      const int32_t dy = part == 0 ? span.direction : -span.direction, y = span.y + dy;
      if (part == 1 && end >= span.behind_left) end = span.behind_left - 1;
      if (part == 2 && x <= span.behind_right) x = span.behind_right + 1;
      if (x > end || uint32_t(y) >= uint32_t(field.height())) continue;
      for (; x <= end; ++x) {
        if (!reached<diagonal>(field, span, x, dy)) continue;
        if (done) {
          x = field.leave(x, y);
          continue;
        }
        done = true;
        next = field.take(x, y);
        if (next.y < 0) continue;
        next.direction = dy;
        next.behind_left = span.left, next.behind_right = span.right;
        x = next.right;
      }
    }
    span = next;
  }
}

// ---- Images that are narrow altogether

// A span that has been taken and waits: of images up to 256 pixels wide.
constexpr int32_t kMostNarrow = 256;
struct __attribute__((packed, may_alias)) NarrowSpan {
  int32_t y;
  uint8_t left, right;
};

// A byte of the buffer for each pixel tells the taken ones of a rule that is not local, before the stack.
//
// A span is pushed once at most, when it is taken, and has a pixel at least: six bytes a pixel suffice.
template <class Rule, class T>
class NarrowField {
 public:
  static constexpr bool kLocal = Rule::kLocal;

  NUQI_INLINE NarrowField(const Rule& rule, const FillJob<T>& job)
      : rule_(rule), job_(job), extent_(empty_extent(job)) {
    const int64_t pixels = int64_t{job.roi.width} * job.roi.height;
    uint8_t* const taken = job.buffer;
    if (!kLocal)
      for (int64_t i = 0; i < pixels; ++i) taken[i] = 0;
    stack_ = (NarrowSpan*)(taken + (kLocal ? 0 : pixels));
  }
  NUQI_INLINE int32_t width() const { return job_.roi.width; }
  NUQI_INLINE int32_t height() const { return job_.roi.height; }
  NUQI_INLINE bool joins(int32_t x, int32_t y, int dx, int dy) const {
    return rule_.joins(x, y, dx, dy);
  }
  NUQI_INLINE bool open(int32_t x, int32_t y) const {
    if constexpr (kLocal) return rule_.matches(x, y);
    return taken(x, y) == 0;
  }
  NUQI_INLINE bool leads(int32_t x, int32_t y, int dx, int dy) const {
    return open(x + dx, y + dy) && joins(x, y, dx, dy);
  }
  NUQI_INLINE Span take(int32_t x, int32_t y) {
    const Span span = span_at(*this, x, y, job_.roi.width);
    extent_.add_span(y, span.left, span.right);
    for (int32_t i = span.left; i <= span.right; ++i)
      if constexpr (kLocal)
        store_one(row_of(job_.image, y) + i, job_.value);
      else
        taken(i, y) = 1;
    return span;
  }
  NUQI_INLINE bool take_straight(Span&) { return false; }
  NUQI_INLINE int32_t leave(int32_t x, int32_t y) {
    const Span span = take(x, y);
    stack_[size_++] = {span.y, uint8_t(span.left), uint8_t(span.right)};
    return span.right;
  }
  // What was left last.
  NUQI_INLINE Span next() {
    if (size_ == 0) return kNoSpan;
    const NarrowSpan span = stack_[--size_];
    return {span.y, span.left, span.right, 1, kNoneBehind, kNoneBehind};
  }
  // Not before all are found: steps are between the values as they were.
  NUQI_INLINE FillRegion region() const {
    if (!kLocal)
      for (int32_t y = extent_.top; y <= extent_.bottom; ++y) {
        T* const row = row_of(job_.image, y);
        for (int32_t x = extent_.left; x <= extent_.right; x += 8) {
          const bool eight = x + 7 <= extent_.right;
          if (eight && eight_taken(x, y) == 0) continue;
          const int32_t last = eight ? x + 7 : extent_.right;
          for (int32_t i = x; i <= last; ++i)
            if (taken(i, y) != 0) store_one(row + i, job_.value);
        }
      }
    return extent_.region(job_.value);
  }

 private:
  NUQI_INLINE uint8_t& taken(int32_t x, int32_t y) const {
    return job_.buffer[int64_t{y} * job_.roi.width + x];
  }

  NUQI_INLINE uint64_t eight_taken(int32_t x, int32_t y) const {
    uint64_t eight;
    __builtin_memcpy(&eight, &taken(x, y), sizeof eight);
    return eight;
  }

  const Rule rule_;  // a copy, and so one of the job: see Search
  const FillJob<T> job_;
  Extent extent_;
  NarrowSpan* stack_;
  int64_t size_ = 0;
};

template <bool diagonal, class Rule, class T>
NUQI_INLINE FillRegion fill_narrow(const Rule& rule, const FillJob<T>& job) {
  NarrowField<Rule, T> field(rule, job);
  for (Span span = field.take(job.seed.x, job.seed.y); span.y >= 0; span = field.next())
    walk<diagonal>(field, span);
  return field.region();
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

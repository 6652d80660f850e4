// Fills a region by words, or span by span where the image is narrow altogether.
#pragma once

#include "fill/word_fill.h"

namespace nuqi::NUQI_ISA {
namespace {

// Paints what has been found, of a rule that is not local.
template <class Rule, class T>
NUQI_INLINE void paint_found(const Rule& rule, const FillJob<T>& job, const Extent& extent) {
  const Image<T> image = job.image;  // copies: see Search
  const T value = job.value;
  const int32_t width = job.roi.width;
  for (int32_t y = extent.top; y <= extent.bottom; ++y) {
    T* const row = row_of(image, y);
    const FillWord* const words = job.words + y * job.row_words;
    for (int32_t g = 0; g < job.row_groups; ++g)
      for (uint64_t ready = job.groups[y * job.row_groups + g].ready; ready != 0;
           ready &= ready - 1) {
        const int32_t k = g * kFillGroupWords + first_bit(ready), x = k * kFillWordPixels;
        const uint64_t found = rule.matching(y, k) & ~words[k].open;
        if (found != 0) paint_at(row + x, found, value, width - x);
      }
  }
}

template <bool diagonal, class Rule, class T>
NUQI_INLINE FillRegion fill_region(const Rule& rule, const FillJob<T>& job) {
  // Rows of few pixels do not bring what their words take. Where registers hold 64 bytes words take less
  // than the efforts tell, and spans more.
  constexpr int32_t each = effort<diagonal, Rule>();
  constexpr int32_t narrow = kFillNarrow + (kRegBytes < 64 ? 2 * each : each / 2);
  static_assert(narrow <= kMostNarrow);
  if (job.roi.width < narrow) return fill_narrow<diagonal>(rule, job);
  FillState state = start_map(job);
  Search<diagonal, Rule, T> search(rule, job, state);
  search.run();
  if constexpr (!Rule::kLocal) paint_found(rule, job, state.extent);
  return state.extent.region(job.value);
}

}  // namespace
}  // namespace nuqi::NUQI_ISA

// What visits of rows, of which some words are looked at, tell each other.
#pragma once

#include "fill/fill_map.h"

namespace nuqi::NUQI_ISA {
namespace {

// Words of a row.
struct WordRange {
  int32_t first, last;
};

// What a visit has found in a row. No larger than two registers: copies through memory cost more than words.
struct RowVisit {
  WordRange words;
  int32_t count;       // of those between, in which anything has been found
  int32_t leads_back;  // whether it may lead to the row that the visit came from
};
constexpr RowVisit kNoVisit = {{0, -1}, 0, 0};

// What has been found in a word of a visited row and, where diagonal steps lead on, in those beside it: from
// word k on, one word after the other.
template <bool diagonal>
struct FoundNear {
  NUQI_INLINE FoundNear(const FillWord* words, const WordRange& visited, int32_t k)
      : words(words),
        first(visited.first),
        last(visited.last),
        before(0),
        here(in(k)),
        next(in(k + 1)) {}
  NUQI_INLINE uint64_t in(int32_t k) const { return k >= first && k <= last ? words[k].found : 0; }
  NUQI_INLINE void advance(int32_t k) {
    if constexpr (diagonal)
      before = here, here = next, next = in(k + 1);
    else
      here = in(k);
  }

  const FillWord* words;
  int32_t first, last;
  uint64_t before, here, next;
};

}  // namespace
}  // namespace nuqi::NUQI_ISA

// How the flood fills lay out the caller's buffer: words of 64 pixels, a bit each.
#pragma once

#include "core/image.h"
#include "core/scratch.h"

namespace nuqi {

constexpr int kFillWordPixels = 64;
constexpr bool kDiagonal = true;

// 64 pixels of a row, the first in the lowest bit. The buffer, and so a word, has any alignment.
struct __attribute__((packed, may_alias)) FillWord {
  uint64_t open;     // pixels that may join and have not been reached
  uint64_t pending;  // open pixels that join, to be visited
  uint64_t queued;   // whether the word stands in the queue, where it stands but once
  uint64_t found;    // what the last visit has filled
};

// Which words of a row hold anything: those from `first` to `end` - 1.
struct __attribute__((packed, may_alias)) FillRow {
  int32_t first, end;
};

// Where a word lies: its row, and its number in the row.
struct __attribute__((packed, may_alias)) FillPlace {
  int32_t y, k;
};

struct FillPlan {
  int64_t row_words;
  Region<FillRow> rows;
  Region<FillWord> words;
  Region<FillPlace> queue;  // a ring with room for every word
  int64_t end;
};

constexpr FillPlan plan_fill(RoiSize roi) {
  FillPlan plan = {};
  plan.row_words = (int64_t{roi.width} + kFillWordPixels - 1) / kFillWordPixels;
  ScratchLayout layout;
  plan.rows = layout.add<FillRow>(roi.height);
  plan.words = layout.add<FillWord>(plan.row_words * roi.height);
  plan.queue = layout.add<FillPlace>(plan.row_words * roi.height);
  plan.end = layout.end();
  return plan;
}

// Narrower images have no room for words in their 6 bytes a pixel. A row takes 8 bytes and 40 a word: all
// of the 48 at a width of 8. A second word takes 40 more from a width of 65 on, which brings 390.
constexpr int32_t kFillNarrow = 8;

// What both kinds of fills hand to their kernels.
template <class T>
struct FillJob {
  Image<T> image;
  RoiSize roi;
  PixelPoint seed;
  T value;  // the new one
  int64_t row_words;
  FillRow* rows;
  FillWord* words;
  FillPlace* queue;
};

template <class T>
FillJob<T> fill_job(const Image<T>& image, RoiSize roi, PixelPoint seed, T value, void* buffer) {
  const FillPlan plan = plan_fill(roi);
  const Scratch scratch(buffer);
  return {.image = image,
          .roi = roi,
          .seed = seed,
          .value = value,
          .row_words = plan.row_words,
          .rows = scratch[plan.rows],
          .words = scratch[plan.words],
          .queue = scratch[plan.queue]};
}

}  // namespace nuqi

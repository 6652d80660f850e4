// How the flood fills lay out the caller's buffer: words of 64 pixels, a bit each.
#pragma once

#include "core/image.h"
#include "core/scratch.h"

namespace nuqi {

constexpr int kFillWordPixels = 64;
constexpr int kFillGroupWords = 64;
// Rows are visited by bands, whose words and pixels stay in the cache: a bit each in FillRowBits.
constexpr int kFillBandRows = 64;
constexpr bool kDiagonal = true;

// 64 pixels of a row, the first in the lowest bit. The buffer, and so a word, has any alignment.
struct __attribute__((packed, may_alias)) FillWord {
  uint64_t open;     // pixels that may join and have not been reached
  uint64_t pending;  // open pixels that join, to be visited
  uint64_t found;    // what the last visit has filled
};

// 64 words of a row, the first in the lowest bit.
struct __attribute__((packed, may_alias)) FillGroup {
  uint64_t ready;    // words that hold anything
  uint64_t waiting;  // words to be visited; some may have been since
};

// A band of rows, the first in the lowest bit: those that have waiting words.
struct __attribute__((packed, may_alias)) FillRowBits {
  uint64_t waiting;
};

// Where a word lies: its row, and its number in the row.
struct FillPlace {
  int32_t y, k;
};

struct FillPlan {
  int64_t row_words, row_groups;
  Region<FillRowBits> row_bits;
  Region<FillGroup> groups;
  Region<FillWord> words;
  int64_t end;
};

constexpr FillPlan plan_fill(RoiSize roi) {
  FillPlan plan = {};
  plan.row_words = (int64_t{roi.width} + kFillWordPixels - 1) / kFillWordPixels;
  plan.row_groups = (plan.row_words + kFillGroupWords - 1) / kFillGroupWords;
  ScratchLayout layout;
  plan.row_bits = layout.add<FillRowBits>(int64_t{roi.height} / kFillBandRows + 1);
  plan.groups = layout.add<FillGroup>(plan.row_groups * roi.height);
  plan.words = layout.add<FillWord>(plan.row_words * roi.height);
  plan.end = layout.end();
  return plan;
}

// Narrower images are walked span by span, wider ones too where words take long, see `fill_region`. From
// here on words find room in 6 bytes a pixel: a row takes 16 bytes a group and 24 a word, the first one and
// each 64th 8 more, which is half of what a width of 16 brings. A second word takes 24 more from a width of
// 65 on, which brings 390.
constexpr int32_t kFillNarrow = 16;

// What both kinds of fills hand to their kernels.
template <class T>
struct FillJob {
  Image<T> image;
  RoiSize roi;
  PixelPoint seed;
  T value;  // the new one
  uint8_t* buffer;
  // Parts of the buffer, where the image is not narrow.
  int64_t row_words, row_groups;
  FillRowBits* row_bits;
  FillGroup* groups;
  FillWord* words;
};

template <class T>
FillJob<T> fill_job(const Image<T>& image, RoiSize roi, PixelPoint seed, T value, void* buffer) {
  const FillPlan plan = plan_fill(roi);
  const Scratch scratch(buffer);
  return {.image = image,
          .roi = roi,
          .seed = seed,
          .value = value,
          .buffer = static_cast<uint8_t*>(buffer),
          .row_words = plan.row_words,
          .row_groups = plan.row_groups,
          .row_bits = scratch[plan.row_bits],
          .groups = scratch[plan.groups],
          .words = scratch[plan.words]};
}

}  // namespace nuqi

// What a morphology state holds: its element, and the ring of rows that later results need.
#pragma once

#include "core/validate.h"

// One block from AlignedAlloc: this header, the ring rows, the spare rows, the element's two masks, the
// table of ring rows.
struct MorphState {
  int32_t maskWidth, maskHeight;
  int32_t anchorX, anchorY;
  int32_t shape;  // nuqi::Shape; an ellipse is kept as an arbitrary mask
  // Of arbitrary masks: a byte for each pixel of the element, 255 where it is inside, and the
  // complement of that; states for bytes hold each of them eight times.
  uint8_t *outside, *inside;
  int32_t maxWidth;
  int32_t dataType;
  int32_t channels;
  uint8_t* firstRow;
  int32_t rowStep;  // bytes from one row buffer to the next
  int32_t held;     // ring rows that the next strip needs
  void** rows;      // the ring rows in their order; behind them the spare ones
  uint8_t* spareRows;
};
static_assert(sizeof(void*) != 4 || sizeof(MorphState) == 60);

namespace nuqi {

enum Shape : int32_t { kRectangle = 0, kCross = 1, kEllipse = 2, kArbitrary = 100 };

// Rows besides those that the element covers: as many results as that and one more are computed at once.
constexpr int spare_rows(int32_t data_type) { return data_type == k8u ? 1 : 2; }

}  // namespace nuqi

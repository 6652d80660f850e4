// The stripe protocol: an image comes in horizontal stripes, a window of rows glides down all of it.
//
// Above an image's first row stand copies of it and below its last row copies of that one, as many
// as the window reaches on either side of its middle. A stripe's last rows are kept, so that windows
// can begin in one stripe and end in the next.
#pragma once

#include <algorithm>
#include <cstring>

#include "core/image.h"

namespace nuqi {

// Phase 0 is a whole image, 1 its first stripe, 2 its last, 4 one between.
constexpr bool is_phase(int32_t phase) {
  return phase == 0 || phase == 1 || phase == 2 || phase == 4;
}
constexpr bool starts_image(int32_t phase) { return phase == 0 || phase == 1; }
constexpr bool ends_image(int32_t phase) { return phase == 0 || phase == 2; }

struct Stripe {
  int32_t height;  // source rows that the call brings
  int half;        // rows of the window on either side of its middle
  bool first, last;

  // The rows seen are -lead() to end() - 1, row 0 being the stripe's first.
  int lead() const { return first ? half : 2 * half; }
  int64_t end() const { return int64_t{height} + (last ? half : 0); }
  // Windows that end in this stripe: the rows of the result.
  int64_t produced() const { return std::max<int64_t>(0, end() + lead() - 2 * half); }
  // Rows that the image still lacks before its next stripe may come.
  int32_t pending() const { return first && height < half ? half - height : 0; }
};

template <class T>
struct StripeRows {
  Stripe stripe;
  Image<const T> src;
  void* const* kept;  // 2 * half row buffers, the oldest row first

  const T* operator[](int64_t i) const {
    if (i >= 0) return row_of(src, std::min<int64_t>(i, stripe.height - 1));
    return stripe.first ? src.data : static_cast<const T*>(kept[2 * stripe.half + i]);
  }
  // Rows i to i + count - 1. In runs: choosing row by row takes a thousand instructions for 64 rows.
  void collect(int64_t i, int64_t count, const T** rows) const {
    const int64_t end = i + count;
    for (; i < end && i < 0; ++i) *rows++ = (*this)[i];
    for (; i < end && i < stripe.height; ++i) *rows++ = row_of(src, i);
    for (; i < end; ++i) *rows++ = (*this)[i];
  }
  // Leaves the last rows to the next stripe.
  void keep(int32_t width) const {
    const int rows = 2 * stripe.half;
    for (int i = 0; i < rows; ++i)
      std::memcpy(kept[i], (*this)[stripe.end() - rows + i], row_bytes(src, width));
  }
};

}  // namespace nuqi

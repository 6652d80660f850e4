// The stripe protocol: an image comes in horizontal stripes, a sliding window of rows runs over all of it.
//
// Above an image's first row stand copies of it and below its last row copies of that one, as many
// as the window reaches above and below its middle. A stripe's last rows are kept, so that windows
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
  int32_t height;    // source rows that the call brings
  int above, below;  // rows of the window on either side of its middle
  bool first, last;
  int held;  // rows that the stripe before has kept; an image's first stripe needs none

  // Rows of a window besides its middle: windows of two stripes share no more.
  int around() const { return above + below; }
  // The rows seen are -lead() to end() - 1, row 0 being the stripe's first.
  int lead() const { return first ? above : held; }
  int64_t end() const { return int64_t{height} + (last ? below : 0); }
  // Windows that end in this stripe: the rows of the result.
  int64_t produced() const { return std::max<int64_t>(0, lead() + end() - around()); }
  // Rows that the next stripe needs, or as many as have been seen.
  int kept() const { return static_cast<int>(std::min<int64_t>(around(), lead() + end())); }
  // Rows that the image still lacks before its next stripe may come.
  int32_t pending() const { return first && height < below ? below - height : 0; }
};

template <class T>
struct StripeRows {
  Stripe stripe;
  Image<const T> src;
  void* const* ring;  // around() row buffers; the held rows come first, the oldest in front

  const T* operator[](int64_t i) const {
    i = std::min<int64_t>(i, stripe.height - 1);  // a last stripe may have no rows
    if (i >= 0) return row_of(src, i);
    return stripe.first ? src.data : static_cast<const T*>(ring[stripe.held + i]);
  }
  // Rows i to i + count - 1. In runs: choosing row by row takes a thousand instructions for 64 rows.
  void collect(int64_t i, int64_t count, const T** rows) const {
    const int64_t end = i + count;
    for (; i < end && i < 0; ++i) *rows++ = (*this)[i];
    for (; i < end && i < stripe.height; ++i) *rows++ = row_of(src, i);
    for (; i < end; ++i) *rows++ = (*this)[i];
  }
  // Leaves the last rows, of so many elements, to the next stripe.
  void keep(int32_t width) const {
    const int rows = stripe.kept();
    for (int i = 0; i < rows; ++i)
      std::memcpy(ring[i], (*this)[stripe.end() - rows + i], row_bytes(src, width));
  }
};

}  // namespace nuqi

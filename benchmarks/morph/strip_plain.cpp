// Plain loops of erosion and dilation, as one would write them. Compiled by each compiler.
#include "morph/strip_plain.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

template <bool greatest, class T>
void take(T* __restrict to, const T* from, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i)
    to[i] = (greatest ? to[i] > from[i] : to[i] < from[i]) ? to[i] : from[i];
}

// The rows under the element, expanded by copies of their ends; of rectangles reduced along the row.
template <bool greatest, class T>
void run(const StripPlain& how, const test::StripeArgs<T, T, MorphState>& a) {
  const int columns = how.element.width, rows = how.element.height, channels = how.channels;
  const int left = columns / 2 * channels, around = (columns - 1) * channels;
  const int count = a.roi->width * channels, height = a.roi->height;
  static thread_local std::vector<T> buffer;
  buffer.resize(static_cast<size_t>(count + around) * (rows + 1));
  const auto ring = [&](int y) {
    return buffer.data() + static_cast<ptrdiff_t>(1 + (y + rows) % rows) * (count + around);
  };
  for (int y = -(rows / 2); y < height + rows - 1 - rows / 2; ++y) {
    const T* src = row(a.src, a.srcStep, y < 0 ? 0 : y < height ? y : height - 1);
    T* expanded = how.shape == 0 ? buffer.data() : ring(y);
    std::memcpy(expanded + left, src, count * sizeof(T));
    for (int i = 0; i < left; ++i) expanded[i] = src[i % channels];
    for (int i = left; i < around; ++i)
      expanded[count + i] = src[count - channels + (i - left) % channels];
    if (how.shape == 0) {
      std::memcpy(ring(y), expanded, count * sizeof(T));
      for (int c = 1; c < columns; ++c)
        take<greatest>(ring(y), expanded + static_cast<ptrdiff_t>(c) * channels, count);
    }
    const int first = y - rows + 1, out = first + rows / 2;
    if (out < 0) continue;
    T* dst = row(a.dst, a.dstStep, out);
    if (how.shape == 0) {
      std::memcpy(dst, ring(first), count * sizeof(T));
      for (int r = 1; r < rows; ++r) take<greatest>(dst, ring(first + r), count);
      continue;
    }
    std::memcpy(dst, ring(out) + left, count * sizeof(T));
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < columns; ++c)
        if (how.shape == 1 ? r == rows / 2 || c == columns / 2 : how.mask[r * columns + c] != 0)
          take<greatest>(dst, ring(first + r) + static_cast<ptrdiff_t>(c) * channels, count);
  }
}

}  // namespace

template <class T>
void plain_strip(const StripPlain& how, const test::StripeArgs<T, T, MorphState>& a) {
  how.dilates ? run<true>(how, a) : run<false>(how, a);
}
template void plain_strip(const StripPlain&, const test::StripeArgs<uint8_t, uint8_t, MorphState>&);
template void plain_strip(const StripPlain&, const test::StripeArgs<float, float, MorphState>&);

}  // namespace nuqi::bench::PLAIN_COMPILER

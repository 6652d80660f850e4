// Plain loops of the thresholds, as one would write them. Compiled by each compiler.
#include "arith/threshold_plain.h"

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {

template <class T>
void plain_threshold(const test::ThresholdArgs<T>& a) {
  const int width = a.roi.width;  // copies: byte stores may alias the arguments
  const T level = a.level, value = a.value;
  for (int y = 0; y < a.roi.height; ++y) {
    const T* src = row(a.src, a.srcStep, y);
    T* __restrict dst = row(a.dst, a.dstStep, y);
    for (int x = 0; x < width; ++x) dst[x] = src[x] > level ? value : T{0};
  }
}
template void plain_threshold(const test::ThresholdArgs<uint8_t>&);
template void plain_threshold(const test::ThresholdArgs<float>&);

}  // namespace nuqi::bench::PLAIN_COMPILER

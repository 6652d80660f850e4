// Plain loops of the absolute-difference family, as one would write them. Compiled by each compiler.
#include "arith/abs_diff_plain.h"

#include <cmath>
#include <cstdlib>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::AbsDiffArgs;

template <class T, bool of_images>
void loop(const AbsDiffArgs<T>& a) {
  const int width = a.roi.width;  // a copy: byte stores may alias the arguments
  const T value = static_cast<T>(a.value);
  for (int y = 0; y < a.roi.height; ++y) {
    const T* src = row(a.src, a.srcStep, y);
    const T* src2 = row(a.src2, a.src2Step, y);
    T* __restrict dst = row(a.dst, a.dstStep, y);
    for (int x = 0; x < width; ++x)
      dst[x] = static_cast<T>(std::abs(src[x] - (of_images ? src2[x] : value)));
  }
}

}  // namespace

template <class T>
AbsDiffLoop<T> plain_abs_diff(bool of_images) {
  return of_images ? loop<T, true> : loop<T, false>;
}
template AbsDiffLoop<uint8_t> plain_abs_diff<uint8_t>(bool);
template AbsDiffLoop<float> plain_abs_diff<float>(bool);

}  // namespace nuqi::bench::PLAIN_COMPILER

// The order of floats as that of integers: -0.0 lies below +0.0, NaNs beyond the infinity of their sign.
#pragma once

#include <stdint.h>

namespace nuqi {

// A float's bits as a key: keys compare as signed integers the way their floats do. Of negative floats
// all bits but the sign are inverted; a second time gives the bits again.
//
// Forced inline, since kernels call it: a copy that the linker shares between instruction sets would
// run the newest one's everywhere.
__attribute__((always_inline)) constexpr int32_t float_order(int32_t bits) {
  return bits ^ (bits >> 31 & 0x7FFFFFFF);
}

}  // namespace nuqi

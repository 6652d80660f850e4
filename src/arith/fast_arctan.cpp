// The fast arctangent: nuqibFastArctan_32f.
#include "arith/fast_arctan.h"

#include "core/validate.h"

using namespace nuqi;

StatusCode nuqibFastArctan_32f(const float* y, const float* x, float* angle, int32_t length) {
  // clang-format off
  if (any_null(y, x, angle))      return StatusNullPtr;
  if (length < 0)                 return StatusBadSize;
  // clang-format on

  const FastArctanJob job = {.y = y, .x = x, .angle = angle, .length = length};
  fast_arctan_kernels().fast_arctan(job);
  return StatusOk;
}

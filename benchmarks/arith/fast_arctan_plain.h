// A plain loop of the fast arctangent, to measure against.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::bench {

// As each compiler makes it.
namespace gcc {
void plain_fast_arctan(const float* y, const float* x, float* angle, int32_t length);
}
namespace clang {
void plain_fast_arctan(const float* y, const float* x, float* angle, int32_t length);
}

}  // namespace nuqi::bench

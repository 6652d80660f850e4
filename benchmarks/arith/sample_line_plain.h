// Plain loops of the line samplers, to measure against.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::bench {

// As each compiler makes it.
namespace gcc {
template <class T, int channels>
void plain_sample_line(const T* src, int32_t step, RoiSize roi, T* dst, PixelPoint start,
                       PixelPoint end);
}
namespace clang {
template <class T, int channels>
void plain_sample_line(const T* src, int32_t step, RoiSize roi, T* dst, PixelPoint start,
                       PixelPoint end);
}

}  // namespace nuqi::bench

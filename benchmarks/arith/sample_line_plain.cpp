// Plain loops of the line samplers, as one would write them. Compiled by each compiler.
#include "arith/sample_line_plain.h"

#include <cstdlib>
#include <cstring>

namespace nuqi::bench::PLAIN_COMPILER {

template <class T, int channels>
void plain_sample_line(const T* src, int32_t step, RoiSize, T* dst, PixelPoint start,
                       PixelPoint end) {
  constexpr int kPixel = channels * sizeof(T);
  const int dx = end.x - start.x, dy = end.y - start.y;
  const bool x_major = std::abs(dx) > std::abs(dy);
  const int major = std::abs(x_major ? dx : dy), minor = std::abs(x_major ? dy : dx);
  const intptr_t x_step = dx >= 0 ? kPixel : -kPixel, y_step = dy >= 0 ? step : -step;
  const intptr_t major_step = x_major ? x_step : y_step, minor_step = x_major ? y_step : x_step;
  const char* at = reinterpret_cast<const char*>(src) + static_cast<intptr_t>(start.y) * step +
                   static_cast<intptr_t>(start.x) * kPixel;
  int error = major;
  for (int k = 0; k <= major; ++k, dst += channels) {
    std::memcpy(dst, at, kPixel);
    error -= 2 * minor;
    if (error < 0) {
      error += 2 * major;
      at += minor_step;
    }
    at += major_step;
  }
}

template void plain_sample_line<uint8_t, 1>(const uint8_t*, int32_t, RoiSize, uint8_t*, PixelPoint,
                                            PixelPoint);
template void plain_sample_line<uint8_t, 3>(const uint8_t*, int32_t, RoiSize, uint8_t*, PixelPoint,
                                            PixelPoint);
template void plain_sample_line<float, 1>(const float*, int32_t, RoiSize, float*, PixelPoint,
                                          PixelPoint);
template void plain_sample_line<float, 3>(const float*, int32_t, RoiSize, float*, PixelPoint,
                                          PixelPoint);

}  // namespace nuqi::bench::PLAIN_COMPILER

// The line samplers: nuqiSampleLine.
#include "core/validate.h"

namespace nuqi {
namespace {

// A digital differential analyser. The minor coordinate at step k is the smallest integer not below
// k * minor / major - 1/2; a 64-bit fraction counts it: each step adds minor / major, and a carry is
// a step along the minor axis. It starts 2^-33 below 1/2, so that exact halves round towards the
// start; truncation of the slope loses as much again at most, and two places that have to be told
// apart differ by 1 / (2 * major), which is more than both. An error term with a conditional
// correction would make the dependency chain from sample to sample three times as long.
struct Line {
  uintptr_t at;                     // the address of the first pixel
  intptr_t major_step, minor_step;  // in bytes
  uint64_t slope, fraction;         // in units of 2^-64
  int32_t samples;
};

constexpr uint32_t distance(int32_t from, int32_t to) {
  return static_cast<uint32_t>(from < to ? to - from : from - to);
}

template <class T>
Line line_of(Image<const T> src, int channels, PixelPoint start, PixelPoint end) {
  const intptr_t pixel = channels * static_cast<intptr_t>(sizeof(T));
  const intptr_t x_step = start.x <= end.x ? pixel : -pixel;
  const intptr_t y_step = start.y <= end.y ? intptr_t{src.step} : -intptr_t{src.step};
  const uint32_t dx = distance(start.x, end.x), dy = distance(start.y, end.y);
  const bool x_major = dx > dy;
  const uint64_t major = x_major ? dx : dy, minor = x_major ? dy : dx;

  Line line;
  line.at =
      reinterpret_cast<uintptr_t>(row_of(src, start.y)) + static_cast<uintptr_t>(start.x) * pixel;
  line.major_step = x_major ? x_step : y_step;
  line.minor_step = x_major ? y_step : x_step;
  line.slope = line.fraction = 0;
  line.samples = static_cast<int32_t>(major) + 1;
  if (minor == major) {
    // Both axes at every step: a slope of 1 has no fraction.
    line.major_step += line.minor_step;
  } else {
    const uint64_t high = (minor << 32) / major, rest = (minor << 32) % major;
    line.slope = high << 32 | (rest << 32) / major;
    line.fraction = (uint64_t{1} << 63) - (uint64_t{1} << 31);
  }
  return line;
}

template <int bytes>
void copy_samples(Line line, void* dst) {
  char* to = static_cast<char*>(dst);
  const intptr_t both = line.major_step + line.minor_step;
  for (int32_t i = 0; i < line.samples; ++i, to += bytes) {
    __builtin_memcpy(to, reinterpret_cast<const void*>(line.at), bytes);
    const uint64_t next = line.fraction + line.slope;
    line.at += static_cast<uintptr_t>(next < line.fraction ? both : line.major_step);
    line.fraction = next;
  }
}

// Negative coordinates are large unsigned ones.
constexpr bool outside(int32_t at, int32_t size) {
  return static_cast<uint32_t>(at) >= static_cast<uint32_t>(size);
}

template <int channels, class T>
StatusCode sample_line(Image<const T> src, RoiSize roi, T* dst, PixelPoint start, PixelPoint end) {
  // clang-format off
  // Deliberate: an uneven step is reported together with a null destination, as a null pointer.
  if (any_null(dst) || uneven(src))                                       return StatusNullPtr;
  if (any_null(src.data))                                                 return StatusNullPtr;
  if (below_one(roi))                                                     return StatusBadSize;
  if (short_row(src, roi.width, channels))                                return StatusBadStep;
  if (outside(start.x, roi.width) || outside(end.x, roi.width))           return StatusBadArg;
  if (outside(start.y, roi.height) || outside(end.y, roi.height))         return StatusBadArg;
  // clang-format on

  const Line line = line_of(src, channels, start, end);
  copy_samples<channels* int{sizeof(T)}>(line, dst);
  return line.samples;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

#define ENTRY(name, T, channels)                                                                  \
  StatusCode name(const T* src, int32_t srcStep, RoiSize roi, T* dst,                             \
                  PixelPoint start, PixelPoint end) {                                             \
    return sample_line<channels, T>({src, srcStep}, roi, dst, start, end);                        \
  }
ENTRY(nuqiSampleLine_8u_C1R,   uint8_t, 1)
ENTRY(nuqiSampleLine_8u_C3R,   uint8_t, 3)
ENTRY(nuqiSampleLine_32f_C1R,  float,   1)
ENTRY(nuqiSampleLine_32f_C3R,  float,   3)
#undef ENTRY

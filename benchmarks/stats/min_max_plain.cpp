// Plain loops of the extrema, as one would write them: one pass for the values, which compilers turn
// into vector code, and one for their places. Compiled by each compiler.
#include "stats/min_max_plain.h"

#include <cstring>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::MinMaxArgs;

int key(uint8_t value) { return value; }
int key(int8_t value) { return value; }
int key(float value) {
  int bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x7FFFFFFF) ^ (bits >> 31);
}

template <class T, int channels, bool masked>
void loop(const MinMaxArgs<T>& a) {
  const int first = channels == 3 ? a.channel - 1 : 0;
  int lowest = INT32_MAX, highest = INT32_MIN;
  for (int y = 0; y < a.roi.height; ++y) {
    const T* src = row(a.src, a.srcStep, y) + first;
    const uint8_t* mask = row(a.mask, a.maskStep, y);
    for (int x = 0; x < a.roi.width; ++x) {
      const int k = key(src[x * channels]);
      const bool selected = !masked || mask[x] != 0;
      lowest = selected && k < lowest ? k : lowest;
      highest = selected && k > highest ? k : highest;
    }
  }
  const auto locate = [&](int wanted, float* value, PixelPoint* at) {
    for (int y = 0; y < a.roi.height; ++y) {
      const T* src = row(a.src, a.srcStep, y) + first;
      const uint8_t* mask = row(a.mask, a.maskStep, y);
      for (int x = 0; x < a.roi.width; ++x)
        if ((!masked || mask[x] != 0) && key(src[x * channels]) == wanted) {
          *value = static_cast<float>(src[x * channels]);
          *at = {x, y};
          return;
        }
    }
  };
  locate(lowest, a.min, a.minAt);
  locate(highest, a.max, a.maxAt);
}

}  // namespace

template <class T>
MinMaxLoop<T> plain_min_max(int channels, bool masked) {
  if (channels == 3) return masked ? loop<T, 3, true> : loop<T, 3, false>;
  return masked ? loop<T, 1, true> : loop<T, 1, false>;
}
template MinMaxLoop<uint8_t> plain_min_max<uint8_t>(int, bool);
template MinMaxLoop<int8_t> plain_min_max<int8_t>(int, bool);
template MinMaxLoop<float> plain_min_max<float>(int, bool);

}  // namespace nuqi::bench::PLAIN_COMPILER

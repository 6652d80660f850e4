// Plain loops of the copy family, as one would write them. Compiled by each compiler.
#include "arith/copy_plain.h"
#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::CopyArgs;

template <class T, CopyWay way, int channels>
void loop(const CopyArgs<T>& a) {
  const int width = a.roi.width;  // a copy: byte stores may alias the arguments
  for (int y = 0; y < a.roi.height; ++y) {
    T* __restrict pixels = row(a.pixels, a.pixelStep, y);
    T* __restrict p0 = row(a.planes[0], a.planeStep, y);
    T* __restrict p1 = row(a.planes[1], a.planeStep, y);
    T* __restrict p2 = row(a.planes[2], a.planeStep, y);
    T* __restrict p3 = row(a.planes[channels - 1], a.planeStep, y);
    for (int x = 0; x < width; ++x) {
      T* pixel = pixels + channels * x;
      if constexpr (way == CopyWay::to_pixels) {
        pixel[0] = p0[x], pixel[1] = p1[x], pixel[2] = p2[x];
        if constexpr (channels == 4) pixel[3] = p3[x];
      } else if constexpr (way == CopyWay::to_planes) {
        p0[x] = pixel[0], p1[x] = pixel[1], p2[x] = pixel[2];
        if constexpr (channels == 4) p3[x] = pixel[3];
      } else {
        p1[x] = pixel[1];
      }
    }
  }
}

template <class T, CopyWay way>
CopyLoop<T> pick(int channels) {
  return channels == 3 ? loop<T, way, 3> : loop<T, way, 4>;
}

}  // namespace

template <class T>
CopyLoop<T> plain_copy(CopyWay way, int channels) {
  switch (way) {
    case CopyWay::to_planes: return pick<T, CopyWay::to_planes>(channels);
    case CopyWay::to_one_plane: return pick<T, CopyWay::to_one_plane>(channels);
    default: return pick<T, CopyWay::to_pixels>(channels);
  }
}
template CopyLoop<uint8_t> plain_copy<uint8_t>(CopyWay, int);
template CopyLoop<float> plain_copy<float>(CopyWay, int);

}  // namespace nuqi::bench::PLAIN_COMPILER

// Small arbitrary masks. A pixel is loaded once, and offered to all results that it may lie below.
#include "morph/mask_rows.h"
#include "morph/tile.h"

namespace nuqi::NUQI_ISA {
namespace {

// So many of an element's rows are looked at, whether it has them or not.
constexpr int kMaskHeights[] = {5, kSmallHeight};

// Bit i of takers[c]: row i of the element, counted so that its last is the last that is looked at, has
// a pixel inside in column c.
template <class T>
struct Takers {
  uint16_t of[kSmallBytes / sizeof(T) + 1];

  NUQI_INLINE Takers(const ElementJob<T>& job, int32_t height) {
    const int32_t above = height - job.element.height;
    for (int32_t c = 0; c < job.element.width; ++c) {
      int bits = 0;
      for (int32_t r = 0; r < job.element.height; ++r)
        if (job.inside[(int64_t{r} * job.element.width + c) * kMaskEntry<T>] != 0)
          bits |= 1 << (r + above);
      of[c] = (uint16_t)bits;
    }
  }
};

template <Extremum extremum, int height, int N, class T, class Part>
NUQI_INLINE void mask_columns(const ElementJob<T>& job, const Takers<T>& takers,
                              const T* const* rows, Image<T> dst, int64_t x, Part part) {
  using V = Vec<KeyOf<T>, N>;
  V results[height];
  const V none = worst<extremum, T, N>();
  for_each<height>([&](int i) NUQI_FORCED { results[i] = none; });
  for (int64_t y = 1 - job.element.height; y < job.height; ++y) {
    const auto* at = (const KeyOf<T>*)rows[y + job.element.height - 1] + x;
    for (int32_t c = 0; c < job.element.width; ++c, at += job.channels) {
      const auto pixels = load<N>(at);
      const int bits = takers.of[c];
      for_each<height>([&](int i) NUQI_FORCED {
        if (bits & 1 << i) results[i] = best<extremum>(results[i], pixels);
      });
    }
    if (y >= 0) store(row_of(dst, y) + x, swap_key<T>(as<T>(results[height - 1])), part);
    for_each<height - 1>([&](int i)
                             NUQI_FORCED { results[height - 1 - i] = results[height - 2 - i]; });
    results[0] = none;
  }
}

template <Extremum extremum, int height, class T>
void mask_stretch(const ElementJob<T>& job, const T* const* rows, Image<T> dst, int64_t count) {
  constexpr int N = Reg<T>::kLanes, kWide = 2 * N;
  const Takers<T> takers(job, height);
  int64_t x = 0;
  if constexpr (Machine::kMasks)  // which has the registers, too
    for (; x + kWide <= count; x += kWide)
      mask_columns<extremum, height, kWide>(job, takers, rows, dst, x, Whole{});
  for (; x + N <= count; x += N)
    mask_columns<extremum, height, N>(job, takers, rows, dst, x, Whole{});
  if (x < count)
    mask_columns<extremum, height, N>(job, takers, rows, dst, x, First{int(count - x)});
}

template <Extremum extremum, class T>
void mask(const ElementJob<T>& job) {
  if constexpr (kPairsRows<T>)
    if (job.element.width <= kMostColumns) return mask_rows<extremum>(job);
  for_stretches<kIsFloat<T>>(job, job.element.height <= kMaskHeights[0]
                                      ? mask_stretch<extremum, kMaskHeights[0], T>
                                      : mask_stretch<extremum, kMaskHeights[1], T>);
}

template <class T>
constexpr MaskKernelsOf<T> kKernels = {{mask<Extremum::least, T>, mask<Extremum::greatest, T>}};

}  // namespace

const MaskKernels mask_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

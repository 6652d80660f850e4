// Extrema over the pixels of an element: rectangles, crosses and arbitrary masks.
#include "core/simd/float_order.h"
#include "core/simd/memory.h"
#include "morph/strip.h"

namespace nuqi::NUQI_ISA {
namespace {

template <Extremum extremum, class T, int N>
NUQI_INLINE Vec<T, N> best(const Vec<T, N>& a, const Vec<T, N>& b) {
  return extremum == Extremum::least ? min(a, b) : max(a, b);
}
template <Extremum extremum, class T, int N>
NUQI_INLINE Vec<T, N> best(const Vec<T, N>& a, const Vec<T, N>& b, const Vec<T, N>& c,
                           const Vec<T, N>& d) {
  return best<extremum>(best<extremum>(a, b), best<extremum>(c, d));
}

// Windows of w pixels become windows of 4 * w, then those of the size asked for: from the left, so that
// only what is read no more is overwritten.
template <Extremum extremum, class T>
void along_row(T* row, int64_t count, int64_t channels, int32_t window) {
  constexpr int kBlock = Reg<T>::kLanes;
  const auto combine = [&](int64_t n, int64_t b, int64_t c, int64_t d) {
    for_blocks<kBlock>(n, [&](int64_t x, auto part) NUQI_FORCED {
      const T* at = row + x;
      store(row + x,
            best<extremum>(load<kBlock>(at, part), load<kBlock>(at + b * channels, part),
                           load<kBlock>(at + c * channels, part),
                           load<kBlock>(at + d * channels, part)),
            part);
    });
  };
  int64_t reached = 1, valid = count + (window - 1) * channels;
  for (; 4 * reached < window; reached *= 4) {
    valid -= 3 * reached * channels;
    combine(valid, reached, 2 * reached, 3 * reached);
  }
  if (window > 2 * reached)
    combine(count, reached, window - 2 * reached, window - reached);
  else if (window > reached)
    combine(count, window - reached, 0, window - reached);
}

template <Extremum extremum, class T>
void of_rows(const T* const* rows, T* dst, int64_t count) {
  constexpr int kBlock = Reg<T>::kLanes;
  for_blocks<kBlock>(count, [&](int64_t x, auto part) NUQI_FORCED {
    store(dst + x,
          best<extremum>(load<kBlock>(rows[0] + x, part), load<kBlock>(rows[1] + x, part),
                         load<kBlock>(rows[2] + x, part), load<kBlock>(rows[3] + x, part)),
          part);
  });
}

template <class T>
NUQI_INLINE const T* ring_row(const MorphJob<T>& job, int32_t i) {
  return (const T*)job.rows[i];
}

template <Extremum extremum, class T>
void cross(const MorphJob<T>& job) {
  constexpr int kBlock = Reg<T>::kLanes;
  const int64_t column = job.anchor.x * job.channels;
  for_blocks<kBlock>(job.count, [&](int64_t x, auto part) NUQI_FORCED {
    auto result = load<kBlock>(job.spare + x, part);
    for (int32_t i = 0; i < job.element.height; ++i)
      result = best<extremum>(result, load<kBlock>(ring_row(job, i) + x + column, part));
    store(job.dst + x, result, part);
  });
}

template <Extremum extremum>
void mask(const MorphJob<uint8_t>& job) {
  constexpr int kBlock = Reg<uint8_t>::kLanes;
  for_blocks<kBlock>(job.count, [&](int64_t x, auto part) NUQI_FORCED {
    auto result = broadcast<uint8_t, kBlock>(extremum == Extremum::least ? 0xFF : 0);
    const uint8_t* inside = job.inside;
    for (int32_t r = 0; r < job.element.height; ++r)
      for (int32_t c = 0; c < job.element.width; ++c, inside += 8)
        if (*inside != 0)
          result =
              best<extremum>(result, load<kBlock>(ring_row(job, r) + x + c * job.channels, part));
    store(job.dst + x, result, part);
  });
}

template <Extremum extremum>
void mask(const MorphJob<float>& job) {
  constexpr int kBlock = Reg<float>::kLanes;
  for_blocks<kBlock>(job.count, [&](int64_t x, auto part) NUQI_FORCED {
    auto result = broadcast<int32_t, kBlock>(extremum == Extremum::least ? INT32_MAX : INT32_MIN);
    const uint8_t* inside = job.inside;
    for (int32_t r = 0; r < job.element.height; ++r)
      for (int32_t c = 0; c < job.element.width; ++c, ++inside)
        if (*inside != 0)
          result = best<extremum>(
              result, as<int32_t>(load<kBlock>(ring_row(job, r) + x + c * job.channels, part)));
    store(job.dst + x, as<float>(float_order(result)), part);
  });
}

void to_ring(const uint8_t* src, uint8_t* ring, int64_t count) {
  constexpr int kBlock = Reg<uint8_t>::kLanes;
  for_blocks<kBlock>(count, [&](int64_t x, auto part) NUQI_FORCED {
    store(ring + x, load<kBlock>(src + x, part), part);
  });
}
void to_ring(const float* src, float* ring, int64_t count) {
  constexpr int kBlock = Reg<float>::kLanes;
  for_blocks<kBlock>(count, [&](int64_t x, auto part) NUQI_FORCED {
    store(ring + x, as<float>(float_order(as<int32_t>(load<kBlock>(src + x, part)))), part);
  });
}

template <class T>
constexpr MorphKernelsOf<T> kKernels = {
    {along_row<Extremum::least, T>, along_row<Extremum::greatest, T>},
    {of_rows<Extremum::least, T>, of_rows<Extremum::greatest, T>},
    {cross<Extremum::least, T>, cross<Extremum::greatest, T>},
    {mask<Extremum::least>, mask<Extremum::greatest>},
    to_ring,
};

}  // namespace

const MorphKernels strip_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

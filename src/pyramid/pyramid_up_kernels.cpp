// Twice the size: zeros put between the pixels, smoothed by 1 4 6 4 1.
//
// A band of rows is walked down block by block, so that the sums along the rows stay in registers until
// the columns have used them.
#include "pyramid/sums.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Rows

constexpr int kBandRows = 8;  // of the source

template <class T>
struct UpBand {
  // The row before the image's first is its second, that behind its last the last again: those of
  // source row y begin at rows[y].
  const T* rows[kBandRows + 2];
  Image<T> dst;
  int count;  // rows of the source
  bool first, last;

  NUQI_INLINE UpBand(const PyramidJob<T>& job, int64_t y)
      : dst{row_of(job.dst, 2 * y), job.dst.step},
        count(job.roi.height - y < kBandRows ? int(job.roi.height - y) : kBandRows),
        first(y == 0),
        last(y + count == job.roi.height) {
    const int64_t end = job.roi.height;
    for (int i = 0; i < count + 2; ++i) {
      int64_t from = y + i - 1;
      if (from < 0) from = 1;
      if (from >= end) from = end - 1;
      rows[i] = row_of(job.src, from);
    }
  }
  NUQI_INLINE Place place(int y) const { return {first && y == 0, last && y == count - 1}; }
};

// ---- Both directions: of three neighbours, the sums at b and between b and c

template <class S>
struct UpSums {
  S even, odd;
};

template <class S>
NUQI_INLINE UpSums<S> three_taps(const S& a, const S& b, const S& c) {
  return {a + c + times(b, 6), times(b + c, 4)};
}
// Floats are added in the contract's order.
template <class S>
NUQI_INLINE UpSums<S> float_taps(const S& a, const S& b, const S& c, Place place) {
  if (place.first && place.last) return {times(b, 8), times(b, 8)};
  if (place.last) return {a + times(b, 7), times(b, 8)};
  const S odd = times(b + c, 4);
  return {place.first ? times(times(b, 3) + c, 2) : a + times(b, 6) + c, odd};
}

template <class T, class S>
NUQI_INLINE UpSums<S> taps(const S& a, const S& b, const S& c, Place place) {
  if constexpr (kIsFloat<T>)
    return float_taps(a, b, c, place);
  else
    return three_taps(a, b, c);
}

// Walks down a block of columns: along.sums(row) are its sums along a row; put(row, sums) takes those of
// both directions.
template <class T, class Along, class Put>
NUQI_INLINE void walk(const UpBand<T>& band, const Along& along, const Put& put) {
  auto a = along.sums(band.rows[0]), b = along.sums(band.rows[1]);
  for (int y = 0; y < band.count; ++y) {
    const auto c = along.sums(band.rows[y + 2]);
    const auto even = taps<T>(a.even, b.even, c.even, band.place(y));
    const auto odd = taps<T>(a.odd, b.odd, c.odd, band.place(y));
    put(row_of(band.dst, 2 * y), even.even, odd.even);
    put(row_of(band.dst, 2 * y + 1), even.odd, odd.odd);
    a = b;
    b = c;
  }
}

// ---- Single columns: those at the edges, and all of narrow images

template <int channels, class T>
struct AlongColumn {
  using S = PixelSum<T>;
  int64_t i, width;
  int channel;

  NUQI_INLINE UpSums<S> sums(const T* row) const {
    const auto s = [&](int64_t x) NUQI_FORCED {
      return static_cast<S>(load_one(row + x * channels + channel));
    };
    const Place place = {i == 0, i == width - 1};
    const S after = s(place.last ? i : i + 1);
    return taps<T>(place.first ? after : s(i - 1), s(i), after, place);
  }
};

template <int channels, class T>
NUQI_NOINLINE void up_columns(const UpBand<T>& band, int64_t from, int64_t to, int64_t width) {
  using S = PixelSum<T>;
  const auto result = [](S sum) NUQI_FORCED {
    if constexpr (kIsFloat<T>)
      return sum * 0.015625f;
    else
      return static_cast<T>((sum + 32) >> 6);
  };
  for (int64_t i = from; i < to; ++i)
    for (int channel = 0; channel < channels; ++channel)
      walk(band, AlongColumn<channels, T>{i, width, channel},
           [&](T* row, S even, S odd) NUQI_FORCED {
             T* const at = row + 2 * i * channels + channel;
             store_one(at, result(even));
             store_one(at + channels, result(odd));
           });
}

template <int channels, class T>
void up(const PyramidJob<T>& job) {
  const int64_t width = job.roi.width;
  for (int64_t y = 0; y < job.roi.height; y += kBandRows) {
    const UpBand<T> band(job, y);
    up_columns<channels>(band, 0, width, width);
  }
}

template <class T>
constexpr PyramidKernelsOf<T> kKernels = {{up<1, T>, up<3, T>}};

}  // namespace

const PyramidKernels pyramid_up_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

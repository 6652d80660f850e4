// Twice the size: zeros put between the pixels, smoothed by 1 4 6 4 1.
//
// A band of rows is walked down block by block, so that the sums along the rows stay in registers until
// the columns have used them.
#include "pyramid/up_rows.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Rows

template <class T>
struct UpBand {
  Image<const T> src;
  const T* before;  // the row before; the image's second before its first
  Image<T> dst;
  int count;  // rows of the source
  bool first, last;

  NUQI_INLINE UpBand(const PyramidJob<T>& job, int64_t y, int most)
      : src{row_of(job.src, y), job.src.step}, dst{row_of(job.dst, 2 * y), job.dst.step} {
    const int64_t rest = job.roi.height - y;
    count = rest < most ? int(rest) : most;
    first = y == 0;
    last = rest <= most;
    before = row_of(job.src, !first ? y - 1 : job.roi.height > 1 ? 1 : 0);
  }
  NUQI_INLINE Place place(int y) const { return {first && y == 0, last && y == count - 1}; }
};

// Of sums along rows, those of both directions.
NUQI_INLINE UpSums<int32_t> taps(int32_t a, int32_t b, int32_t c, Place) {
  return three_taps(a, b, c);
}
template <int N>
NUQI_INLINE UpSums<Vec<uint16_t, N>> taps(const Vec<uint16_t, N>& a, const Vec<uint16_t, N>& b,
                                          const Vec<uint16_t, N>& c, Place) {
  return offset_taps(a, b, c);
}
template <class Floats>
NUQI_INLINE UpSums<Floats> taps(const Floats& a, const Floats& b, const Floats& c, Place place) {
  return float_taps(a, b, c, place);
}

// Walks down a block of columns.
template <class T, class Block>
NUQI_INLINE void walk(const UpBand<T>& band, const Block& block) {
  auto a = block.sums(band.before), b = block.sums(band.src.data);
  for (int y = 0; y < band.count; ++y) {
    const Place place = band.place(y);
    const auto c = block.sums(row_of(band.src, place.last ? y : y + 1));
    const auto even = taps(a.even, b.even, c.even, place);
    const auto odd = taps(a.odd, b.odd, c.odd, place);
    block.store_result(row_of(band.dst, 2 * y), {even.even, odd.even});
    block.store_result(row_of(band.dst, 2 * y + 1), {even.odd, odd.odd});
    a = b;
    b = c;
  }
}

// ---- Single columns: those at the edges, and all of narrow images

template <int channels, class T>
struct UpColumn {
  using S = ColumnSum<T>;
  int64_t i, width;
  int channel;

  NUQI_INLINE UpSums<S> sums(const T* row) const {
    const auto s = [&](int64_t x) NUQI_FORCED {
      return static_cast<S>(load_one(row + x * channels + channel));
    };
    const Place place = {i == 0, i == width - 1};
    const S after = s(place.last ? i : i + 1);
    return taps(place.first ? after : s(i - 1), s(i), after, place);
  }
  NUQI_INLINE void store_result(T* row, const UpSums<S>& sums) const {
    T* const to = row + 2 * i * channels + channel;
    store_one(to, result(sums.even));
    store_one(to + channels, result(sums.odd));
  }
  static NUQI_INLINE T result(S sum) {
    if constexpr (kIsFloat<T>)
      return sum * 0.015625f;
    else
      return static_cast<T>((sum + 32) >> 6);
  }
};

template <int channels, class T>
NUQI_NOINLINE void up_columns(const UpBand<T>& band, int64_t from, int64_t to, int64_t width) {
  for (int64_t i = from; i < to; ++i)
    for (int channel = 0; channel < channels; ++channel)
      walk(band, UpColumn<channels, T>{i, width, channel});
}

// ---- Rows

// With masks: blocks that reach the row's ends.
template <int channels, class T>
NUQI_INLINE void walk_all(const UpBand<T>& band, int64_t width) {
  for_whole_row<kBlockSums<channels, T>>(
      width * channels, [&](auto start, auto end, int64_t x, auto part) NUQI_FORCED {
        using Part = decltype(part);
        if constexpr (kIsFloat<T>)
          walk(band, UpFloats<channels, Reg<T>::kLanes, start.value, end.value, Part>(x, part));
        else
          walk(band, UpPermuted<channels, T, start.value, end.value, Part>(x, part));
      });
}

template <int channels, class T>
struct UpInside {
  using Type = UpWidened<channels, T>;
};
template <int channels>
struct UpInside<channels, float> {
  using Type = UpFloats<channels, channels == 1 ? Reg<float>::kLanes : 4, false, false, Whole>;
};

// Without masks: whole blocks between the edges.
template <int channels, class T>
NUQI_INLINE void walk_inside(const UpBand<T>& band, int64_t width) {
  using Block = typename UpInside<channels, T>::Type;
  // A block of three channels loads an element beyond the pixels next to it.
  constexpr int kLast = channels == 3 ? 2 : 1;
  const int64_t inside = (width - 1 - kLast) * channels;
  if (inside < Block::kSums) return up_columns<channels>(band, 0, width, width);
  for_whole_blocks<Block::kSums>(channels, channels + inside,
                                 [&](int64_t x) NUQI_FORCED { walk(band, Block(x, Whole{})); });
  up_columns<channels>(band, 0, 1, width);
  up_columns<channels>(band, width - kLast, width, width);
}

template <int channels, class T>
void up(const PyramidJob<T>& job) {
  const int64_t width = job.roi.width;
  const int rows = band_rows(65536, (1 + 4) * width * channels * int{sizeof(T)});
  for (int64_t y = 0; y < job.roi.height; y += rows) {
    const UpBand<T> band(job, y, rows);
    if constexpr (!Machine::kMasks)
      walk_inside<channels>(band, width);
    else if (kIsFloat<T> && width == 1)
      up_columns<channels>(band, 0, 1, 1);
    else
      walk_all<channels>(band, width);
  }
}

template <class T>
constexpr PyramidKernelsOf<T> kKernels = {{up<1, T>, up<3, T>}};

}  // namespace

const PyramidKernels pyramid_up_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

// Half the size: smoothed by 1 4 6 4 1, the even columns and rows kept.
//
// A band of rows is walked down block by block, so that the sums along the rows stay in registers until
// the columns have used them.
#include "pyramid/down_rows.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- Rows

template <class T>
struct DownBand {
  Image<const T> src;  // from the row of the first result's middle on
  const T* before[2];  // the two rows before that; all are mirrored at the image's edges
  Image<T> dst;
  int count;  // rows of the result
  bool first, last;

  NUQI_INLINE DownBand(const PyramidJob<T>& job, int64_t y, int most)
      : src{row_of(job.src, 2 * y), job.src.step}, dst{row_of(job.dst, y), job.dst.step} {
    const int64_t rest = job.roi.height / 2 - y;
    count = rest < most ? int(rest) : most;
    first = y == 0;
    last = rest <= most;
    const auto row = [&](int64_t i) NUQI_FORCED { return row_of(job.src, i); };
    before[0] = first ? row(job.roi.height == 2 ? 0 : 2) : row(2 * y - 2);
    before[1] = row(first ? 1 : 2 * y - 1);
  }
  NUQI_INLINE Place place(int y) const { return {first && y == 0, last && y == count - 1}; }
};

// ---- Columns: of the sums along rows a, b, c ..., the sums at c, e, ...

template <class S>
class ColumnSums {
 public:
  static constexpr int kOdd = 4;  // d comes multiplied

  NUQI_INLINE ColumnSums(const S& a, const S& b, const S& c)
      : before_(a + times(b, 4) + six_times(c)), last_(c) {}
  NUQI_INLINE S next(const S& four_d, const S& e, Place) {
    const S sum = before_ + four_d + e;
    before_ = last_ + four_d + six_times(e);
    last_ = e;
    return sum;
  }

 private:
  S before_, last_;
};

template <class S>
class FloatColumnSums {
 public:
  static constexpr int kOdd = 1;

  NUQI_INLINE FloatColumnSums(const S& a, const S& b, const S& c) : a_(a), b_(b), c_(c) {}
  NUQI_INLINE S next(const S& d, const S& e, Place place) {
    const S sum = five_taps(a_, b_, c_, d, e, place);
    a_ = c_;
    b_ = d;
    c_ = e;
    return sum;
  }

 private:
  S a_, b_, c_;
};

// Walks down a block of columns.
template <class Sums, class Block, class T>
NUQI_INLINE void walk(const DownBand<T>& band, const Block& block) {
  Sums sums(block.template sum<1>(band.before[0]), block.template sum<1>(band.before[1]),
            block.template sum<1>(band.src.data));
  for (int y = 0; y < band.count; ++y) {
    const Place place = band.place(y);
    const auto odd = block.template sum<Sums::kOdd>(row_of(band.src, 2 * y + 1));
    const auto even = block.template sum<1>(row_of(band.src, place.last ? 2 * y : 2 * y + 2));
    block.store_result(row_of(band.dst, y), sums.next(odd, even, place));
  }
}
template <class T, class Block>
NUQI_INLINE void walk(const DownBand<T>& band, const Block& block) {
  using S = decltype(block.template sum<1>(band.src.data));
  if constexpr (kIsFloat<T>)
    walk<FloatColumnSums<S>>(band, block);
  else
    walk<ColumnSums<S>>(band, block);
}

// ---- Single columns: those at the edges, and all of narrow images

template <int channels, class T>
struct DownColumn {
  using S = ColumnSum<T>;
  int64_t j, half;
  int channel;

  template <int weight>
  NUQI_INLINE S sum(const T* row) const {
    const auto s = [&](int64_t x) NUQI_FORCED {
      return static_cast<S>(load_one(row + x * channels + channel));
    };
    const Place place = {j == 0, j == half - 1};
    const S right = place.last ? S{} : s(2 * j + 2);
    const S after = !place.last ? right : place.first ? s(0) : s(2 * j);
    const S before = place.first ? after : s(2 * j - 2), left = s(place.first ? 1 : 2 * j - 1);
    if constexpr (kIsFloat<T>)
      return five_taps(before, left, s(2 * j), s(2 * j + 1), right, place);
    else
      return weight * (before + 4 * (left + s(2 * j + 1)) + 6 * s(2 * j) + after);
  }
  NUQI_INLINE void store_result(T* row, S sum) const {
    if constexpr (kIsFloat<T>)
      store_one(row + j * channels + channel, sum * 0.00390625f);
    else
      store_one(row + j * channels + channel, static_cast<T>((sum + 128) >> 8));
  }
};

template <int channels, class T>
NUQI_NOINLINE void down_columns(const DownBand<T>& band, int64_t from, int64_t to, int64_t half) {
  for (int64_t j = from; j < to; ++j)
    for (int channel = 0; channel < channels; ++channel)
      walk(band, DownColumn<channels, T>{j, half, channel});
}

// ---- Rows

// With masks: blocks that reach the row's ends.
template <int channels, class T>
NUQI_INLINE void walk_all(const DownBand<T>& band, int64_t half) {
  for_whole_row<kBlockSums<channels, T>>(
      half * channels, [&](auto start, auto end, int64_t x, auto part) NUQI_FORCED {
        using Part = decltype(part);
        if constexpr (kIsFloat<T>)
          walk(band, DownFloats<channels, start.value, end.value, Part>(x, part));
        else
          walk(band, DownPermuted<channels, T, start.value, end.value, Part>(x, part));
      });
}

template <int channels, class T>
struct DownInside {
  using Type = typename IfElse<channels == 1, DownPairs<T>, DownTriples<T>>::Type;
};
template <int channels>
struct DownInside<channels, float> {
  using Type =
      typename IfElse<channels == 1, DownFloats<1, false, false, Whole>, DownFloatTriple>::Type;
};

// Without masks: whole blocks between the edges.
template <int channels, class T>
NUQI_INLINE void walk_inside(const DownBand<T>& band, int64_t half) {
  using Block = typename DownInside<channels, T>::Type;
  const int64_t inside = (half - 2) * channels;
  if (inside < Block::kSums) return down_columns<channels>(band, 0, half, half);
  for_whole_blocks<Block::kSums>(channels, channels + inside,
                                 [&](int64_t x) NUQI_FORCED { walk(band, Block(x, Whole{})); });
  down_columns<channels>(band, 0, 1, half);
  down_columns<channels>(band, half - 1, half, half);
}

template <int channels, class T>
void down(const PyramidJob<T>& job) {
  const int64_t half = job.roi.width / 2;
  const int rows = band_rows(131072, (4 + 1) * half * channels * int{sizeof(T)});
  for (int64_t y = 0; y < job.roi.height / 2; y += rows) {
    const DownBand<T> band(job, y, rows);
    if constexpr (!Machine::kMasks)
      walk_inside<channels>(band, half);
    else if (half == 1)
      down_columns<channels>(band, 0, 1, 1);
    else
      walk_all<channels>(band, half);
  }
}

template <class T>
constexpr PyramidKernelsOf<T> kKernels = {{down<1, T>, down<3, T>}};

}  // namespace

const PyramidKernels pyramid_down_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

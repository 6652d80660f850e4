// Walks the fixed 3x3 derivatives down columns of pixels, keeping the terms of rows in registers.
#include "filters/derivative3x3_terms.h"

namespace nuqi::NUQI_ISA {
namespace {

// Rows first to last - 1 of the column at x; pixels(at) loads a row's pixels.
template <Derivative derivative, int Unrolled, class T, class Pixels, class Part>
NUQI_INLINE void walk_down(const DerivativeJob<T>& job, int64_t x, int32_t first, int32_t last,
                           const Pixels& pixels, Part part) {
  const Scale<T> scale(job);
  const int32_t height = job.roi.height;
  Image<const T> src = {row_of(job.src, first) + x, job.src.step};
  auto dst = job.dst;
  dst.data = row_of(job.dst, first) + x;

  const auto term_at = [&](const T* at)
                           NUQI_FORCED { return term_of<derivative>(pixels(at), scale); };
  Term<T> here = term_at(src.data);
  Term<T> above = first > 0 ? term_at(row_of(src, -1)) : here;
  int32_t y = first;
  const auto next_row = [&](int) NUQI_FORCED {
    if (++y < height) src.data = row_of(src, 1);
    const Term<T> below = term_at(src.data);
    store(dst.data, finish<derivative>(combine<derivative>(above, here, below), scale), part);
    dst.data = row_of(dst, 1);
    above = here;
    here = below;
  };
  // Several at a time, so that terms stay where they are and rows share their sums.
  int32_t rest = last - first;
  if constexpr (Unrolled > 1)
    for (; rest >= Unrolled; rest -= Unrolled) for_each<Unrolled>(next_row);
  for (; rest > 0; --rest) next_row(0);
}

// Rows of whole columns at the ends that are written out: fewer than inside, where most pixels lie.
constexpr int kRowsAtEnds = NUQI_LEVEL == 2 ? 4 : 2;

// Functions of their own: in one, each loop's constants would be paid for by all.
#define NUQI_APART __attribute__((noinline))

// Where rows end, bytes of both signs share the code of unsigned ones, which load them with `offset`
// added: 128 to each of a signed image. It cancels out, since a derivative's weights add up to 0.
template <class T>
struct AtEndsOf {
  using Type = uint8_t;
};
template <>
struct AtEndsOf<float> {
  using Type = float;
};

template <class T, class Where, class Part>
NUQI_INLINE auto offset_loader(Where where, Part part, uint8_t offset) {
  const auto around = loader_around<T>(where, part);
  return [=](const T* at) NUQI_FORCED { return add_offset(around(at), offset); };
}

template <Derivative derivative, class T>
NUQI_APART void walk_narrow(const DerivativeJob<T>& job, uint8_t offset) {
  const First part = {job.roi.width};
  walk_down<derivative, 1>(job, 0, 0, job.roi.height,
                           offset_loader<T>(AtEnds{true, true}, part, offset), part);
}

template <Derivative derivative, class T>
NUQI_APART void walk_ends(const DerivativeJob<T>& job, uint8_t offset, int64_t x, int32_t first,
                          int32_t last, AtEnds ends) {
  walk_down<derivative, kRowsAtEnds>(job, x, first, last, offset_loader<T>(ends, Whole{}, offset),
                                     Whole{});
}

template <Derivative derivative, class T>
NUQI_APART void walk_inside(const DerivativeJob<T>& job, int64_t begin, int64_t end, int32_t first,
                            int32_t last) {
  for (int64_t x = begin; x < end; x += Column<T>::kLanes)
    walk_down<derivative, 4>(job, x, first, last, loader_around<T>(Inside{}, Whole{}), Whole{});
}

// Columns are walked in bands of as many rows as the first cache holds, but not fewer than pay for
// the terms of the two rows around them. More rows at once are more than the prefetchers follow.
template <class T>
NUQI_INLINE int32_t rows_of_band(int32_t width) {
  constexpr int32_t kCache = 32768, kFewest = sizeof(T) == 1 ? 16 : 8;
  constexpr int32_t kPixel = sizeof(T) + sizeof(FilterResult<T>);
  return width > kCache / kPixel / kFewest ? kFewest : kCache / (width * kPixel) / 4 * 4;
}

// One derivative's walks.
template <class T>
struct Walks {
  using Ends = typename AtEndsOf<T>::Type;
  void (*narrow)(const DerivativeJob<Ends>&, uint8_t offset);
  void (*ends)(const DerivativeJob<Ends>&, uint8_t offset, int64_t x, int32_t first, int32_t last,
               AtEnds);
  void (*inside)(const DerivativeJob<T>&, int64_t begin, int64_t end, int32_t first, int32_t last);
};

template <class T>
NUQI_APART void walk(const DerivativeJob<T>& job, const Walks<T>& walks) {
  using Ends = typename Walks<T>::Ends;
  constexpr int n = Column<T>::kLanes;
  constexpr uint8_t offset = sizeof(T) == 1 && kIsSigned<T> ? 128 : 0;
  const DerivativeJob<Ends> at_ends = {
      {(const Ends*)job.src.data, job.src.step}, job.dst, job.roi, job.shift, job.scale};
  const auto [width, height] = job.roi;
  if (width < n) return walks.narrow(at_ends, offset);

  const int32_t band = rows_of_band<T>(width);
  for (int64_t first = 0; first < height; first += band) {
    const int32_t last = height - first > band ? first + band : height;
    walks.ends(at_ends, offset, 0, first, last, AtEnds{true, width == n});
    walks.inside(job, n, width - n, first, last);
    // The last column overlaps the one before it rather than being a narrow one.
    if (width > n) walks.ends(at_ends, offset, width - n, first, last, AtEnds{false, true});
  }
}

template <Derivative derivative, class T>
void differentiate(const DerivativeJob<T>& job) {
  using Ends = typename Walks<T>::Ends;
  walk<T>(job,
          {walk_narrow<derivative, Ends>, walk_ends<derivative, Ends>, walk_inside<derivative, T>});
}

// Rows of bytes shorter than a register of 32: whole ones of half the length take a third of the time.
template <Derivative derivative, class T>
void differentiate_bytes(const DerivativeJob<T>& job) {
  if constexpr (kRegBytes == 32) {
    if (job.roi.width < Column<T>::kLanes)
      return base::derivative_kernels.of_type<T>().of[int(derivative)](job);
    walk<T>(job, {nullptr, walk_ends<derivative, uint8_t>, walk_inside<derivative, T>});
  } else {
    differentiate<derivative>(job);
  }
}

template <class T>
constexpr DerivativeKernelsOf<T> kOfBytes = {{
    differentiate_bytes<Derivative::dx, T>,
    differentiate_bytes<Derivative::dy, T>,
    differentiate_bytes<Derivative::scharr_dx, T>,
    differentiate_bytes<Derivative::scharr_dy, T>,
    differentiate_bytes<Derivative::d2x, T>,
    differentiate_bytes<Derivative::d2y, T>,
    differentiate_bytes<Derivative::dxdy, T>,
}};

}  // namespace

const DerivativeKernels derivative_kernels = {
    kOfBytes<uint8_t>,
    kOfBytes<int8_t>,
    {{
        differentiate<Derivative::dx, float>,
        differentiate<Derivative::dy, float>,
        differentiate<Derivative::scharr_dx, float>,
        differentiate<Derivative::scharr_dy, float>,
    }},
};

}  // namespace nuqi::NUQI_ISA

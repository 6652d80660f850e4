// Walks the fixed 3x3 derivatives down columns of pixels, keeping the row terms in registers.
#include "filters/derivative3x3_terms.h"

namespace nuqi::NUQI_ISA {
namespace {

// Rows first to last - 1 of the column at x.
template <Derivative derivative, class T, class Where, class Part>
NUQI_INLINE void walk_down(const DerivativeJob<T>& job, int64_t x, int32_t first, int32_t last,
                           Where where, Part part) {
  const Scale<T> scale(job);
  const int32_t height = job.roi.height;
  Image<const T> src = {row_of(job.src, first) + x, job.src.step};
  auto dst = job.dst;
  dst.data = row_of(job.dst, first) + x;

  const auto pixels = loader_around<T>(where, part);
  const auto term_at = [&](const T* at)
                           NUQI_FORCED { return term_of<derivative>(pixels(at), scale); };
  RowTerm<T> here = term_at(src.data);
  RowTerm<T> above = first > 0 ? term_at(row_of(src, -1)) : here;
  int32_t y = first;
  const auto next_row = [&](int) NUQI_FORCED {
    if (++y < height) src.data = row_of(src, 1);
    const RowTerm<T> below = term_at(src.data);
    store(dst.data, finish<derivative>(combine<derivative>(above, here, below), scale), part);
    dst.data = row_of(dst, 1);
    above = here;
    here = below;
  };
  // Unrolled by four: no terms are moved between registers, and rows share their sums.
  int32_t rest = last - first;
  for (; rest >= 4; rest -= 4) for_each<4>(next_row);
  for (; rest > 0; --rest) next_row(0);
}

// Not inlined: in one function every loop would pay for the constants of all.
template <Derivative derivative, class T>
NUQI_NOINLINE void walk_narrow(const DerivativeJob<T>& job) {
  walk_down<derivative>(job, 0, 0, job.roi.height, AtEnds{true, true}, First{job.roi.width});
}

template <Derivative derivative, class T>
NUQI_NOINLINE void walk_ends(const DerivativeJob<T>& job, int64_t x, int32_t first, int32_t last,
                             AtEnds ends) {
  walk_down<derivative>(job, x, first, last, ends, Whole{});
}

template <Derivative derivative, class T>
NUQI_NOINLINE void walk_inside(const DerivativeJob<T>& job, int64_t begin, int64_t end,
                               int32_t first, int32_t last) {
  for (int64_t x = begin; x < end; x += Column<T>::kLanes)
    walk_down<derivative>(job, x, first, last, Inside{}, Whole{});
}

// Columns are walked in bands of as many rows as L1 holds, but not so few that the terms of the two rows
// around a band weigh. More rows at once are more streams than the prefetchers follow.
template <class T>
NUQI_INLINE int32_t rows_of_band(int32_t width) {
  constexpr int32_t kCache = 32768, kFewest = kIsFloat<T> ? 8 : 16;
  constexpr int32_t kPixel = sizeof(T) + sizeof(FilterResult<T>);
  return width > kCache / kPixel / kFewest ? kFewest : kCache / (width * kPixel) / 4 * 4;
}

template <Derivative derivative, class T>
void differentiate(const DerivativeJob<T>& job) {
  constexpr int n = Column<T>::kLanes;
  const auto [width, height] = job.roi;
  if (width < n) return walk_narrow<derivative>(job);

  const int32_t band = rows_of_band<T>(width);
  for (int64_t first = 0; first < height; first += band) {
    const int32_t last = height - first > band ? first + band : height;
    walk_ends<derivative>(job, 0, first, last, AtEnds{true, width == n});
    walk_inside<derivative>(job, n, width - n, first, last);
    // Instead of a tail, the last column of blocks overlaps the one before it.
    if (width > n) walk_ends<derivative>(job, width - n, first, last, AtEnds{false, true});
  }
}

// Rows of bytes shorter than a 32-byte register: whole registers of 16 take a third of the time.
template <Derivative derivative, class T>
void differentiate_bytes(const DerivativeJob<T>& job) {
  if constexpr (kRegBytes == 32)
    if (job.roi.width < Column<T>::kLanes)
      return base::derivative_kernels.of_type<T>().of[int(derivative)](job);
  differentiate<derivative>(job);
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

// Extrema over elements of any size, whose rows pass through the state's ring.
#include "morph/line.h"

namespace nuqi::NUQI_ISA {
namespace {

// ---- The ring of rows

template <class T>
struct Ring {
  void* const* rows;
  int32_t slots, oldest, held;

  // Row i, counted from the oldest.
  NUQI_INLINE T* operator[](int32_t i) const {
    const int32_t slot = oldest + i;
    return (T*)rows[slot < slots ? slot : slot - slots];
  }
  NUQI_INLINE T* next() const { return (*this)[held]; }
  NUQI_INLINE void drop(int32_t count) {
    held -= count;
    oldest += count;
    if (oldest >= slots) oldest -= slots;
  }
};

// Every element of `to` becomes the extremum of the `size` pixels from that of `row` on: windows of w
// become windows of 4 * w, then those of the size. From the left, so that only what is read no more is
// overwritten where both are one row.
template <Extremum extremum, class T>
NUQI_NOINLINE void along_row(const T* row, T* to, int64_t count, int64_t channels, int64_t size) {
  const auto combine = [&](const T* from, int64_t n, int64_t b, int64_t c, int64_t d) NUQI_FORCED {
    for_blocks<Reg<T>::kLanes>(n, [&](int64_t x, auto part) NUQI_FORCED {
      const T* at = from + x;
      take_four<extremum, T>(at, at + b, at + c, at + d, to + x, part);
    });
  };
  int64_t rest = count + (size - 1) * channels;
  for (int64_t step = channels; 4 * step < size * channels; step *= 4) {
    rest -= 3 * step;
    combine(row, rest, step, 2 * step, 3 * step);
    row = to;
  }
  const Windows last(size);
  if (size > 1 || row != to)
    combine(row, count, last.at[1] * channels, last.at[2] * channels, last.at[3] * channels);
}

// ---- Rows on their way into the ring

template <class T>
NUQI_NOINLINE void copy_row(const T* from, T* to, int64_t count) {
  copy_pixels<false>(from, to, count);
}

// The row with copies of its first and last pixel around it, of floats as keys where masks ask for it.
template <bool keys, class T>
NUQI_NOINLINE void expand(const StripJob<T>& job, const T* src, T* row) {
  const int64_t left = job.anchor.x * job.channels;
  const int64_t right = (job.element.width - 1) * job.channels - left;
  T* to = row + left;
  copy_pixels<keys>(src, to, job.count);
  for (int64_t i = 1; i <= left; ++i) to[-i] = to[job.channels - i];
  for (int64_t i = 0; i < right; ++i) to[job.count + i] = to[job.count + i - job.channels];
}

// Runs a strip. Of its family enter(source row, slot) puts a row in, entered(ring) sees to the others;
// leave(ring, dst) makes a result of the element's rows from the oldest on, or two of them, together.
template <class T, class Family>
NUQI_INLINE RingState run(const StripJob<T>& job, const Family& family) {
  Ring<T> ring = {job.rows, job.slots, 0, job.held};
  const int64_t expanded = job.count + (job.element.width - 1) * job.channels;
  int64_t y = 0;
  const auto enter = [&]() NUQI_FORCED {
    T* row = ring.next();
    if (y < job.height)
      family.enter(row_of(job.src, y), row);
    else
      copy_row(ring[ring.held - 1], row, expanded);
    if (job.first && y == 0)
      for (int32_t i = 0; i < ring.held; ++i) copy_row(row, ring[i], expanded);
    ++ring.held;
    ++y;
    family.entered(ring);
  };
  T* dst = job.dst.data;
  const auto next_result = [&]() NUQI_FORCED {
    T* row = dst;
    dst = (T*)((uintptr_t)dst + (uintptr_t)(intptr_t)job.dst.step);
    return row;
  };
  while (y < job.end) {
    enter();
    if (ring.held < job.element.height) continue;
    if constexpr (Family::kTogether == 2)
      if (y < job.end) {
        enter();
        T* upper = next_result();
        T* lower = next_result();
        family.leave(ring, upper, lower);
        ring.drop(2);
        continue;
      }
    family.leave(ring, next_result());
    ring.drop(1);
  }
  return {ring.oldest, ring.held};
}

// ---- Rectangles. The ring holds extrema along the rows; of windows of w rows, the more the farther
// a row is from the newest.

template <Extremum extremum, class T>
struct Rectangle {
  static constexpr int kTogether = 2;
  const StripJob<T>& job;
  Windows last{job.element.height};

  NUQI_INLINE void enter(const T* src, T* row) const {
    expand<false>(job, src, row);
    along_row<extremum, T>(row, row, job.count, job.channels, job.element.width);
  }
  NUQI_INLINE void entered(const Ring<T>& ring) const {
    for (int32_t w = 1; w < last.reached && ring.held >= 4 * w; w *= 4) {
      T* const oldest = ring[ring.held - 4 * w];
      of_rows<extremum>(oldest, ring[ring.held - 3 * w], ring[ring.held - 2 * w],
                        ring[ring.held - w], oldest, job.count);
    }
  }
  NUQI_INLINE void leave(const Ring<T>& ring, T* dst, int32_t first = 0) const {
    const auto row = [&](int i) NUQI_FORCED { return ring[first + (int32_t)last.at[i]]; };
    of_rows<extremum>(row(0), row(1), row(2), row(3), dst, job.count);
  }
  NUQI_INLINE void leave(const Ring<T>& ring, T* upper, T* lower) const {
    leave(ring, upper, 0);
    leave(ring, lower, 1);
  }
};

// ---- Crosses

template <Extremum extremum, class T>
struct Cross {
  static constexpr int kTogether = 1;
  const StripJob<T>& job;

  NUQI_INLINE void enter(const T* src, T* row) const { expand<false>(job, src, row); }
  NUQI_INLINE void entered(const Ring<T>&) const {}
  NUQI_INLINE void leave(const Ring<T>& ring, T* dst) const {
    constexpr int N = Reg<T>::kLanes;
    T* along = ring.next();
    along_row<extremum, T>(ring[job.anchor.y], along, job.count, job.channels, job.element.width);
    const int64_t column = job.anchor.x * job.channels;
    for_blocks<N>(job.count, [&](int64_t x, auto part) NUQI_FORCED {
      auto result = load<N>(along + x, part);
      for (int32_t r = 0; r < job.element.height; ++r)
        result = best<extremum>(result, load<N>(ring[r] + x + column, part));
      store(dst + x, result, part);
    });
  }
};

// ---- Arbitrary masks

template <Extremum extremum, class T>
struct MaskOf {
  static constexpr int kTogether = 2;
  static constexpr int kEntry = kMaskEntry<T>;
  using Key = KeyOf<T>;
  const StripJob<T>& job;

  NUQI_INLINE void enter(const T* src, T* row) const { expand<true>(job, src, row); }
  NUQI_INLINE void entered(const Ring<T>&) const {}
  template <int together>
  NUQI_INLINE void leave_all(const Ring<T>& ring, T* const (&dst)[together]) const {
    constexpr int N = Reg<T>::kLanes;
    const int32_t width = job.element.width, height = job.element.height;
    for_blocks<N>(job.count, [&](int64_t x, auto part) NUQI_FORCED {
      Vec<Key, N> results[together];
      for_each<together>([&](int i) NUQI_FORCED { results[i] = worst<extremum, T>(); });
      const int64_t line = int64_t{width} * kEntry;
      for (int32_t r = 0; r < height + together - 1; ++r) {
        const Key* at = (const Key*)ring[r] + x;
        const uint8_t* inside = job.inside + r * line;
        for (int64_t c = 0; c < width; ++c, at += job.channels, inside += kEntry) {
          const bool upper = r < height && *inside != 0;
          const bool lower = together == 2 && r > 0 && inside[-line] != 0;
          if (upper | lower) {
            const auto pixels = load<N>(at, part);
            if (upper) results[0] = best<extremum>(results[0], pixels);
            if (lower) results[together - 1] = best<extremum>(results[together - 1], pixels);
          }
        }
      }
      for_each<together>(
          [&](int i) NUQI_FORCED { store(dst[i] + x, swap_key<T>(as<T>(results[i])), part); });
    });
  }
  NUQI_INLINE void leave(const Ring<T>& ring, T* dst) const { leave_all<1>(ring, {dst}); }
  NUQI_INLINE void leave(const Ring<T>& ring, T* upper, T* lower) const {
    leave_all<2>(ring, {upper, lower});
  }
};

template <template <Extremum, class> class Family, class T>
struct Of {
  template <Extremum extremum>
  static RingState strip(const StripJob<T>& job) {
    return run(job, Family<extremum, T>{job});
  }
};

template <template <Extremum, class> class Family, class T>
constexpr auto least = Of<Family, T>::template strip<Extremum::least>;
template <template <Extremum, class> class Family, class T>
constexpr auto greatest = Of<Family, T>::template strip<Extremum::greatest>;

template <class T>
constexpr MorphKernelsOf<T> kKernels = {
    {least<Rectangle, T>, greatest<Rectangle, T>},
    {least<Cross, T>, greatest<Cross, T>},
    {least<MaskOf, T>, greatest<MaskOf, T>},
};

}  // namespace

const MorphKernels strip_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

// Flood fills along gradual changes.
#include "core/simd/reduce.h"
#include "fill/fill_region.h"
#include "fill/gradient_fill.h"

namespace nuqi::NUQI_ISA {
namespace {

// Whether the fill goes on from pixels p to their neighbours q: a bit each.
template <class T>
class Joins;

template <>
class Joins<uint8_t> {
 public:
  NUQI_INLINE explicit Joins(const FillDeltas<uint8_t>& deltas) : deltas_(deltas) {}

  NUQI_INLINE bool symmetric() const { return deltas_.lower == deltas_.upper; }
  NUQI_INLINE bool one(const uint8_t* p, const uint8_t* q) const {
    // One comparison for both ends: what falls further wraps around.
    return uint32_t(*q - *p + deltas_.lower) <= uint32_t(deltas_.lower + deltas_.upper);
  }
  template <class Part>
  NUQI_INLINE uint64_t word(const uint8_t* p, const uint8_t* q, Part part) const {
    using Pixels = Vec<uint8_t, kFillWordPixels>;
    const Pixels a = load<kFillWordPixels>(p, part), b = load<kFillWordPixels>(q, part);
    const Pixels most = max(a, b);
    const Pixels upper = broadcast<uint8_t, kFillWordPixels>(deltas_.upper);
    const Pixels lower = broadcast<uint8_t, kFillWordPixels>(deltas_.lower);
    // Saturated differences, and what of them exceeds the deltas.
    const Pixels rise = most - a, fall = most - b;
    return bits_equal((max(rise, upper) - upper) | (max(fall, lower) - lower), Pixels{});
  }

 private:
  FillDeltas<uint8_t> deltas_;
};

template <>
class Joins<float> {
 public:
  NUQI_INLINE explicit Joins(const FillDeltas<float>& deltas)
      : centre_(((double)deltas.lower - deltas.upper) / 2),
        half_(((double)deltas.lower + deltas.upper) / 2) {}

  NUQI_INLINE bool symmetric() const { return centre_ == 0; }
  NUQI_INLINE bool one(const float* p, const float* q) const {
    const double beside = ((double)load_one(p) - (double)load_one(q)) - centre_;
    return beside <= half_ && -beside <= half_;
  }
  template <class Part>
  NUQI_INLINE uint64_t word(const float* p, const float* q, Part part) const {
    uint64_t bits = 0;
    for_each<kFillWordPixels / 16>([&](int i) NUQI_FORCED {
      const auto here = part_from<16>(part, 16 * i);
      bits |= sixteen(load(p + 16 * i, here), load(q + 16 * i, here)) << 16 * i;
    });
    return bits;
  }

 private:
  NUQI_INLINE uint64_t sixteen(const Px<float>& p, const Px<float>& q) const {
    if (symmetric()) {
      // A difference that single precision tells from the delta lies on the same side of it in double.
      const Px<float> apart = abs(p - q), half = broadcast((float)half_);
      if (bits_equal(apart, half) == 0) return bits_below(apart, half);
    }
    const Px<double> centre = broadcast(centre_), half = broadcast(half_);
    const Px<double> beside = (to_doubles(p) - to_doubles(q)) - centre;
    return bits_equal(beside, max(min(beside, half), -half));  // no NaN does
  }

  double centre_, half_;
};

template <class T>
class Gradient {
 public:
  static constexpr bool kLocal = false;
  static constexpr int kEffort = 2 * (2 + kFillWordPixels * sizeof(T) / kRegBytes);

  NUQI_INLINE Gradient(const FillJob<T>& job, const FillDeltas<T>& deltas)
      : image_(job.image), width_(job.roi.width), joins_(deltas) {}

  NUQI_INLINE uint64_t matching(int32_t, int32_t k) const {
    const int32_t rest = width_ - k * kFillWordPixels;
    return rest >= kFillWordPixels ? ~uint64_t{0} : (uint64_t{1} << rest) - 1;
  }
  NUQI_INLINE RowSteps in_row(int32_t y, int32_t k) const {
    const int32_t x = k * kFillWordPixels;
    const T* const p = row_of(image_, y) + x;
    const uint64_t right = word(p, p + 1, width_ - x - 1);
    return {right, joins_.symmetric() ? right : word(p + 1, p, width_ - x - 1)};
  }
  NUQI_INLINE uint64_t steps(int32_t y, int32_t k, int dx, int dy) const {
    // Of the first word, the first pixel has no neighbour on the left.
    const int skip = dx < 0 && k == 0;
    const int32_t x = k * kFillWordPixels + skip;
    const T* const p = row_of(image_, y) + x;
    return word(p, row_of(image_, y + dy) + x + dx, width_ - x - (dx > 0)) << skip;
  }
  NUQI_INLINE bool joins(int32_t x, int32_t y, int dx, int dy) const {
    return joins_.one(row_of(image_, y) + x, row_of(image_, y + dy) + x + dx);
  }

 private:
  NUQI_INLINE uint64_t word(const T* p, const T* q, int32_t rest) const {
    if (rest < kFillWordPixels) return first(p, q, rest);
    if constexpr (sizeof(T) > 1 || kRegBytes < 32) return whole(p, q);  // long code
    return joins_.word(p, q, Whole{});
  }
  NUQI_NOINLINE uint64_t whole(const T* p, const T* q) const { return joins_.word(p, q, Whole{}); }
  NUQI_NOINLINE uint64_t first(const T* p, const T* q, int32_t rest) const {
    return rest == 0 ? 0 : joins_.word(p, q, First{rest});
  }

  Image<T> image_;
  int32_t width_;
  Joins<T> joins_;
};

template <bool diagonal, class T>
FillRegion fill(const FillJob<T>& job, const FillDeltas<T>& deltas) {
  return fill_region<diagonal>(Gradient<T>(job, deltas), job);
}

template <class T>
constexpr GradientFillKernelsOf<T> kKernels = {{fill<!kDiagonal, T>, fill<kDiagonal, T>}};

}  // namespace

const GradientFillKernels gradient_fill_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

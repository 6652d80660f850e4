// Flood fills of equal pixels.
#include "core/simd/reduce.h"
#include "fill/fill_region.h"
#include "fill/flood_fill.h"

namespace nuqi::NUQI_ISA {
namespace {

// Pixels that equal the seed: neither less nor greater, so that a NaN does.
template <class T>
class Equality {
 public:
  static constexpr bool kLocal = true;
  static constexpr int kEffort = 2 + kFillWordPixels * sizeof(T) / kRegBytes / 2;

  NUQI_INLINE explicit Equality(const FillJob<T>& job)
      : image_(job.image),
        width_(job.roi.width),
        seed_(load_one(row_of(image_, job.seed.y) + job.seed.x)) {}

  NUQI_INLINE uint64_t matching(int32_t y, int32_t k) const {
    const int32_t x = k * kFillWordPixels, rest = width_ - x;
    const T* const pixels = row_of(image_, y) + x;
    if (rest >= kFillWordPixels) return equal_bits(pixels, Whole{});
    return equal_bits(pixels, First{rest}) & ((uint64_t{1} << rest) - 1);
  }
  NUQI_INLINE RowSteps in_row(int32_t, int32_t) const { return {~uint64_t{0}, ~uint64_t{0}}; }
  NUQI_INLINE uint64_t steps(int32_t, int32_t, int, int) const { return ~uint64_t{0}; }
  NUQI_INLINE bool joins(int32_t, int32_t, int, int) const { return true; }
  NUQI_INLINE bool matches(int32_t x, int32_t y) const {
    const T pixel = load_one(row_of(image_, y) + x);
    if constexpr (sizeof(T) == 1)
      return pixel == seed_;
    else  // one comparison, true of NaNs as well
      return !__builtin_islessgreater(pixel, seed_);
  }

 private:
  template <class Part>
  NUQI_INLINE uint64_t equal_bits(const T* pixels, Part part) const {
    const auto a = load<kFillWordPixels>(pixels, part);
    const auto seed = broadcast<T, kFillWordPixels>(seed_);
    if constexpr (sizeof(T) == 1) return bits_equal(a, seed);
    return ~bits_apart(a, seed);
  }

  Image<T> image_;
  int32_t width_;
  T seed_;
};

template <bool diagonal, class T>
FillRegion fill(const FillJob<T>& job) {
  return fill_region<diagonal>(Equality<T>(job), job);
}

template <class T>
constexpr FloodFillKernelsOf<T> kKernels = {{fill<!kDiagonal, T>, fill<kDiagonal, T>}};

}  // namespace

const FloodFillKernels flood_fill_kernels = {kKernels<uint8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

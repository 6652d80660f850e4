// Finds the smallest and the largest pixel and the first place of each.
#include "core/simd/channel.h"
#include "core/simd/extremes.h"
#include "core/simd/selection.h"
#include "stats/min_max.h"

namespace nuqi::NUQI_ISA {
namespace {

// Pixels are compared as integers: bytes as they are, floats by their bits. Of floats of one sign the
// extremes are the smallest and the largest signed integer, and the sign tells which is which. Once
// both signs have been met, the lowest float is the largest *unsigned* integer: of those with the sign
// set the one of the largest magnitude. The highest is the largest signed one. A NaN lies beyond the
// infinity of its sign.
template <class T>
struct BitsOf {
  using Type = T;
};
template <>
struct BitsOf<float> {
  using Type = int32_t;
};

// Pixels of a row. The stretch that brings a new extreme is remembered, and the pixel looked for at the
// end.
struct Stretch {
  int32_t y;
  int64_t start, end;
};
constexpr int kBlocks = 16;  // in a stretch

template <int channels, bool masked, class T>
class Search {
  static constexpr int kLanes = kIsFloat<T> ? 16 : Reg<T>::kLanes;
  using Bits = typename BitsOf<T>::Type;
  using V = Vec<Bits, kLanes>;
  static constexpr int64_t kStretch = kBlocks * kLanes;

 public:
  NUQI_INLINE explicit Search(const MinMaxJob<T>& job) : job_(job) {}

  NUQI_INLINE MinMax<T> run() {
    look();
    return result();
  }

 private:
  static constexpr Bits kHighest =
      kIsSigned<Bits> ? (Bits)(~0u >> (33 - 8 * sizeof(Bits))) : (Bits)~0u;
  static constexpr Bits kLowest = (Bits)~kHighest;

  // Of floats: the smallest and the largest signed integer or, mixed, the largest of both kinds.
  struct Pair {
    V low, high;
  };
  struct Extreme {
    Bits bits;
    Stretch at;
  };

  static NUQI_INLINE V all(Bits value) { return broadcast<Bits, kLanes>(value); }

  // ---- Sixteen pixels, or a register of bytes

  template <class Part>
  NUQI_INLINE V pixels(int32_t y, int64_t x, Part part) const {
    return as<Bits>(load_channel<channels, kLanes>(row_of(job_.src, y) + channels * x, part));
  }
  // Not zero where pixels take part.
  NUQI_INLINE auto taking_part(int32_t y, int64_t x, Whole part) const {
    return load<kLanes>(row_of(job_.mask, y) + x, part);
  }
  NUQI_INLINE auto taking_part(int32_t y, int64_t x, First part) const {
    if constexpr (masked)
      return load<kLanes>(row_of(job_.mask, y) + x, part);
    else
      return first_lanes<kLanes>(part.lanes);
  }
  static constexpr bool all_take_part(Whole) { return !masked; }
  static constexpr bool all_take_part(First) { return false; }

  template <bool mixed>
  static NUQI_INLINE Pair extend(const Pair& seen, const V& low, const V& high) {
    if constexpr (mixed)
      return {as<Bits>(max(as<uint32_t>(low), as<uint32_t>(seen.low))), max(high, seen.high)};
    else
      return {min(low, seen.low), max(high, seen.high)};
  }

  // ---- One stretch

  // Calls body(x, part) for blocks that cover the stretch, until it returns false. The last block may
  // overlap the one before it: no harm is done by looking at pixels twice.
  template <class Body>
  static NUQI_INLINE void for_stretch(const Stretch& stretch, const Body& body) {
    int64_t x = stretch.start;
    for (; x + kLanes <= stretch.end; x += kLanes)
      if (!body(x, Whole{})) return;
    if (x == stretch.end) return;
    if (stretch.end >= kLanes)
      body(stretch.end - kLanes, Whole{});
    else
      body(x, First{int(stretch.end - x)});
  }

  // Of two blocks without a mask.
  template <bool mixed>
  NUQI_INLINE Pair scan_two(int32_t y, int64_t x, const Pair& seen) const {
    const V a = pixels(y, x, Whole{}), b = pixels(y, x + kLanes, Whole{});
    if constexpr (mixed) {
      // One of the two by each way, which take different ports.
      return extend<true>(seen, as<Bits>(sorted(as<uint32_t>(a), as<uint32_t>(b)).upper),
                          max(a, b));
    } else {
      const auto two = sorted(a, b);
      return extend<false>(seen, two.lower, two.upper);
    }
  }
  template <bool mixed>
  NUQI_INLINE Pair scan(const Stretch& stretch, Pair seen) const {
    const int32_t y = stretch.y;
    const auto block = [&](int64_t x, auto part) NUQI_FORCED {
      const V a = pixels(y, x, part);
      const Pair next = extend<mixed>(seen, a, a);
      if constexpr (all_take_part(decltype(part){})) {
        seen = next;
      } else {
        const auto selected = taking_part(y, x, part);
        seen = {choose(selected, next.low, seen.low), choose(selected, next.high, seen.high)};
      }
      return true;
    };
    // Whole stretches without a loop, whose end the processor would foresee too seldom.
    if (channels == 3 || stretch.end - stretch.start < kStretch)
      for_stretch(stretch, block);
    else if constexpr (masked)
      for_each<kBlocks>([&](int i) NUQI_FORCED { block(stretch.start + i * kLanes, Whole{}); });
    else
      for_each<kBlocks / 2>([&](int i) NUQI_FORCED {
        seen = scan_two<mixed>(y, stretch.start + 2 * i * kLanes, seen);
      });
    return seen;
  }
  NUQI_INLINE Pair scan(const Stretch& stretch, const Pair& seen, bool mixed) const {
    if constexpr (kIsFloat<T>)
      if (mixed) return scan<true>(stretch, seen);
    return scan<false>(stretch, seen);
  }
  static NUQI_INLINE bool better(const Pair& seen, const Pair& best, bool mixed) {
    const uint64_t higher = bits_below(best.high, seen.high);
    if constexpr (kIsFloat<T>)
      if (mixed) return (higher | bits_below(as<uint32_t>(best.low), as<uint32_t>(seen.low))) != 0;
    return (higher | bits_below(seen.low, best.low)) != 0;
  }

  // ---- All stretches

  NUQI_INLINE void look() {
    Pair seen = {all(kHighest), all(kLowest)}, best = seen;
    for (int32_t y = 0; y < job_.roi.height; ++y)
      for (int64_t start = 0; start < job_.roi.width; start += kStretch) {
        const int64_t rest = job_.roi.width - start;
        const Stretch stretch = {y, start, start + (rest < kStretch ? rest : kStretch)};
        seen = scan(stretch, seen, mixed_);
        if (started_ && !better(seen, best, mixed_)) continue;
        improve(stretch, seen);
        best = {all(low_.bits), all(high_.bits)};
        // Nothing is beyond the lowest and the highest byte.
        if (!kIsFloat<T> && low_.bits == kLowest && high_.bits == kHighest) return;
      }
  }
  // Takes over what the stretch brought.
  NUQI_INLINE void improve(const Stretch& stretch, Pair& seen) {
    const Bits high = reduce_max(seen.high);
    if (!mixed_) {
      const Bits low = reduce_min(seen.low);
      if (!started_) {
        if (low > high) return;  // nothing has been selected yet
        started_ = true;
        low_ = {low, stretch};
        high_ = {high, stretch};
      }
      if (kIsFloat<T> && low < 0 && high >= 0)
        mix(stretch, seen);
      else if (low < low_.bits)
        low_ = {low, stretch};
    } else {
      take_magnitude(stretch, seen);
    }
    if (high > high_.bits) high_ = {high, stretch};
  }
  // The stretch brought the second sign.
  NUQI_INLINE void mix(const Stretch& stretch, Pair& seen) {
    if constexpr (kIsFloat<T>) {
      if (high_.bits < 0)
        low_ = high_;  // the lowest of those that were all negative
      else
        low_.bits = 0;
      mixed_ = true;
      seen = scan<true>(stretch, {all(low_.bits), seen.high});
      take_magnitude(stretch, seen);
    }
  }
  NUQI_INLINE void take_magnitude(const Stretch& stretch, const Pair& seen) {
    if constexpr (kIsFloat<T>) {
      const uint32_t low = reduce_max(as<uint32_t>(seen.low));
      if (low > (uint32_t)low_.bits) low_ = {(Bits)low, stretch};
    }
  }

  // ---- The end

  NUQI_INLINE MinMax<T> result() const {
    MinMax<T> found;
    if (!started_) return found;
    const bool all_negative = kIsFloat<T> && !mixed_ && high_.bits < 0;
    const Extreme &min = all_negative ? high_ : low_, &max = all_negative ? low_ : high_;
    // The contract's search starts with the infinities, and is strict.
    if (!kIsFloat<T> || min.bits < 0x7F800000) found.min_at = locate(min);
    if (!kIsFloat<T> || (uint32_t)max.bits < 0xFF800000) found.max_at = locate(max);
    __builtin_memcpy(&found.min, &min.bits, sizeof found.min);
    __builtin_memcpy(&found.max, &max.bits, sizeof found.max);
    return found;
  }
  // The first pixel that is the extreme.
  __attribute__((noinline)) int64_t locate(const Extreme& extreme) const {
    const V value = all(extreme.bits);
    Stretch rest = extreme.at;
    const int32_t y = rest.y;
    const auto here = [&](int64_t x, auto part) NUQI_FORCED {
      const uint64_t equal = bits_equal(pixels(y, x, part), value);
      if constexpr (all_take_part(decltype(part){}))
        return equal;
      else
        return equal & ~bits_equal(taking_part(y, x, part), Vec<uint8_t, kLanes>{});
    };
    const auto block = [&](int i) NUQI_FORCED { return here(rest.start + i * kLanes, Whole{}); };
    for (; rest.start + 4 * kLanes <= rest.end; rest.start += 4 * kLanes)
      if ((block(0) | block(1) | block(2) | block(3)) != 0) break;
    int64_t found = -1;
    for_stretch(rest, [&](int64_t x, auto part) NUQI_FORCED {
      const uint64_t bits = here(x, part);
      if (bits != 0) found = y * int64_t{job_.roi.width} + x + __builtin_ctzll(bits);
      return bits == 0;
    });
    return found;
  }

  const MinMaxJob<T>& job_;
  Extreme low_ = {}, high_ = {};
  bool started_ = false;  // a pixel has been met
  bool mixed_ = false;    // floats of both signs have been met
};

template <int channels, bool masked, class T>
MinMax<T> find(const MinMaxJob<T>& job) {
  return Search<channels, masked, T>(job).run();
}

template <class T>
constexpr MinMaxKernelsOf<T> kKernels = {
    {{find<1, false, T>, find<1, true, T>}, {find<3, false, T>, find<3, true, T>}}};

}  // namespace

const MinMaxKernels min_max_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

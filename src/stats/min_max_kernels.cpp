// Finds the smallest and the largest pixel and the first place of each.
#include "core/simd/channel.h"
#include "core/simd/float_order.h"
#include "core/simd/selection.h"
#include "stats/min_max.h"

namespace nuqi::NUQI_ISA {
namespace {

// Pixels are compared by keys, integers in the order of the pixels.
template <class T>
struct KeyOf {
  using Type = T;
};
template <>
struct KeyOf<float> {
  using Type = int32_t;
};
// SSE2 has minima and maxima of unsigned bytes alone.
template <>
struct KeyOf<int8_t> : IfElse<Machine::kOrdersSignedBytes, int8_t, uint8_t> {};

// The extremes of the lanes are noted after each chunk of a row, and looked at after each group of
// chunks: a horizontal reduction takes as long as a chunk. A new extreme is then looked for in the first
// chunk after which it had been seen.
constexpr int kChunkBytes = 1024, kChunks = 16;  // in a group

template <int channels, bool masked, class T>
class Search {
  static constexpr int kLanes = kIsFloat<T> ? 16 : Reg<T>::kLanes;
  using Key = typename KeyOf<T>::Type;
  using Keys = Vec<Key, kLanes>;
  static constexpr int kUnrolled = channels == 3 ? 1 : Keys::kRegs > 1 ? 2 : 16;  // blocks
  static constexpr int64_t kChunk = kChunkBytes / int{sizeof(T)}, kGroup = kChunks * kChunk;

  static constexpr Key kFlip = kIsSigned<T> == kIsSigned<Key> ? 0 : 128;  // bytes only
  static constexpr Key kLowestByte = kIsSigned<Key> ? -128 : 0;

  struct Row {
    const T* src;
    const uint8_t* mask;
  };
  struct Extremes {
    Keys low, high;
  };
  struct Found {
    Key key;
    int64_t place;
  };

 public:
  NUQI_INLINE explicit Search(const MinMaxJob<T>& job) : job_(job) {}

  NUQI_INLINE MinMax<T> run() {
    const int64_t first = first_place(), width = job_.roi.width;
    if (first < 0) return {};
    Extremes seen;
    start_with(first, seen);
    for (int64_t y = first / width; y < job_.roi.height; ++y)
      for (int64_t x = 0; x < width; x += kGroup) {
        look(y, x, width - x < kGroup ? width : x + kGroup, seen);
        // Nothing is beyond the smallest and the largest byte.
        if (!kIsFloat<T> && low_.key == kLowestByte && high_.key == Key(~kLowestByte))
          return result();
      }
    return result();
  }

 private:
  // ---- A block of pixels

  NUQI_INLINE Row row(int64_t y) const { return {row_of(job_.src, y), row_of(job_.mask, y)}; }

  static NUQI_INLINE auto mask(const Row& row, int64_t x, Whole part) {
    return load<kLanes>(row.mask + x, part);
  }
  static NUQI_INLINE auto mask(const Row& row, int64_t x, First part) {
    if constexpr (masked)
      return load<kLanes>(row.mask + x, part);
    else
      return first_lanes<kLanes>(part.lanes);
  }
  template <class Part>
  static NUQI_INLINE Keys all_keys(const Row& row, int64_t x, Part part) {
    const auto bits = as<Key>(load_channel<channels, kLanes>(row.src + channels * x, part));
    if constexpr (kIsFloat<T>)
      return float_order(bits);
    else
      return bits ^ broadcast<Key, kLanes>(kFlip);
  }
  // Of pixels that do not take part, the first one's key: it changes no extreme.
  NUQI_INLINE Keys keys(const Row& row, int64_t x, Whole part) const {
    if constexpr (masked)
      return choose(mask(row, x, part), all_keys(row, x, part), first_);
    else
      return all_keys(row, x, part);
  }
  NUQI_INLINE Keys keys(const Row& row, int64_t x, First part) const {
    return choose(mask(row, x, part), all_keys(row, x, part), first_);
  }
  template <class Part>
  NUQI_INLINE Extremes extend(const Extremes& seen, const Row& row, int64_t x, Part part) const {
    const Keys all = keys(row, x, part);
    return {min(all, seen.low), max(all, seen.high)};
  }

  // ---- A chunk

  NUQI_INLINE Extremes scan(Row row, int64_t x, int64_t to, Extremes seen) const {
    for (; x + kUnrolled * kLanes <= to; x += kUnrolled * kLanes)
      for_each<kUnrolled>([&](int i)
                              NUQI_FORCED { seen = extend(seen, row, x + i * kLanes, Whole{}); });
    for_blocks_to_end(x, to, [&](int64_t at, auto part) NUQI_FORCED {
      seen = extend(seen, row, at, part);
      return true;
    });
    return seen;
  }
  // Calls body(x, part) for the blocks from `from` to `to` until it returns false. The last one goes
  // back over pixels before it.
  template <class Body>
  static NUQI_INLINE void for_blocks_to_end(int64_t from, int64_t to, const Body& body) {
    if (to < kLanes && from < to) body(from, First{int(to - from)});
    if (to < kLanes) return;
    for (int64_t x = from; x < to; x += kLanes)
      if (!body(x + kLanes <= to ? x : to - kLanes, Whole{})) return;
  }

  // ---- A group

  NUQI_INLINE void look(int64_t y, int64_t from, int64_t to, Extremes& seen) {
    Extremes after[kChunks];
    int chunks = 0;
    const Row pixels = row(y);
    for (int64_t x = from; x < to; x += kChunk) {
      seen = scan(pixels, x, to - x < kChunk ? to : x + kChunk, seen);
      after[chunks++] = seen;
    }
    if ((bits_below(seen.low, best_.low) | bits_below(best_.high, seen.high)) == 0) return;
    const Key low = reduce_min(seen.low), high = reduce_max(seen.high);
    best_ = {broadcast<Key, kLanes>(low), broadcast<Key, kLanes>(high)};
    if (low < low_.key) {
      int chunk = 0;
      while (bits_equal(after[chunk].low, best_.low) == 0) ++chunk;
      low_ = {low, place_of(best_.low, y, from + chunk * kChunk)};
    }
    if (high > high_.key) {
      int chunk = 0;
      while (bits_equal(after[chunk].high, best_.high) == 0) ++chunk;
      high_ = {high, place_of(best_.high, y, from + chunk * kChunk)};
    }
  }
  // Of the first pixel with this key in row y, at x or later.
  __attribute__((noinline)) int64_t place_of(const Keys& key, int64_t y, int64_t x) const {
    int64_t found = -1;
    for_blocks_to_end(x, job_.roi.width, [&](int64_t at, auto part) NUQI_FORCED {
      const uint64_t equal = bits_equal(keys(row(y), at, part), key);
      if (equal != 0) found = y * job_.roi.width + at + __builtin_ctzll(equal);
      return equal == 0;
    });
    return found;
  }

  // ---- The start and the end

  // Of the first pixel that takes part, or -1.
  NUQI_INLINE int64_t first_place() const {
    if constexpr (!masked) return 0;
    for (int64_t y = 0; y < job_.roi.height; ++y) {
      int64_t found = -1;
      for_blocks_to_end(0, job_.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
        const uint64_t selected = bits_below(Vec<uint8_t, kLanes>{}, mask(row(y), x, part));
        if (selected != 0) found = y * job_.roi.width + x + __builtin_ctzll(selected);
        return selected == 0;
      });
      if (found >= 0) return found;
    }
    return -1;
  }
  NUQI_INLINE void start_with(int64_t place, Extremes& seen) {
    const int64_t width = job_.roi.width;
    const T* pixel = row_of(job_.src, place / width) + channels * (place % width);
    Key key;
    __builtin_memcpy(&key, pixel, sizeof key);
    key = flipped(key);
    low_ = high_ = {key, place};
    first_ = broadcast<Key, kLanes>(key);
    seen = best_ = {first_, first_};
  }
  NUQI_INLINE MinMax<T> result() const {
    MinMax<T> found = {value_of(low_.key), value_of(high_.key), low_.place, high_.place};
    if constexpr (kIsFloat<T>) {
      // The contract's search starts with the infinities, and is strict.
      constexpr int32_t kInfinity = 0x7F800000;
      if (low_.key >= kInfinity) found.min_at = -1;
      if (high_.key <= ~kInfinity) found.max_at = -1;
    }
    return found;
  }
  // One pixel's bits as a key, or its key as bits.
  static NUQI_INLINE Key flipped(Key key) {
    if constexpr (kIsFloat<T>)
      return float_order(key);
    else
      return key ^ kFlip;
  }
  static NUQI_INLINE T value_of(Key key) {
    key = flipped(key);
    T value;
    __builtin_memcpy(&value, &key, sizeof value);
    return value;
  }

  const MinMaxJob<T>& job_;
  Keys first_;  // everywhere the key of the first pixel that takes part
  Extremes best_;
  Found low_, high_;
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

// Finds the smallest and the largest pixel and the first place of each.
#include "core/simd/channel.h"
#include "core/simd/float_order.h"
#include "core/simd/selection.h"
#include "stats/min_max.h"

namespace nuqi::NUQI_ISA {
namespace {

// Pixels are compared by keys, integers in the order of the pixels. Those of floats are their bits, of
// negative ones with all but the sign inverted. Compared with an extreme, a pixel may be taken for one
// of the extreme's sign: of the other sign, it is on the right side of it either way. Therefore a
// constant turns all bits to keys: the same one for both extremes until both signs have been met. The
// chunk of pixels that brings the second sign is scanned again.
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
constexpr int kBlocks = 16, kChunks = 16;  // in a chunk, in a group

// What has been found, of whatever channels and with or without a mask.
template <class T>
class Best {
 public:
  static constexpr int kLanes = kIsFloat<T> ? 16 : Reg<T>::kLanes;
  using Key = typename KeyOf<T>::Type;
  using Keys = Vec<Key, kLanes>;
  struct Extremes {
    Keys low, high;
  };
  struct Found {
    Key key;
    int64_t place;
  };

  NUQI_INLINE void start_with(Key pixel, int64_t place) {
    flip_ = pixel ^ flipped(pixel);
    low = high = {flipped(pixel), place};
    lanes_ = {all(low.key), all(high.key)};
  }

  // Keys, correct for pixels of the sign of the extreme.
  template <bool mixed>
  NUQI_INLINE Keys low_keys(const Keys& pixels) const {
    return pixels ^ all(mixed ? kNegativeFlip : kIsFloat<T> ? flip_ : kFlip);
  }
  template <bool mixed>
  NUQI_INLINE Keys high_keys(const Keys& pixels) const {
    return mixed ? pixels : low_keys<false>(pixels);
  }
  // Whether floats of both signs have been met.
  NUQI_INLINE bool mixed() const { return kIsFloat<T> && mixed_; }
  // Whether they have just been.
  NUQI_INLINE bool becomes_mixed(const Extremes& seen) {
    if (!kIsFloat<T> || mixed_ || bits_below(seen.low ^ seen.high, Keys{}) == 0) return false;
    return mixed_ = true;
  }

  NUQI_INLINE bool beaten_by(const Extremes& seen) const {
    return (bits_below(seen.low, lanes_.low) | bits_below(lanes_.high, seen.high)) != 0;
  }
  // Takes over what the last chunk of a group has seen. The new extremes' places become the numbers of
  // the chunks that brought them. Not inlined: all searches of a type share it.
  struct New {
    bool low, high;
  };
  NUQI_NOINLINE New take(const Extremes* after, int chunks) {
    const Extremes& seen = after[chunks - 1];
    const Key old_low = low.key, old_high = high.key;
    low.key = reduce_min(seen.low);
    high.key = reduce_max(seen.high);
    lanes_ = {all(low.key), all(high.key)};
    const New news = {old_low > low.key, old_high < high.key};
    if (news.low)
      for (low.place = 0; bits_equal(after[low.place].low, lanes_.low) == 0;) ++low.place;
    if (news.high)
      for (high.place = 0; bits_equal(after[high.place].high, lanes_.high) == 0;) ++high.place;
    return news;
  }

  // Nothing is beyond the smallest and the largest byte.
  NUQI_INLINE bool complete() const {
    return !kIsFloat<T> && low.key == kLowestByte && high.key == Key(~kLowestByte);
  }

  static NUQI_INLINE Keys all(Key key) { return broadcast<Key, kLanes>(key); }
  // One pixel's bits as a key, or its key as bits.
  static NUQI_INLINE Key flipped(Key key) {
    if constexpr (kIsFloat<T>)
      return float_order(key);
    else
      return key ^ kFlip;
  }

  Found low, high;

 private:
  static constexpr Key kFlip = kIsSigned<T> == kIsSigned<Key> ? 0 : 128;  // bytes only
  static constexpr Key kNegativeFlip = Key(0x7FFFFFFF);
  static constexpr Key kLowestByte = kIsSigned<Key> ? -128 : 0;

  Key flip_;            // of floats of one sign
  bool mixed_ = false;  // floats of both signs have been met
  Extremes lanes_;
};

// Calls body(x, part) for the blocks from `from` to `to` until it returns false. The last one
// goes back over pixels before it.
template <int kLanes, class Body>
NUQI_INLINE void for_blocks_to_end(int64_t from, int64_t to, const Body& body) {
  if (to < kLanes && from < to) body(from, First{int(to - from)});
  if (to < kLanes) return;
  for (int64_t x = from; x < to;) {
    for (; x + kLanes <= to; x += kLanes)
      if (!body(x, Whole{})) return;
    if (x < to) x = to - kLanes;
  }
}

// The place of the first pixel that is selected, or -1. Not inlined: all types share it.
template <int kLanes>
NUQI_NOINLINE int64_t first_selected(const Image<const uint8_t>& mask, RoiSize roi) {
  for (int64_t y = 0; y < roi.height; ++y) {
    int64_t found = -1;
    for_blocks_to_end<kLanes>(0, roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      const auto selected = load<kLanes>(row_of(mask, y) + x, part);
      const uint64_t bits = bits_below(Vec<uint8_t, kLanes>{}, selected);
      if (bits != 0) found = y * roi.width + x + __builtin_ctzll(bits);
      return bits == 0;
    });
    if (found >= 0) return found;
  }
  return -1;
}

template <int channels, bool masked, class T>
class Search {
  static constexpr int kLanes = Best<T>::kLanes;
  using Key = typename Best<T>::Key;
  using Keys = typename Best<T>::Keys;
  using Extremes = typename Best<T>::Extremes;
  static constexpr bool kShort = channels == 1 && Keys::kRegs == 1;  // a block of few operations
  static constexpr int64_t kChunk = kBlocks * kLanes, kGroup = kChunks * kChunk;

  struct Row {
    const T* src;
    const uint8_t* mask;
  };

 public:
  NUQI_INLINE explicit Search(const MinMaxJob<T>& job) : job_(job) {}

  NUQI_INLINE MinMax<T> run() {
    const int64_t width = job_.roi.width;
    const int64_t first = masked ? first_selected<kLanes>(job_.mask, job_.roi) : 0;
    if (first < 0) return {};
    const T* pixel = row_of(job_.src, first / width) + channels * (first % width);
    __builtin_memcpy(&first_, pixel, sizeof first_);
    best_.start_with(first_, first);
    Extremes seen = {Best<T>::all(best_.low.key), Best<T>::all(best_.low.key)};
    for (int64_t y = first / width; y < job_.roi.height; ++y)
      for (int64_t x = 0; x < width; x += kGroup) {
        look(y, x, width - x < kGroup ? width : x + kGroup, seen);
        if (best_.complete()) return result();
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
  static NUQI_INLINE Keys all_pixels(const Row& row, int64_t x, Part part) {
    return as<Key>(load_channel<channels, kLanes>(row.src + channels * x, part));
  }
  // Instead of pixels that do not take part, the first one that does: it changes no extreme.
  NUQI_INLINE Keys pixels(const Row& row, int64_t x, Whole part) const {
    if constexpr (masked)
      return choose(mask(row, x, part), all_pixels(row, x, part), Best<T>::all(first_));
    else
      return all_pixels(row, x, part);
  }
  // Narrow images alone have such blocks.
  NUQI_NOINLINE Keys pixels(const Row& row, int64_t x, First part) const {
    return choose(mask(row, x, part), all_pixels(row, x, part), Best<T>::all(first_));
  }
  template <bool mixed, class Part>
  NUQI_INLINE Extremes extend(const Extremes& seen, const Row& row, int64_t x, Part part) const {
    // Minima and maxima under a mask are single operations where masks are.
    constexpr bool kChosen = masked && Machine::kMasks && Part::kWhole;
    const Keys all = kChosen ? all_pixels(row, x, part) : pixels(row, x, part);
    const Extremes next = {min(best_.template low_keys<mixed>(all), seen.low),
                           max(best_.template high_keys<mixed>(all), seen.high)};
    if constexpr (kChosen) {
      const auto selected = mask(row, x, part);
      return {choose(selected, next.low, seen.low), choose(selected, next.high, seen.high)};
    }
    return next;
  }

  // ---- A chunk

  template <bool mixed>
  NUQI_INLINE Extremes scan(const Row& row, int64_t x, int64_t to, Extremes seen) const {
    const auto block = [&](int64_t at, auto part) NUQI_FORCED {
      seen = extend<mixed>(seen, row, at, part);
      return true;
    };
    // Whole chunks of short blocks without a loop, whose end the processor would foresee too seldom.
    if (kShort && to - x == kChunk)
      for_each<kBlocks>([&](int i) NUQI_FORCED { block(x + i * kLanes, Whole{}); });
    else
      for_blocks_to_end<kLanes>(x, to, block);
    return seen;
  }

  // ---- A group

  NUQI_INLINE void look(int64_t y, int64_t from, int64_t to, Extremes& seen) {
    Extremes after[kChunks];
    int chunks = 0;
    const Row pixels = row(y);
    for (int64_t x = from; x < to;) {
      const Extremes before = seen;
      const int64_t next = to - x < kChunk ? to : x + kChunk;
      seen = best_.mixed() ? scan<true>(pixels, x, next, seen) : scan<false>(pixels, x, next, seen);
      if (best_.becomes_mixed(seen)) {
        seen = before;
        continue;
      }
      if (next < to) after[chunks++] = seen;
      x = next;
    }
    if (!best_.beaten_by(seen)) return;
    after[chunks++] = seen;
    const auto news = best_.take(after, chunks);
    if (news.low) find_in(y, from, best_.low);
    if (news.high) find_in(y, from, best_.high);
  }
  // The place was the number of a chunk, and becomes the pixel's.
  NUQI_INLINE void find_in(int64_t y, int64_t from, typename Best<T>::Found& found) const {
    found.place = place_of(found.key, y, from + found.place * kChunk);
  }
  // Of the first pixel with this key in row y, at x or later.
  NUQI_NOINLINE int64_t place_of(Key key, int64_t y, int64_t x) const {
    const Keys pixel = Best<T>::all(Best<T>::flipped(key));
    int64_t found = -1;
    for_blocks_to_end<kLanes>(x, job_.roi.width, [&](int64_t at, auto part) NUQI_FORCED {
      const uint64_t equal = bits_equal(pixels(row(y), at, part), pixel);
      if (equal != 0) found = y * job_.roi.width + at + __builtin_ctzll(equal);
      return equal == 0;
    });
    return found;
  }

  // ---- The end

  NUQI_INLINE MinMax<T> result() const {
    const auto &low = best_.low, &high = best_.high;
    MinMax<T> found = {value_of(low.key), value_of(high.key), low.place, high.place};
    if constexpr (kIsFloat<T>) {
      // The contract's search starts with the infinities, and is strict.
      constexpr int32_t kInfinity = 0x7F800000;
      if (low.key >= kInfinity) found.min_at = -1;
      if (high.key <= ~kInfinity) found.max_at = -1;
    }
    return found;
  }
  static NUQI_INLINE T value_of(Key key) {
    key = Best<T>::flipped(key);
    T value;
    __builtin_memcpy(&value, &key, sizeof value);
    return value;
  }

  const MinMaxJob<T>& job_;
  Key first_;  // the first pixel that takes part
  Best<T> best_;
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

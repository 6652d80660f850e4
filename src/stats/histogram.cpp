// The histograms: nuqiCalcHist, nuqiConvertHist1D.
#include "core/validate.h"

namespace nuqi {
namespace {

// Levels and counters are integers at any address.
int32_t integer_at(const int32_t* at, int64_t i) {
  int32_t value;
  __builtin_memcpy(&value, at + i, sizeof value);
  return value;
}
void set_integer(int32_t* at, int64_t i, uint32_t value) {
  __builtin_memcpy(at + i, &value, sizeof value);
}

// Counters wrap. The address is put into a register of its own, which the compiler would not do:
// on Golden Cove an increment by a constant there waits for no earlier one, while one at an indexed
// address makes equal pixels take 1.3 (eight tables) to 7 times (one table) as long as noise.
inline void increment(void* counter) {
  __asm__("" : "+r"(counter));
  uint32_t count;
  __builtin_memcpy(&count, counter, sizeof count);
  ++count;
  __builtin_memcpy(counter, &count, sizeof count);
}

// ---- One channel

// Neighbours count in tables of their own: other processors let an increment wait for an earlier one
// of the same counter, wherever it lies.
constexpr int kTables = 8;
struct ByteCounts {
  uint32_t of[kTables][256];
};

void count_bytes(const uint8_t* row, int64_t width, ByteCounts& counts) {
  int64_t x = 0;
  for (; x + kTables <= width; x += kTables) {
    uint64_t pixels;
    __builtin_memcpy(&pixels, row + x, sizeof pixels);
    increment(&counts.of[0][pixels & 0xFF]);
    increment(&counts.of[1][pixels >> 8 & 0xFF]);
    increment(&counts.of[2][pixels >> 16 & 0xFF]);
    increment(&counts.of[3][pixels >> 24 & 0xFF]);
    increment(&counts.of[4][pixels >> 32 & 0xFF]);
    increment(&counts.of[5][pixels >> 40 & 0xFF]);
    increment(&counts.of[6][pixels >> 48 & 0xFF]);
    increment(&counts.of[7][pixels >> 56]);
  }
  for (; x < width; ++x) increment(&counts.of[0][row[x]]);
}

StatusCode calc_hist(Image<const uint8_t> src, RoiSize roi, int32_t* hist, int32_t levelCount,
                     const uint8_t* levels) {
  // clang-format off
  if (any_null(src.data, hist, levels))       return StatusNullPtr;
  if (below_one(roi) || levelCount < 1)       return StatusBadSize;
  if (short_row(src, roi.width))              return StatusBadStep;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width));
  ByteCounts counts = {};
  for (int32_t y = 0; y < roi.height; ++y) count_bytes(row_of(src, y), roi.width, counts);

  const auto& t = counts.of;
  uint32_t
      pixels[256];  // of each value; the sum is written out, or else GCC 12 takes it one by one
  for (int v = 0; v < 256; ++v)
    pixels[v] = t[0][v] + t[1][v] + t[2][v] + t[3][v] + t[4][v] + t[5][v] + t[6][v] + t[7][v];
  uint32_t below[257] = {};  // each value
  for (int v = 0; v < 256; ++v) below[v + 1] = below[v] + pixels[v];

  // Deliberate: one level makes a bin, too. It ends above all values, and nothing is read there.
  const int32_t bins = levelCount == 1 ? 1 : levelCount - 1;
  for (int32_t i = 0; i < bins; ++i) {
    const int from = levels[i], to = levelCount == 1 ? 256 : levels[i + 1];
    set_integer(hist, i, from < to ? below[to] - below[from] : 0);
  }
  return StatusOk;
}

// ---- Two channels

// By the byte value of one channel, how far from `start` the counters of its bin lie, in bytes. Rows of
// counters start at the histogram's address and columns at 0, so that the two of a pixel add up to the
// address of its counter. kOutside is more than any such sum.
constexpr int64_t kOutside = int64_t{1} << 61;
struct Places {
  int64_t of[256];
  bool all_inside;
};

// Of `count` bins between count + 1 levels, `step` bytes apart.
Places places_of(const int32_t* levels, int32_t count, int64_t start, int32_t step) {
  uint32_t levels_at[256] = {};  // of the levels after the first; those below 0 lie at 0
  for (int64_t i = 1; i <= count; ++i) {
    const int32_t level = integer_at(levels, i);
    if (level < 256) ++levels_at[level < 0 ? 0 : level];
  }
  const int32_t first = integer_at(levels, 0), last = integer_at(levels, count);
  Places places;
  int64_t bin = 0;
  for (int v = 0; v < 256; ++v) {
    bin += levels_at[v];
    places.of[v] = first <= v && v < last ? start + bin * step : kOutside;
  }
  places.all_inside = first <= 0 && last > 255;
  return places;
}

template <bool all_inside>
void count_pairs(const uint8_t* row, int64_t width, const Places& columns, const Places& rows) {
  uint32_t discarded = 0;
  const auto count = [&](uint8_t first, uint8_t second) {
    const int64_t place = columns.of[first] + rows.of[second];
    void* counter = reinterpret_cast<void*>(static_cast<uintptr_t>(place));
    if (!all_inside) counter = place < kOutside / 2 ? counter : &discarded;
    increment(counter);
  };
  int64_t x = 0;
  for (; x + 4 <= width; x += 4) {
    uint64_t pixels;
    __builtin_memcpy(&pixels, row + 2 * x, sizeof pixels);
    count(pixels & 0xFF, pixels >> 8 & 0xFF);
    count(pixels >> 16 & 0xFF, pixels >> 24 & 0xFF);
    count(pixels >> 32 & 0xFF, pixels >> 40 & 0xFF);
    count(pixels >> 48 & 0xFF, pixels >> 56);
  }
  for (; x < width; ++x) count(row[2 * x], row[2 * x + 1]);
}

StatusCode calc_hist(Image<const uint8_t> src, RoiSize roi, int32_t* hist, int32_t histStep,
                     const int32_t* counts, const int32_t* levels) {
  if (any_null(src.data, hist, levels)) return StatusNullPtr;
  const int32_t across = integer_at(counts, 0), down = integer_at(counts, 1);

  // clang-format off
  if (across < 1 || down < 1 || below_one(roi))     return StatusBadSize;
  if (short_row(src, roi.width, 2))                 return StatusBadStep;
  // clang-format on

  // Deliberate: as many counters from the start, wherever the rows lie.
  const uint64_t cleared = (uint64_t(across) + 1) * (uint64_t(down) + 1);
  __builtin_memset(hist, 0, static_cast<size_t>(cleared * sizeof(int32_t)));

  const auto start = static_cast<int64_t>(reinterpret_cast<uintptr_t>(hist));
  const Places columns = places_of(levels, across, 0, sizeof(int32_t));
  const Places rows = places_of(levels + int64_t{across} + 1, down, start, histStep);
  const auto count = columns.all_inside && rows.all_inside ? count_pairs<true> : count_pairs<false>;
  for (int32_t y = 0; y < roi.height; ++y) count(row_of(src, y), roi.width, columns, rows);
  return StatusOk;
}

// ---- The total

StatusCode convert_hist(const int32_t* src, const float* dst, int32_t length) {
  // clang-format off
  if (any_null(src, dst))      return StatusNullPtr;
  if (length < 1)              return StatusBadSize;
  // clang-format on

  int64_t total = 0;
  for (int32_t i = 0; i < length; ++i) total += integer_at(src, i);
  return total == 0 ? StatusDivByZero : StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

StatusCode nuqiCalcHist_8u_C1R(const uint8_t* src, int32_t srcStep, RoiSize roi, int32_t* hist,
                               int32_t levelCount, const uint8_t* levels) {
  return calc_hist({src, srcStep}, roi, hist, levelCount, levels);
}

StatusCode nuqiCalcHist_8u_C2R(const uint8_t* src, int32_t srcStep, RoiSize roi, int32_t* hist,
                               int32_t histStep, const int32_t* counts, const int32_t* levels) {
  return calc_hist({src, srcStep}, roi, hist, histStep, counts, levels);
}

// Deliberate: nothing is converted. The histogram and its total are tested, whatever the flag.
StatusCode nuqiConvertHist1D_32s32f(const int32_t* src, float* dst, int32_t length, int32_t) {
  return convert_hist(src, dst, length);
}

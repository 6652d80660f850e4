// The histograms: nuqiCalcHist, nuqiConvertHist1D.
#include "stats/histogram.h"

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

// Calls count(x, y, part) for parts of a ROI that counters of 16 bits can count.
template <class Count>
void for_parts(RoiSize roi, Count count) {
  constexpr int32_t kMost = UINT16_MAX;
  const int32_t width = roi.width < kMost ? roi.width : kMost, height = kMost / width;
  for (int64_t x = 0; x < roi.width; x += width)
    for (int64_t y = 0; y < roi.height; y += height) {
      const int64_t across = roi.width - x, down = roi.height - y;
      count(x, y,
            RoiSize{across < width ? int32_t(across) : width,
                    down < height ? int32_t(down) : height});
    }
}

// ---- One channel

// Neighbouring pixels count in different tables: equal ones would form a dependency chain through store
// forwarding. Counters of 16 bits keep the tables small.
constexpr int kTables = 8;
struct ByteCounts {
  uint16_t of[kTables][256];
};

void count_bytes(const uint8_t* row, int64_t width, ByteCounts& counts) {
  int64_t x = 0;
  for (; x + kTables <= width; x += kTables) {
    uint64_t pixels;
    __builtin_memcpy(&pixels, row + x, sizeof pixels);
    ++counts.of[0][pixels & 0xFF];
    ++counts.of[1][pixels >> 8 & 0xFF];
    ++counts.of[2][pixels >> 16 & 0xFF];
    ++counts.of[3][pixels >> 24 & 0xFF];
    ++counts.of[4][pixels >> 32 & 0xFF];
    ++counts.of[5][pixels >> 40 & 0xFF];
    ++counts.of[6][pixels >> 48 & 0xFF];
    ++counts.of[7][pixels >> 56];
  }
  for (; x < width; ++x) ++counts.of[0][row[x]];
}

StatusCode calc_hist(Image<const uint8_t> src, RoiSize roi, int32_t* hist, int32_t levelCount,
                     const uint8_t* levels) {
  // clang-format off
  if (any_null(src.data, hist, levels))       return StatusNullPtr;
  if (below_one(roi) || levelCount < 1)       return StatusBadSize;
  if (short_row(src, roi.width))              return StatusBadStep;
  // clang-format on

  ContiguousCollapse(roi, tight(src, roi.width));
  uint32_t pixels[256] = {};  // of each value
  for_parts(roi, [&](int64_t x, int64_t y, RoiSize part) {
    ByteCounts counts = {};
    for (int32_t i = 0; i < part.height; ++i)
      count_bytes(row_of(src, y + i) + x, part.width, counts);
    const auto& t = counts.of;
    for (int v = 0; v < 256; ++v)  // written out: GCC 12 does not vectorise a loop over tables
      pixels[v] += static_cast<uint16_t>(t[0][v] + t[1][v] + t[2][v] + t[3][v] + t[4][v] + t[5][v] +
                                         t[6][v] + t[7][v]);
  });
  uint32_t below[257];  // each value
  below[0] = 0;
  for (int v = 0; v < 256; ++v) below[v + 1] = below[v] + pixels[v];

  // Deliberate: one level makes a bin, too. It ends above all values, and nothing is read there.
  const int32_t bins = levelCount == 1 ? 1 : levelCount - 1;
  int from = levels[0];
  for (int32_t i = 0; i < bins; ++i) {
    // Deliberate: the last of several levels, a byte, is exclusive, so that 255 is in no bin.
    const int to = levelCount == 1 ? 256 : levels[i + 1];
    set_integer(hist, i, from < to ? below[to] - below[from] : 0);
    from = to;
  }
  return StatusOk;
}

// ---- Two channels

// Calls set(value, bin) for every byte value, of `count` bins between count + 1 levels: bin `count` for
// those that lie in none. Returns whether that is no value.
template <class Set>
bool for_values(const int32_t* levels, int32_t count, Set set) {
  uint32_t levels_at[256] = {};  // of the levels after the first; those below 0 lie at 0
  for (int64_t i = 1; i <= count; ++i) {
    const int32_t level = integer_at(levels, i);
    if (level < 256) ++levels_at[level < 0 ? 0 : level];
  }
  const int32_t first = integer_at(levels, 0), last = integer_at(levels, count);
  int64_t bin = 0;
  for (int v = 0; v < 256; ++v) {
    bin += levels_at[v];
    set(v, first <= v && v < last ? bin : count);
  }
  return first <= 0 && last > 255;
}

// How to count the pixels of two channels.
struct JointJob {
  Image<const uint8_t> src;
  RoiSize roi;
  Image<int32_t> hist;  // rows may lie anywhere, at any address
  int32_t across, down;
  const int32_t *column_levels, *row_levels;
};

// Counters wrap. The address is put into a register of its own, which the compiler would not do:
// on Golden Cove an increment by a constant there waits for no earlier one, while one at an indexed
// address makes equal pixels take up to seven times as long as noise.
inline void increment(void* counter, uint32_t by = 1) {
  __asm__("" : "+r"(counter));
  uint32_t count;
  __builtin_memcpy(&count, counter, sizeof count);
  count += by;
  __builtin_memcpy(counter, &count, sizeof count);
}

// Small tables: neighbouring pixels count in different ones, which have a column and a row more, for values
// that lie in no bin.
constexpr int kPlaces = 1120;  // 32 x 32 bins, 64 x 16, and the additional ones
constexpr int kBlock = 256;    // pixels whose places are found at a time

bool fits_small_tables(const JointJob& job) {
  const int64_t places = (int64_t{job.across} + 1) * (int64_t{job.down} + 1);
  return job.across < INT8_MAX && job.down <= UINT8_MAX && places <= kPlaces &&
         // Clearing the tables and adding them up pays from about six pixels a place on.
         8 * places <= int64_t{job.roi.width} * job.roi.height &&
         // Counters that overlap in part cannot be added up in another order than that of the pixels.
         job.hist.step % int32_t{sizeof(int32_t)} == 0;
}

void count_places(const uint16_t* places, int32_t count, uint16_t (*tables)[kPlaces]) {
  int32_t i = 0;
  for (; i + 4 <= count; i += 4) {
    ++tables[0][places[i]];
    ++tables[1][places[i + 1]];
    ++tables[2][places[i + 2]];
    ++tables[3][places[i + 3]];
  }
  for (; i < count; ++i) ++tables[0][places[i]];
}

// Counters that no pixel belongs to are not touched: their row may lie where no memory is.
void add_to_histogram(const uint16_t (*tables)[kPlaces], const JointJob& job) {
  uint16_t sums[kPlaces];
  for (int i = 0; i < kPlaces; ++i)
    sums[i] = static_cast<uint16_t>(tables[0][i] + tables[1][i] + tables[2][i] + tables[3][i]);
  for (int32_t y = 0; y < job.down; ++y)
    for (int32_t x = 0; x < job.across; ++x)
      if (const uint16_t sum = sums[y * (job.across + 1) + x])
        increment(row_of(job.hist, y) + x, sum);
}

void count_in_small_tables(const JointJob& job) {
  JointBins bins;
  for_values(job.column_levels, job.across,
             [&](int v, int64_t bin) { bins.columns[v] = static_cast<uint8_t>(bin); });
  for_values(job.row_levels, job.down,
             [&](int v, int64_t bin) { bins.rows[v] = static_cast<uint8_t>(bin); });
  bins.row_length = static_cast<int8_t>(job.across + 1);

  const auto find_places = histogram_kernels().find_places;
  for_parts(job.roi, [&](int64_t x0, int64_t y, RoiSize part) {
    uint16_t tables[4][kPlaces] = {};
    for (int32_t i = 0; i < part.height; ++i)
      for (int32_t x = 0; x < part.width; x += kBlock) {
        uint16_t places[kBlock];
        const int32_t count = part.width - x < kBlock ? part.width - x : kBlock;
        find_places(row_of(job.src, y + i) + 2 * (x0 + x), count, bins, places);
        count_places(places, count, tables);
      }
    add_to_histogram(tables, job);
  });
}

// In the histogram itself: by the value of one channel, how far from `start` the counters of its bin
// lie, in bytes. Rows of counters start at the histogram's address and columns at 0, so that the two of
// a pixel add up to the address of its counter. kOutside is more than any such sum.
constexpr int64_t kOutside = int64_t{1} << 61;
struct Offsets {
  int64_t of[256];
  bool all_inside;
};

Offsets offsets_of(const int32_t* levels, int32_t count, int64_t start, int32_t step) {
  Offsets offsets;
  offsets.all_inside = for_values(levels, count, [&](int v, int64_t bin) {
    offsets.of[v] = bin == count ? kOutside : start + bin * step;
  });
  return offsets;
}

template <bool all_inside>
void count_pairs(const uint8_t* row, int64_t width, const Offsets& columns, const Offsets& rows) {
  uint32_t discarded = 0;
  const auto count = [&](uint8_t first, uint8_t second) {
    const int64_t at = columns.of[first] + rows.of[second];
    void* counter = reinterpret_cast<void*>(static_cast<uintptr_t>(at));
    if (!all_inside) counter = at < kOutside / 2 ? counter : &discarded;
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

void count_in_histogram(const JointJob& job) {
  const auto start = static_cast<int64_t>(reinterpret_cast<uintptr_t>(job.hist.data));
  const Offsets columns = offsets_of(job.column_levels, job.across, 0, sizeof(int32_t));
  const Offsets rows = offsets_of(job.row_levels, job.down, start, job.hist.step);
  const auto count = columns.all_inside && rows.all_inside ? count_pairs<true> : count_pairs<false>;
  for (int32_t y = 0; y < job.roi.height; ++y)
    count(row_of(job.src, y), job.roi.width, columns, rows);
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

  const JointJob job = {.src = src,
                        .roi = roi,
                        .hist = {hist, histStep},
                        .across = across,
                        .down = down,
                        .column_levels = levels,
                        .row_levels = levels + int64_t{across} + 1};
  if (histogram_kernels().find_places != nullptr && fits_small_tables(job))
    count_in_small_tables(job);
  else
    count_in_histogram(job);
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

// Canny's passes over all pixels: gradient magnitude, non-maximum suppression, hysteresis sweeps, output.
#include "core/simd/arithmetic.h"
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/reduce.h"
#include "features/canny.h"

namespace nuqi::NUQI_ISA {
namespace {

using Cells = Reg<int16_t>;
constexpr int kCells = Cells::kLanes;
static_assert(kCells >= kCannyNarrow);

// Saturates -32768 to 32767, as the contract has it for magnitudes; direction tests do not tell the two
// apart.
NUQI_INLINE Cells absolute(const Cells& a) { return max(a, subtract_saturated(Cells{}, a)); }

// Calls body(x, part, done) for each block of a row. The last block overlaps the one before it by `done`
// pixels, which is cheaper than a tail.
template <class Body>
NUQI_INLINE void for_row(int64_t width, const Body& body) {
  if (width < kCells) return body(0, First{int(width)}, 0);
  int64_t x = 0;
  for (; x + kCells <= width; x += kCells) body(x, Whole{}, 0);
  if (x < width) body(width - kCells, Whole{}, int(x + kCells - width));
}

// The magnitudes of row y, zero where they do not exceed `low`. The row below the image is all zeros.
void magnitude_row(const CannyJob& job, int32_t y, int16_t* cells) {
  const int64_t width = job.roi.width;
  if (y == job.roi.height) {
    __builtin_memset(cells, 0, (width + 2) * sizeof *cells);
    return;
  }
  // Deliberate: each image is walked by the other's step.
  const int16_t* dx_row = row_of(Image<const int16_t>{job.dx.data, job.dy.step}, y);
  const int16_t* dy_row = row_of(Image<const int16_t>{job.dy.data, job.dx.step}, y);
  const auto low = broadcast<int16_t, kCells>(job.low);
  const auto most = broadcast<uint16_t, kCells>(INT16_MAX);

  for_row(width, [&](int64_t x, auto part, int) NUQI_FORCED {
    const Cells dx = absolute(load<kCells>(dx_row + x, part));
    const Cells dy = absolute(load<kCells>(dy_row + x, part));
    const Cells m = as<int16_t>(min(as<uint16_t>(dx) + as<uint16_t>(dy), most));
    store(cells + 1 + x, keep(m > low, m));
  });
}

// Three rows of magnitudes, each between two zero cells.
struct Ring {
  int16_t *above, *here, *below;

  void rotate() {
    int16_t* const oldest = above;
    above = here;
    here = below;
    below = oldest;
  }
};

// Non-maximum suppression. Of the pixels that survive, those above `high` are edges (strong), the others
// are open (weak).
void suppress_row(const CannyJob& job, int32_t y, const Ring& ring) {
  const int16_t* dx_row = row_of(job.dx, y);
  const int16_t* dy_row = row_of(job.dy, y);
  const int16_t *above = ring.above + 1, *here = ring.here + 1, *below = ring.below + 1;
  CannyWord* const edges = job.edges + y * job.row_words;
  CannyWord* const open = job.open + y * job.row_words;
  const auto high = broadcast<int16_t, kCells>(job.high);
  const auto slope = broadcast<int16_t, kCells>(1697 * 16);
  const auto fraction = broadcast<int16_t, kCells>(4095);

  uint64_t kept = 0, seeds = 0;
  for_row(job.roi.width, [&](int64_t x, auto part, int done) NUQI_FORCED {
    const int64_t first = x + done, end = first + kCells;
    const Cells m = load<kCells>(here + x);
    if (bits_below(Cells{}, m) != 0) {
      const Cells sx = load<kCells>(dx_row + x, part), sy = load<kCells>(dy_row + x, part);
      const Cells dx = absolute(sx), dy = absolute(sy);
      // The largest integer below |dx| * 1697 / 4096. So |dy| * 4096 < |dx| * 1697 where |dy| does
      // not exceed it, and |dy| * 4096 < |dx| * 9889 where |dy| - 2 * |dx| does not.
      const Cells bound = multiply_high(dx + ((dx & fraction) == Cells{}), slope);
      const Cells steep = subtract_saturated(dy - dx, dx);

      const auto pair = [&](const int16_t* a, const int16_t* b)
                            NUQI_FORCED { return max(load<kCells>(a + x), load<kCells>(b + x)); };
      const Cells diagonal =
          select((sx ^ sy) < Cells{}, pair(above + 1, below - 1), pair(above - 1, below + 1));
      const Cells not_across = select(steep > bound, pair(above, below), diagonal);
      const Cells rival = select(dy > bound, not_across, pair(here - 1, here + 1));
      // Deliberate: of two equal neighbours neither stays.
      const uint64_t stays = bits_below(rival, m), strong = bits_below(high, m);
      kept |= stays >> done << first % kCannyWordPixels;
      seeds |= (stays & strong) >> done << first % kCannyWordPixels;
    }
    if (end % kCannyWordPixels == 0 || end >= job.roi.width) {
      edges[first / kCannyWordPixels] = seeds;
      open[first / kCannyWordPixels] = kept & ~seeds;
      kept = seeds = 0;
    }
  });
}

void find(const CannyJob& job) {
  // Rows narrower than a register: a buffer of the queried size has no room for whole registers.
  constexpr int kNarrowRow = kCells + 2;
  int16_t narrow[3 * kNarrowRow];
  const bool is_narrow = job.roi.width < kCells;
  int16_t* const cells = is_narrow ? narrow : job.magnitudes;
  const int64_t row_cells = is_narrow ? kNarrowRow : int64_t{job.roi.width} + 2;
  __builtin_memset(cells, 0, 3 * row_cells * sizeof *cells);

  Ring ring = {cells, cells + row_cells, cells + 2 * row_cells};
  magnitude_row(job, 0, ring.here);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    magnitude_row(job, y + 1, ring.below);
    suppress_row(job, y, ring);
    ring.rotate();
  }
}

// ---- Hysteresis sweeps, a register of words at a time. A map is one array of words: the words above and
// below are row_words away.

using Words = Reg<uint64_t>;
constexpr int kWords = Words::kLanes;

NUQI_INLINE Words load_words(const CannyWord* from) { return load<kWords>((const uint64_t*)from); }

// The left and right neighbours within each word.
NUQI_INLINE Words left_and_right(const Words& pixels) { return pixels << 1 | pixels >> 1; }

// The pixels themselves and their left and right neighbours, across word boundaries.
NUQI_INLINE Words reach_of(const CannyWord* words) {
  const Words here = load_words(words);
  return here | left_and_right(here) | load_words(words - 1) >> 63 | load_words(words + 1) << 63;
}

// Turns into edges the open pixels next to an edge of the same words or of those `away`, and most of what
// these reach in turn: the whole run of open pixels to the right (an addition's carry propagates along
// it) and three pixels to the left. Neighbouring words of the same row are left to push(): they have just
// been stored, and a load that spans two recent stores fails store forwarding.
NUQI_INLINE void pull(const CannyJob& job, int64_t i, int64_t away) {
  const Words open = load_words(job.open + i), edges = load_words(job.edges + i);
  const Words kept = open | edges;
  const Words seeds = edges | (open & (left_and_right(edges) | reach_of(job.edges + i + away)));
  Words runs = (((kept + seeds) ^ kept) | seeds) & kept;
  runs = runs | (runs >> 1 & kept);
  runs = runs | (runs >> 2 & kept & kept >> 1);
  store((uint64_t*)job.edges + i, runs);
  store((uint64_t*)job.open + i, kept & ~runs);
}

// Turns the open neighbours of edges into edges, and pushes their words.
NUQI_INLINE int64_t push(const CannyJob& job, int64_t i, int64_t count) {
  const Words found = load_words(job.open + i) &
                      (reach_of(job.edges + i - job.row_words) | reach_of(job.edges + i) |
                       reach_of(job.edges + i + job.row_words));
  if (!any(found)) return count;
  uint64_t words[kWords];
  store(words, found);
  for (int k = 0; k < kWords; ++k) {
    if (words[k] == 0) continue;
    job.edges[i + k] |= words[k];
    job.open[i + k] &= ~words[k];
    store_one(job.stack + count++, (uint32_t)(i + k));
  }
  return count;
}

int64_t sweep(const CannyJob& job) {
  const int64_t words = job.roi.height * job.row_words, last = words - kWords;
  int64_t count = 0;
  if (last < 0) {  // a few rows of one word: nothing to sweep
    for (int64_t i = 0; i < words; ++i)
      if (job.edges[i] != 0) store_one(job.stack + count++, (uint32_t)i);
    return count;
  }
  // One sweep down and one up, interleaved: two independent dependency chains through memory. The last
  // block overlaps the one before it.
  for (int64_t i = 0; i < last; i += kWords) {
    pull(job, i, -job.row_words);
    pull(job, last - i, job.row_words);
  }
  pull(job, last, -job.row_words);
  pull(job, 0, job.row_words);
  for (int64_t i = 0; i < last; i += kWords) count = push(job, i, count);
  return push(job, last, count);
}

void write(const CannyJob& job) {
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const CannyWord* edges = job.edges + y * job.row_words;
    uint8_t* dst = row_of(job.dst, y);
    for_blocks<kCannyWordPixels>(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      store(dst + x, bytes_of_bits(edges[x / kCannyWordPixels]), part);
    });
  }
}

}  // namespace

const CannyKernels canny_kernels = {find, sweep, write};

}  // namespace nuqi::NUQI_ISA

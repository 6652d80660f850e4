// What the entries of Canny share with its kernels: the layout of the buffer, and the job.
#pragma once

#include "core/image.h"
#include "core/isa.h"
#include "core/scratch.h"

namespace nuqi {

// One bit for each of 64 pixels of a row, the first in the lowest. The caller's buffer, and so a
// word, has any alignment.
typedef uint64_t CannyWord __attribute__((aligned(1), may_alias));
constexpr int kCannyWordPixels = 64;

// The magnitudes of narrower rows lie in the kernel: a buffer of the queried size may lack the room.
constexpr int kCannyNarrow = 8;

// How the buffer is used. A map is height rows of row_words words, the last of which stays zero; a row
// and a word of zeros lie before, between and after the maps. So every word has eight neighbours.
struct CannyPlan {
  int64_t row_words;
  Region<int16_t> magnitudes;  // three rows of width + 2 cells
  Region<uint64_t> maps;       // both maps and the zeros
  int64_t open;                // words of `maps` before the pixels that no edge has reached yet
  int64_t edges;               // and before the known edges
  Region<uint32_t> stack;      // numbers of words, room for one each pixel
  int64_t end;                 // of the stack
  int64_t size;                // what the query tells: at least `end`
};

// False where the size exceeds an int.
constexpr bool plan_canny(RoiSize roi, CannyPlan& plan) {
  const int64_t width = roi.width, height = roi.height, cells = (width + 2) * (height + 2);
  if (!fits_int(cells)) return false;  // the products below can exceed 64 bits
  plan.row_words = (width + kCannyWordPixels - 1) / kCannyWordPixels + 1;
  const int64_t zeros = plan.row_words + 1, map = height * plan.row_words;
  plan.open = zeros;
  plan.edges = zeros + map + zeros;

  ScratchLayout layout;
  plan.magnitudes = layout.add<int16_t>(width < kCannyNarrow ? 0 : 3 * (width + 2));
  plan.maps = layout.add<uint64_t>(plan.edges + map + zeros);
  plan.stack = layout.add<uint32_t>(width * height);
  plan.end = layout.end();
  plan.size = 12 * cells;
  return fits_int(plan.size);
}

struct CannyJob {
  Image<const int16_t> dx, dy;
  Image<uint8_t> dst;
  RoiSize roi;
  int16_t low, high;
  int16_t* magnitudes;
  CannyWord *open, *edges;
  uint32_t* stack;
  int64_t row_words;
};

struct CannyKernels {
  void (*find)(const CannyJob&);      // derivatives to both maps
  int64_t (*sweep)(const CannyJob&);  // edges to most that they reach; how many words it has pushed
  void (*write)(const CannyJob&);     // `edges` to the destination
};

NUQI_KERNEL_TABLES(CannyKernels, canny_kernels)

}  // namespace nuqi

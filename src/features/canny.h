// What the entries of Canny share with its kernels: the layout of the buffer, and the job.
#pragma once

#include "core/image.h"
#include "core/isa.h"

namespace nuqi {

// One bit for each of 64 pixels of a row, the first in the lowest. The caller's buffer, and so a
// word, has any alignment.
typedef uint64_t CannyWord __attribute__((aligned(1), may_alias));
constexpr int kCannyWordPixels = 64;

// The magnitudes of narrower rows lie in the kernel: a buffer of the queried size may lack the room.
constexpr int kCannyNarrow = 8;

// How the buffer is used, in this order:
//   magnitudes  three rows of width + 2 cells of 16 bits
//   open        a map of the pixels that suppression kept and that no edge has reached yet
//   edges       a map of the pixels known to be edges
//   stack       32-bit numbers of words, room for one each pixel
// A map is height rows of row_words words, the last of which stays zero; a row and a word of zeros
// lie before, between and after the maps. So every word has eight neighbours.
struct CannyPlan {
  int64_t row_words;
  int64_t maps, open, edges, stack, end;  // in bytes from the start
  int64_t size;                           // what the query tells: at least `end`
};

// False where the size exceeds an int.
constexpr bool plan_canny(RoiSize roi, CannyPlan& plan) {
  const int64_t width = roi.width, height = roi.height, cells = (width + 2) * (height + 2);
  if (cells > INT32_MAX / 12) return false;  // before the product: it can exceed 64 bits
  constexpr int64_t kWordBytes = sizeof(CannyWord), kCellBytes = sizeof(int16_t);
  plan.row_words = (width + kCannyWordPixels - 1) / kCannyWordPixels + 1;
  const int64_t zeros = (plan.row_words + 1) * kWordBytes;
  const int64_t map = height * plan.row_words * kWordBytes;
  plan.maps = width < kCannyNarrow ? 0 : 3 * (width + 2) * kCellBytes;
  plan.open = plan.maps + zeros;
  plan.edges = plan.open + map + zeros;
  plan.stack = plan.edges + map + zeros;
  plan.end = plan.stack + width * height * static_cast<int64_t>(sizeof(uint32_t));
  plan.size = 12 * cells;
  return true;
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

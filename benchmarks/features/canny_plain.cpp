// A plain Canny, as one would write it: a map of cells with a border, and a stack. Compiled by each
// compiler. Takes rows without padding and aligned buffers of the queried size.
#include "features/canny_plain.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

constexpr int16_t kEdge = INT16_MIN;

struct Map {
  int16_t* cells;  // row 0 and column 0 are the border's
  int64_t step;
};

void magnitudes(const test::CannyArgs& a, const Map& map, int low) {
  for (int y = 0; y < a.roi.height; ++y) {
    const int64_t row = int64_t{y} * a.roi.width;
    const int16_t* dx = a.dx + row;
    const int16_t* dy = a.dy + row;
    int16_t* __restrict cells = map.cells + (y + 1) * map.step + 1;
    for (int x = 0; x < a.roi.width; ++x) {
      const int m = std::min(std::abs(dx[x]) + std::abs(dy[x]), 32767);
      cells[x] = static_cast<int16_t>(m > low ? m : 0);
    }
  }
}

uint32_t* suppress(const test::CannyArgs& a, const Map& map, int high, uint32_t* stack) {
  for (int y = 0; y < a.roi.height; ++y)
    for (int x = 0; x < a.roi.width; ++x) {
      int16_t* cell = map.cells + (y + 1) * map.step + 1 + x;
      if (*cell <= 0) continue;
      const int64_t i = int64_t{y} * a.roi.width + x;
      const int dx = a.dx[i], dy = a.dy[i];
      int64_t beside = map.step;
      if (std::abs(dy) * 4096 < std::abs(dx) * 1697)
        beside = 1;
      else if (std::abs(dy) * 4096 < std::abs(dx) * 9889)
        beside = (dx ^ dy) >= 0 ? map.step + 1 : map.step - 1;
      const int other = std::max(std::abs(cell[-beside]), std::abs(cell[beside]));
      if (*cell <= other)
        *cell = static_cast<int16_t>(-*cell);
      else if (*cell > high)
        *stack++ = static_cast<uint32_t>(cell - map.cells);
    }
  return stack;
}

void walk(const Map& map, uint32_t* stack, uint32_t* top) {
  const int64_t beside[8] = {-map.step - 1, -map.step, -map.step + 1, -1, 1,
                             map.step - 1,  map.step,  map.step + 1};
  for (uint32_t* seed = stack; seed != top; ++seed) map.cells[*seed] = kEdge;
  while (top != stack) {
    int16_t* cell = map.cells + *--top;
    for (int64_t offset : beside)
      if (cell[offset] > 0) {
        cell[offset] = kEdge;
        *top++ = static_cast<uint32_t>(cell + offset - map.cells);
      }
  }
}

void output(const test::CannyArgs& a, const Map& map) {
  for (int y = 0; y < a.roi.height; ++y) {
    const int16_t* cells = map.cells + (y + 1) * map.step + 1;
    uint8_t* __restrict dst = a.dst + int64_t{y} * a.dstStep;
    for (int x = 0; x < a.roi.width; ++x) dst[x] = cells[x] == kEdge ? 255 : 0;
  }
}

}  // namespace

void plain_canny(const test::CannyArgs& a) {
  const Map map = {static_cast<int16_t*>(a.buffer), a.roi.width + 2};
  const int64_t cells = map.step * (a.roi.height + 2);
  std::memset(map.cells, 0, cells * sizeof *map.cells);
  uint32_t* stack = reinterpret_cast<uint32_t*>(map.cells + (cells + 1) / 2 * 2);
  magnitudes(a, map, static_cast<int>(a.low));
  walk(map, stack, suppress(a, map, static_cast<int>(a.high), stack));
  output(a, map);
}

}  // namespace nuqi::bench::PLAIN_COMPILER

// Tests of the states of erosion and dilation.
#include "morph/morph_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/heap.h"

namespace nuqi::test {
namespace {

struct Request {
  int32_t width = 10, type = k8u, channels = 1;
  RoiSize size = {3, 3};
  PixelPoint anchor = {1, 1};
  int32_t shape = kRectangle;
  const int32_t* mask = nullptr;
};

StatusCode make(const Request& r, MorphState** state) {
  return nuqiMorphologyInitAlloc(r.width, r.type, r.channels, r.size, r.anchor, r.shape, r.mask,
                                 state);
}
MorphState* made(const Request& r) {
  MorphState* state = nullptr;
  EXPECT_EQ(make(r, &state), StatusOk);
  return state;
}

// The element as text, a line for each row.
std::vector<std::string> inside_of(const MorphState& state) {
  const bool widened = state.dataType == k8u;
  std::vector<std::string> rows;
  for (int64_t y = 0; y < state.maskHeight; ++y) {
    rows.emplace_back();
    for (int64_t x = 0; x < state.maskWidth; ++x) {
      const int64_t entry = (y * state.maskWidth + x) * (widened ? 8 : 1);
      for (int copy = 0; copy < (widened ? 8 : 1); ++copy) {
        EXPECT_EQ(state.inside[entry + copy], state.inside[entry]);
        EXPECT_EQ(state.outside[entry + copy], state.inside[entry] ^ 0xFF);
      }
      EXPECT_TRUE(state.inside[entry] == 0 || state.inside[entry] == 0xFF);
      rows.back() += state.inside[entry] != 0 ? '#' : '.';
    }
  }
  return rows;
}

using Rows = std::vector<std::string>;

TEST(MorphState, MasksTakeAnyNonZeroEntry) {
  const int32_t mask[] = {0, 1, -1, 256, 0, INT32_MIN};
  for (int32_t type : {k8u, k32f}) {
    const MorphState* state =
        made({.type = type, .size = {3, 2}, .shape = kArbitrary, .mask = mask});
    EXPECT_EQ(inside_of(*state), (Rows{".##", "#.#"}));
  }
}

// Oddity: the middle row of an odd height is empty, and a run of the whole width reaches one pixel into
// the next row.
TEST(MorphState, EllipsesHaveNoMiddleRow) {
  const auto ellipse = [](RoiSize size) {
    const auto drawn = [&](int32_t type) {
      const MorphState* state =
          made({.type = type, .size = size, .anchor = {0, 0}, .shape = kEllipse});
      EXPECT_EQ(state->shape, kArbitrary);
      return inside_of(*state);
    };
    EXPECT_EQ(drawn(k8u), drawn(k32f));
    return drawn(k8u);
  };
  EXPECT_EQ(ellipse({3, 3}), (Rows{".#.", "...", ".#."}));
  EXPECT_EQ(ellipse({5, 5}), (Rows{"..#..", "#####", ".....", "#####", "..#.."}));
  EXPECT_EQ(ellipse({1, 1}), (Rows{"."}));
  EXPECT_EQ(ellipse({4, 5}), (Rows{"..#.", "####", "#...", "####", "#.#."}));
  EXPECT_EQ(ellipse({2, 4}), (Rows{".#", "##", "##", "##"}));
}

int64_t rounded_down(int64_t value, int64_t multiple) { return value / multiple * multiple; }

// The block's size and the places of its parts, as the contract gives them for 32 bits; 64-bit machines
// add 32 bytes for the header and 4 for each pointer of the table.
TEST(MorphState, Layout) {
  const int32_t mask[7 * 4] = {1};
  for (int32_t type : {k8u, k32f})
    for (int32_t channels : {1, 3, 4})
      for (int32_t shape : {kRectangle, kCross, kEllipse, kArbitrary})
        for (int32_t width : {1, 10, 333}) {
          WatchedHeap heap;
          const MorphState& s = *made({width, type, channels, {7, 4}, {6, 2}, shape, mask});
          const int64_t es = type == k32f ? 4 : 1, px = es * channels,
                        more = sizeof(void*) == 8 ? 32 : 0;
          const int64_t rows = 4 + (type == k32f ? 2 : 1);
          const int64_t pitch = rounded_down(px * width + px * 7 - 1 + 17 * px, 8 * es);
          const int64_t masks = shape == kEllipse || shape == kArbitrary ? 16 * 7 * 4 : 0;
          const int64_t pointer = sizeof(void*);
          EXPECT_EQ(
              heap.last_size,
              static_cast<size_t>(
                  rounded_down(more + (pitch + pointer) * rows + masks + 79 + px * 7, 8) + 68));
          const auto* block = reinterpret_cast<const uint8_t*>(&s);
          EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
          EXPECT_EQ(s.firstRow - block, more + rounded_down(px * 6 + 63 + 8 * es, 8 * es));
          EXPECT_GE(s.firstRow - block, int64_t{sizeof(MorphState)});
          EXPECT_EQ(s.rowStep, pitch);
          EXPECT_EQ(s.spareRows - s.firstRow, 4 * pitch);
          EXPECT_EQ(s.inside - s.firstRow, rows * pitch);
          EXPECT_EQ(s.outside - s.inside, masks / 2);
          EXPECT_EQ(reinterpret_cast<uint8_t*>(s.rows) - s.inside, masks);
          EXPECT_LE(reinterpret_cast<uint8_t*>(s.rows + rows), heap.last_block + heap.last_size);
          EXPECT_EQ(std::vector<int32_t>({s.maskWidth, s.maskHeight, s.anchorX, s.anchorY,
                                          s.maxWidth, s.dataType, s.channels, s.held}),
                    std::vector<int32_t>({7, 4, 6, 2, width, type, channels, 0}));
        }
}

// Each row breaks two rules and names the status that must win.
TEST(MorphStateStatus, FirstFailureWinsAndThePointerIsNull) {
  const auto expect = [](const char* what, StatusCode status, const Request& request) {
    MorphState marker, *state = &marker;
    EXPECT_EQ(make(request, &state), status) << what;
    EXPECT_EQ(state != nullptr, status == StatusOk) << what;
  };
  EXPECT_EQ(make({.width = 0}, nullptr), StatusNullPtr);
  expect("width 0, type 2", StatusBadSize, {.width = 0, .type = k8s});
  for (int32_t type : {-1, 0, 2, 3, 8, 10})
    expect("type, 2 channels", StatusBadDataType, {.type = type, .channels = 2});
  for (int32_t channels : {-1, 0, 2, 5})
    expect("channels, no columns", StatusBadChannels, {.channels = channels, .size = {0, 3}});
  expect("no columns, anchor outside", StatusBadSize, {.size = {0, 3}});
  expect("no rows, anchor outside", StatusBadSize, {.size = {3, -1}});
  for (PixelPoint anchor : {PixelPoint{3, 1}, {1, 3}, {-1, 1}, {1, -1}, {INT32_MIN, 0}})
    expect("anchor, shape 3", StatusBadArg, {.anchor = anchor, .shape = 3});
  for (int32_t shape : {-1, 3, 99, 101}) expect("shape", StatusBadArg, {.shape = shape});
  expect("no mask", StatusNullPtr, {.shape = kArbitrary});
  expect("no mask, beyond memory", StatusNullPtr, {.width = INT32_MAX, .shape = kArbitrary});
  expect("the last pixel as anchor", StatusOk, {.anchor = {2, 2}});
}

// Products are tested before they are formed: here three factors of 31 bits wrap to little in 64 bits.
TEST(MorphStateStatus, NoMemory) {
  const int32_t mask[1] = {1};
  WatchedHeap heap(true);
  const auto expect = [&](const Request& request, int asked) {
    MorphState marker, *state = &marker;
    heap.refused = 0;
    EXPECT_EQ(make(request, &state), StatusNoMemory);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(heap.refused, asked) << "asked for fewer bytes than it needs";
  };
  expect({}, 1);
  expect({1610612720, k32f, 4, {268435456, 536870910}, {0, 0}, kRectangle, nullptr}, 0);
  expect({INT32_MAX, k8u, 1, {3, 3}, {1, 1}, kRectangle, nullptr}, 0);
  expect({INT32_MAX, k32f, 4, {INT32_MAX, INT32_MAX}, {0, 0}, kArbitrary, mask}, 0);
  expect({1, k8u, 1, {16384, 16384}, {0, 0}, kEllipse, nullptr}, 0);  // 2^32 bytes of masks
  // Rows of 16 bytes, and a pointer for each.
  expect({1, k8u, 1, {1, 180000000}, {0, 0}, kRectangle, nullptr}, sizeof(void*) == 8 ? 0 : 1);
}

// Oddity: the release leaves the block allocated, and as it is, also where the contract would have read
// the mask's width as the address of a block.
TEST(MorphologyFree, SucceedsAndLeavesTheBlockAllocated) {
  EXPECT_EQ(nuqiMorphologyFree(nullptr), StatusNullPtr);
  WatchedHeap heap;
  for (int32_t width : {3, 32, 64}) {
    MorphState* state = made({.size = {width, 3}});
    const std::vector<uint8_t> before(heap.last_block, heap.last_block + heap.last_size);
    const int freed = heap.freed;
    EXPECT_EQ(nuqiMorphologyFree(state), StatusOk);
    EXPECT_EQ(nuqiMorphologyFree(state), StatusOk);
    EXPECT_EQ(heap.freed, freed);
    EXPECT_EQ(before, std::vector<uint8_t>(heap.last_block, heap.last_block + heap.last_size));
  }
}

}  // namespace
}  // namespace nuqi::test

// Tests of the filter states.
#include "filters/convol_state.h"

#include <gtest/gtest.h>

#include <array>

#include "filters/sobel_reference.h"
#include "support/heap.h"
#include "support/stripe_members.h"

namespace nuqi::test {
namespace {

template <class C>
std::vector<int> table_of(const uint8_t (&table)[256], int size) {
  std::vector<int> c;
  for (int i = 0; i <= size; ++i) {
    for (int copy = 1; copy < 4; ++copy) {
      C value;
      std::memcpy(&value, table + (4 * i + copy) * sizeof(C), sizeof value);
      EXPECT_EQ(value, coefficient<C>(table, i));
    }
    c.push_back(static_cast<int>(coefficient<C>(table, i)));
  }
  return c;
}
std::vector<int> with_end(std::vector<int> kernel) {
  kernel.push_back(0);
  return kernel;
}

TEST(ConvolState, SobelKernelsOfEveryShape) {
  for (int size : {3, 5, 7})
    for (int x = 0; x < size; ++x)
      for (int y = 0; y < size; ++y)
        for (int flip : {0, 1})
          for (int32_t type : {k8u, k8s, k32f}) {
            ConvolState* state = nullptr;
            ASSERT_EQ(nuqiSobelInitAlloc(1, type, size, flip, x, y, &state), StatusOk);
            const SobelShape shape = {size, flip, x, y};
            const auto kx = type == k32f ? table_of<float>(state->xKernel, size)
                                         : table_of<int16_t>(state->xKernel, size);
            const auto ky = type == k32f ? table_of<float>(state->yKernel, size)
                                         : table_of<int16_t>(state->yKernel, size);
            EXPECT_EQ(kx, with_end(x_kernel(shape)));
            EXPECT_EQ(ky, with_end(y_kernel(shape)));
            EXPECT_EQ(state->kind, size * 8 + flip * 4 + y % 2 * 2 + x % 2);
          }
}

void expect_layout(const ConvolState& state, int size, int buffers, int64_t pitch) {
  EXPECT_EQ(reinterpret_cast<uintptr_t>(&state) % 32, 0u);
  EXPECT_EQ(state.rowArea, &state + 1);
  EXPECT_EQ(state.pending, size);
  EXPECT_EQ(row_buffers(state), buffers);
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(state.rows[i], i < buffers ? (char*)state.rowArea + i * pitch : nullptr) << i;
}

TEST(ConvolState, Layout) {
  // Blocks that were in use before: nothing may depend on what they held.
  WatchedHeap heap;
  ConvolState *blur = nullptr, *sobel = nullptr, *laplace = nullptr;
  ASSERT_EQ(nuqiSobelInitAlloc(100, k8u, 5, 1, 0, 1, &sobel), StatusOk);
  expect_layout(*sobel, 5, 5, 416);
  EXPECT_EQ(sobel->kind, 46);
  ASSERT_EQ(nuqiLaplaceInitAlloc(9, k32f, 7, &laplace), StatusOk);
  expect_layout(*laplace, 7, 14, 64);
  EXPECT_EQ(laplace->kind, 56);
  EXPECT_EQ(table_of<float>(laplace->xKernel, 7), with_end(derivative_kernel(7, 2)));
  EXPECT_EQ(table_of<float>(laplace->yKernel, 7), with_end(derivative_kernel(7, 0)));
  ASSERT_EQ(nuqiBlurInitAlloc(8, k8s, 7, &blur), StatusOk);
  expect_layout(*blur, 7, 8, 32);
  EXPECT_EQ(blur->kind, 56);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(blur->xKernel[i] | blur->yKernel[i], 0);
  EXPECT_EQ(heap.last_size, sizeof(ConvolState) + 8 * 32 + 68);
}

// Each row breaks two rules, and names the status that must win.
TEST(ConvolStateStatus, FirstFailureWinsAndThePointerStays) {
  ConvolState marker;
  const auto sobel = [&](int32_t width, int32_t type, int32_t size, int32_t flip, int32_t x,
                         int32_t y) {
    ConvolState* state = &marker;
    const StatusCode status = nuqiSobelInitAlloc(width, type, size, flip, x, y, &state);
    EXPECT_TRUE(state == &marker || status == StatusOk);
    return status;
  };
  EXPECT_EQ(nuqiSobelInitAlloc(0, k8u, 3, 0, 1, 0, nullptr), StatusNullPtr);
  EXPECT_EQ(sobel(0, k8u, 3, 2, 1, 0), StatusBadSize);
  EXPECT_EQ(sobel(8, k8u, 4, 2, 1, 0), StatusUnsupported);
  EXPECT_EQ(sobel(8, k8u, 3, -1, 1, 0), StatusUnsupported);
  for (int32_t size : {-3, 1, 2, 4, 6, 8, 9}) EXPECT_EQ(sobel(8, 4, size, 0, 0, 0), StatusBadSize);
  EXPECT_EQ(sobel(8, 4, 3, 0, -1, 0), StatusBadSize);
  EXPECT_EQ(sobel(8, 4, 3, 0, 0, -1), StatusBadSize);
  EXPECT_EQ(sobel(8, 4, 3, 0, 3, 0), StatusBadSize);
  EXPECT_EQ(sobel(8, 4, 7, 0, 0, 7), StatusBadSize);
  for (int32_t type : {-1, 0, 3, 4, 8, 10})
    EXPECT_EQ(sobel(8, type, 3, 0, 2, 2), StatusUnsupported);
  EXPECT_EQ(sobel(8, k8u, 3, 1, 2, 0), StatusOk);

  for (auto init : {nuqiBlurInitAlloc, nuqiLaplaceInitAlloc}) {
    const auto made = [&](int32_t width, int32_t type, int32_t size) {
      ConvolState* state = &marker;
      const StatusCode status = init(width, type, size, &state);
      EXPECT_TRUE(state == &marker || status == StatusOk);
      return status;
    };
    EXPECT_EQ(init(0, k8u, 3, nullptr), StatusNullPtr);
    EXPECT_EQ(made(0, 4, 3), StatusBadSize);
    EXPECT_EQ(made(-1, k8u, 3), StatusBadSize);
    for (int32_t size : {-3, 1, 2, 4, 6, 8, 9}) EXPECT_EQ(made(8, 4, size), StatusBadSize);
    for (int32_t type : {-1, 0, 3, 4, 8, 10}) EXPECT_EQ(made(8, type, 3), StatusUnsupported);
    EXPECT_EQ(made(8, k8s, 5), StatusOk);
  }
}

// Sizes are 64-bit: 4 * width wraps at 2^30, and the allocator counts no more than 2^32 bytes.
TEST(ConvolStateStatus, NoMemory) {
  using Statuses = std::array<StatusCode, 3>;  // a vector would ask the heap that refuses
  ConvolState marker;
  const auto statuses = [&](int32_t width) {
    ConvolState *sobel = &marker, *blur = &marker, *laplace = &marker;
    const Statuses all = {nuqiSobelInitAlloc(width, k8u, 3, 0, 1, 0, &sobel),
                          nuqiBlurInitAlloc(width, k8u, 3, &blur),
                          nuqiLaplaceInitAlloc(width, k8u, 3, &laplace)};
    EXPECT_TRUE(sobel == &marker && blur == &marker && laplace == &marker);
    return all;
  };
  const Statuses none = {StatusNoMemory, StatusNoMemory, StatusNoMemory};
  WatchedHeap heap(true);
  EXPECT_EQ(statuses(8), none);
  EXPECT_EQ(heap.refused, 3);
  for (int32_t width : {1 << 29, 1 << 30, INT32_MAX}) EXPECT_EQ(statuses(width), none);
  EXPECT_EQ(heap.refused, 3) << "asked for fewer bytes than it needs";
}

// Oddity: the release leaves the block allocated, and as it is.
TEST(ConvolFree, SucceedsAndLeavesTheBlockAllocated) {
  EXPECT_EQ(nuqiConvolFree(nullptr), StatusNullPtr);
  WatchedHeap heap;
  ConvolState* state = nullptr;
  ASSERT_EQ(nuqiSobelInitAlloc(8, k8u, 3, 0, 1, 0, &state), StatusOk);
  const std::vector<uint8_t> before(heap.last_block, heap.last_block + heap.last_size);
  EXPECT_EQ(nuqiConvolFree(state), StatusOk);
  EXPECT_EQ(heap.freed, 0);
  EXPECT_EQ(before, std::vector<uint8_t>(heap.last_block, heap.last_block + heap.last_size));
}

}  // namespace
}  // namespace nuqi::test

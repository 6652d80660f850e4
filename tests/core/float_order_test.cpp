// Tests of the order of floats as integers.
#include <gtest/gtest.h>

#include <bit>

#define NUQI_ISA   float_order_test
#define NUQI_LEVEL 0
#include "core/simd/float_order.h"
#include "core/simd/memory.h"

namespace nuqi::test {
namespace {

// Rising, from the NaN of the largest payload and a set sign to that with a clear one.
constexpr uint32_t kRising[] = {
    0xFFFFFFFF, 0xFFC00000, 0xFF800001, 0xFF800000, 0xFF7FFFFF, 0xBF800001, 0xBF800000, 0xBF7FFFFF,
    0x80800000, 0x807FFFFF, 0x80000001, 0x80000000, 0x00000000, 0x00000001, 0x007FFFFF, 0x00800000,
    0x3F7FFFFF, 0x3F800000, 0x3F800001, 0x7F7FFFFF, 0x7F800000, 0x7F800001, 0x7FC00000, 0x7FFFFFFF};
constexpr int kCount = sizeof kRising / sizeof *kRising;

TEST(FloatOrder, KeysRiseWithTheFloatsAndLeadBack) {
  for (int i = 0; i < kCount; ++i) {
    const int32_t bits = static_cast<int32_t>(kRising[i]), key = float_order(bits);
    EXPECT_EQ(float_order(key), bits);
    if (i > 0) {
      EXPECT_LT(float_order(static_cast<int32_t>(kRising[i - 1])), key) << i;
    }
  }
}

TEST(FloatOrder, VectorsHaveTheKeysOfTheirLanes) {
  namespace simd = nuqi::NUQI_ISA;
  for (int i = 0; i + 16 <= kCount; ++i) {
    int32_t keys[16];
    simd::store(keys, simd::float_order(simd::load(reinterpret_cast<const int32_t*>(kRising) + i)));
    for (int lane = 0; lane < 16; ++lane)
      EXPECT_EQ(keys[lane], float_order(static_cast<int32_t>(kRising[i + lane])));
  }
}

}  // namespace
}  // namespace nuqi::test

// Tests of the division of scratch buffers.
#include "core/scratch.h"

#include <gtest/gtest.h>

namespace nuqi::test {
namespace {

TEST(Scratch, RegionsFollowEachOtherWhereverTheBufferStarts) {
  ScratchLayout layout;
  const Region<int16_t> cells = layout.add<int16_t>(3);
  const Region<double> none = layout.add<double>(0);
  const Region<uint64_t> words = layout.add<uint64_t>(2);
  EXPECT_EQ(layout.size(), 3 * 2 + 2 * 8);
  EXPECT_EQ(words.count, 2);
  uint8_t buffer[23];
  const Scratch scratch(buffer + 1);
  const auto at = [&](const void* pointer) {
    return static_cast<const uint8_t*>(pointer) - buffer;
  };
  EXPECT_EQ(at(scratch[cells]), 1);
  EXPECT_EQ(at(scratch[none]), 7);
  EXPECT_EQ(at(scratch[words]), 7);
}

TEST(Scratch, AlignedRegionsFitTheSizeWhereverTheBufferStarts) {
  ScratchLayout layout(32);
  const Region<uint8_t> bytes = layout.add<uint8_t>(33);
  const Region<float> floats = layout.add<float>(8);
  const Region<int64_t> sums = layout.add<int64_t>(1);
  EXPECT_EQ(layout.end(), 64 + 32 + 32);
  alignas(64) uint8_t buffer[64 + 160];
  ASSERT_EQ(layout.size(), 160);
  for (uint8_t* start = buffer; start < buffer + 64; ++start) {
    const Scratch scratch(start, 32);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(scratch[bytes]) % 32, 0u);
    EXPECT_GE(scratch[bytes], start);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(scratch[floats]) % 32, 0u);
    EXPECT_GE(reinterpret_cast<uint8_t*>(scratch[floats]), scratch[bytes] + 33);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(scratch[sums]) % 32, 0u);
    EXPECT_GE(scratch[sums], reinterpret_cast<int64_t*>(scratch[floats] + 8));
    EXPECT_LE(reinterpret_cast<uint8_t*>(scratch[sums] + 1), start + layout.size());
  }
}

TEST(Scratch, SizesBeyondAnIntAreTold) {
  ScratchLayout layout;
  layout.add<int64_t>(INT32_MAX / 8);
  layout.add<uint8_t>(7);
  EXPECT_EQ(layout.size(), INT32_MAX);
  EXPECT_TRUE(fits_int(layout.size()));
  layout.add<uint8_t>(1);
  EXPECT_FALSE(fits_int(layout.size()));
  // width * height * 24 of the largest ROI exceeds 64 bits.
  ScratchLayout huge(32);
  for (int i = 0; i < 9; ++i) {
    huge.add<int32_t[6]>(int64_t{INT32_MAX} * INT32_MAX);
    EXPECT_FALSE(fits_int(huge.size()));
  }
}

}  // namespace
}  // namespace nuqi::test

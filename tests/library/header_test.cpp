// The public header in C++ and, through header_in_c.c, in C99.
#include <gtest/gtest.h>

#include "nuqi/nuqi.h"

extern "C" StatusCode add_in_c(const uint8_t* src, float* acc, int32_t width);

namespace nuqi::test {
namespace {

TEST(Header, WorksInC) {
  const uint8_t src[3] = {1, 2, 255};
  float acc[3] = {0.5f, 0, -1};
  ASSERT_EQ(add_in_c(src, acc, 3), StatusOk);
  EXPECT_EQ(acc[0], 1.5f);
  EXPECT_EQ(acc[2], 254.0f);
  EXPECT_EQ(add_in_c(nullptr, acc, 3), StatusNullPtr);
}

TEST(Header, TypesHaveTheirSizes) {
  EXPECT_EQ(sizeof(RoiSize), 8u);
  EXPECT_EQ(sizeof(PixelPoint), 8u);
  EXPECT_EQ(sizeof(StatusCode), 4u);
}

}  // namespace
}  // namespace nuqi::test

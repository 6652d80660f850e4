// The test program.
#include <gtest/gtest.h>

#include "support/crash.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  nuqi::test::report_crashes();
  return RUN_ALL_TESTS();
}

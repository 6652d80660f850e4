// The report of a crash names the test, the call and the wall; with a sanitizer too.
#include "support/crash.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "support/every_isa.h"
#include "support/walls.h"

namespace nuqi::test {
namespace {

void touch(const uint8_t* at) { (void)*static_cast<const volatile uint8_t*>(at); }

TEST(CrashDeathTest, NamesTheImageAndTheDistance) {
  WalledImage<uint16_t> image("source", Case{{17, 2}, Wall::before, {3}});
  uint8_t* const bytes = reinterpret_cast<uint8_t*>(image.data());
  EXPECT_DEATH(touch(bytes - 3),
               "Crash in CrashDeathTest.NamesTheImageAndTheDistance, level "
               "[a-z0-9]+, (read|touched) byte 3 before source\n");
  WalledBytes older(7, Wall::after, "mask"), buffer(5, Wall::after), newer(7, Wall::after, "mask");
  EXPECT_DEATH(*static_cast<volatile uint8_t*>(buffer.data() + 5) = 1,
               "(wrote|touched) byte 1 after buffer");
}

TEST(CrashDeathTest, NamesTheRowWhereEachHasWalls) {
  WalledImage<uint8_t> image("source", Case{{17, 3}, Wall::after, {kWallsBetween}});
  const uint8_t* const row = image.data() + image.step();
  EXPECT_DEATH(touch(image.data() - 8000), "(read|touched) byte 8000 before row 0 of source");
  EXPECT_DEATH(touch(row + 18), "(read|touched) byte 2 after row 1 of source");
  EXPECT_DEATH(touch(row - 5000), "(read|touched) byte 5000 before row 1 of source");
  EXPECT_DEATH(touch(row + image.step() + 17), "(read|touched) byte 1 after row 2 of source");
}

TEST(CrashDeathTest, SaysWhereThereIsNoWall) {
  const volatile uintptr_t low = 64;
  EXPECT_DEATH(touch(reinterpret_cast<const uint8_t*>(low)), "address 0x40, which is no wall");
  EXPECT_DEATH(raise(SIGILL), "illegal instruction");
}

class CrashDeathTestOf : public EveryIsa {};
NUQI_FOR_EVERY_ISA(CrashDeathTestOf);

TEST_P(CrashDeathTestOf, ACallIsNamedWithShapeAndLevel) {
  WalledImage<uint8_t> image("source", Case{{17, 2}});
  uint8_t dst[3 * 17];
  const auto call = [&](RoiSize roi) {
    const Running now("nuqiAbsDiffC_8u_C1R", roi);
    nuqiAbsDiffC_8u_C1R(image.data(), 17, dst, 17, roi, 1);
  };
  call({17, 2});
  // Which byte is touched first is the compiler's choice.
  EXPECT_DEATH(call({17, 3}), std::string(": nuqiAbsDiffC_8u_C1R 17x3, level ") + name_of(isa()) +
                                  ", (read|touched) byte [0-9]+ after source\n");
}

}  // namespace
}  // namespace nuqi::test

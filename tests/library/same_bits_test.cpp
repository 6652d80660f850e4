// The same bits everywhere: both compilers, every instruction set, 32 bits and other processors.
#include "library/same_bits.h"

#include <gtest/gtest.h>

#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// What each family's results over fixed inputs hash to, on every machine. A change of a constant is
// a change of the library's results.
struct Family {
  const char* name;
  void (*hash)(Hash&);
  uint64_t value;
};
const Family kFamilies[] = {
    {"accumulate", hash_accumulate, 0x6CF2B18A7F966E37},
    {"derivative3x3", hash_derivative3x3, 0xBF126CE115CA5C46},
    {"canny", hash_canny, 0x61A768FE55610C05},
    {"mean", hash_mean, 0xB3AF99C3307273F9},
    {"norm", hash_norm, 0xA64CBB607D35C17F},
    {"min_max", hash_min_max, 0xBE6BA9663C437B8B},
    {"abs_diff", hash_abs_diff, 0xAC7E7C2EBC280D46},
    {"copy", hash_copy, 0x5FEB7D3EC9F32585},
    {"motion_history", hash_motion_history, 0x4BE6A9CE1B60009C},
    {"fast_arctan", hash_fast_arctan, 0x783CFF63BA99D58E},
    {"blur", hash_blur, 0xE36D36248B744E31},
    {"sobel", hash_sobel, 0x9D997271001CB10D},
    {"laplace", hash_laplace, 0x2B230AE0BDD37440},
    {"sample_line", hash_sample_line, 0x722E714D4FECD9C9},
    {"histogram", hash_histogram, 0xEEE350EF450C6C67},
};

class SameBits : public EveryIsa {};
NUQI_FOR_EVERY_ISA(SameBits);

TEST_P(SameBits, OfEveryFamily) {
  for (const Family& family : kFamilies) {
    Hash hash;
    family.hash(hash);
    EXPECT_EQ(hash.value(), family.value)
        << family.name << ": 0x" << std::hex << std::uppercase << hash.value();
  }
}

}  // namespace
}  // namespace nuqi::test

// 32-bit x86 callers may keep their stack on multiples of 4; entries and kernels must cope.
#include <gtest/gtest.h>

#include "nuqi/nuqi.h"
#include "support/every_isa.h"

#if defined(__i386__)

namespace nuqi::test {
namespace {

// Calls `function` with these words as arguments, from a stack of alignment 4.
StatusCode call_from_odd_stack(void* function, const uint32_t* words, uint32_t count) {
  StatusCode status;
  __asm__ volatile(
      "movl %%esp, %%ebx\n"
      "andl $-64, %%esp\n"
      "subl $4, %%esp\n"  // with an even number of words pushed, the callee finds 4 mod 8
      "1: pushl -4(%[words], %[count], 4)\n"
      "decl %[count]\n"
      "jnz 1b\n"
      "call *%[function]\n"
      "movl %%ebx, %%esp\n"
      : "=a"(status), [count] "+c"(count)
      : [words] "S"(words), [function] "D"(function)
      : "ebx", "edx", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6",
        "xmm7");
  return status;
}

class OddStack : public EveryIsa {};
NUQI_FOR_EVERY_ISA(OddStack);

TEST_P(OddStack, Serves) {
  uint8_t src[37 * 2];
  float acc[37 * 2] = {};
  for (int i = 0; i < 37 * 2; ++i) src[i] = static_cast<uint8_t>(i);
  const auto word = [](const void* pointer) { return reinterpret_cast<uint32_t>(pointer); };
  const uint32_t words[6] = {word(src), 37, word(acc), 148, 37, 2};
  ASSERT_EQ(call_from_odd_stack(reinterpret_cast<void*>(nuqiAddSquare_8u32f_C1IR), words, 6),
            StatusOk);
  for (int i = 0; i < 37 * 2; ++i) EXPECT_EQ(acc[i], static_cast<float>(i * i));
}

}  // namespace
}  // namespace nuqi::test

#endif

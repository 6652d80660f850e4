// The caller's stack: how much of it calls take, and that on 32-bit x86 it may lie on multiples of 4.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "nuqi/nuqi.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

// Sanitizers and builds without optimisation have frames of their own.
#if defined(__OPTIMIZE__) && !defined(NUQI_SANITIZED)

// Bytes of a thread's stack that a call has written to, and all that the thread itself does.
int64_t written_by(const std::function<void()>& call) {
  constexpr uint64_t kPaint = 0x5AA5C33C5AA5C33C;
  alignas(64) static uint64_t stack[(1 << 20) / sizeof(uint64_t)];
  std::fill(std::begin(stack), std::end(stack), kPaint);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  EXPECT_EQ(pthread_attr_setstack(&attributes, stack, sizeof stack), 0);
  pthread_t thread;
  const auto run = [](void* what) -> void* {
    (*static_cast<const std::function<void()>*>(what))();
    return nullptr;
  };
  EXPECT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&call)),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  const auto* lowest = std::find_if(std::begin(stack), std::end(stack),
                                    [](uint64_t word) { return word != kPaint; });
  return (std::end(stack) - lowest) * int64_t{sizeof(uint64_t)};
}

constexpr RoiSize kRoi = {301, 200};
constexpr int32_t kBytes = 304, kFloats = 4 * kBytes;

struct Images {
  std::vector<uint8_t> bytes = std::vector<uint8_t>(kBytes * kRoi.height);
  std::vector<float> floats = std::vector<float>(kBytes * kRoi.height);
  std::vector<float> result = std::vector<float>(6 * kBytes * kRoi.height);
  std::vector<char> buffer;

  Images() {
    for (size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = static_cast<uint8_t>(i * i / 7), floats[i] = bytes[i];
  }
  void* buffer_of(int32_t size) { return buffer.resize(static_cast<size_t>(size)), buffer.data(); }
};

using Filter = decltype(nuqiSobel_8u16s_C1R);
void filter(Images& images, Filter* of, ConvolState* state) {
  RoiSize roi = kRoi;
  EXPECT_EQ(of(images.bytes.data(), kBytes, reinterpret_cast<int16_t*>(images.result.data()),
               2 * kBytes, &roi, state, 0),
            StatusOk);
}
void sobel(Images& images) {
  ConvolState* state = nullptr;
  ASSERT_EQ(nuqiSobelInitAlloc(kRoi.width, 1, 7, 0, 1, 0, &state), StatusOk);
  filter(images, nuqiSobel_8u16s_C1R, state);
}
void laplace(Images& images) {
  ConvolState* state = nullptr;
  ASSERT_EQ(nuqiLaplaceInitAlloc(kRoi.width, 1, 7, &state), StatusOk);
  filter(images, nuqiLaplace_8u16s_C1R, state);
}
void blur(Images& images) {
  ConvolState* state = nullptr;
  ASSERT_EQ(nuqiBlurInitAlloc(kRoi.width, 1, 7, &state), StatusOk);
  filter(images, nuqiBlur_8u16s_C1R, state);
}
void canny(Images& images) {
  int32_t size = 0;
  ASSERT_EQ(nuqiCannyGetSize(kRoi, &size), StatusOk);
  const auto* derivative = reinterpret_cast<const int16_t*>(images.floats.data());
  EXPECT_EQ(nuqiCanny_16s8u_C1R(derivative, 2 * kBytes, derivative, 2 * kBytes,
                                reinterpret_cast<uint8_t*>(images.result.data()), kBytes, kRoi, 10,
                                20, images.buffer_of(size)),
            StatusOk);
}
void histogram(Images& images) {
  uint8_t levels[255];
  int32_t counts[254] = {};
  for (int i = 0; i < 255; ++i) levels[i] = static_cast<uint8_t>(i);
  EXPECT_EQ(nuqiCalcHist_8u_C1R(images.bytes.data(), kBytes, kRoi, counts, 255, levels), StatusOk);
}
void corners(Images& images) {
  int32_t size = 0;
  ASSERT_EQ(nuqiEigenValsVecsGetSize(kRoi.width, 7, 7, &size), StatusOk);
  EXPECT_EQ(nuqiEigenValsVecs_8u32f_C1R(images.bytes.data(), kBytes, images.result.data(),
                                        6 * kFloats, kRoi, 7, 7, images.buffer_of(size)),
            StatusOk);
}
void rectangle(Images& images) {
  MorphState* state = nullptr;
  ASSERT_EQ(nuqiMorphologyInitAlloc(kRoi.width, 1, 1, {31, 31}, {15, 15}, 0, nullptr, &state),
            StatusOk);
  RoiSize roi = kRoi;
  EXPECT_EQ(nuqiErodeStrip_Rect_8u_C1R(images.bytes.data(), kBytes,
                                       reinterpret_cast<uint8_t*>(images.result.data()), kBytes,
                                       &roi, state, 0),
            StatusOk);
}
void mask(Images& images) {
  MorphState* state = nullptr;
  ASSERT_EQ(nuqiMorphologyInitAlloc(kRoi.width, 9, 1, {7, 7}, {3, 3}, 2, nullptr, &state),
            StatusOk);
  RoiSize roi = kRoi;
  EXPECT_EQ(nuqiErodeStrip_32f_C1R(images.floats.data(), kFloats, images.result.data(), kFloats,
                                   &roi, state, 0),
            StatusOk);
}
void match(Images& images, RoiSize tpl) {
  int32_t size = 0;
  ASSERT_EQ(nuqiMatchTemplateGetBufSize_CoeffNormed(kRoi, tpl, 1, &size), StatusOk);
  EXPECT_EQ(nuqiMatchTemplate_CoeffNormed_8u32f_C1R(
                images.bytes.data(), kBytes, kRoi, images.bytes.data() + 5, kBytes, tpl,
                images.result.data(), kFloats, images.buffer_of(size)),
            StatusOk);
}
void small_template(Images& images) { match(images, {9, 9}); }
void large_template(Images& images) { match(images, {120, 90}); }
void distance(Images& images) {
  const float metrics[] = {1, 1.4F, 2.2F};
  EXPECT_EQ(nuqiDistanceTransform_5x5_8u32f_C1R(images.bytes.data(), kBytes, images.result.data(),
                                                kFloats, kRoi, metrics),
            StatusOk);
}

class Stack : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Stack);

// As nuqi.h says it for the families that take most.
TEST_P(Stack, IsTakenAsTheHeaderSays) {
  const struct {
    const char* family;
    void (*call)(Images&);
    int64_t kilobytes;
  } cases[] = {
      {"Sobel", sobel, 84},
      {"Laplace", laplace, 84},
      {"corners", corners, 120},
      {"erosion by a rectangle", rectangle, 84},
      {"erosion by a mask", mask, 84},
      {"matching of a small template", small_template, 84},
      {"matching of a large template", large_template, 84},
      {"distances", distance, 16},
      {"blur", blur, 16},
      {"histogram", histogram, 16},
      {"edges", canny, 4},
  };
  const int64_t none = written_by([] {});
  for (const auto& [family, call, kilobytes] : cases) {
    SCOPED_TRACE(family);
    Images images;
    call(images);  // what the loader resolves
    const auto taken = written_by([&, call = call] { call(images); }) - none;
    EXPECT_LE(taken, kilobytes * 1000);
    EXPECT_GT(taken, 0) << "the thread's stack was not looked at";
  }
}

#endif

#if defined(__i386__)

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

#endif

}  // namespace
}  // namespace nuqi::test

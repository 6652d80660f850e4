// The library's own vector words, compiled for this machine: for measuring arithmetic on registers.
#pragma once

#define NUQI_ISA native
#if defined(__AVX512BW__) && defined(__AVX512VL__) && defined(__AVX512VBMI__) && \
    defined(__AVX512VNNI__)
#define NUQI_LEVEL 2
#elif defined(__AVX2__)
#define NUQI_LEVEL 1
#else
#define NUQI_LEVEL 0
#endif

#include "core/simd/arithmetic.h"
#include "core/simd/channel.h"
#include "core/simd/selection.h"

namespace nuqi::native {
namespace {

// The compiler must neither know what is in the registers nor drop it.
template <class T, int N>
NUQI_INLINE void opaque(Vec<T, N>& a) {
  for_each<Vec<T, N>::kRegs>([&](int i) NUQI_FORCED {
#if defined(__SSE2__)
    __asm__ volatile("" : "+v"(a.r[i]));
#else
    __asm__ volatile("" : "+w"(a.r[i]));
#endif
  });
}

}  // namespace
}  // namespace nuqi::native

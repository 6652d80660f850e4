// Asks the CPU once which instruction sets it and the operating system support.
#include "core/isa.h"

#include <atomic>

#if NUQI_LEVELS > 1
#include <cpuid.h>
#endif

// Kernels and histograms load several bytes as one little-endian integer.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

namespace nuqi {
namespace {

// The library's only mutable static: zero until the first call, then a fact about the machine.
std::atomic<uint8_t> chosen_isa{0};

#if NUQI_LEVELS > 1
bool os_saves(uint32_t state) {
  uint32_t low = 0, high = 0;
  __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (low & state) == state;
}

Isa ask_cpu() {
  uint32_t a = 0, b = 0, c = 0, d = 0;
  if (!__get_cpuid(1, &a, &b, &c, &d)) return Isa::base;
  const bool osxsave = c & (1u << 27), avx = c & (1u << 28);
  if (!osxsave || !avx || !os_saves(0x06)) return Isa::base;  // xmm, ymm
  if (!__get_cpuid_count(7, 0, &a, &b, &c, &d)) return Isa::base;
  if (!(b & (1u << 5))) return Isa::base;  // avx2
  constexpr uint32_t f_dq_bw_vl = 1u << 16 | 1u << 17 | 1u << 30 | 1u << 31;
  if ((b & f_dq_bw_vl) != f_dq_bw_vl || !os_saves(0xE6)) return Isa::avx2;  // masks, zmm
  constexpr uint32_t vbmi_vnni = 1u << 1 | 1u << 11;
  if ((c & vbmi_vnni) != vbmi_vnni) return Isa::avx2;
  return Isa::avx512;
}
#else
Isa ask_cpu() { return Isa::base; }
#endif

}  // namespace

Isa best_isa() {
  const Isa machine = ask_cpu();
  const Isa built = static_cast<Isa>(NUQI_LEVELS);
  return machine < built ? machine : built;
}

Isa isa() {
  // Relaxed: threads that race all write the same byte.
  uint8_t level = chosen_isa.load(std::memory_order_relaxed);
  if (level == 0) {
    level = static_cast<uint8_t>(best_isa());
    chosen_isa.store(level, std::memory_order_relaxed);
  }
  return static_cast<Isa>(level);
}

bool force_isa(Isa level) {
  if (level < Isa::base || level > best_isa()) return false;
  chosen_isa.store(static_cast<uint8_t>(level), std::memory_order_relaxed);
  return true;
}

const char* name_of(Isa level) {
  switch (level) {
    case Isa::avx512: return "avx512";
    case Isa::avx2: return "avx2";
    default: break;
  }
#if defined(NUQI_PLAIN)
  return "plain";
#elif defined(__SSE2__)
  return "sse2";
#elif defined(__ARM_NEON)
  return "neon";
#else
  return "plain";
#endif
}

}  // namespace nuqi

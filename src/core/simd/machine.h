// The machine that kernels are compiled for: its vocabulary, and what it can do. Here alone the vector
// layer asks for which one.
#pragma once

#if defined(NUQI_PLAIN) || !defined(__SSE2__)
#include "core/simd/machine_plain.h"
namespace nuqi::NUQI_ISA {
using Machine = machine::Plain;
}
#elif NUQI_LEVEL == 0
#include "core/simd/machine_sse2.h"
namespace nuqi::NUQI_ISA {
using Machine = machine::Sse2;
}
#elif NUQI_LEVEL == 1
#include "core/simd/machine_avx2.h"
namespace nuqi::NUQI_ISA {
using Machine = machine::Avx2;
}
#else
#include "core/simd/machine_avx512.h"
namespace nuqi::NUQI_ISA {
using Machine = machine::Avx512;
}
#endif

namespace nuqi::NUQI_ISA {
namespace {
namespace machine {

// ---- Selection without masks, which follows from the conversion of predicates.

// The predicate of register i of the lanes that are like V's.
template <class V, class M>
NUQI_INLINE auto others(const Selected<M>& mask, int i) {
  if constexpr (sizeof(LaneOf<V>) == 1)
    return mask.others;
  else
    return widen_bytes<NativeAs<int32_t, V>>(mask.others, i);
}
// a where selected, zero or b elsewhere: register i.
template <class V, class M>
NUQI_INLINE V keep(const Selected<M>& mask, const V& a, int i) {
  const auto zero = others<V>(mask, i);
  return (V)((decltype(zero))a & ~zero);
}
template <class V, class M>
NUQI_INLINE V choose(const Selected<M>& mask, const V& a, const V& b, int i) {
  return others<V>(mask, i) < 0 ? b : a;
}

}  // namespace machine
}  // namespace
}  // namespace nuqi::NUQI_ISA

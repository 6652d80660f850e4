// Plain loops of the accumulation family, as one would write them. Compiled by each compiler.
#include "arith/accumulate_plain.h"
#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::AccumulateArgs;
using test::AccumulateTerm;

template <class T, AccumulateTerm term, bool masked>
void loop(const AccumulateArgs<T>& a) {
  for (int y = 0; y < a.roi.height; ++y) {
    const T* src = row(a.src, a.srcStep, y);
    const T* src2 = row(a.src2, a.src2Step, y);
    const uint8_t* mask = row(a.mask, a.maskStep, y);
    float* __restrict acc = row(a.acc, a.accStep, y);
    for (int x = 0; x < a.roi.width; ++x) {
      const bool selected = !masked || mask[x] != 0;
      if constexpr (term == AccumulateTerm::weighted) {
        acc[x] += (static_cast<float>(src[x]) - acc[x]) * (selected ? a.alpha : 0.0f);
      } else {
        float t = 0;
        if constexpr (term == AccumulateTerm::add)
          t = static_cast<float>(src[x]);
        else if constexpr (term == AccumulateTerm::square)
          t = static_cast<float>(src[x] * src[x]);
        else
          t = static_cast<float>(src[x] * src2[x]);
        acc[x] += selected ? t : 0.0f;
      }
    }
  }
}

template <class T, AccumulateTerm term>
AccumulateLoop<T> pick(bool masked) {
  return masked ? loop<T, term, true> : loop<T, term, false>;
}

}  // namespace

template <class T>
AccumulateLoop<T> plain_accumulate(AccumulateTerm term, bool masked) {
  switch (term) {
    case AccumulateTerm::add: return pick<T, AccumulateTerm::add>(masked);
    case AccumulateTerm::square: return pick<T, AccumulateTerm::square>(masked);
    case AccumulateTerm::product: return pick<T, AccumulateTerm::product>(masked);
    default: return pick<T, AccumulateTerm::weighted>(masked);
  }
}
template AccumulateLoop<uint8_t> plain_accumulate<uint8_t>(AccumulateTerm, bool);
template AccumulateLoop<int8_t> plain_accumulate<int8_t>(AccumulateTerm, bool);
template AccumulateLoop<float> plain_accumulate<float>(AccumulateTerm, bool);

}  // namespace nuqi::bench::PLAIN_COMPILER

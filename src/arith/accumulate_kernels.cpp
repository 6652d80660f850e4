// Adds a term of one or two images to a float accumulator, sixteen pixels at a time.
#include "arith/accumulate.h"
#include "core/simd/convert.h"
#include "core/simd/memory.h"

namespace nuqi::NUQI_ISA {
namespace {

template <Term term, class T, class Float>
NUQI_INLINE Float term_of(const Float& s, const Float& s2, const Float& acc, const Float& weight) {
  if constexpr (term == Term::add)
    return s;
  else if constexpr (term == Term::square)
    return s * s;
  else if constexpr (term == Term::weighted)
    return (s - acc) * weight;
  else if constexpr (sizeof(T) == 1)
    return s * s2 + Float{};  // 0 * -5 is -0.0, but 0 as an integer
  else
    return s * s2;
}

template <Term term, bool masked, class T>
void accumulate(const AccumulateJob<T>& job) {
  const auto alpha = broadcast(job.alpha);
  for (int32_t y = 0; y < job.roi.height; ++y) {
    const T* src = row_of(job.src, y);
    const T* src2 = row_of(job.src2, y);
    const uint8_t* mask = row_of(job.mask, y);
    float* out = row_of(job.acc, y);

    for_blocks(job.roi.width, [&](int64_t x, auto part) NUQI_FORCED {
      const auto acc = load(out + x, part);
      const auto s = convert<float>(load(src + x, part));
      auto s2 = s;
      if constexpr (term == Term::product) s2 = convert<float>(load(src2 + x, part));

      if constexpr (!masked) {
        store(out + x, acc + term_of<term, T>(s, s2, acc, alpha), part);
      } else {
        const auto selected = convert<int32_t>(nonzero(load(mask + x, part)));
        const auto weight = keep(selected, alpha);
        const auto t = term_of<term, T>(s, s2, acc, weight);
        store(out + x, acc + (term == Term::weighted ? t : keep(selected, t)), part);
      }
    });
  }
}

template <class T>
constexpr AccumulateKernelsOf<T> kKernels = {{
    {accumulate<Term::add, false, T>, accumulate<Term::add, true, T>},
    {accumulate<Term::square, false, T>, accumulate<Term::square, true, T>},
    {accumulate<Term::product, false, T>, accumulate<Term::product, true, T>},
    {accumulate<Term::weighted, false, T>, accumulate<Term::weighted, true, T>},
}};

}  // namespace

const AccumulateKernels accumulate_kernels = {kKernels<uint8_t>, kKernels<int8_t>, kKernels<float>};

}  // namespace nuqi::NUQI_ISA

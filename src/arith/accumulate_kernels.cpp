// Adds a term of one or two images to a float accumulator, sixteen pixels at a time.
#include "arith/accumulate.h"
#include "core/simd/arithmetic.h"
#include "core/simd/convert.h"
#include "core/simd/memory.h"
#include "core/simd/selection.h"

namespace nuqi::NUQI_ISA {
namespace {

// Products of bytes are formed as integers: 0 * -5 is +0.0 then, and -0.0 as floats.
template <class T>
NUQI_INLINE Px<float> product(const Px<T>& a, const Px<T>& b) {
  if constexpr (kIsFloat<T>)
    return a * b;
  else
    return convert<float>(multiply_bytes(a, b));
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
      const auto s = load(src + x, part);
      const auto acc = load(out + x, part);
      const auto selected = [&](const Px<float>& value) NUQI_FORCED {
        if constexpr (masked)
          return keep_selected(load(mask + x, part), value);
        else
          return value;
      };
      Px<float> sum;
      if constexpr (term == Term::add)
        sum = acc + selected(convert<float>(s));
      else if constexpr (term == Term::square && kIsFloat<T>)
        sum = acc + selected(s * s);
      else if constexpr (term == Term::square)
        sum = add_exact_square(acc, selected(convert<float>(s)));
      else if constexpr (term == Term::product)
        sum = acc + selected(product(s, load(src2 + x, part)));
      else
        sum = acc + (convert<float>(s) - acc) * selected(alpha);
      store(out + x, sum, part);
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

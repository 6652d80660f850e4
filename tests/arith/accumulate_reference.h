// The accumulation family, one pixel after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class AccumulateTerm { add, square, product, weighted };

// Pixels in raster order; `mask` is empty in the unmasked forms.
template <class T>
void accumulate_reference(AccumulateTerm term, const std::vector<T>& src,
                          const std::vector<T>& src2, const std::vector<uint8_t>& mask, float alpha,
                          std::vector<float>& acc) {
  constexpr bool bytes = sizeof(T) == 1;
  for (size_t i = 0; i < acc.size(); ++i) {
    const bool selected = mask.empty() || mask[i] != 0;
    const float s = src[i];
    float t = 0;
    switch (term) {
      case AccumulateTerm::add: t = s; break;
      case AccumulateTerm::square: t = bytes ? static_cast<float>(src[i] * src[i]) : s * s; break;
      case AccumulateTerm::product: t = static_cast<float>(src[i] * src2[i]); break;
      case AccumulateTerm::weighted: {
        const float difference = s - acc[i];
        t = difference * (selected ? alpha : 0.0f);
        break;
      }
    }
    if (!selected && term != AccumulateTerm::weighted) t = 0.0f;
    acc[i] = acc[i] + t;
  }
}

}  // namespace nuqi::test

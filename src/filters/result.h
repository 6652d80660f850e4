// What the filters make of an element type.
#pragma once

#include <stdint.h>

namespace nuqi {

template <class T>
struct FilterResultOf {
  using Type = int16_t;
};
template <>
struct FilterResultOf<float> {
  using Type = float;
};

// Bytes give 16-bit integers, floats give floats.
template <class T>
using FilterResult = typename FilterResultOf<T>::Type;

}  // namespace nuqi

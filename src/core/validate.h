// Predicates of argument validation. Each family states its rules with them, one `if` a line.
#pragma once

#include "core/image.h"

namespace nuqi {

template <class... P>
constexpr bool any_null(const P*... pointers) {
  return (... || (pointers == nullptr));
}

constexpr bool negative(RoiSize roi) { return roi.width < 0 || roi.height < 0; }
constexpr bool below_one(RoiSize roi) { return roi.width < 1 || roi.height < 1; }

// The step is shorter than a row of `width` pixels.
template <class T>
constexpr bool short_row(const Image<T>& image, int32_t width, int channels = 1) {
  return image.step < row_bytes(image, width, channels);
}

// The step is not a whole number of elements.
template <class T>
constexpr bool uneven(const Image<T>& image) {
  return image.step % static_cast<int32_t>(sizeof(T)) != 0;
}

// Not one of the three channels of interest.
constexpr bool bad_channel(int32_t coi) { return coi < 1 || coi > 3; }

// The codes that tell a size query, or the maker of a state, an element type.
constexpr int32_t k8u = 1, k8s = 2, k32f = 9;
template <class T>
constexpr int32_t data_type_of() {
  return sizeof(T) == 4 ? k32f : T(-1) < T(0) ? k8s : k8u;
}
constexpr int element_bytes(int32_t type) { return type == k32f ? 4 : 1; }
constexpr bool bad_data_type(int32_t type) { return type != k8u && type != k8s && type != k32f; }

}  // namespace nuqi

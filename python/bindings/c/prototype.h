// What a C prototype says about the Python function in front of it: each parameter's kind, and a call through
// slots. All else is one engine for all functions (call.cpp), so that a prototype costs a few bytes of code.
#pragma once

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

#include <nuqi/nuqi.h>

#include "../array.h"

namespace nuqi::python {

enum class Kind : uint8_t {
  source,
  target,  // an image that is read, one that is written
  source_planes,
  target_planes,  // images behind an array of pointers
  step,           // of the image or planes before it
  size,           // RoiSize: that of the images; an argument where there are none
  strip,          // RoiSize*: the source's size, then the rows of the result
  integer,
  real,
  point,    // scalars
  numbers,  // a plain array that is read: its length comes from the table
  buffer,   // scratch memory
  convol_state,
  morph_state,
  new_convol_state,
  new_morph_state,
  integer_result,
  float_result,
  double_result,
  point_result,
  region_result,
};

struct Parameter {
  Kind kind;
  Element element;
};

// One argument of a C function.
union Slot {
  void* pointer;
  int32_t integer;
  float real;
  RoiSize size;
  PixelPoint point;
};

inline constexpr std::size_t kMostParameters = 12;
using Address = void (*)();
using Invoke = StatusCode (*)(Address, const Slot*);

template <class T>
inline constexpr bool kIsPixel =
    std::is_same_v<T, uint8_t> || std::is_same_v<T, int8_t> || std::is_same_v<T, int16_t> ||
    std::is_same_v<T, int32_t> || std::is_same_v<T, float>;

// The kind of a parameter of type P before one of type Next. A pointer to pixels and a step are an image.
template <class P, class Next>
constexpr Parameter parameter_of() {
  if constexpr (std::is_same_v<P, int32_t>) {
    return {Kind::integer, Element::s32};
  } else if constexpr (std::is_same_v<P, float>) {
    return {Kind::real, Element::f32};
  } else if constexpr (std::is_same_v<P, RoiSize>) {
    return {Kind::size, Element::s32};
  } else if constexpr (std::is_same_v<P, PixelPoint>) {
    return {Kind::point, Element::s32};
  } else {
    static_assert(std::is_pointer_v<P>, "no Python argument is known for this type");
    using Pointed = std::remove_pointer_t<P>;
    using Value = std::remove_const_t<Pointed>;
    constexpr bool read = std::is_const_v<Pointed>;
    constexpr bool stepped = std::is_same_v<Next, int32_t>;
    if constexpr (std::is_same_v<Value, ConvolState*>) {
      return {Kind::new_convol_state, Element::u8};
    } else if constexpr (std::is_same_v<Value, MorphState*>) {
      return {Kind::new_morph_state, Element::u8};
    } else if constexpr (std::is_pointer_v<Value>) {
      using Plane = std::remove_pointer_t<Value>;
      static_assert(kIsPixel<std::remove_const_t<Plane>> && stepped);
      return {std::is_const_v<Plane> ? Kind::source_planes : Kind::target_planes,
              element_of<std::remove_const_t<Plane>>()};
    } else if constexpr (kIsPixel<Value> && stepped) {
      return {read ? Kind::source : Kind::target, element_of<Value>()};
    } else if constexpr (kIsPixel<Value> && read) {
      return {Kind::numbers, element_of<Value>()};
    } else if constexpr (std::is_same_v<Pointed, RoiSize>) {
      return {Kind::strip, Element::s32};
    } else if constexpr (std::is_same_v<Pointed, ConvolState>) {
      return {Kind::convol_state, Element::u8};
    } else if constexpr (std::is_same_v<Pointed, MorphState>) {
      return {Kind::morph_state, Element::u8};
    } else if constexpr (std::is_same_v<Pointed, void>) {
      return {Kind::buffer, Element::u8};
    } else if constexpr (std::is_same_v<Pointed, int32_t>) {
      return {Kind::integer_result, Element::s32};
    } else if constexpr (std::is_same_v<Pointed, float>) {
      return {Kind::float_result, Element::f32};
    } else if constexpr (std::is_same_v<Pointed, double>) {
      return {Kind::double_result, Element::f32};
    } else if constexpr (std::is_same_v<Pointed, PixelPoint>) {
      return {Kind::point_result, Element::s32};
    } else {
      static_assert(std::is_same_v<Pointed, FillRegion>,
                    "no Python argument is known for this pointer");
      return {Kind::region_result, Element::u8};
    }
  }
}

template <class... P>
struct Prototype {
  static constexpr std::size_t kCount = sizeof...(P);
  static_assert(kCount <= kMostParameters);
  template <std::size_t I>
  using At = std::tuple_element_t<I, std::tuple<P..., void>>;

  template <std::size_t... I>
  static constexpr auto kinds(std::index_sequence<I...> /*unused*/) {
    std::array<Parameter, kCount> all{parameter_of<At<I>, At<I + 1>>()...};
    // The integer after an image is its step.
    for (std::size_t i = 0; i + 1 < kCount; ++i) {
      const Kind kind = all[i].kind;
      const bool image = kind == Kind::source || kind == Kind::target ||
                         kind == Kind::source_planes || kind == Kind::target_planes;
      if (image) all[i + 1].kind = Kind::step;
    }
    return all;
  }
  static constexpr std::array<Parameter, kCount> kKinds = kinds(std::index_sequence_for<P...>());

  template <class T>
  static T value(const Slot& slot) {
    if constexpr (std::is_pointer_v<T>) return static_cast<T>(slot.pointer);
    if constexpr (std::is_same_v<T, int32_t>) return slot.integer;
    if constexpr (std::is_same_v<T, float>) return slot.real;
    if constexpr (std::is_same_v<T, RoiSize>) return slot.size;
    if constexpr (std::is_same_v<T, PixelPoint>) return slot.point;
  }
  template <std::size_t... I>
  static StatusCode spread(StatusCode (*function)(P...), const Slot* slots,
                           std::index_sequence<I...> /*unused*/) {
    return function(value<P>(slots[I])...);
  }
  static StatusCode invoke(Address address, const Slot* slots) {
    return spread(reinterpret_cast<StatusCode (*)(P...)>(address), slots,
                  std::index_sequence_for<P...>());
  }
};

}  // namespace nuqi::python

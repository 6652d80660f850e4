// Operations of nuqi.hpp on arrays: what the package's Python functions call. They pass every argument, in one
// order; what is left out or allocated is decided there.
#pragma once

#include <iterator>
#include <nuqi/hpp/image.hpp>
#include <nuqi/hpp/scratch.hpp>
#include <type_traits>

#include "../array.h"
#include "../unlocked.h"
#include "table.h"

namespace nuqi::python {

inline PyObject* none() { Py_RETURN_NONE; }
inline PyObject* checked(PyObject* object) {
  if (object == nullptr) throw Raised{};
  return object;
}

// The image that is read, or written.
template <class T, int Channels = 1>
View<const T, Channels> input(PyObject* object, const char* name = "image") {
  Image image;
  if (!read_array(object, {name, element_of<T>(), Channels}, &image)) throw Raised{};
  using Result = View<const T, Channels>;
  return Result(Result::unchecked, reinterpret_cast<const T*>(image.data), image.width,
                image.height, image.step);
}
template <class T, int Channels = 1>
View<T, Channels> output(PyObject* object, const char* name = "out") {
  Image image;
  if (!read_array(object, {name, element_of<T>(), Channels, true}, &image)) throw Raised{};
  using Result = View<T, Channels>;
  return Result(Result::unchecked, reinterpret_cast<T*>(image.data), image.width, image.height,
                image.step);
}
// Bytes, or bools.
inline Mask mask_of(PyObject* object, const char* name = "mask") {
  Image image;
  if (!read_array(object, {name, Element::u8, 1, false, true}, &image)) throw Raised{};
  using Bytes = View<const std::uint8_t>;
  return Mask(Bytes(Bytes::unchecked, reinterpret_cast<const std::uint8_t*>(image.data),
                    image.width, image.height, image.step));
}

int integer(PyObject* object, const char* name);
float real(PyObject* object, const char* name);
// (row, column) and (height, width), as NumPy has it.
PixelPoint point(PyObject* object, const char* name);

template <class T>
struct Type {
  using type = T;
};

// Calls go(Type<T>{}) for the first of Ts that the array's elements are; TypeError where they are none.
template <class... Ts, class Go>
PyObject* for_type(PyObject* array, const char* name, Go go) {
  static constexpr Element kElements[] = {element_of<Ts>()...};
  const int found = find_type(array, name, kElements, static_cast<int>(sizeof...(Ts)));
  if (found < 0) throw Raised{};
  PyObject* result = nullptr;
  int i = 0;
  (void)((i++ == found && (result = go(Type<Ts>{}), true)) || ...);
  return result;
}

// The same for the number of channels, go(std::integral_constant<int, C>{}).
template <int... Cs, class Go>
PyObject* for_channels(PyObject* array, const char* name, Go go) {
  static constexpr int kChannels[] = {Cs...};
  const int found = find_channels(array, name, kChannels, static_cast<int>(sizeof...(Cs)));
  if (found < 0) throw Raised{};
  PyObject* result = nullptr;
  int i = 0;
  (void)((i++ == found && (result = go(std::integral_constant<int, Cs>{}), true)) || ...);
  return result;
}

// Runs without the interpreter's lock and returns what `work` does.
template <class Work>
decltype(auto) unlocked(Work work) {
  const Unlocked outside;
  return work();
}

// Scratch memory of this thread, kept for its next call.
inline Scratch& scratch() {
  thread_local Scratch kept;
  return kept;
}

// The number of one of several words; ValueError where it is none.
int word(PyObject* object, const char* name, const char* const* words, int count);

}  // namespace nuqi::python

// Statistics of all pixels, or of those that a mask selects, of one channel of an image.
#pragma once

#include "operation.h"

namespace nuqi::python {

// Calls go(image, selection...) outside the lock: selection is what nuqi.hpp takes after the images. `channel` is
// None for images of one channel.
template <class T, class Go>
auto with_selection(PyObject* array, PyObject* mask, PyObject* channel, Go go) {
  if (channel == Py_None) {
    const auto image = input<T>(array);
    if (mask == Py_None) return unlocked([&] { return go(image); });
    const Mask selected = mask_of(mask);
    return unlocked([&] { return go(image, selected); });
  }
  const int number = integer(channel, "channel");
  const auto image = input<T, 3>(array);
  if (mask == Py_None) return unlocked([&] { return go(image, number); });
  const Mask selected = mask_of(mask);
  return unlocked([&] { return go(image, selected, number); });
}

template <class T, class Go>
auto with_selection(PyObject* first, PyObject* second, PyObject* mask, PyObject* channel, Go go) {
  if (channel == Py_None) {
    const auto a = input<T>(first, "a");
    const auto b = input<T>(second, "b");
    if (mask == Py_None) return unlocked([&] { return go(a, b); });
    const Mask selected = mask_of(mask);
    return unlocked([&] { return go(a, b, selected); });
  }
  const int number = integer(channel, "channel");
  const auto a = input<T, 3>(first, "a");
  const auto b = input<T, 3>(second, "b");
  if (mask == Py_None) return unlocked([&] { return go(a, b, number); });
  const Mask selected = mask_of(mask);
  return unlocked([&] { return go(a, b, selected, number); });
}

}  // namespace nuqi::python

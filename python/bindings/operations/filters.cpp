// Derivatives, box sums, pyramid levels.
#include <nuqi/hpp/derivatives.hpp>
#include <nuqi/hpp/pyramid.hpp>
#include <nuqi/hpp/strips.hpp>
#include <type_traits>

#include "operation.h"

namespace nuqi::python {
namespace {

// (image, out, ...): bytes to int16, floats to floats
template <class Go>
PyObject* filter(Arguments a, Go go) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    using T = typename decltype(type)::type;
    const auto image = input<T>(a[0]);
    const auto out =
        output<std::conditional_t<std::is_same_v<T, float>, float, std::int16_t>>(a[1]);
    unlocked([&] { go(image, out); });
    return none();
  });
}

// (image, out, derivative)
PyObject* sobel3x3(Arguments a) {
  static constexpr const char* kWords[] = {"dx", "dy", "d2x", "d2y", "dxdy"};
  const Derivative which = static_cast<Derivative::Kind>(word(a[2], "derivative", kWords, 5));
  return filter(a, [=](const auto& image, const auto& out) { nuqi::sobel3x3(image, which, out); });
}
// (image, out, derivative, shift)
PyObject* scharr(Arguments a) {
  static constexpr const char* kWords[] = {"dx", "dy"};
  const Derivative which = static_cast<Derivative::Kind>(word(a[2], "derivative", kWords, 2));
  const int shift = integer(a[3], "shift");
  return filter(
      a, [=](const auto& image, const auto& out) { nuqi::scharr(image, which, out, shift); });
}
PyObject* box_sum(Arguments a) {
  const int size = integer(a[2], "size");
  return filter(a, [=](const auto& image, const auto& out) { nuqi::box_sum(image, out, size); });
}
PyObject* sobel(Arguments a) {
  const int x_order = integer(a[2], "x_order");
  const int y_order = integer(a[3], "y_order");
  const int aperture = integer(a[4], "aperture");
  return filter(a, [=](const auto& image, const auto& out) {
    nuqi::sobel(image, out, x_order, y_order, aperture);
  });
}
PyObject* laplace(Arguments a) {
  const int size = integer(a[2], "size");
  return filter(a, [=](const auto& image, const auto& out) { nuqi::laplace(image, out, size); });
}

// (image, out)
template <class Go>
PyObject* level(Arguments a, Go go) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    return for_channels<1, 3>(a[0], "image", [&](auto channels) {
      using T = typename decltype(type)::type;
      const auto image = input<T, decltype(channels)::value>(a[0]);
      const auto out = output<T, decltype(channels)::value>(a[1]);
      unlocked([&] { go(image, out, scratch()); });
      return none();
    });
  });
}

PyObject* pyramid_down(Arguments a) {
  return level(a, [](const auto& image, const auto& out, Scratch& kept) {
    nuqi::pyramid_down(image, out, kept);
  });
}
PyObject* pyramid_up(Arguments a) {
  return level(a, [](const auto& image, const auto& out, Scratch& kept) {
    nuqi::pyramid_up(image, out, kept);
  });
}

const Operation kOperations[] = {
    {"sobel3x3", 3, sobel3x3},     {"scharr", 4, scharr},   {"box_sum", 3, box_sum},
    {"sobel", 5, sobel},           {"laplace", 3, laplace}, {"pyramid_down", 2, pyramid_down},
    {"pyramid_up", 2, pyramid_up},
};

}  // namespace

Operations filter_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python

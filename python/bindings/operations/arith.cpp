// Accumulation, absolute difference, channels.
#include <nuqi/hpp/arith.hpp>
#include <nuqi/hpp/channels.hpp>
#include <tuple>
#include <utility>

#include "operation.h"

namespace nuqi::python {
namespace {

// (image, accumulator, mask) and, where it weighs, alpha. `go` is the operation of nuqi.hpp.
template <class Go>
PyObject* accumulate_with(Arguments a, Go go) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "image", [&](auto type) {
    const auto image = input<typename decltype(type)::type>(a[0]);
    const auto sum = output<float>(a[1], "accumulator");
    if (a[2] == Py_None) {
      unlocked([&] { go(image, sum); });
    } else {
      const Mask mask = mask_of(a[2]);
      unlocked([&] { go(image, mask, sum); });
    }
    return none();
  });
}

PyObject* accumulate(Arguments a) {
  return accumulate_with(a, [](const auto&... images) { nuqi::accumulate(images...); });
}
PyObject* accumulate_square(Arguments a) {
  return accumulate_with(a, [](const auto&... images) { nuqi::accumulate_square(images...); });
}
PyObject* accumulate_weighted(Arguments a) {
  const float alpha = real(a[3], "alpha");
  return accumulate_with(
      a, [alpha](const auto&... images) { nuqi::accumulate_weighted(images..., alpha); });
}

// (a, b, accumulator, mask)
PyObject* accumulate_product(Arguments a) {
  return for_type<std::uint8_t, std::int8_t, float>(a[0], "a", [&](auto type) {
    using T = typename decltype(type)::type;
    const auto first = input<T>(a[0], "a");
    const auto second = input<T>(a[1], "b");
    const auto sum = output<float>(a[2], "accumulator");
    if (a[3] == Py_None) {
      unlocked([&] { nuqi::accumulate_product(first, second, sum); });
    } else {
      const Mask mask = mask_of(a[3]);
      unlocked([&] { nuqi::accumulate_product(first, second, mask, sum); });
    }
    return none();
  });
}

// (a, b, out); b may be a number.
PyObject* abs_diff(Arguments a) {
  return for_type<std::uint8_t, float>(a[0], "a", [&](auto type) {
    using T = typename decltype(type)::type;
    const auto first = input<T>(a[0], "a");
    const auto out = output<T>(a[2]);
    if (is_array(a[1])) {
      const auto second = input<T>(a[1], "b");
      unlocked([&] { nuqi::abs_diff(first, second, out); });
    } else if constexpr (std::is_same_v<T, float>) {
      const float number = real(a[1], "b");
      unlocked([&] { nuqi::abs_diff(first, number, out); });
    } else {
      const int number = integer(a[1], "b");
      unlocked([&] { nuqi::abs_diff(first, number, out); });
    }
    return none();
  });
}

// Planes from a tuple, each read by `plane`.
template <int Channels, class Plane>
auto planes_of(PyObject* planes, const char* name, Plane plane) {
  if (!PyTuple_Check(planes) || PyTuple_GET_SIZE(planes) != Channels) {
    PyErr_Format(PyExc_ValueError, "%s: expected %d planes", name, Channels);
    throw Raised{};
  }
  if constexpr (Channels == 3) {
    return std::make_tuple(plane(PyTuple_GET_ITEM(planes, 0)), plane(PyTuple_GET_ITEM(planes, 1)),
                           plane(PyTuple_GET_ITEM(planes, 2)));
  } else {
    return std::make_tuple(plane(PyTuple_GET_ITEM(planes, 0)), plane(PyTuple_GET_ITEM(planes, 1)),
                           plane(PyTuple_GET_ITEM(planes, 2)), plane(PyTuple_GET_ITEM(planes, 3)));
  }
}

// (image, planes)
PyObject* split(Arguments a) {
  return for_type<std::uint8_t, float>(a[0], "image", [&](auto type) {
    return for_channels<3, 4>(a[0], "image", [&](auto channels) {
      using T = typename decltype(type)::type;
      constexpr int kChannels = decltype(channels)::value;
      const auto image = input<T, kChannels>(a[0]);
      const auto planes = planes_of<kChannels>(
          a[1], "out", [](PyObject* plane) { return output<T>(plane, "out"); });
      unlocked(
          [&] { std::apply([&](const auto&... plane) { nuqi::split(image, plane...); }, planes); });
      return none();
    });
  });
}

// (planes, out)
PyObject* join(Arguments a) {
  return for_type<std::uint8_t, float>(a[1], "out", [&](auto type) {
    return for_channels<3, 4>(a[1], "out", [&](auto channels) {
      using T = typename decltype(type)::type;
      constexpr int kChannels = decltype(channels)::value;
      const auto out = output<T, kChannels>(a[1]);
      const auto planes = planes_of<kChannels>(
          a[0], "planes", [](PyObject* plane) { return input<T>(plane, "planes"); });
      unlocked(
          [&] { std::apply([&](const auto&... plane) { nuqi::join(plane..., out); }, planes); });
      return none();
    });
  });
}

const Operation kOperations[] = {
    {"accumulate", 3, accumulate},
    {"accumulate_square", 3, accumulate_square},
    {"accumulate_product", 4, accumulate_product},
    {"accumulate_weighted", 4, accumulate_weighted},
    {"abs_diff", 3, abs_diff},
    {"split", 2, split},
    {"join", 2, join},
};

}  // namespace

Operations arith_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python

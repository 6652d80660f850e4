// Flood fills.
#include <nuqi/hpp/fill.hpp>
#include <type_traits>

#include "operation.h"

namespace nuqi::python {
namespace {

template <class T>
auto shade(PyObject* object, const char* name) {
  if constexpr (std::is_same_v<T, float>) {
    return real(object, name);
  } else {
    return integer(object, name);
  }
}

// (image, seed, value, connectivity, lower, upper): area, top, left, height, width. lower is None where pixels have
// to equal the seed.
PyObject* flood_fill(Arguments a) {
  const PixelPoint seed = point(a[1], "seed");
  const int neighbours = integer(a[3], "connectivity");
  if (neighbours != 4 && neighbours != 8) {
    PyErr_Format(PyExc_ValueError, "connectivity: expected 4 or 8, got %d", neighbours);
    throw Raised{};
  }
  const Connectivity how = neighbours == 4 ? Connectivity::four : Connectivity::eight;
  return for_type<std::uint8_t, float>(a[0], "image", [&](auto type) {
    using T = typename decltype(type)::type;
    const auto image = output<T>(a[0], "image");
    const auto value = shade<T>(a[2], "value");
    if (std::is_same_v<T, std::uint8_t> && (value < 0 || value > 255))
      throw Error(StatusUnsupported, "flood_fill", "", "value is not 0 to 255");
    FillRegion region{};
    if (a[4] == Py_None) {
      region = unlocked([&] { return nuqi::flood_fill(image, seed, value, how, scratch()); });
    } else {
      const auto lower = shade<T>(a[4], "lower");
      const auto upper = shade<T>(a[5], "upper");
      if (lower < 0 || upper < 0)
        throw Error(StatusBadArg, "flood_fill", "", "lower or upper is below 0");
      if (std::is_same_v<T, std::uint8_t> && std::int64_t{1} * lower + upper > 255)
        throw Error(StatusBadArg, "flood_fill", "", "lower and upper add up to more than 255");
      region = unlocked(
          [&] { return nuqi::flood_fill(image, seed, value, lower, upper, how, scratch()); });
    }
    return checked(Py_BuildValue("(Liiii)", static_cast<long long>(region.area), region.y, region.x,
                                 region.height, region.width));
  });
}

const Operation kOperations[] = {{"flood_fill", 6, flood_fill}};

}  // namespace

Operations fill_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python

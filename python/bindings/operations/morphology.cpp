// Erosion and dilation.
#include <nuqi/hpp/morphology.hpp>
#include <utility>

#include "element.h"
#include "operation.h"

namespace nuqi::python {

nuqi::Element element(PyObject* footprint, PyObject* anchor) {
  const auto whole = [&] {
    const PixelPoint size = point(footprint, "footprint");
    return nuqi::Element::rectangle(size.x, size.y);
  };
  const nuqi::Element made = is_array(footprint)
                                 ? nuqi::Element::arbitrary(mask_of(footprint, "footprint").view())
                                 : whole();
  if (anchor == Py_None) return made.simplified();
  const PixelPoint at = point(anchor, "anchor");
  return made.anchored(at.x, at.y).simplified();
}

namespace {

// (image, footprint, anchor, out)
template <class Go>
PyObject* morphology(Arguments a, Go go) {
  return for_type<std::uint8_t, float>(a[0], "image", [&](auto type) {
    return for_channels<1, 3, 4>(a[0], "image", [&](auto channels) {
      using T = typename decltype(type)::type;
      const auto image = input<T, decltype(channels)::value>(a[0]);
      const nuqi::Element under = element(a[1], a[2]);
      const auto out = output<T, decltype(channels)::value>(a[3]);
      unlocked([&] { go(image, out, under); });
      return none();
    });
  });
}

PyObject* erode(Arguments a) {
  return morphology(a, [](const auto& image, const auto& out, const nuqi::Element& under) {
    nuqi::erode(image, out, under);
  });
}
PyObject* dilate(Arguments a) {
  return morphology(a, [](const auto& image, const auto& out, const nuqi::Element& under) {
    nuqi::dilate(image, out, under);
  });
}

const Operation kOperations[] = {{"erode", 4, erode}, {"dilate", 4, dilate}};

}  // namespace

Operations morphology_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python

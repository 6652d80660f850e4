// The element of an erosion or dilation, from Python.
#pragma once

#include <nuqi/hpp/element.hpp>

#include "operation.h"

namespace nuqi::python {

// A boolean array, or (height, width); an anchor, (row, column), or None.
nuqi::Element element(PyObject* footprint, PyObject* anchor);

}  // namespace nuqi::python

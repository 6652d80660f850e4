// Results that are more than numbers.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <nuqi/nuqi.h>

namespace nuqi::python {

bool make_result_types(PyObject* module);
// The named tuple FillRegion(area, value, x, y, width, height).
PyObject* region_object(const FillRegion& region);

}  // namespace nuqi::python

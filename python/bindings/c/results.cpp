#include "results.h"

namespace nuqi::python {
namespace {

PyTypeObject* region_type;

}  // namespace

bool make_result_types(PyObject* module) {
  static PyStructSequence_Field fields[] = {
      {"area", "the number of pixels painted"},
      {"value", "what they were painted with"},
      {"x", "the leftmost column of the smallest rectangle around them"},
      {"y", "its topmost row"},
      {"width", "its width in pixels"},
      {"height", "its height in pixels"},
      {nullptr, nullptr}};
  static PyStructSequence_Desc description = {"nuqi.c.FillRegion", R"(
What a flood fill has painted.

A tuple whose entries have names: the number of pixels, their new value, and the smallest rectangle around them, all 0
where nothing was painted.

Parameters
----------
iterable : sequence of 6 floats
    The entries in their order: area, value, x, y, width and height.

See Also
--------
nuqi.Region : What nuqi.flood_fill gives: rows and columns, and whole numbers.

Examples
--------
>>> image = np.array([[1, 1, 2]], np.uint8)
>>> region = nuqi.c.nuqiFloodFill_4Con_8u_C1IR(image, (0, 0), 9)
>>> region.area, region.value, region.width
(2.0, 9.0, 2)
)",
                                              fields, 6};
  region_type = PyStructSequence_NewType(&description);
  return region_type != nullptr && PyModule_AddType(module, region_type) == 0;
}

PyObject* region_object(const FillRegion& region) {
  PyObject* tuple = PyStructSequence_New(region_type);
  if (tuple == nullptr) return nullptr;
  PyStructSequence_SetItem(tuple, 0, PyFloat_FromDouble(region.area));
  PyStructSequence_SetItem(tuple, 1, PyFloat_FromDouble(region.value));
  PyStructSequence_SetItem(tuple, 2, PyLong_FromLong(region.x));
  PyStructSequence_SetItem(tuple, 3, PyLong_FromLong(region.y));
  PyStructSequence_SetItem(tuple, 4, PyLong_FromLong(region.width));
  PyStructSequence_SetItem(tuple, 5, PyLong_FromLong(region.height));
  return tuple;
}

}  // namespace nuqi::python

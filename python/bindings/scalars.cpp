#include "scalars.h"

#include <cmath>
#include <limits>

namespace nuqi::python {

bool read_integer(PyObject* object, const char* name, int32_t* value) {
  PyObject* index = PyNumber_Index(object);
  if (index == nullptr) {
    if (PyErr_ExceptionMatches(PyExc_TypeError)) {
      PyErr_Format(PyExc_TypeError, "%s: expected an integer, got %s", name,
                   Py_TYPE(object)->tp_name);
    }
    return false;
  }
  int beyond = 0;
  const long found = PyLong_AsLongAndOverflow(index, &beyond);
  Py_DECREF(index);
  if (beyond != 0 || found > std::numeric_limits<int32_t>::max() ||
      found < std::numeric_limits<int32_t>::min()) {
    PyErr_Format(PyExc_OverflowError, "%s: does not fit into 32 bits", name);
    return false;
  }
  *value = static_cast<int32_t>(found);
  return true;
}

bool read_real(PyObject* object, const char* name, float* value) {
  const double found = PyFloat_AsDouble(object);
  if (found == -1.0 && PyErr_Occurred() != nullptr) {
    if (PyErr_ExceptionMatches(PyExc_TypeError)) {
      PyErr_Format(PyExc_TypeError, "%s: expected a number, got %s", name,
                   Py_TYPE(object)->tp_name);
    }
    return false;
  }
  // What rounds beyond the greatest float is out of reach; infinities are themselves.
  if (std::isfinite(found) && std::fabs(found) >= 0x1.ffffffp127) {
    PyErr_Format(PyExc_OverflowError, "%s: does not fit into single precision", name);
    return false;
  }
  *value = static_cast<float>(found);
  return true;
}

bool read_pair(PyObject* object, const char* name, int32_t* first, int32_t* second) {
  PyObject* pair = PySequence_Fast(object, "");
  bool ok = pair != nullptr && PySequence_Fast_GET_SIZE(pair) == 2;
  if (!ok) {
    PyErr_Format(PyExc_TypeError, "%s: expected a pair of integers, got %R", name, object);
  } else {
    ok = read_integer(PySequence_Fast_GET_ITEM(pair, 0), name, first) &&
         read_integer(PySequence_Fast_GET_ITEM(pair, 1), name, second);
  }
  Py_XDECREF(pair);
  return ok;
}

}  // namespace nuqi::python

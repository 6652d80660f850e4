// Bodies of functions whose arrays are no images, or depend on one another in their own ways.
#pragma once

#include "function.h"

namespace nuqi::python {

PyObject* arctan(const Function& function, PyObject* const* arguments, Py_ssize_t count);
PyObject* histogram(const Function& function, PyObject* const* arguments, Py_ssize_t count);
PyObject* joint_histogram(const Function& function, PyObject* const* arguments, Py_ssize_t count);
PyObject* check_histogram(const Function& function, PyObject* const* arguments, Py_ssize_t count);
PyObject* distance_weights(const Function& function, PyObject* const* arguments, Py_ssize_t count);
template <class T, int Channels>
PyObject* sample_line(const Function& function, PyObject* const* arguments, Py_ssize_t count);

}  // namespace nuqi::python

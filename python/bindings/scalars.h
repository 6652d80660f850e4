// Numbers and points from Python.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstdint>

namespace nuqi::python {

// Each is false with an exception where the object is no such number.
bool read_integer(PyObject* object, const char* name, int32_t* value);
bool read_real(PyObject* object, const char* name, float* value);
bool read_pair(PyObject* object, const char* name, int32_t* first, int32_t* second);

}  // namespace nuqi::python

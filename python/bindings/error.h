// nuqi.StatusError, from C++.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <nuqi/hpp/error.hpp>
#include <string>

namespace nuqi::python {

// Raise nuqi.StatusError; return null, as functions that Python calls do then.
PyObject* raise_status(StatusCode status, const char* function, const std::string& sentence);
// Of nuqi.hpp, in which sizes are width x height: what Python passed stands in its place.
PyObject* raise_error(const Error& error, const char* function, PyObject* const* arguments,
                      int count);

}  // namespace nuqi::python

// The operations that the package's Python functions call.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstddef>

namespace nuqi::python {

// Thrown where a Python exception is set.
struct Raised {};

using Arguments = PyObject* const*;

struct Operation {
  const char* name;
  int count;  // of arguments
  PyObject* (*run)(Arguments);
  const char* function = name;  // what Python's users call
};
struct Operations {
  const Operation* first;
  std::size_t count;
};
Operations arith_operations();
Operations statistics_operations();
Operations norm_operations();
Operations filter_operations();
Operations feature_operations();
Operations morphology_operations();
Operations fill_operations();
Operations strip_operations();
Operations motion_operations();

}  // namespace nuqi::python

// The extension module nuqi._native.
#include <pybind11/pybind11.h>

#include <new>
#include <string>
#include <vector>

#include "c/callable.h"
#include "c/results.h"
#include "c/state.h"
#include "error.h"
#include "operations/table.h"

namespace nuqi::python {
namespace {

namespace py = pybind11;

// As for nuqi.c (c/callable.cpp), arguments come as an array, and no dispatcher looks for an overload.
PyObject* enter_operation(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  const auto* operation = static_cast<const Operation*>(PyCapsule_GetPointer(self, nullptr));
  if (count != operation->count) {
    PyErr_Format(PyExc_TypeError, "%s() takes %d arguments (%zd given)", operation->name,
                 operation->count, count);
    return nullptr;
  }
  try {
    return operation->run(arguments);
  } catch (const Raised&) {
    return nullptr;
  } catch (const Error& error) {
    return raise_error(error, operation->function, arguments, operation->count);
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

// A Python function that runs an operation, which lives on.
py::object function_of(const Operation* operation) {
  auto* definition = new PyMethodDef{
      operation->name, reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(enter_operation)),
      METH_FASTCALL, nullptr};
  const py::capsule self(operation);
  const py::str module("nuqi._native");
  return py::reinterpret_steal<py::object>(PyCFunction_NewEx(definition, self.ptr(), module.ptr()));
}

py::dict c_functions() {
  if (!make_callable_type()) throw py::error_already_set();
  py::dict found;
  for (const Function& function : functions()) {
    found[function.name] = py::reinterpret_steal<py::object>(callable_of(function));
    if (found[function.name].is_none()) throw py::error_already_set();
  }
  return found;
}

void add_operations(py::module_& module) {
  for (const Operations all : {arith_operations(), statistics_operations(), norm_operations(),
                               filter_operations(), feature_operations(), morphology_operations(),
                               fill_operations(), strip_operations(), motion_operations()}) {
    for (std::size_t i = 0; i < all.count; ++i) {
      const Operation* operation = all.first + i;
      module.attr(operation->name) = function_of(operation);
    }
  }
}

}  // namespace
}  // namespace nuqi::python

PYBIND11_MODULE(_native, module) {
  if (!nuqi::python::make_state_types(module.ptr()) ||
      !nuqi::python::make_result_types(module.ptr()))
    throw pybind11::error_already_set();
  module.attr("version") = std::to_string(NUQI_VERSION_MAJOR) + "." +
                           std::to_string(NUQI_VERSION_MINOR) + "." +
                           std::to_string(NUQI_VERSION_PATCH);
  module.attr("c_functions") = nuqi::python::c_functions();
  nuqi::python::add_operations(module);
}

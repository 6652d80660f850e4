// The extension module nuqi._native.
#include <pybind11/pybind11.h>

#include <new>
#include <string>
#include <vector>

#include "c/call.h"
#include "c/results.h"
#include "c/state.h"
#include "error.h"
#include "operations/table.h"

namespace nuqi::python {
namespace {

namespace py = pybind11;

// Vectorcall: arguments come as an array, and no dispatcher looks for an overload. A call of a 64x64 image
// takes a microsecond; what stands before it should not.
PyObject* enter_function(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  const auto* function = static_cast<const Function*>(PyCapsule_GetPointer(self, nullptr));
  try {
    return call_function(*function, arguments, count);
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

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
    return raise_error(error);
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

using Enter = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t);

// A Python function that hands `entry`, which lives on, to `enter`.
template <class Entry>
py::object function_of(const Entry* entry, Enter enter, const char* documentation,
                       const char* module) {
  auto* definition =
      new PyMethodDef{entry->name, reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(enter)),
                      METH_FASTCALL, documentation};
  const py::capsule self(entry);
  const py::str name(module);
  return py::reinterpret_steal<py::object>(PyCFunction_NewEx(definition, self.ptr(), name.ptr()));
}

py::dict c_functions() {
  py::dict found;
  for (const Function& function : functions()) {
    found[function.name] =
        function_of(&function, enter_function, function.documentation.c_str(), "nuqi.c");
  }
  return found;
}

void add_operations(py::module_& module) {
  for (const Operations all :
       {arith_operations(), statistics_operations(), norm_operations(), filter_operations(),
        feature_operations(), morphology_operations(), fill_operations(), motion_operations()}) {
    for (std::size_t i = 0; i < all.count; ++i) {
      const Operation* operation = all.first + i;
      module.attr(operation->name) =
          function_of(operation, enter_operation, nullptr, "nuqi._native");
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

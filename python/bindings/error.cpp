#include "error.h"

namespace nuqi::python {
namespace {

PyObject* raise(StatusCode status, const char* function, const std::string& text) {
  PyObject* module = PyImport_ImportModule("nuqi._status");
  if (module == nullptr) return nullptr;
  PyObject* type = PyObject_GetAttrString(module, "StatusError");
  Py_DECREF(module);
  if (type == nullptr) return nullptr;
  PyObject* error = PyObject_CallFunction(type, "iss#", static_cast<int>(status), function,
                                          text.data(), static_cast<Py_ssize_t>(text.size()));
  if (error != nullptr) PyErr_SetObject(type, error);
  Py_XDECREF(error);
  Py_DECREF(type);
  return nullptr;
}

}  // namespace

PyObject* raise_status(StatusCode status, const char* function, const std::string& sentence) {
  return raise(status, function,
               std::string(function) + ": " + sentence + " (" + status_name(status) + ")");
}

PyObject* raise_error(const Error& error) {
  return raise(error.status(), error.function(), error.what());
}

}  // namespace nuqi::python

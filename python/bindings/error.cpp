#include "error.h"

#include "array.h"

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

// Arrays by type and shape, numbers and words as they are, and nothing of what was left out.
std::string argument_text(PyObject* argument) {
  if (is_array(argument)) return array_text(argument);
  if (argument == Py_None || PyCapsule_CheckExact(argument) != 0) return "";
  constexpr std::size_t kMost = 40;
  PyObject* text = PyObject_Repr(argument);
  const char* utf8 = text == nullptr ? nullptr : PyUnicode_AsUTF8(text);
  std::string result = utf8 == nullptr ? "" : utf8;
  Py_XDECREF(text);
  PyErr_Clear();
  return result.size() > kMost ? "" : result;
}

}  // namespace

PyObject* raise_status(StatusCode status, const char* function, const std::string& sentence) {
  return raise(status, function,
               std::string(function) + ": " + sentence + " (" + status_name(status) + ")");
}

PyObject* raise_error(const Error& error, const char* function, PyObject* const* arguments,
                      int count) {
  const std::string what = error.what();  // "function(arguments): why (status)"
  const std::size_t end = what.find("): ");
  std::string why = end == std::string::npos ? what : what.substr(end + 3);
  if (why.find("outside the image") != std::string::npos) why += "; places are (row, column)";
  std::string got;
  for (int i = 0; i < count; ++i) {
    const std::string one = argument_text(arguments[i]);
    if (!one.empty()) got += (got.empty() ? "; got " : ", ") + one;
  }
  return raise(error.status(), function, std::string(function) + ": " + why + got);
}

}  // namespace nuqi::python

#include "operation.h"

#include <cstring>
#include <string>

#include "../scalars.h"

namespace nuqi::python {

int integer(PyObject* object, const char* name) {
  int32_t value = 0;
  if (!read_integer(object, name, &value)) throw Raised{};
  return value;
}

float real(PyObject* object, const char* name) {
  float value = 0;
  if (!read_real(object, name, &value)) throw Raised{};
  return value;
}

PixelPoint point(PyObject* object, const char* name) {
  PixelPoint found{};
  if (!read_pair(object, name, &found.y, &found.x)) throw Raised{};
  return found;
}

int word(PyObject* object, const char* name, const char* const* words, int count) {
  const char* given = PyUnicode_Check(object) ? PyUnicode_AsUTF8(object) : nullptr;
  std::string all;
  for (int i = 0; i < count; ++i) {
    if (given != nullptr && std::strcmp(given, words[i]) == 0) return i;
    all += std::string(i == 0 ? "'" : ", '") + words[i] + "'";
  }
  if (PyErr_Occurred() == nullptr)
    PyErr_Format(PyExc_ValueError, "%s: expected one of %s, got %R", name, all.c_str(), object);
  throw Raised{};
}

}  // namespace nuqi::python

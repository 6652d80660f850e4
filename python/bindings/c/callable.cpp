// A type of its own rather than a builtin function: arguments may be named, and the documentation is put together
// when somebody reads it, not by every import.
#include "callable.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "call.h"

// structmember.h, which newer versions of Python do without, defines macros of these names.
#include <structmember.h>

namespace nuqi::python {
namespace {

struct Callable {
  PyObject_HEAD vectorcallfunc call;
  const Function* function;
};

const Function& function_of(PyObject* self) { return *reinterpret_cast<Callable*>(self)->function; }

// Puts named arguments where they belong. The number of arguments, below 0 with a TypeError.
Py_ssize_t order(const Function& function, PyObject* const* arguments, Py_ssize_t count,
                 PyObject* names, PyObject** ordered) {
  if (!count_is(function, count, 0, function.most)) return -1;
  std::fill_n(std::copy_n(arguments, count, ordered), kMostParameters - count, nullptr);
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(names); ++i) {
    PyObject* name = PyTuple_GET_ITEM(names, i);
    const auto named = [&](const Item& item) {
      return PyUnicode_CompareWithASCIIString(name, item.name.c_str()) == 0;
    };
    const auto found = std::find_if(function.arguments.begin(), function.arguments.end(), named);
    if (found == function.arguments.end()) {
      PyErr_Format(PyExc_TypeError, "%s has no argument '%U'; it takes %s", function.name, name,
                   function.signature.c_str());
      return -1;
    }
    PyObject*& place = ordered[found - function.arguments.begin()];
    if (place != nullptr) {
      PyErr_Format(PyExc_TypeError, "%s got '%U' twice", function.name, name);
      return -1;
    }
    place = arguments[count + i];
  }
  for (int i = 0; i < function.fewest; ++i) {
    if (ordered[i] != nullptr) continue;
    PyErr_Format(PyExc_TypeError, "%s lacks its argument '%s'; it takes %s", function.name,
                 function.arguments[i].name.c_str(), function.signature.c_str());
    return -1;
  }
  return function.most > function.fewest && ordered[function.fewest] == nullptr ? function.fewest
                                                                                : function.most;
}

// Vectorcall: a call of a 64x64 image takes a microsecond; what stands before it should not.
PyObject* call(PyObject* self, PyObject* const* arguments, std::size_t flags, PyObject* names) {
  const Function& function = function_of(self);
  const Py_ssize_t count = PyVectorcall_NARGS(flags);
  try {
    if (names == nullptr) return call_function(function, arguments, count);
    PyObject* ordered[kMostParameters];
    const Py_ssize_t all = order(function, arguments, count, names, ordered);
    return all < 0 ? nullptr : call_function(function, ordered, all);
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

PyObject* text_of(const std::string& text) { return PyUnicode_FromString(text.c_str()); }

PyObject* tuple_of(const std::vector<Item>& items) {
  PyObject* tuple = PyTuple_New(static_cast<Py_ssize_t>(items.size()));
  for (std::size_t i = 0; tuple != nullptr && i < items.size(); ++i) {
    PyObject* pair = Py_BuildValue("(ss)", items[i].name.c_str(), items[i].type.c_str());
    if (pair == nullptr) {
      Py_CLEAR(tuple);
    } else {
      PyTuple_SET_ITEM(tuple, static_cast<Py_ssize_t>(i), pair);
    }
  }
  return tuple;
}

PyObject* get_name(PyObject* self, void* /*unused*/) {
  return PyUnicode_FromString(function_of(self).name);
}
PyObject* get_signature(PyObject* self, void* /*unused*/) {
  return text_of(function_of(self).signature);
}
PyObject* get_arguments(PyObject* self, void* /*unused*/) {
  return tuple_of(function_of(self).arguments);
}
PyObject* get_results(PyObject* self, void* /*unused*/) {
  return tuple_of(function_of(self).results);
}
PyObject* get_documentation(PyObject* self, void* /*unused*/) {
  PyObject* manual = PyImport_ImportModule("nuqi._manual");
  if (manual == nullptr) return nullptr;
  PyObject* text = PyObject_CallMethod(manual, "document", "O", self);
  Py_DECREF(manual);
  return text;
}

PyObject* represent(PyObject* self) {
  return PyUnicode_FromFormat("<function nuqi.c.%s>", function_of(self).name);
}
// Pickled by name.
PyObject* reduce(PyObject* self, PyObject* /*unused*/) { return get_name(self, nullptr); }
// As an attribute of a class it is no method of it, like builtin functions. inspect takes what has __get__ for a
// function.
PyObject* get(PyObject* self, PyObject* /*instance*/, PyObject* /*type*/) {
  Py_INCREF(self);
  return self;
}
void deallocate(PyObject* self) {
  PyTypeObject* type = Py_TYPE(self);
  type->tp_free(self);
  Py_DECREF(type);
}

PyTypeObject* callable_type;

}  // namespace

bool make_callable_type() {
  static PyMemberDef members[] = {
      {"__vectorcalloffset__", T_PYSSIZET, offsetof(Callable, call), READONLY, nullptr}, {}};
  static PyGetSetDef attributes[] = {
      {"__name__", get_name, nullptr, nullptr, nullptr},
      {"__qualname__", get_name, nullptr, nullptr, nullptr},
      {"__text_signature__", get_signature, nullptr, nullptr, nullptr},
      {"__doc__", get_documentation, nullptr, nullptr, nullptr},
      {"_arguments", get_arguments, nullptr, nullptr, nullptr},
      {"_results", get_results, nullptr, nullptr, nullptr},
      {}};
  static PyMethodDef methods[] = {{"__reduce__", reduce, METH_NOARGS, nullptr}, {}};
  static PyType_Slot slots[] = {{Py_tp_members, members},
                                {Py_tp_getset, attributes},
                                {Py_tp_methods, methods},
                                {Py_tp_call, reinterpret_cast<void*>(PyVectorcall_Call)},
                                {Py_tp_repr, reinterpret_cast<void*>(represent)},
                                {Py_tp_descr_get, reinterpret_cast<void*>(get)},
                                {Py_tp_dealloc, reinterpret_cast<void*>(deallocate)},
                                {0, nullptr}};
  static PyType_Spec spec = {
      "nuqi.c.Function", sizeof(Callable), 0,
      Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION | Py_TPFLAGS_HAVE_VECTORCALL, slots};
  callable_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
  return callable_type != nullptr;
}

PyObject* callable_of(const Function& function) {
  auto* made = reinterpret_cast<Callable*>(callable_type->tp_alloc(callable_type, 0));
  if (made == nullptr) return nullptr;
  made->call = call;
  made->function = &function;
  return reinterpret_cast<PyObject*>(made);
}

}  // namespace nuqi::python

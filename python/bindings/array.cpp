#include "array.h"

#include <pybind11/numpy.h>

#include <nuqi/hpp/checks.hpp>
#include <string>

namespace nuqi::python {
namespace {

namespace py = pybind11;

struct Numeric {
  const char* name;
  char kind;
  int bytes;
};
constexpr Numeric kNumeric[] = {
    {"uint8", 'u', 1}, {"int8", 'i', 1}, {"int16", 'i', 2}, {"int32", 'i', 4}, {"float32", 'f', 4}};

constexpr const Numeric& numeric(Element element) { return kNumeric[static_cast<int>(element)]; }

const py::detail::PyArrayDescr_Proxy* type_of(const py::detail::PyArray_Proxy* array) {
  return py::detail::array_descriptor_proxy(array->descr);
}

bool has_type(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  const auto* type = type_of(array);
  if (wanted.mask && type->kind == 'b') return true;
  const bool native = type->byteorder == '=' || type->byteorder == '|' ||
                      type->byteorder == (PY_BIG_ENDIAN ? '>' : '<');
  const Numeric& is = numeric(wanted.element);
  return type->kind == is.kind && type->elsize == is.bytes && native;
}

int dimensions_of(const Wanted& wanted) {
  return (wanted.list ? 1 : 2) + (wanted.channels > 1 ? 1 : 0);
}

// Axes of length 1 and those of empty arrays may have any stride: nothing is found by it.
bool rows_are_contiguous(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  ssize_t expected = numeric(wanted.element).bytes;
  for (int axis = array->nd - 1; axis >= (wanted.list ? 0 : 1); --axis) {
    if (array->dimensions[axis] != 1 && array->strides[axis] != expected) return false;
    expected *= array->dimensions[axis];
  }
  return wanted.list || array->dimensions[0] == 1 || array->strides[0] > 0;
}

std::string shape_text(const py::detail::PyArray_Proxy* array) {
  std::string text = "(";
  for (int axis = 0; axis < array->nd; ++axis) {
    text += (axis > 0 ? ", " : "") + std::to_string(array->dimensions[axis]);
  }
  return text + (array->nd == 1 ? ",)" : ")");
}

bool refuse(const Wanted& wanted, const std::string& why) {
  PyErr_SetString(PyExc_TypeError, (std::string(wanted.name) + ": " + why).c_str());
  return false;
}

bool refuse_type(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  const std::string is = numeric(wanted.element).name;
  const std::string got = py::str(py::handle(array->descr));
  return refuse(wanted, "expected " + is + ", got " + got + "; pass " +
                            (wanted.written ? "an array made with dtype=np." + is
                                            : std::string(wanted.name) + ".astype(np." + is + ")"));
}

bool refuse_shape(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  std::string shape = wanted.list ? "(n" : "(height, width";
  shape += wanted.channels > 1 ? ", " + std::to_string(wanted.channels) + ")"
           : wanted.list       ? ",)"
                               : ")";
  const bool interleaved = wanted.channels == 1 && array->nd == 3 && !wanted.written;
  return refuse(wanted,
                "expected shape " + shape + ", got " + shape_text(array) +
                    (interleaved ? "; pass one channel at a time: nuqi.split separates them" : ""));
}

bool refuse_strides(const Wanted& wanted) {
  return refuse(wanted,
                wanted.written
                    ? "the pixels of a row must lie back to back, and rows follow one another "
                      "downwards in memory; pass a contiguous array, such as np.empty makes"
                    : std::string("the pixels of a row must lie back to back, and rows follow one "
                                  "another downwards in memory; pass np.ascontiguousarray(") +
                          wanted.name +
                          "), or for one channel of several channel= or a plane of nuqi.split");
}

View<const uint8_t> bytes_of(const Image& image) {
  using Bytes = View<const uint8_t>;
  return Bytes(Bytes::unchecked, reinterpret_cast<const uint8_t*>(image.data), image.row_bytes,
               image.height, image.step);
}

}  // namespace

const char* name_of(Element element) { return numeric(element).name; }
int64_t bytes_of(Element element) { return numeric(element).bytes; }

bool is_array(PyObject* object) {
  return PyObject_TypeCheck(object, py::detail::npy_api::get().PyArray_Type_) != 0;
}

int find_type(PyObject* object, const char* name, const Element* elements, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    if (is_array(object) && has_type(py::detail::array_proxy(object), {name, elements[i]}))
      return i;
    all += (i == 0 ? "" : i + 1 == count ? " or " : ", ") + std::string(name_of(elements[i]));
  }
  std::string got = Py_TYPE(object)->tp_name;
  std::string instead =
      std::string("np.asarray(") + name + ", np." + name_of(elements[count - 1]) + ")";
  if (is_array(object)) {
    got = py::str(py::handle(py::detail::array_proxy(object)->descr));
    instead = std::string(name) + ".astype(np." + name_of(elements[0]) + ")";
  }
  refuse({name, elements[0]}, "expected an array of " + all + ", got " + got + "; pass " + instead);
  return -1;
}

int find_channels(PyObject* object, const char* name, const int* channels, int count) {
  const auto* array = py::detail::array_proxy(object);
  std::string all;
  for (int i = 0; i < count; ++i) {
    if (channels[i] == 1 ? array->nd == 2 : array->nd == 3 && array->dimensions[2] == channels[i])
      return i;
    all += (i == 0           ? ""
            : i + 1 == count ? " or "
                             : ", ") +
           std::string("(height, width") +
           (channels[i] == 1 ? ")" : ", " + std::to_string(channels[i]) + ")");
  }
  refuse({name, Element::u8}, "expected shape " + all + ", got " + shape_text(array));
  return -1;
}

bool read_array(PyObject* object, const Wanted& wanted, Image* image) {
  if (!is_array(object)) {
    return refuse(wanted, std::string("expected a NumPy array of ") + name_of(wanted.element) +
                              ", got " + Py_TYPE(object)->tp_name);
  }
  const auto* array = py::detail::array_proxy(object);
  if (!has_type(array, wanted)) return refuse_type(array, wanted);
  if (array->nd != dimensions_of(wanted)) return refuse_shape(array, wanted);
  if (wanted.channels > 1 && array->dimensions[array->nd - 1] != wanted.channels)
    return refuse_shape(array, wanted);

  image->data = array->data;
  image->height = wanted.list ? 1 : array->dimensions[0];
  image->width = array->dimensions[wanted.list ? 0 : 1];
  image->row_bytes = image->width * wanted.channels * numeric(wanted.element).bytes;
  const bool empty = image->width == 0 || image->height == 0;
  if (!empty && !rows_are_contiguous(array, wanted)) return refuse_strides(wanted);
  image->step = empty || wanted.list || image->height == 1 ? image->row_bytes : array->strides[0];
  if (wanted.written && (array->flags & py::detail::npy_api::NPY_ARRAY_WRITEABLE_) == 0) {
    return refuse(wanted, std::string("is written, and the array is read-only; pass ") +
                              wanted.name + ".copy()");
  }
  return true;
}

bool overlap(const Image& a, const Image& b) {
  const bool empty = a.row_bytes == 0 || a.height == 0 || b.row_bytes == 0 || b.height == 0;
  return !empty && detail::overlap(bytes_of(a), bytes_of(b));
}

bool identical(const Image& a, const Image& b) {
  return a.data == b.data && a.step == b.step && a.row_bytes == b.row_bytes && a.height == b.height;
}

}  // namespace nuqi::python

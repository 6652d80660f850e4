#include "array.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <cstring>
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

std::string type_text(const py::detail::PyArray_Proxy* array) {
  return py::str(py::handle(array->descr));
}

// What makes an array of another type one of these. Values matter: floats of 0 to 1 would all become 0.
std::string instead_of_type(const py::detail::PyArray_Proxy* array, const char* name,
                            const Element* elements, int count) {
  const std::string array_name = name;
  const std::string first = std::string(".astype(np.") + numeric(elements[0]).name + ")";
  const bool bytes = elements[0] == Element::u8;
  const char kind = type_of(array)->kind;
  if (kind == 'b' && bytes) return array_name + ".view(np.uint8)";
  if (std::find(elements, elements + count, Element::f32) != elements + count && kind != 'b') {
    const std::string floats = array_name + ".astype(np.float32)";
    return kind == 'f' || !bytes ? floats
                                 : floats + ", or " + array_name + first + " if it holds 0 to 255";
  }
  if (kind == 'f' && bytes) {
    return array_name + ".clip(0, 255)" + first + ", or (" + array_name + " * 255)" + first +
           " if it holds 0 to 1";
  }
  return array_name + first + (bytes ? " if it holds 0 to 255" : "");
}

bool refuse_type(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  const std::string is = numeric(wanted.element).name;
  const std::string name = wanted.name;
  return refuse(wanted,
                "expected " + std::string(wanted.mask ? "bool or " : "") + is + ", got " +
                    type_text(array) + "; pass " +
                    (wanted.written ? "an array made with dtype=np." + is
                     : wanted.mask  ? name + " != 0"
                                    : instead_of_type(array, wanted.name, &wanted.element, 1)));
}

// How an image of another shape becomes one of so many channels, where that is likely.
std::string instead_of_shape(const py::detail::PyArray_Proxy* array, const char* name,
                             int channels) {
  const auto* size = array->dimensions;
  const std::string image = name;
  if (array->nd == 1 && channels == 1) return "; pass " + image + "[np.newaxis] for a single row";
  if (array->nd != 3) return "";
  if (channels == 1 && size[2] == 1) return "; pass " + image + "[..., 0]";
  if (channels == 1) return "; pass one channel at a time: nuqi.split separates them";
  if (size[2] > channels && size[2] <= 4)
    return "; pass " + image + "[..., :" + std::to_string(channels) + "].copy()";
  if (size[0] == channels) return "; pass np.moveaxis(" + image + ", 0, -1).copy()";
  return "";
}

bool refuse_shape(const py::detail::PyArray_Proxy* array, const Wanted& wanted) {
  std::string shape = wanted.list ? "(n" : "(height, width";
  shape += wanted.channels > 1 ? ", " + std::to_string(wanted.channels) + ")"
           : wanted.list       ? ",)"
                               : ")";
  const bool result = wanted.list || (wanted.written && std::strcmp(wanted.name, "image") != 0);
  return refuse(wanted, "expected shape " + shape + ", got " + shape_text(array) +
                            (result ? "" : instead_of_shape(array, wanted.name, wanted.channels)));
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

// Of numpy.ma: working on all pixels would be a silent mistake.
bool is_masked(PyObject* array) {
  return Py_TYPE(array) !=
             reinterpret_cast<PyTypeObject*>(py::detail::npy_api::get().PyArray_Type_) &&
         PyObject_HasAttrString(array, "mask") != 0;
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

std::string array_text(PyObject* array) {
  const auto* proxy = py::detail::array_proxy(array);
  return type_text(proxy) + " " + shape_text(proxy);
}

int find_type(PyObject* object, const char* name, const Element* elements, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    if (is_array(object) && has_type(py::detail::array_proxy(object), {name, elements[i]}))
      return i;
    all += (i == 0 ? "" : i + 1 == count ? " or " : ", ") + std::string(name_of(elements[i]));
  }
  std::string got = Py_TYPE(object)->tp_name;
  std::string instead;
  if (is_array(object)) {
    got = type_text(py::detail::array_proxy(object));
    instead = "; pass " + instead_of_type(py::detail::array_proxy(object), name, elements, count);
  } else if (PySequence_Check(object) != 0 && PyUnicode_Check(object) == 0) {
    instead = std::string("; pass np.array(") + name + ", np." + name_of(elements[0]) + ")";
  }
  refuse({name, elements[0]}, "expected an array of " + all + ", got " + got + instead);
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
  std::string instead;
  for (int i = count - 1; i >= 0 && instead.empty(); --i)
    instead = instead_of_shape(array, name, channels[i]);
  refuse({name, Element::u8}, "expected shape " + all + ", got " + shape_text(array) + instead);
  return -1;
}

bool read_array(PyObject* object, const Wanted& wanted, Image* image) {
  if (!is_array(object)) {
    return refuse(wanted, std::string("expected a NumPy array of ") + name_of(wanted.element) +
                              ", got " + Py_TYPE(object)->tp_name);
  }
  const auto* array = py::detail::array_proxy(object);
  if (is_masked(object)) {
    const std::string name = wanted.name;
    return refuse(wanted, "expected an array without a mask; pass " + name +
                              ".data, and where there is mask= ~np.ma.getmaskarray(" + name + ")");
  }
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

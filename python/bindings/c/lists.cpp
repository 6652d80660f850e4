#include "lists.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "../error.h"
#include "call.h"

namespace nuqi::python {
namespace {

constexpr int64_t kMost = std::numeric_limits<int32_t>::max();

template <class... P>
auto cast(const Function& function, StatusCode (*like)(P...)) {
  return reinterpret_cast<decltype(like)>(function.address);
}

PyObject* none_or_raise(const Function& function, StatusCode status) {
  if (status < 0) return raise_failed(function, status);
  Py_RETURN_NONE;
}

bool read_image(PyObject* object, const char* name, Element element, int channels, Image* image) {
  if (!read_array(object, {name, element, channels, false, false, false}, image)) return false;
  if (image->width <= kMost && image->height <= kMost && image->step <= kMost) return true;
  PyErr_Format(PyExc_ValueError, "%s: C functions count in 32 bits; pass a part of it", name);
  return false;
}
bool read_list(PyObject* object, const char* name, Element element, bool written, Image* list,
               int channels = 1) {
  if (!read_array(object, {name, element, channels, written, false, true}, list)) return false;
  if (list->width <= kMost) return true;
  PyErr_Format(PyExc_ValueError, "%s: C functions count in 32 bits; pass a part of it", name);
  return false;
}

RoiSize size_of(const Image& image) {
  return {static_cast<int32_t>(image.width), static_cast<int32_t>(image.height)};
}
int32_t step_of(const Image& image) { return static_cast<int32_t>(image.step); }

bool length_is(const Image& list, const char* name, int64_t length, bool or_more = false) {
  if (list.width == length || (or_more && list.width > length)) return true;
  PyErr_Format(PyExc_ValueError, "%s: expected %lld entries%s, got %lld", name,
               static_cast<long long>(length), or_more ? " or more" : "",
               static_cast<long long>(list.width));
  return false;
}

bool apart(const Function& function, const Image& a, const Image& b, const char* what) {
  if (!overlap(a, b)) return true;
  raise_status(StatusBadArg, function.name, what);
  return false;
}

template <class T>
T* as(const Image& image) {
  return reinterpret_cast<T*>(image.data);
}

}  // namespace

PyObject* arctan(const Function& function, PyObject* const* arguments, Py_ssize_t /*count*/) {
  Image y, x, angle;
  if (!read_list(arguments[0], "y", Element::f32, false, &y) ||
      !read_list(arguments[1], "x", Element::f32, false, &x) ||
      !read_list(arguments[2], "angle", Element::f32, true, &angle) ||
      !length_is(x, "x", y.width) || !length_is(angle, "angle", y.width)) {
    return nullptr;
  }
  for (const Image& source : {y, x}) {
    if (!identical(angle, source) && !apart(function, angle, source, "angle overlaps y or x"))
      return nullptr;
  }
  StatusCode status;
  {
    const Unlocked unlocked;
    status = nuqibFastArctan_32f(as<float>(y), as<float>(x), as<float>(angle),
                                 static_cast<int32_t>(y.width));
  }
  return none_or_raise(function, status);
}

PyObject* histogram(const Function& function, PyObject* const* arguments, Py_ssize_t /*count*/) {
  Image source, counts, levels;
  if (!read_image(arguments[0], "src", Element::u8, 1, &source) ||
      !read_list(arguments[1], "hist", Element::s32, true, &counts) ||
      !read_list(arguments[2], "levels", Element::u8, false, &levels) ||
      !length_is(counts, "hist", std::max<int64_t>(levels.width - 1, 1)) ||
      !apart(function, counts, source, "hist overlaps src") ||
      !apart(function, counts, levels, "hist overlaps levels")) {
    return nullptr;
  }
  StatusCode status;
  {
    const Unlocked unlocked;
    status = nuqiCalcHist_8u_C1R(as<uint8_t>(source), step_of(source), size_of(source),
                                 as<int32_t>(counts), static_cast<int32_t>(levels.width),
                                 as<uint8_t>(levels));
  }
  return none_or_raise(function, status);
}

// The C function clears (columns + 1) * (rows + 1) counters from the start whatever the step is: it counts
// into memory of this call, and the caller's array gets the rows.
PyObject* joint_histogram(const Function& function, PyObject* const* arguments,
                          Py_ssize_t /*count*/) {
  Image source, hist, levels;
  if (!read_image(arguments[0], "src", Element::u8, 2, &source) ||
      !read_array(arguments[1], {"hist", Element::s32, 1, true, false, false}, &hist) ||
      !read_list(arguments[2], "levels", Element::s32, false, &levels)) {
    return nullptr;
  }
  const int64_t columns = hist.width;
  const int64_t rows = hist.height;
  if (columns > 65535 || rows > 65535) {
    PyErr_SetString(PyExc_ValueError, "hist: more bins than there are pairs of levels");
    return nullptr;
  }
  if (!length_is(levels, "levels", columns + rows + 2) ||
      !apart(function, hist, source, "hist overlaps src") ||
      !apart(function, hist, levels, "hist overlaps levels")) {
    return nullptr;
  }
  const int32_t counts[2] = {static_cast<int32_t>(columns), static_cast<int32_t>(rows)};
  const auto bytes = static_cast<std::size_t>((columns + 1) * (rows + 1)) * sizeof(int32_t);
  auto* counters = static_cast<char*>(std::malloc(bytes));
  if (counters == nullptr) return PyErr_NoMemory();
  StatusCode status;
  {
    const Unlocked unlocked;
    status = nuqiCalcHist_8u_C2R(as<uint8_t>(source), step_of(source), size_of(source),
                                 reinterpret_cast<int32_t*>(counters),
                                 static_cast<int32_t>(hist.row_bytes), counts, as<int32_t>(levels));
    for (int64_t row = 0; status >= 0 && row < rows; ++row) {
      std::copy_n(counters + row * hist.row_bytes, hist.row_bytes, hist.data + row * hist.step);
    }
  }
  std::free(counters);
  return none_or_raise(function, status);
}

PyObject* check_histogram(const Function& function, PyObject* const* arguments,
                          Py_ssize_t /*count*/) {
  Image source, target;
  int32_t flag = 0;
  if (!read_list(arguments[0], "src", Element::s32, false, &source) ||
      !read_list(arguments[1], "dst", Element::f32, true, &target) ||
      !length_is(target, "dst", source.width) || !read_integer(arguments[2], "flag", &flag)) {
    return nullptr;
  }
  StatusCode status;
  {
    const Unlocked unlocked;
    status = nuqiConvertHist1D_32s32f(as<int32_t>(source), as<float>(target),
                                      static_cast<int32_t>(source.width), flag);
  }
  return none_or_raise(function, status);
}

PyObject* distance_weights(const Function& function, PyObject* const* arguments,
                           Py_ssize_t /*count*/) {
  int32_t type = 0;
  if (!read_integer(arguments[0], "maskType", &type)) return nullptr;
  float weights[3] = {};
  const StatusCode status = nuqiGetDistanceTransformMask(type, weights);
  if (status < 0) return raise_failed(function, status);
  if (type == 52) return Py_BuildValue("(fff)", weights[0], weights[1], weights[2]);
  return Py_BuildValue("(ff)", weights[0], weights[1]);
}

template <class T, int Channels>
PyObject* sample_line(const Function& function, PyObject* const* arguments, Py_ssize_t /*count*/) {
  Image source, line;
  PixelPoint start{};
  PixelPoint end{};
  if (!read_image(arguments[0], "src", element_of<T>(), Channels, &source) ||
      !read_list(arguments[1], "dst", element_of<T>(), true, &line, Channels) ||
      !read_pair(arguments[2], "start", &start.x, &start.y) ||
      !read_pair(arguments[3], "end", &end.x, &end.y)) {
    return nullptr;
  }
  const auto between = [](int32_t a, int32_t b) { return a < b ? int64_t{b} - a : int64_t{a} - b; };
  const int64_t room = std::max(between(start.x, end.x), between(start.y, end.y)) + 1;
  const bool inside = room <= std::max(source.width, source.height);
  // Points outside are the C function's to refuse.
  if (inside && !length_is(line, "dst", room, true)) return nullptr;
  if (!apart(function, line, source, "dst overlaps src")) return nullptr;
  StatusCode status;
  {
    const Unlocked unlocked;
    status = cast(
        function,
        static_cast<StatusCode (*)(const T*, int32_t, RoiSize, T*, PixelPoint, PixelPoint)>(
            nullptr))(as<T>(source), step_of(source), size_of(source), as<T>(line), start, end);
  }
  if (status < 0) return raise_failed(function, status);
  return PyLong_FromLong(status);
}

template PyObject* sample_line<uint8_t, 1>(const Function&, PyObject* const*, Py_ssize_t);
template PyObject* sample_line<uint8_t, 3>(const Function&, PyObject* const*, Py_ssize_t);
template PyObject* sample_line<float, 1>(const Function&, PyObject* const*, Py_ssize_t);
template PyObject* sample_line<float, 3>(const Function&, PyObject* const*, Py_ssize_t);

}  // namespace nuqi::python

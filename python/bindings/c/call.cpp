// From Python's arguments to the slots of a C call, and back to what Python gets.
#include "call.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <nuqi/hpp/error.hpp>

#include "../error.h"
#include "checks.h"
#include "results.h"
#include "state.h"

namespace nuqi::python {
namespace {

constexpr int64_t kMost = std::numeric_limits<int32_t>::max();

// Pixels and bytes a row that C functions count in 32 bits.
bool fits(const Image& image, const char* name) {
  if (image.width <= kMost && image.height <= kMost && image.step <= kMost) return true;
  PyErr_Format(PyExc_ValueError,
               "%s: C functions count pixels and the bytes of a row in 32 bits; pass a part of it",
               name);
  return false;
}

RoiSize size_of(const Image& image) {
  return {static_cast<int32_t>(image.width), static_cast<int32_t>(image.height)};
}

// Reads arguments in the order of the parameters, one C parameter after the other.
class Reader {
 public:
  Reader(Call& call, PyObject* const* arguments, Py_ssize_t count)
      : call_(call), function_(call.function), arguments_(arguments), left_(count) {}

  bool read() {
    for (std::size_t i = 0; i < function_.count; ++i) {
      if (!read(i)) return false;
    }
    return true;
  }

 private:
  PyObject* next() {
    --left_;
    return *arguments_++;
  }
  const char* name(std::size_t i) const { return function_.names[i].c_str(); }

  // The mask is the last image that is read.
  bool is_mask(std::size_t i) const {
    if (!function_.masked || function_.parameters[i].kind != Kind::source) return false;
    for (std::size_t later = i + 1; later < function_.count; ++later) {
      if (function_.parameters[later].kind == Kind::source) return false;
    }
    return true;
  }

  bool keep(const Image& image, const char* name, bool written) {
    if (!fits(image, name)) return false;
    const int at = call_.image_count++;
    call_.images[at] = image;
    call_.image_names[at] = name;
    call_.written[at] = written;
    return true;
  }

  bool read_image(std::size_t i, bool written) {
    const bool mask = is_mask(i);
    int channels = mask ? 1 : function_.channels;
    if (written && function_.target_channels != 0) channels = function_.target_channels;
    const Wanted wanted{name(i), function_.parameters[i].element, channels, written, mask, false};
    Image image;
    if (!read_array(next(), wanted, &image) || !keep(image, name(i), written)) return false;
    call_.slots[i].pointer = image.data;
    call_.slots[i + 1].integer = static_cast<int32_t>(image.step);
    return true;
  }

  // A sequence of planes, which may be None but for one where planes are written. All have one step.
  bool read_planes(std::size_t i, bool written) {
    // A tuple of its own, kept for the call: another thread may change a list meanwhile.
    call_.plane_tuple = PySequence_Tuple(next());
    if (call_.plane_tuple == nullptr) return false;
    if (PyTuple_GET_SIZE(call_.plane_tuple) != function_.planes) {
      PyErr_Format(PyExc_TypeError, "%s: expected %d planes, got %zd", name(i), function_.planes,
                   PyTuple_GET_SIZE(call_.plane_tuple));
      return false;
    }
    const Wanted wanted{name(i), function_.parameters[i].element, 1, written, false, false};
    Image first{};
    for (int plane = 0; plane < function_.planes; ++plane) {
      PyObject* object = PyTuple_GET_ITEM(call_.plane_tuple, plane);
      if (written && object == Py_None) continue;
      Image image;
      if (!read_array(object, wanted, &image)) return false;
      if (first.data == nullptr) first = image;
      if (image.step != first.step || image.width != first.width || image.height != first.height) {
        PyErr_Format(PyExc_ValueError, "%s: planes need one size and one row stride", name(i));
        return false;
      }
      call_.planes[plane] = image.data;
      plane_images_[plane] = image;
    }
    for (int a = 0; written && a < function_.planes; ++a) {
      for (int b = 0; b < a; ++b) {
        if (call_.planes[a] != nullptr && call_.planes[b] != nullptr &&
            overlap(plane_images_[a], plane_images_[b])) {
          raise_status(StatusBadArg, function_.name, "planes that are written overlap");
          return false;
        }
      }
    }
    call_.slots[i].pointer = call_.planes;
    call_.slots[i + 1].integer = static_cast<int32_t>(first.step);
    return first.data == nullptr || fits(first, name(i));
  }

 public:
  // Sizes and overlap, once the interleaved image is known too.
  bool check_planes() const {
    if (function_.planes == 0) return true;
    const Image& whole = call_.images[0];
    for (int plane = 0; plane < function_.planes; ++plane) {
      if (call_.planes[plane] == nullptr) continue;
      const Image& image = plane_images_[plane];
      if (image.width != whole.width || image.height != whole.height) {
        raise_status(StatusBadSize, function_.name, "the planes differ from the image in size");
        return false;
      }
      if (overlap(image, whole)) {
        raise_status(StatusBadArg, function_.name, "a plane overlaps the image");
        return false;
      }
    }
    return true;
  }

 private:
  bool read_size(std::size_t i) {
    if (call_.image_count > 0) {
      const bool of_its_own = function_.sizes == Sizes::matches;
      call_.slots[i].size = size_of(call_.images[of_its_own ? call_.image_count - 1 : 0]);
      return true;
    }
    if (function_.planes > 0) {  // planes come first
      for (int plane = 0; plane < function_.planes; ++plane) {
        if (call_.planes[plane] != nullptr) call_.slots[i].size = size_of(plane_images_[plane]);
      }
      return true;
    }
    RoiSize& size = call_.size_argument;
    if (!read_pair(next(), name(i), &size.width, &size.height)) return false;
    call_.slots[i].size = size;
    return true;
  }

  bool read_numbers(std::size_t i) {
    call_.slots[i].pointer = nullptr;
    PyObject* object = next();
    if (function_.optional && object == Py_None) return true;
    Image list;
    const Wanted wanted{name(i), function_.parameters[i].element, 1, false, false, true};
    if (!read_array(object, wanted, &list)) return false;
    const int64_t length = function_.length(call_);
    if (list.width != length) {
      PyErr_Format(PyExc_ValueError, "%s: expected %lld entries, got %lld", name(i),
                   static_cast<long long>(length), static_cast<long long>(list.width));
      return false;
    }
    call_.slots[i].pointer = list.data;
    return true;
  }

  bool use_state(std::size_t i, StateKind kind) {
    call_.state = read_state(next(), kind, name(i));
    if (call_.state == nullptr) return false;
    call_.slots[i].pointer = call_.state->state;
    return true;
  }

  bool result(std::size_t i, void* place) {
    call_.slots[i].pointer = place;
    return true;
  }

  bool read(std::size_t i) {
    Slot& slot = call_.slots[i];
    switch (function_.parameters[i].kind) {
      case Kind::source: return read_image(i, false);
      case Kind::target: return read_image(i, true);
      case Kind::source_planes: return read_planes(i, false);
      case Kind::target_planes: return read_planes(i, true);
      case Kind::step: return true;
      case Kind::size: return read_size(i);
      case Kind::strip: call_.strip = size_of(call_.images[0]); return result(i, &call_.strip);
      case Kind::integer: {
        if (!read_integer(next(), name(i), &slot.integer)) return false;
        call_.integers[call_.integer_count++] = slot.integer;
        return true;
      }
      case Kind::real: return read_real(next(), name(i), &slot.real);
      case Kind::point: return read_pair(next(), name(i), &slot.point.x, &slot.point.y);
      case Kind::numbers: return read_numbers(i);
      case Kind::buffer:
        if (left_ > 0) call_.buffer = next();
        return true;
      case Kind::convol_state: return use_state(i, StateKind::convol);
      case Kind::morph_state: return use_state(i, StateKind::morph);
      case Kind::new_convol_state:
      case Kind::new_morph_state: return result(i, &call_.new_state);
      case Kind::region_result: return result(i, &call_.region);
      default: return result(i, &call_.results[results_++]);
    }
  }

  Call& call_;
  const Function& function_;
  PyObject* const* arguments_;
  Py_ssize_t left_;
  int results_ = 0;
  Image plane_images_[kMostPlanes] = {};
};

StatusCode run(Call& call) {
  if (call.state != nullptr) call.state->busy = true;
  StatusCode status;
  {
    const Unlocked unlocked;
    status = call.function.invoke(call.function.address, call.slots);
  }
  if (call.state != nullptr) call.state->busy = false;
  return status;
}

PyObject* state_result(Call& call, StateKind kind) {
  if (kind == StateKind::convol) {  // the size is the third number of all three
    const int64_t half = call.integers[2] / 2;
    return new_state(kind, call.new_state, half, half);
  }
  for (std::size_t i = 0; i < call.function.count; ++i) {
    if (call.function.parameters[i].kind != Kind::point) continue;
    const int64_t above = call.slots[i].point.y;
    return new_state(kind, call.new_state, above, call.size_argument.height - 1 - above);
  }
  return nullptr;
}

PyObject* result_of(Call& call, StatusCode status) {
  if (call.state != nullptr) {
    if (status != StatusNothingToDo) note_rows(call.state, call.integers[0], call.images[0].height);
    return PyLong_FromLong(call.strip.height);
  }
  PyObject* found[4];
  int count = 0;
  int values = 0;
  for (std::size_t i = 0; i < call.function.count; ++i) {
    PyObject* value = nullptr;
    switch (call.function.parameters[i].kind) {
      case Kind::integer_result: value = PyLong_FromLong(call.results[values++].integer); break;
      case Kind::float_result: value = PyFloat_FromDouble(call.results[values++].real); break;
      case Kind::double_result: value = PyFloat_FromDouble(call.results[values++].wide); break;
      case Kind::point_result: {
        const PixelPoint point = call.results[values++].point;
        value = Py_BuildValue("(ii)", point.x, point.y);
        break;
      }
      case Kind::region_result: value = region_object(call.region); break;
      case Kind::new_convol_state: value = state_result(call, StateKind::convol); break;
      case Kind::new_morph_state: value = state_result(call, StateKind::morph); break;
      default: continue;
    }
    if (value == nullptr) {
      while (count > 0) Py_DECREF(found[--count]);
      return nullptr;
    }
    found[count++] = value;
  }
  if (count == 0) Py_RETURN_NONE;
  if (count == 1) return found[0];
  PyObject* all = PyTuple_New(count);
  for (int i = 0; i < count; ++i) {
    if (all == nullptr) {
      Py_DECREF(found[i]);
    } else {
      PyTuple_SET_ITEM(all, i, found[i]);
    }
  }
  return all;
}

}  // namespace

Call::~Call() {
  std::free(own_buffer);
  Py_XDECREF(plane_tuple);
}

bool count_is(const Function& function, Py_ssize_t count, int fewest, int most) {
  if (count >= fewest && count <= most) return true;
  PyErr_Format(
      PyExc_TypeError, "%s%s: got %zd argument%s%s", function.name, function.signature.c_str(),
      count, count == 1 ? "" : "s",
      count > most ? "; steps and sizes come from arrays, points and sizes are pairs" : "");
  return false;
}

PyObject* raise_failed(const Function& function, StatusCode status) {
  return raise_status(status, function.name, status_text(status));
}

PyObject* call_function(const Function& function, PyObject* const* arguments, Py_ssize_t count) {
  if (!count_is(function, count, function.fewest, function.most)) return nullptr;
  if (function.body != nullptr) return function.body(function, arguments, count);
  Call call(function);
  Reader reader(call, arguments, count);
  if (!reader.read() || !reader.check_planes() || !check_sizes(call) || !check_overlap(call) ||
      !find_buffer(call)) {
    return nullptr;
  }
  const StatusCode status = run(call);
  if (status < 0) return raise_failed(function, status);
  return result_of(call, status);
}

}  // namespace nuqi::python

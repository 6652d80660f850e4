#include "checks.h"

#include <cstdlib>

#include "../error.h"
#include "state.h"

namespace nuqi::python {
namespace {

bool expect_size(const Call& call, int at, int64_t width, int64_t height) {
  const Image& image = call.images[at];
  if (image.width == width && image.height == height) return true;
  raise_status(StatusBadSize, call.function.name,
               std::string(call.image_names[at]) + " is " + std::to_string(image.height) + " x " +
                   std::to_string(image.width) + " pixels (height x width) and should be " +
                   std::to_string(height) + " x " + std::to_string(width));
  return false;
}

bool check_strip(const Call& call) {
  const Image& source = call.images[0];
  const Image& target = call.images[1];
  const int32_t part = call.integers[0];
  const int64_t rows = rows_of_result(*call.state, part, source.height);
  if (target.height < rows) return expect_size(call, 1, source.width, rows);
  return expect_size(call, 1, source.width, target.height);
}

}  // namespace

bool check_sizes(const Call& call) {
  if (call.state != nullptr) return check_strip(call);
  const Image* images = call.images;
  switch (call.function.sizes) {
    case Sizes::half: return expect_size(call, 1, images[0].width / 2, images[0].height / 2);
    case Sizes::twice: return expect_size(call, 1, images[0].width * 2, images[0].height * 2);
    case Sizes::matches: {
      // A template that does not fit in is for the C function to refuse: nothing is written then.
      const int64_t width = images[0].width - images[1].width + 1;
      const int64_t height = images[0].height - images[1].height + 1;
      return width < 1 || height < 1 || expect_size(call, 2, width, height);
    }
    case Sizes::same: break;
  }
  for (int at = 1; at < call.image_count; ++at) {
    if (!expect_size(call, at, images[0].width, images[0].height)) return false;
  }
  return true;
}

bool check_overlap(const Call& call) {
  for (int target = 0; target < call.image_count; ++target) {
    if (!call.written[target]) continue;
    for (int other = 0; other < call.image_count; ++other) {
      if (other == target || !overlap(call.images[target], call.images[other])) continue;
      if (call.function.in_place && identical(call.images[target], call.images[other])) continue;
      raise_status(StatusBadArg, call.function.name,
                   std::string(call.image_names[target]) + " overlaps " + call.image_names[other]);
      return false;
    }
  }
  if (call.function.equal_steps && call.images[0].step != call.images[1].step) {
    PyErr_Format(PyExc_ValueError, "%s and %s need one row stride; pass contiguous arrays",
                 call.image_names[0], call.image_names[1]);
    return false;
  }
  return true;
}

bool find_buffer(Call& call) {
  const Function& function = call.function;
  if (function.buffer_size == nullptr) return true;
  const std::size_t last = function.count - 1;
  int64_t bytes = 0;
  const StatusCode status = function.buffer_size(call, &bytes);
  if (status < 0) return raise_failed(function, status) != nullptr;
  if (call.buffer == nullptr || call.buffer == Py_None) {
    call.own_buffer = std::malloc(static_cast<std::size_t>(bytes) + 1);
    if (call.own_buffer == nullptr) return PyErr_NoMemory() != nullptr;
    call.slots[last].pointer = call.own_buffer;
    return true;
  }
  Image buffer;
  const Wanted wanted{function.names[last].c_str(), Element::u8, 1, true, false, true};
  if (!read_array(call.buffer, wanted, &buffer)) return false;
  if (buffer.width < bytes) {
    PyErr_Format(PyExc_ValueError, "buffer: expected %lld bytes or more, got %lld",
                 static_cast<long long>(bytes), static_cast<long long>(buffer.width));
    return false;
  }
  for (int at = 0; at < call.image_count; ++at) {
    if (overlap(buffer, call.images[at])) {
      raise_status(StatusBadArg, function.name,
                   std::string("buffer overlaps ") + call.image_names[at]);
      return false;
    }
  }
  call.slots[last].pointer = buffer.data;
  return true;
}

}  // namespace nuqi::python

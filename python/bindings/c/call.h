// One call: what has been read of its arguments.
#pragma once

#include "../scalars.h"
#include "../unlocked.h"
#include "function.h"

namespace nuqi::python {

inline constexpr int kMostImages = 4;
inline constexpr int kMostPlanes = 4;

struct State;

struct Call {
  const Function& function;
  Slot slots[kMostParameters] = {};
  Image images[kMostImages];
  int image_count = 0;
  bool written[kMostImages] = {};
  const char* image_names[kMostImages];
  int32_t integers[kMostParameters];  // the scalars among the arguments, in their order
  int integer_count = 0;
  RoiSize size_argument{};  // of a function without images

  const void* planes[kMostPlanes] = {};
  PyObject* plane_tuple = nullptr;
  RoiSize strip{};
  PyObject* buffer = nullptr;  // the caller's
  void* own_buffer = nullptr;  // or one for this call
  State* state = nullptr;
  void* new_state = nullptr;
  union {
    int32_t integer;
    float real;
    double wide;
    PixelPoint point;
  } results[4]{};
  FillRegion region{};

  explicit Call(const Function& f) : function(f) {}
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call();
};

// Raises TypeError unless there are so many arguments.
bool count_is(const Function& function, Py_ssize_t count, int fewest, int most);

// Raises nuqi.StatusError for a failed call.
PyObject* raise_failed(const Function& function, StatusCode status);

// The function that Python calls for every row of the table.
PyObject* call_function(const Function& function, PyObject* const* arguments, Py_ssize_t count);

}  // namespace nuqi::python

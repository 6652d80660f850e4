// Filter and morphology states as Python objects.
#pragma once

#include "call.h"

namespace nuqi::python {

enum class StateKind : uint8_t { convol, morph };

// Beyond the C state: the rows that it holds, which tell how many the next result has, so that no target is too
// small; and whether a call runs on it, so that two threads cannot use it at once.
struct State {
  PyObject_HEAD void* state;
  StateKind kind;
  bool busy;
  int64_t above;  // rows of the window or element on either side of the pixel's
  int64_t below;
  int64_t held;
};

bool make_state_types(PyObject* module);
PyObject* new_state(StateKind kind, void* state, int64_t above, int64_t below);

// The state that an argument is, not freed and not in use; null with an exception.
State* read_state(PyObject* object, StateKind kind, const char* name);

// The rows of the result of a strip of so many rows; phase or border as in nuqi.h.
int64_t rows_of_result(const State& state, int32_t part, int64_t rows);
// A strip has been processed.
void note_rows(State* state, int32_t part, int64_t rows);

PyObject* free_state(const Function& function, PyObject* const* arguments, Py_ssize_t count);

}  // namespace nuqi::python

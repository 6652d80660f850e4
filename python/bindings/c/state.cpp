#include "state.h"

#include <algorithm>

namespace nuqi::python {
namespace {

constexpr int32_t kWhole = 0;
constexpr int32_t kFirst = 1;
constexpr int32_t kLast = 2;

StatusCode release(State* state) {
  void* held = state->state;
  state->state = nullptr;
  return state->kind == StateKind::convol ? nuqiConvolFree(static_cast<ConvolState*>(held))
                                          : nuqiMorphologyFree(static_cast<MorphState*>(held));
}

void deallocate(PyObject* self) {
  auto* state = reinterpret_cast<State*>(self);
  if (state->state != nullptr) release(state);
  PyTypeObject* type = Py_TYPE(self);
  type->tp_free(self);
  Py_DECREF(type);
}

PyTypeObject* types[2];

PyTypeObject* make_type(const char* name, const char* documentation) {
  PyType_Slot slots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(deallocate)},
                         {Py_tp_doc, const_cast<char*>(documentation)},
                         {0, nullptr}};
  PyType_Spec spec = {name, sizeof(State), 0,
                      Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
  return reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
}

}  // namespace

bool make_state_types(PyObject* module) {
  types[0] = make_type("nuqi.c.ConvolState", R"(
What a blur, Sobel or Laplace filter keeps between calls.

Its size, its kernels and the last rows of the stripe before. One state serves one call at a time: a second one is
refused with a RuntimeError. Memory is released by nobody, by contract: keep a state and use it again.

See Also
--------
nuqiBlurInitAlloc : Make one for sums over boxes.
nuqiSobelInitAlloc : Make one for derivatives.
nuqiLaplaceInitAlloc : Make one for second derivatives.
nuqi.BoxSum : An object that keeps its state itself.

Examples
--------
>>> state = nuqi.c.nuqiBlurInitAlloc(8, 1, 3)
>>> sums = np.zeros((6, 8), np.int16)
>>> nuqi.c.nuqiBlur_8u16s_C1R(np.ones((6, 8), np.uint8), sums, state, 0)
6
)");
  types[1] = make_type("nuqi.c.MorphState", R"(
What an erosion or dilation keeps between calls.

Its element and the last rows of the strip before. One state serves one call at a time: a second one is refused with
a RuntimeError. Memory is released by nobody, by contract: keep a state and use it again.

See Also
--------
nuqiMorphologyInitAlloc : Make one.
nuqi.Morphology : An object that keeps its state itself.

Examples
--------
>>> state = nuqi.c.nuqiMorphologyInitAlloc(8, 1, 1, (3, 3), (1, 1), 0, None)
>>> least = np.zeros((6, 8), np.uint8)
>>> nuqi.c.nuqiErodeStrip_Rect_8u_C1R(np.ones((6, 8), np.uint8), least, state, 0)
6
)");
  return types[0] != nullptr && types[1] != nullptr && PyModule_AddType(module, types[0]) == 0 &&
         PyModule_AddType(module, types[1]) == 0;
}

PyObject* new_state(StateKind kind, void* made, int64_t above, int64_t below) {
  PyTypeObject* type = types[static_cast<int>(kind)];
  auto* state = reinterpret_cast<State*>(type->tp_alloc(type, 0));
  if (state == nullptr) return nullptr;
  state->state = made;
  state->kind = kind;
  state->above = above;
  state->below = below;
  return reinterpret_cast<PyObject*>(state);
}

State* read_state(PyObject* object, StateKind kind, const char* name) {
  PyTypeObject* type = types[static_cast<int>(kind)];
  if (Py_TYPE(object) != type) {
    PyErr_Format(PyExc_TypeError, "%s: expected a %s, got %s", name, type->tp_name,
                 Py_TYPE(object)->tp_name);
    return nullptr;
  }
  auto* state = reinterpret_cast<State*>(object);
  if (state->state == nullptr) {
    PyErr_Format(PyExc_ValueError, "%s: the state has been freed", name);
    return nullptr;
  }
  if (state->busy) {
    PyErr_Format(PyExc_RuntimeError, "%s: another thread uses this state; make one for each thread",
                 name);
    return nullptr;
  }
  return state;
}

namespace {

// The rows that windows see: those above an image or held from before, the strip's, and those below an image.
int64_t rows_seen(const State& state, int32_t part, int64_t rows) {
  const bool first = part == kWhole || part == kFirst;
  const bool last = part == kWhole || part == kLast;
  return (first ? state.above : state.held) + rows + (last ? state.below : 0);
}

}  // namespace

int64_t rows_of_result(const State& state, int32_t part, int64_t rows) {
  return std::max<int64_t>(rows_seen(state, part, rows) - state.above - state.below, 0);
}

void note_rows(State* state, int32_t part, int64_t rows) {
  state->held = std::min(rows_seen(*state, part, rows), state->above + state->below);
}

PyObject* free_state(const Function& function, PyObject* const* arguments, Py_ssize_t count) {
  if (!count_is(function, count, 1, 1)) return nullptr;
  const bool convol = function.address == reinterpret_cast<Address>(nuqiConvolFree);
  State* state = read_state(arguments[0], convol ? StateKind::convol : StateKind::morph, "state");
  if (state == nullptr) return nullptr;
  const StatusCode status = release(state);
  if (status < 0) return raise_failed(function, status);
  Py_RETURN_NONE;
}

}  // namespace nuqi::python

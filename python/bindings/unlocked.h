#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

namespace nuqi::python {

// Runs outside the interpreter's lock.
class Unlocked {
 public:
  Unlocked() : thread_(PyEval_SaveThread()) {}
  ~Unlocked() { PyEval_RestoreThread(thread_); }
  Unlocked(const Unlocked&) = delete;
  Unlocked& operator=(const Unlocked&) = delete;

 private:
  PyThreadState* thread_;
};

}  // namespace nuqi::python

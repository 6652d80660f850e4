// The functions of nuqi.c as Python objects.
#pragma once

#include "function.h"

namespace nuqi::python {

bool make_callable_type();
PyObject* callable_of(const Function& function);

}  // namespace nuqi::python

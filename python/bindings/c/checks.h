// What is looked at before a C call, once all arguments are read.
#pragma once

#include "call.h"

namespace nuqi::python {

// Each is false with an exception where the call must not happen.
bool check_sizes(const Call& call);
bool check_overlap(const Call& call);
// Finds the caller's scratch memory, or some for this call.
bool find_buffer(Call& call);

}  // namespace nuqi::python

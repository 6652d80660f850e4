// Plain loops of the accumulation family, to measure against.
#pragma once

#include "arith/accumulate_members.h"

namespace nuqi::bench {

template <class T>
using AccumulateLoop = void (*)(const test::AccumulateArgs<T>&);

// As each compiler makes it, or null.
namespace gcc {
template <class T>
AccumulateLoop<T> plain_accumulate(test::AccumulateTerm term, bool masked);
}
namespace clang {
template <class T>
AccumulateLoop<T> plain_accumulate(test::AccumulateTerm term, bool masked);
}

}  // namespace nuqi::bench

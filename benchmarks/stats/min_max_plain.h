// Plain loops of the extrema, to measure against.
#pragma once

#include "stats/min_max_members.h"

namespace nuqi::bench {

template <class T>
using MinMaxLoop = void (*)(const test::MinMaxArgs<T>&);

// As each compiler makes it, or null.
namespace gcc {
template <class T>
MinMaxLoop<T> plain_min_max(int channels, bool masked);
}
namespace clang {
template <class T>
MinMaxLoop<T> plain_min_max(int channels, bool masked);
}

}  // namespace nuqi::bench

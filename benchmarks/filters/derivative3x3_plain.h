// Plain loops of the fixed 3x3 derivatives, to measure against.
#pragma once

#include "filters/derivative3x3_members.h"

namespace nuqi::bench {

template <class T>
using DerivativeLoop = void (*)(const test::DerivativeArgs<T>&);

// As each compiler makes it.
namespace gcc {
template <class T>
DerivativeLoop<T> plain_derivative(test::DerivativeKind kind);
}
namespace clang {
template <class T>
DerivativeLoop<T> plain_derivative(test::DerivativeKind kind);
}

}  // namespace nuqi::bench

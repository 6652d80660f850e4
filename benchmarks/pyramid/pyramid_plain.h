// Plain loops of the Gaussian pyramid, to measure against.
#pragma once

#include "pyramid/pyramid_members.h"

namespace nuqi::bench {

template <class T>
using PyramidLoop = void (*)(const test::PyramidArgs<T>&);

// As each compiler makes it.
namespace gcc {
template <class T>
PyramidLoop<T> plain_pyramid(bool up, int channels);
}
namespace clang {
template <class T>
PyramidLoop<T> plain_pyramid(bool up, int channels);
}

}  // namespace nuqi::bench

// Plain corner functions, to measure against.
#pragma once

#include "features/eigen_members.h"

namespace nuqi::bench {

template <class T>
using EigenLoop = void (*)(const test::EigenArgs<T>&);

// As each compiler makes it, for results of one or six values a pixel.
namespace gcc {
template <class T>
EigenLoop<T> plain_eigen(int values, int aperture, int window);
}
namespace clang {
template <class T>
EigenLoop<T> plain_eigen(int values, int aperture, int window);
}

}  // namespace nuqi::bench

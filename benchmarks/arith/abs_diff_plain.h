// Plain loops of the absolute-difference family, to measure against.
#pragma once

#include "arith/abs_diff_members.h"

namespace nuqi::bench {

template <class T>
using AbsDiffLoop = void (*)(const test::AbsDiffArgs<T>&);

// As each compiler makes it.
namespace gcc {
template <class T>
AbsDiffLoop<T> plain_abs_diff(bool of_images);
}
namespace clang {
template <class T>
AbsDiffLoop<T> plain_abs_diff(bool of_images);
}

}  // namespace nuqi::bench

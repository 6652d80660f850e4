// Plain loops of the norm family, to measure against.
#pragma once

#include "stats/norm_members.h"

namespace nuqi::bench {

template <class T>
using NormLoop = void (*)(const test::NormArgs<T>&);

// As each compiler makes it, or null.
namespace gcc {
template <class T>
NormLoop<T> plain_norm(test::NormKind kind, test::NormOrder order, int channels);
}
namespace clang {
template <class T>
NormLoop<T> plain_norm(test::NormKind kind, test::NormOrder order, int channels);
}

}  // namespace nuqi::bench

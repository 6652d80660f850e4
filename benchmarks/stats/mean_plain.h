// Plain loops of the means and deviations, to measure against.
#pragma once

#include "stats/mean_members.h"

namespace nuqi::bench {

template <class T>
using MeanLoop = void (*)(const test::MeanArgs<T>&);

// As each compiler makes it.
namespace gcc {
template <class T>
MeanLoop<T> plain_mean(bool deviation, int channels, bool masked);
}
namespace clang {
template <class T>
MeanLoop<T> plain_mean(bool deviation, int channels, bool masked);
}

}  // namespace nuqi::bench

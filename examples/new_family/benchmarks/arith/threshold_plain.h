// Plain loops of the thresholds, to measure against.
#pragma once

#include "arith/threshold_members.h"

namespace nuqi::bench {

// As each compiler makes it.
namespace gcc {
template <class T>
void plain_threshold(const test::ThresholdArgs<T>& a);
}
namespace clang {
template <class T>
void plain_threshold(const test::ThresholdArgs<T>& a);
}

}  // namespace nuqi::bench

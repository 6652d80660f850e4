// Plain loops of the filters over a square window, to measure against.
#pragma once

#include "support/stripe_members.h"

namespace nuqi::bench {

template <class T, class D>
using StripeLoop = void (*)(const test::StripeArgs<T, D>&);

enum class StripeFilter { blur, sobel, laplace };

// As each compiler makes it, for windows of 3, 5 or 7 rows. The derivative is the first along x.
namespace gcc {
template <class T, class D>
StripeLoop<T, D> plain_stripe(StripeFilter filter, int size);
}
namespace clang {
template <class T, class D>
StripeLoop<T, D> plain_stripe(StripeFilter filter, int size);
}

}  // namespace nuqi::bench

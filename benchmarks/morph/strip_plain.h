// Plain loops of erosion and dilation, to measure against.
#pragma once

#include "support/stripe_members.h"

namespace nuqi::bench {

struct StripPlain {
  bool dilates;
  int32_t shape;  // 0, 1 or 100
  RoiSize element;
  const int32_t* mask;
  int channels;
};

// As each compiler makes it. The anchor is the element's middle.
namespace gcc {
template <class T>
void plain_strip(const StripPlain& how, const test::StripeArgs<T, T, MorphState>& a);
}
namespace clang {
template <class T>
void plain_strip(const StripPlain& how, const test::StripeArgs<T, T, MorphState>& a);
}

}  // namespace nuqi::bench

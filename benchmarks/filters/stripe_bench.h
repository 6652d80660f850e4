// Registers a filter over a square window: each size against its memory limit and a plain loop.
#pragma once

#include <string>

#include "filters/stripe_plain.h"
#include "support/registry.h"
#include "support/stripe_members.h"

namespace nuqi::bench {

// One size of the filter over one size of image. new_state(width, data type, size) makes a state; it is
// never freed, as by contract.
template <class T, class D, class NewState>
void register_stripe_filter(const test::StripeMember<T, D>& member, StripeFilter filter,
                            NewState new_state, int size, RoiSize roi) {
  const std::string name = std::string(member.name) + ":" + std::to_string(size);
  register_limit<Streams<sizeof(T)>, Streams<>, Streams<sizeof(D)>>(name, roi);
  const auto run = [&](auto call) {
    return [=](const Images& im) {
      const int32_t width = im.roi.width;
      ConvolState* state = new_state(width, test::data_type(T{}), size);
      const test::StripeArgs<T, D> args = {im.source<T>(),
                                           width * int{sizeof(T)},
                                           reinterpret_cast<D*>(im.out.get()),
                                           width * int{sizeof(D)},
                                           nullptr,
                                           state,
                                           0};
      return [=, roi = im.roi] {
        RoiSize size = roi;
        auto one = args;
        one.roi = &size;
        call(one);
      };
    };
  };
  register_function(name, roi, run(member.call));
  register_plain(name, "gcc", roi, run(gcc::plain_stripe<T, D>(filter, size)));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_stripe<T, D>(filter, size)));
#endif
}

template <class T, class D, class NewState>
void register_stripe_filter(const test::StripeMember<T, D>& member, StripeFilter filter,
                            NewState new_state) {
  for (int size : {3, 5, 7})
    for (RoiSize roi : kSizes) register_stripe_filter(member, filter, new_state, size, roi);
}

}  // namespace nuqi::bench

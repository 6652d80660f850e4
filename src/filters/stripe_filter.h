// What the filters over a square window share: arguments, checks, and the walk down a stripe.
#pragma once

#include <type_traits>

#include "core/stripe.h"
#include "core/validate.h"
#include "filters/convol_state.h"
#include "filters/result.h"
#include "filters/window.h"

namespace nuqi {

template <class T>
struct StripeCall {
  Image<const T> src;
  Image<FilterResult<T>> dst;
  RoiSize* roi;
  ConvolState* state;
  int32_t phase;
};

// The state must have as many row buffers as its size asks for, and coefficients of type C unless C is void.
template <class C, class T>
StatusCode check(const StripeCall<T>& call, int (*buffers_for)(int size)) {
  const auto& [src, dst, roi, state, phase] = call;
  const auto lacks_coefficients = [](const ConvolState& s) {
    if constexpr (std::is_void_v<C>)
      return (void)s, false;
    else
      return !holds_coefficients<C>(s);
  };
  // clang-format off
  if (any_null(src.data, dst.data, state, roi))                    return StatusNullPtr;
  if (below_one(*roi))                                             return StatusBadSize;
  if (short_row(src, roi->width) || short_row(dst, roi->width))    return StatusBadSize;
  if (uneven(src) || uneven(dst))                                  return StatusBadSize;
  if (!is_phase(phase))                                            return StatusUnsupported;
  if (state->pending != 0 && !starts_image(phase))                 return StatusUnsupported;
  if (4 * int64_t{roi->width} > row_pitch(*state))                 return StatusBadSize;
  if (row_buffers(*state) < buffers_for(size_of(*state)))          return StatusBadContext;
  if (lacks_coefficients(*state))                                  return StatusBadContext;
  // clang-format on
  return StatusOk;
}

template <class T>
Stripe stripe_of(const StripeCall<T>& call) {
  const int half = size_of(*call.state) / 2;
  return {
      .height = call.roi->height,
      .above = half,
      .below = half,
      .first = starts_image(call.phase),
      .last = ends_image(call.phase),
      .held = 2 * half,
  };
}

// Tells the caller and the state how far the image has come.
template <class T>
void report(const StripeCall<T>& call, const Stripe& stripe) {
  call.state->pending = stripe.pending();
  call.roi->height = static_cast<int32_t>(stripe.produced());
}

// Calls kernel(job) with the stripe's output rows, some at a time; keeps its last source rows.
template <class T, class Kernel>
void filter_stripe(const StripeCall<T>& call, const Kernel& kernel) {
  constexpr int64_t kRows = kMostRows;
  const T* rows[kMostSources];
  const Stripe stripe = stripe_of(call);
  const StripeRows<T> source = {stripe, call.src, call.state->rows};
  for (int64_t y = 0; y < stripe.produced(); y += kRows) {
    const int count = static_cast<int>(std::min(kRows, stripe.produced() - y));
    source.collect(y - stripe.lead(), count + stripe.around() + kMostRowsAtOnce - 1, rows);
    kernel(WindowJob<T, FilterResult<T>>{
        .rows = rows,
        .dst = {row_of(call.dst, y), call.dst.step},
        .roi = {call.roi->width, count},
    });
  }
  source.keep(call.roi->width);
  report(call, stripe);
}

}  // namespace nuqi

// An exported filter, which is what `filter` makes of its arguments.
#define NUQI_STRIPE_ENTRY(name, T, filter)                                                    \
  StatusCode name(const T* src, int32_t srcStep, nuqi::FilterResult<T>* dst, int32_t dstStep, \
                  RoiSize* roi, ConvolState* state, int32_t phase) {                          \
    return filter<T>({.src = {src, srcStep},                                                  \
                      .dst = {dst, dstStep},                                                  \
                      .roi = roi,                                                             \
                      .state = state,                                                         \
                      .phase = phase});                                                       \
  }

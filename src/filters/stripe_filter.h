// What the filters over a square window share: arguments, checks, and the walk down a stripe.
#pragma once

#include <type_traits>

#include "core/stripe.h"
#include "core/validate.h"
#include "filters/convol_state.h"
#include "filters/window.h"

namespace nuqi {

template <class T, class D>
struct StripeCall {
  Image<const T> src;
  Image<D> dst;
  RoiSize* roi;
  ConvolState* state;
  int32_t phase;
};

// The state must have as many row buffers as its size asks for, and kernels of C unless C is void.
template <class C, class T, class D>
StatusCode check(const StripeCall<T, D>& call, int (*buffers_for)(int size)) {
  const auto& [src, dst, roi, state, phase] = call;
  const auto lacks_kernels = [](const ConvolState& s) {
    if constexpr (std::is_void_v<C>)
      return (void)s, false;
    else
      return !holds_kernels<C>(s);
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
  if (lacks_kernels(*state))                                       return StatusBadContext;
  // clang-format on
  return StatusOk;
}

template <class T, class D>
Stripe stripe_of(const StripeCall<T, D>& call) {
  return {call.roi->height, size_of(*call.state) / 2, starts_image(call.phase),
          ends_image(call.phase)};
}

// Tells the caller and the state how far the image has come.
template <class T, class D>
void report(const StripeCall<T, D>& call, const Stripe& stripe) {
  call.state->pending = stripe.pending();
  call.roi->height = static_cast<int32_t>(stripe.produced());
}

// Calls kernel(job) with the stripe's output rows, some at a time; keeps its last source rows.
template <class T, class D, class Kernel>
void filter_stripe(const StripeCall<T, D>& call, const Kernel& kernel) {
  constexpr int64_t kRows = kMostRows;
  const T* rows[kMostSources];
  const Stripe stripe = stripe_of(call);
  const StripeRows<T> source = {stripe, call.src, call.state->rows};
  for (int64_t y = 0; y < stripe.produced(); y += kRows) {
    const int count = static_cast<int>(std::min(kRows, stripe.produced() - y));
    const int64_t first = y - stripe.lead();
    const int needed = count + 2 * stripe.half + kMostRowsAtOnce - 1;
    int i = 0;
    for (; i < needed && first + i <= 0; ++i) rows[i] = source[first + i];
    // Step by step: row_of() multiplies, and the choices of source[] cost more than a narrow row.
    for (; i < needed && first + i < stripe.height; ++i)
      rows[i] = i == 0 ? source[first] : row_of(Image<const T>{rows[i - 1], call.src.step}, 1);
    for (; i < needed; ++i) rows[i] = rows[i - 1];
    kernel(WindowJob<T, D>{rows, {row_of(call.dst, y), call.dst.step}, {call.roi->width, count}});
  }
  source.keep(call.roi->width);
  report(call, stripe);
}

}  // namespace nuqi

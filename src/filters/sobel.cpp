// The Sobel filters with selectable aperture: nuqiSobel.
#include "filters/sobel.h"

#include "filters/stripe_filter.h"

namespace nuqi {
namespace {

int buffers_for(int size) { return size; }

template <class C>
SobelWeights<C> weights_of(const ConvolState& state) {
  SobelWeights<C> weights = {};
  const int half = size_of(state) / 2;
  for (int k = 0; k <= half; ++k) {
    weights.x[k] = coefficient<C>(state.xKernel, half + k);
    weights.y[k] = coefficient<C>(state.yKernel, half + k);
  }
  return weights;
}

template <class T>
StatusCode sobel(const StripeCall<T>& call) {
  if (const StatusCode status = check<FilterResult<T>>(call, buffers_for)) return status;
  const ConvolState& state = *call.state;
  const int size = size_of(state);
  const SobelWeights<FilterResult<T>> weights = weights_of<FilterResult<T>>(state);
  const auto kernel =
      sobel_kernels().of_type<T>().of[size / 2 - 1][state.kind % 2][state.kind / 2 % 2];
  filter_stripe(call, [&](const WindowJob<T, FilterResult<T>>& job) { kernel(job, weights); });
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

NUQI_STRIPE_ENTRY(nuqiSobel_8u16s_C1R, uint8_t, sobel)
NUQI_STRIPE_ENTRY(nuqiSobel_8s16s_C1R, int8_t,  sobel)
NUQI_STRIPE_ENTRY(nuqiSobel_32f_C1R,   float,   sobel)

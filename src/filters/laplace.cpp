// The Laplace filters: nuqiLaplace.
#include "filters/laplace.h"

#include "filters/stripe_filter.h"

namespace nuqi {
namespace {

int buffers_for(int size) { return 2 * size; }

// The kernels know the coefficients: a state with so many row buffers holds no others.
template <class T>
StatusCode laplace(const StripeCall<T>& call) {
  if (const StatusCode status = check<FilterResult<T>>(call, buffers_for)) return status;
  filter_stripe(call, laplace_kernels().of_type<T>().of[size_of(*call.state) / 2 - 1]);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

NUQI_STRIPE_ENTRY(nuqiLaplace_8u16s_C1R, uint8_t, laplace)
NUQI_STRIPE_ENTRY(nuqiLaplace_8s16s_C1R, int8_t,  laplace)
NUQI_STRIPE_ENTRY(nuqiLaplace_32f_C1R,   float,   laplace)

// The box blurs: nuqiBlur.
#include "filters/blur.h"

#include "filters/stripe_filter.h"

namespace nuqi {
namespace {

int buffers_for(int size) { return size + 1; }

template <class T>
void blur_stripe(const StripeCall<T>& call) {
  filter_stripe(call, blur_kernels().of_type<T>().of[size_of(*call.state) / 2 - 1]);
}
void blur_stripe(const StripeCall<float>& call) {
  const Stripe stripe = stripe_of(call);
  const StripeRows<float> source = {stripe, call.src, call.state->rows};
  RunningBlurJob job = {};
  job.half = stripe.below;
  job.dst = call.dst;
  job.width = call.roi->width;
  job.ring = call.state->rows;
  for (int64_t y = 0; y < stripe.height; y += job.kRows) {
    job.count = static_cast<int>(std::min<int64_t>(job.kRows, stripe.height - y));
    job.repeats =
        y + job.count == stripe.height ? static_cast<int>(stripe.end() - y - job.count) : 0;
    const int summed = job.count + job.repeats;
    for (int i = 0; i < job.kRows; ++i) job.rows[i] = source[y + i];
    job.first = stripe.first && y == 0;
    job.skipped = job.first ? std::min(job.half, summed) : 0;
    blur_kernels().of_type<float>().running(job);
    job.dst.data = row_of(job.dst, summed - job.skipped);
  }
  report(call, stripe);
}

template <class T>
StatusCode blur(const StripeCall<T>& call) {
  if (const StatusCode status = check<void>(call, buffers_for)) return status;
  blur_stripe(call);
  return StatusOk;
}

}  // namespace
}  // namespace nuqi

using namespace nuqi;

// clang-format off

NUQI_STRIPE_ENTRY(nuqiBlur_8u16s_C1R, uint8_t, blur)
NUQI_STRIPE_ENTRY(nuqiBlur_8s16s_C1R, int8_t,  blur)
NUQI_STRIPE_ENTRY(nuqiBlur_32f_C1R,   float,   blur)

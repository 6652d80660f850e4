// Benchmarks of the Laplace filters.
#include "families.h"
#include "filters/laplace_members.h"
#include "filters/stripe_bench.h"

namespace nuqi::bench {

void register_laplace() {
  test::for_each_laplace([]<class T, class D>(const test::StripeMember<T, D>& member) {
    const auto new_state = [](int32_t width, int32_t type, int32_t size) {
      ConvolState* state = nullptr;
      nuqiLaplaceInitAlloc(width, type, size, &state);
      return state;
    };
    register_stripe_filter(member, StripeFilter::laplace, new_state);
  });
}

}  // namespace nuqi::bench

// Benchmarks of the Laplace filters.
#include "filters/laplace_members.h"
#include "filters/stripe_bench.h"

namespace nuqi::bench {
namespace {

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

const Family family(register_laplace);

}  // namespace
}  // namespace nuqi::bench

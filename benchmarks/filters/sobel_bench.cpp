// Benchmarks of the Sobel filters.
#include "filters/sobel_members.h"
#include "filters/stripe_bench.h"

namespace nuqi::bench {
namespace {

void register_sobel() {
  test::for_each_sobel([]<class T, class D>(const test::StripeMember<T, D>& member) {
    const auto new_state = [](int32_t width, int32_t type, int32_t size) {
      ConvolState* state = nullptr;
      nuqiSobelInitAlloc(width, type, size, 0, 1, 0, &state);
      return state;
    };
    register_stripe_filter(member, StripeFilter::sobel, new_state);
  });
}

const Family family(register_sobel);

}  // namespace
}  // namespace nuqi::bench

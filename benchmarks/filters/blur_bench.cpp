// Benchmarks of the box blurs.
#include "filters/blur_members.h"
#include "filters/stripe_bench.h"
#include "support/registers.h"

namespace nuqi::bench {
namespace {

// What the contract asks for sixteen floats: two additions in double precision, a rounding, two
// additions in single precision, without their dependency chains.
void running_sums(int64_t pixels) {
  using namespace native;
  alignas(64) static const float columns[2][16] = {};
  Px<double> sum = {};
  Px<float> ring = {}, column = {};
#pragma GCC unroll 8
  for (int64_t x = 0; x < pixels; x += 16) {
    opaque(sum);
    auto row = round_to_floats((sum + load_doubles(columns[0])) - load_doubles(columns[1]));
    opaque(row);
    auto result = column + (row - ring);
    opaque(result);
  }
}

void register_blur() {
  test::for_each_blur([]<class T, class D>(const test::StripeMember<T, D>& member) {
    const auto new_state = [](int32_t width, int32_t type, int32_t size) {
      ConvolState* state = nullptr;
      nuqiBlurInitAlloc(width, type, size, &state);
      return state;
    };
    register_stripe_filter(member, StripeFilter::blur, new_state);
    // Narrow images have blocks of their own, of 16, 32 and 64 columns.
    for (int32_t width : {8, 16, 32, 48})
      register_stripe_filter(member, StripeFilter::blur, new_state, sizeof(T) == 1 ? 3 : 5,
                             {width, 64});
    if (sizeof(T) != 4) return;
    for (const char* size : {":3", ":5", ":7"})
      register_bound(std::string(member.name) + size, {64, 64}, [](const Images& im) {
        return [pixels = int64_t{im.roi.width} * im.roi.height] { running_sums(pixels); };
      });
  });
}

const Family family(register_blur);

}  // namespace
}  // namespace nuqi::bench

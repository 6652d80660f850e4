// Benchmarks of the fast arctangent, on as many vectors as a picture has pixels.
#include "arith/fast_arctan_plain.h"
#include "support/registers.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

// The divisions of sixteen vectors, over and over: no loads, no dependency chain.
void divisions(int64_t vectors) {
  using namespace native;
  Px<float> a = broadcast(1.5f), b = broadcast(1.25f), t;
#pragma GCC unroll 8
  for (int64_t i = 0; i < vectors; i += 16) {
    opaque(a);
    opaque(b);
    t = a / b;
    opaque(t);
  }
}

void register_fast_arctan() {
  const char* name = "nuqibFastArctan_32f";
  for (RoiSize roi : kSizes) {
    const int32_t length = roi.width * roi.height;
    register_limit<Streams<4, 4>, Streams<>, Streams<4>>(name, roi);
    register_bound(name, roi, [=](const Images&) { return [=] { divisions(length); }; });
    const auto run = [=](auto arctan) {
      return [=](const Images& im) {
        return [=, y = im.f32.get(), x = im.f32b.get(), out = (float*)im.out.get()] {
          arctan(y, x, out, length);
        };
      };
    };
    register_function(name, roi, run(nuqibFastArctan_32f));
    register_plain(name, "gcc", roi, run(gcc::plain_fast_arctan));
#if NUQI_PLAIN_CLANG
    register_plain(name, "clang", roi, run(clang::plain_fast_arctan));
#endif
  }
}

const Family family(register_fast_arctan);

}  // namespace
}  // namespace nuqi::bench

// Benchmarks of Canny.
#include "features/canny_members.h"
#include "features/canny_plain.h"
#include "features/canny_scene.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

test::CannyArgs args_of(const Images& im) {
  const CannyScene& scene = canny_scene(im.roi);
  const int32_t width = im.roi.width;
  return {scene.dx.get(), 2 * width, scene.dy.get(), 2 * width,  im.out.get(),
          width,          im.roi,    kCannyLow,      kCannyHigh, scene.buffer.get()};
}

auto run(void (*call)(const test::CannyArgs&)) {
  return [=](const Images& im) { return [call, args = args_of(im)] { call(args); }; };
}

void register_canny() {
  const char* const name = "nuqiCanny_16s8u_C1R";
  for (RoiSize roi : kSizes) {
    register_limit<Streams<2, 2>, Streams<>, Streams<1>>(name, roi);
    register_function(name, roi, run([](const test::CannyArgs& args) { test::call_canny(args); }));
    register_plain(name, "gcc", roi, run(gcc::plain_canny));
#if NUQI_PLAIN_CLANG
    register_plain(name, "clang", roi, run(clang::plain_canny));
#endif
  }
}

const Family family(register_canny);

}  // namespace
}  // namespace nuqi::bench

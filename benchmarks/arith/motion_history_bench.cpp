// Benchmarks of the motion history; ":negative" is one with a negative threshold.
#include "arith/motion_history_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

void register_times(const std::string& name, RoiSize roi, float timestamp, float duration) {
  register_limit<Streams<1>, Streams<4>>(name, roi);
  const auto run = [=](auto update) {
    return [=](const Images& im) {
      return [=, silhouette = im.mask.get(), history = im.acc.get()] {
        update(silhouette, roi.width, history, roi.width * 4, roi, timestamp, duration);
      };
    };
  };
  register_function(name, roi, run(nuqiUpdateMotionHistory_8u32f_C1IR));
  register_plain(name, "gcc", roi, run(gcc::plain_motion_history));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_motion_history));
#endif
}

void register_motion_history() {
  for (RoiSize roi : kSizes) {
    register_times("nuqiUpdateMotionHistory_8u32f_C1IR", roi, 1.5f, 1.0f);
    register_times("nuqiUpdateMotionHistory_8u32f_C1IR:negative", roi, 1.5f, 3.0f);
  }
}

const Family family(register_motion_history);

}  // namespace
}  // namespace nuqi::bench

// Benchmarks of the thresholds.
#include "arith/threshold_members.h"
#include "arith/threshold_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::ThresholdArgs;
using test::ThresholdMember;

template <class T>
ThresholdArgs<T> args_of(const Images& im) {
  const int32_t step = im.roi.width * int{sizeof(T)};
  T* dst = reinterpret_cast<T*>(im.out.get());
  return {im.source<T>(), step, dst, step, im.roi, static_cast<T>(1.5), 255};
}

void register_threshold() {
  test::for_each_threshold([]<class T>(const ThresholdMember<T>& member) {
    for (RoiSize roi : kSizes) {
      register_limit<Streams<sizeof(T)>, Streams<>, Streams<sizeof(T)>>(member.name, roi);
      const auto run = [](auto call) {
        return [=](const Images& im) { return [call, args = args_of<T>(im)] { call(args); }; };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi, run(gcc::plain_threshold<T>));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi, run(clang::plain_threshold<T>));
#endif
    }
  });
}

const Family family(register_threshold);

}  // namespace
}  // namespace nuqi::bench

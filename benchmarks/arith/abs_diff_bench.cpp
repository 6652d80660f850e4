// Benchmarks of the absolute-difference family.
#include "arith/abs_diff_members.h"
#include "arith/abs_diff_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::AbsDiffArgs;
using test::AbsDiffMember;

template <class T>
AbsDiffArgs<T> args_of(const Images& im) {
  const int32_t step = im.roi.width * int{sizeof(T)};
  T* dst = reinterpret_cast<T*>(im.out.get());
  return {im.source<T>(), step, im.second<T>(), step, dst, step, im.roi, 100};
}

void register_abs_diff() {
  test::for_each_abs_diff([]<class T>(const AbsDiffMember<T>& member) {
    constexpr int e = sizeof(T);
    for (RoiSize roi : kSizes) {
      if (member.of_images)
        register_limit<Streams<e, e>, Streams<>, Streams<e>>(member.name, roi);
      else
        register_limit<Streams<e>, Streams<>, Streams<e>>(member.name, roi);
      const auto run = [](auto call) {
        return [=](const Images& im) { return [call, args = args_of<T>(im)] { call(args); }; };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi, run(gcc::plain_abs_diff<T>(member.of_images)));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi, run(clang::plain_abs_diff<T>(member.of_images)));
#endif
    }
  });
}

const Family family(register_abs_diff);

}  // namespace
}  // namespace nuqi::bench

// Benchmarks of the accumulation family.
#include "arith/accumulate_members.h"
#include "arith/accumulate_plain.h"
#include "families.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::AccumulateArgs;
using test::AccumulateMember;
using test::AccumulateTerm;

template <class T>
AccumulateArgs<T> args_of(const Images& im) {
  const RoiSize roi = im.roi;
  const int32_t step = roi.width * int{sizeof(T)};
  // alpha 1 keeps the accumulator away from denormals however often the loop runs.
  return {im.source<T>(), step,         im.second<T>(), step, im.mask.get(),
          roi.width,      im.acc.get(), roi.width * 4,  roi,  1.0f};
}

template <class T>
void register_limit_of(const AccumulateMember<T>& member, RoiSize roi) {
  constexpr int e = sizeof(T);
  const bool product = member.term == AccumulateTerm::product;
  if (product && member.masked)
    register_limit<Streams<e, e, 1>, Streams<4>>(member.name, roi);
  else if (product)
    register_limit<Streams<e, e>, Streams<4>>(member.name, roi);
  else if (member.masked)
    register_limit<Streams<e, 1>, Streams<4>>(member.name, roi);
  else
    register_limit<Streams<e>, Streams<4>>(member.name, roi);
}

}  // namespace

void register_accumulate() {
  test::for_each_accumulate([]<class T>(const AccumulateMember<T>& member) {
    for (RoiSize roi : kSizes) {
      register_limit_of(member, roi);
      const auto run = [](auto call) {
        return [=](const Images& im) { return [call, args = args_of<T>(im)] { call(args); }; };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi,
                     run(gcc::plain_accumulate<T>(member.term, member.masked)));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi,
                     run(clang::plain_accumulate<T>(member.term, member.masked)));
#endif
    }
  });
}

}  // namespace nuqi::bench

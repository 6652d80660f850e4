// Benchmarks of the accumulation family.
#include "arith/accumulate_members.h"
#include "arith/accumulate_plain.h"
#include "support/registers.h"
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

// The arithmetic of sixteen pixels, over and over: no loads, no dependency chain.
template <class T, AccumulateTerm term, bool masked>
void arithmetic(int64_t pixels) {
  using namespace native;
  Px<T> s = {}, s2 = {};
  Px<uint8_t> mask = {};
  Px<float> acc = {}, alpha = {}, sum;
  opaque(acc);
  opaque(alpha);
#pragma GCC unroll 8
  for (int64_t x = 0; x < pixels; x += 16) {
    opaque(s);
    if constexpr (term == AccumulateTerm::product) opaque(s2);
    if constexpr (masked) opaque(mask);
    const auto selected = [&](const Px<float>& v) { return masked ? keep_selected(mask, v) : v; };
    if constexpr (term == AccumulateTerm::add)
      sum = acc + selected(convert<float>(s));
    else if constexpr (term == AccumulateTerm::square && sizeof(T) > 1)
      sum = acc + selected(s * s);
    else if constexpr (term == AccumulateTerm::square)
      sum = add_exact_square(acc, selected(convert<float>(s)));
    else if constexpr (term == AccumulateTerm::product && sizeof(T) > 1)
      sum = acc + selected(s * s2);
    else if constexpr (term == AccumulateTerm::product)
      sum = acc + selected(convert<float>(multiply_bytes(s, s2)));
    else
      sum = acc + (convert<float>(s) - acc) * selected(alpha);
    opaque(sum);
  }
}

template <class T>
void register_bound_of(const AccumulateMember<T>& member, RoiSize roi) {
  const auto add_bound = [&](auto plain, auto masked) {
    const auto loop = member.masked ? masked : plain;
    register_bound(member.name, roi, [loop](const Images& im) {
      return [loop, pixels = int64_t{im.roi.width} * im.roi.height] { loop(pixels); };
    });
  };
  using enum AccumulateTerm;
  switch (member.term) {
    case add: return add_bound(arithmetic<T, add, false>, arithmetic<T, add, true>);
    case square: return add_bound(arithmetic<T, square, false>, arithmetic<T, square, true>);
    case product: return add_bound(arithmetic<T, product, false>, arithmetic<T, product, true>);
    case weighted: return add_bound(arithmetic<T, weighted, false>, arithmetic<T, weighted, true>);
  }
}

void register_accumulate() {
  test::for_each_accumulate([]<class T>(const AccumulateMember<T>& member) {
    for (RoiSize roi : kSizes) {
      register_limit_of(member, roi);
      if (roi.width == 64) register_bound_of(member, roi);
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

const Family family(register_accumulate);

}  // namespace
}  // namespace nuqi::bench

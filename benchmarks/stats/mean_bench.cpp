// Benchmarks of the means and deviations.
#include "stats/mean_members.h"
#include "stats/mean_plain.h"
#include "support/registers.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::MeanArgs;
using test::MeanMember;

double mean_result, deviation_result;

template <class T>
MeanArgs<T> args_of(const MeanMember<T>& member, const Images& im) {
  const int32_t step = im.roi.width * member.channels * int{sizeof(T)};
  return {im.source<T>(), step, im.mask.get(), im.roi.width,
          im.roi,         1,    &mean_result,  &deviation_result};
}

template <class T>
void register_limit_of(const MeanMember<T>& member, RoiSize roi) {
  constexpr int e = sizeof(T);
  if (member.channels == 3 && member.masked)
    register_limit<Streams<3 * e, 1>>(member.name, roi);
  else if (member.channels == 3)
    register_limit<Streams<3 * e>>(member.name, roi);
  else if (member.masked)
    register_limit<Streams<e, 1>>(member.name, roi);
  else
    register_limit<Streams<e>>(member.name, roi);
}

// What binds the floats at 640x480: conversion to double, two additions and a multiplication.
template <int channels, bool masked>
void arithmetic(int64_t pixels) {
  using namespace native;
  float block[48] = {};
  Px<uint8_t> mask = {};
  Px<double> sums, squares;
#pragma GCC unroll 4
  for (int64_t x = 0; x < pixels; x += 16) {
    __asm__ volatile("" : "+m"(block));
    opaque(mask);
    Px<double> v;
    if constexpr (channels == 3)
      v = to_doubles(masked ? keep_selected(mask, load_third<16>(block, Whole{}))
                            : load_third<16>(block, Whole{}));
    else
      v = masked ? load_doubles(block, mask, Whole{}) : load_doubles(block, Whole{});
    sums = Px<double>{} + v;
    squares = add_exact_square(Px<double>{}, v);
    opaque(sums);
    opaque(squares);
  }
}

// The contract's dependency chains: an addition for every fourth pixel, or for every one.
template <class V, int pixels_each>
void chain(int64_t pixels) {
  using namespace native;
  V sum = {}, next = {};
  opaque(next);
#pragma GCC unroll 8
  for (int64_t x = 0; x < pixels; x += pixels_each) {
    sum = sum + next;
    opaque(sum);
  }
}

void register_bound_of(const MeanMember<float>& member, RoiSize roi) {
  void (*loop)(int64_t) = nullptr;
  if (!member.deviation)
    loop =
        member.channels == 1 ? chain<native::Vec<float, 4>, 4> : chain<native::Vec<double, 2>, 1>;
  else if (member.channels == 1)
    loop = member.masked ? arithmetic<1, true> : arithmetic<1, false>;
  else
    loop = member.masked ? arithmetic<3, true> : arithmetic<3, false>;
  register_bound(member.name, roi, [loop](const Images& im) {
    return [loop, pixels = int64_t{im.roi.width} * im.roi.height] { loop(pixels); };
  });
}

void register_mean() {
  test::for_each_mean([]<class T>(const MeanMember<T>& member) {
    for (RoiSize roi : kSizes) {
      register_limit_of(member, roi);
      if constexpr (sizeof(T) == 4) register_bound_of(member, roi);
      const auto run = [member](auto call) {
        return
            [=](const Images& im) { return [call, args = args_of<T>(member, im)] { call(args); }; };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi,
                     run(gcc::plain_mean<T>(member.deviation, member.channels, member.masked)));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi,
                     run(clang::plain_mean<T>(member.deviation, member.channels, member.masked)));
#endif
    }
  });
}

const Family family(register_mean);

}  // namespace
}  // namespace nuqi::bench

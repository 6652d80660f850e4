// Benchmarks of the norm family.
#include "stats/norm_members.h"
#include "stats/norm_plain.h"
#include "support/registers.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::NormArgs;
using test::NormKind;
using test::NormMember;
using test::NormOrder;

template <class T>
NormArgs<T> args_of(const Images& im, int channels) {
  static double norm;
  const RoiSize roi = im.roi;
  const int32_t step = roi.width * channels * int{sizeof(T)};
  return {im.source<T>(), step, im.second<T>(), step, im.mask.get(),
          roi.width,      roi,  channels,       &norm};
}

template <int pixel, class T>
void register_limit_of(const NormMember<T>& member, RoiSize roi) {
  if (member.kind == NormKind::image)
    register_limit<Streams<pixel, 1>>(member.name, roi);
  else
    register_limit<Streams<pixel, pixel, 1>>(member.name, roi);
}

// Sums of floats: the dependency chain of additions to sixteen lanes.
void chain_of_additions(int64_t pixels) {
  using namespace native;
  Vec<float, 8> term = {}, low = {}, high = {};
  for (int64_t x = 0; x < pixels; x += 16) {
    opaque(term);
    low = low + term;
    opaque(term);
    high = high + term;
  }
  opaque(low);
  opaque(high);
}

// Squares of bytes: no loads, no dependency chain.
template <class T, NormKind kind>
void arithmetic_of_squares(int64_t pixels) {
  using namespace native;
  constexpr int kLanes = Reg<T>::kLanes;
  using Sums = ByteSums<uint8_t, true>;
  Reg<T> a = {}, b = {};
  Reg<uint8_t> mask = {};
  Sums sums, sums_of_second;
  for (int64_t x = 0; x < pixels; x += kLanes * Sums::kTurns)
    for_each<Sums::kTurns>([&](int turn) NUQI_FORCED {
      const auto magnitude = [](const Reg<T>& v) NUQI_FORCED {
        if constexpr (kIsSigned<T>)
          return abs(v);
        else
          return v;
      };
      opaque(a), opaque(b), opaque(mask);
      if constexpr (kind == NormKind::image)
        sums.add(keep_selected(mask, magnitude(a)), turn);
      else
        sums.add(keep_selected(mask, as<uint8_t>(max(a, b)) - as<uint8_t>(min(a, b))), turn);
      if constexpr (kind == NormKind::relative)
        sums_of_second.add(keep_selected(mask, magnitude(b)), turn);
    });
  sums.collect();
  sums_of_second.collect();
  benchmark::DoNotOptimize(sums.squares_sum() + sums_of_second.squares_sum());
}

template <class T>
void register_bound_of(const NormMember<T>& member, RoiSize roi) {
  const auto add_bound = [&](void (*loop)(int64_t)) {
    register_bound(member.name, roi, [loop](const Images& im) {
      return [loop, pixels = int64_t{im.roi.width} * im.roi.height] { loop(pixels); };
    });
  };
  if constexpr (sizeof(T) == 4) {
    if (member.order != NormOrder::inf) add_bound(chain_of_additions);
  } else if (member.order == NormOrder::l2 && member.channels == 1) {
    using enum NormKind;
    switch (member.kind) {
      case image: return add_bound(arithmetic_of_squares<T, image>);
      case difference: return add_bound(arithmetic_of_squares<T, difference>);
      case relative: return add_bound(arithmetic_of_squares<T, relative>);
    }
  }
}

void register_norm() {
  test::for_each_norm([]<class T>(const NormMember<T>& member) {
    for (RoiSize roi : kSizes) {
      if (member.channels == 3)
        register_limit_of<3 * sizeof(T)>(member, roi);
      else
        register_limit_of<sizeof(T)>(member, roi);
      if (roi.width == 64) register_bound_of(member, roi);
      const auto run = [channels = member.channels](auto call) {
        return [=](const Images& im) {
          return [call, args = args_of<T>(im, channels)] { call(args); };
        };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi,
                     run(gcc::plain_norm<T>(member.kind, member.order, member.channels)));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi,
                     run(clang::plain_norm<T>(member.kind, member.order, member.channels)));
#endif
    }
  });
}

const Family family(register_norm);

}  // namespace
}  // namespace nuqi::bench

// Benchmarks of the fixed 3x3 derivatives.
#include "filters/derivative3x3_members.h"
#include "filters/derivative3x3_plain.h"
#include "support/registers.h"
#include "support/registry.h"

// After registers.h, which says what it is compiled for.
#include "filters/derivative3x3_terms.h"

namespace nuqi::bench {
namespace {

using test::DerivativeArgs;
using test::DerivativeKind;
using test::DerivativeMember;
using test::DerivativeResult;

template <class T>
DerivativeArgs<T> args_of(const Images& im) {
  using Result = DerivativeResult<T>;
  const int32_t width = im.roi.width;
  return {im.source<T>(),
          width * int{sizeof(T)},
          reinterpret_cast<Result*>(im.out.get()),
          width * int{sizeof(Result)},
          0,
          im.roi,
          2};
}

// The arithmetic of row after row, on pixels that stay in L1.
template <Derivative derivative, class T>
void arithmetic(int64_t pixels) {
  using namespace native;
  alignas(64) static const T row[3 * 64] = {};
  const T* at = row + 64;
  const Scale<T> scale(DerivativeJob<T>{{}, {}, {}, 2, 0.25f});
  const auto around = loader_around<T>(Inside{}, Whole{});
  RowTerm<T> above = {}, here = {};
#pragma GCC unroll 8
  for (int64_t x = 0; x < pixels; x += Column<T>::kLanes) {
    __asm__ volatile("" : "+r"(at));
    const RowTerm<T> below = term_of<derivative>(around(at), scale);
    Column<T> result = finish<derivative>(combine<derivative>(above, here, below), scale);
    opaque(result);
    above = here;
    here = below;
  }
}

template <class T>
void register_bound_of(const DerivativeMember<T>& member, RoiSize roi) {
  const auto add_bound = [&](auto loop) {
    register_bound(member.name, roi, [loop](const Images& im) {
      return [loop, pixels = int64_t{im.roi.width} * im.roi.height] { loop(pixels); };
    });
  };
  using enum DerivativeKind;
  switch (member.kind) {
    case dx: return add_bound(arithmetic<Derivative::dx, T>);
    case dy: return add_bound(arithmetic<Derivative::dy, T>);
    case scharr_dx: return add_bound(arithmetic<Derivative::scharr_dx, T>);
    case scharr_dy: return add_bound(arithmetic<Derivative::scharr_dy, T>);
    default: break;
  }
  if constexpr (sizeof(T) == 1) {
    if (member.kind == d2x) add_bound(arithmetic<Derivative::d2x, T>);
    if (member.kind == d2y) add_bound(arithmetic<Derivative::d2y, T>);
    if (member.kind == dxdy) add_bound(arithmetic<Derivative::dxdy, T>);
  }
}

void register_derivative3x3() {
  test::for_each_derivative([]<class T>(const DerivativeMember<T>& member) {
    for (RoiSize roi : kSizes) {
      register_limit<Streams<sizeof(T)>, Streams<>, Streams<sizeof(DerivativeResult<T>)>>(
          member.name, roi);
      if (roi.width == 64) register_bound_of(member, roi);
      const auto run = [](auto call) {
        return [=](const Images& im) { return [call, args = args_of<T>(im)] { call(args); }; };
      };
      register_function(member.name, roi, run(member.call));
      register_plain(member.name, "gcc", roi, run(gcc::plain_derivative<T>(member.kind)));
#if NUQI_PLAIN_CLANG
      register_plain(member.name, "clang", roi, run(clang::plain_derivative<T>(member.kind)));
#endif
    }
  });
}

const Family family(register_derivative3x3);

}  // namespace
}  // namespace nuqi::bench

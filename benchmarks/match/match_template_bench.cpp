// Benchmarks of template matching. Its limit is no memory's: it is the rate of this machine's multiply-adds
// on independent registers, one for each pixel of the template at each place.
#include "match/match_template_members.h"
#include "match/match_template_plain.h"
#include "support/registers.h"
#include "support/registry.h"

#include "core/simd/dots.h"

namespace nuqi::bench {
namespace {

using test::MatchArgs;
using test::MatchMeasure;
using test::MatchMember;

constexpr int kChains = 16;

// `add` makes a register of sums from another one, kChains of them independently. The sums themselves are not
// made opaque in the loop: GCC would keep them in memory.
template <class Sum, class Factor, class Add>
void multiply_add(int64_t count, int at_once, Factor factor, const Add& add) {
  Sum sums[kChains] = {};
  for (int64_t i = 0; i < count; i += kChains * at_once)
    native::for_each<kChains>([&](int k) NUQI_FORCED {
      native::opaque(factor);
      sums[k] = add(sums[k], factor);
    });
  native::for_each<kChains>([&](int k) NUQI_FORCED {
    Sum sum = sums[k];
    native::opaque(sum);
  });
}

// Bytes: dot products as the machine has them, whatever the measure. Floats: in double precision.
template <class T, bool differences>
void multiplications(int64_t count) {
  using namespace native;
  if constexpr (sizeof(T) == 1) {
    Reg<DotCell<T>> weights = {};
    opaque(weights);
    multiply_add<Reg<int32_t>>(count, kRegBytes / 4 * kDotGroup, weights,
                               [&](const auto& sum, const auto& pixels) NUQI_FORCED {
                                 return add_group_products<T>(sum, pixels, weights);
                               });
  } else {
    Reg<double> t = {};
    opaque(t);
    multiply_add<Reg<double>>(count, kRegBytes / 8, t,
                              [&](const auto& sum, const auto& w) NUQI_FORCED {
                                if constexpr (differences)
                                  return sum + (w - t) * (w - t);
                                else
                                  return add_exact_product(sum, w, t);
                              });
  }
}

template <class T>
MatchArgs<T> args_of(const Images& im, RoiSize tpl, void* buffer) {
  const int32_t e = sizeof(T), width = im.roi.width;
  return {im.source<T>(), width * e, im.roi,       im.second<T>(),
          tpl.width * e,  tpl,       im.acc.get(), (width - tpl.width + 1) * 4,
          buffer};
}

template <class T>
void register_size(const MatchMember<T>& member, RoiSize roi, RoiSize tpl) {
  const std::string size = std::to_string(tpl.width) + "x" + std::to_string(tpl.height);
  const std::string name = std::string(member.name) + ":" + size;
  const int64_t places = int64_t{roi.width - tpl.width + 1} * (roi.height - tpl.height + 1);
  const int64_t count = places * tpl.width * tpl.height;
  const bool differences = member.measure <= MatchMeasure::sq_diff_normed;
  const std::string limit = "limit:" + std::to_string(sizeof(T)) +
                            (sizeof(T) > 1 && differences ? "differences:" : "products:") + size;
  set_limit(name, limit);
  if (first_time(bench_name(limit, "registers", roi)))
    register_loop(bench_name(limit, "registers", roi), roi, [=](const Images&) {
      const auto loop = differences ? multiplications<T, true> : multiplications<T, false>;
      return [=] { loop(count); };
    });

  int32_t bytes = 0;
  member.query(roi, tpl, test::kMatchType<T>, &bytes);
  const auto run = [=](auto call) {
    return [=](const Images& im) {
      const auto buffer = std::make_shared<Buffer<uint8_t>>(bytes);
      return [=, args = args_of<T>(im, tpl, buffer->get())] {
        call(args);
        (void)buffer;
      };
    };
  };
  register_function(name, roi, run(member.call));
  register_plain(name, "gcc", roi, run(gcc::plain_match<T>(member.measure)));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_match<T>(member.measure)));
#endif
}

void register_match() {
  test::for_each_match([]<class T>(const MatchMember<T>& member) {
    register_size(member, {64, 64}, {8, 8});
    for (int size : {8, 16, 32, 64}) register_size(member, {640, 480}, {size, size});
    if (member.measure != MatchMeasure::corr && member.measure != MatchMeasure::coeff_normed)
      return;
    // Where lanes, or what is shared, may run short.
    for (RoiSize tpl :
         {RoiSize{2, 2}, {1, 64}, {64, 1}, {640, 16}, {636, 470}, {16, 480}, {640, 480}})
      register_size(member, {640, 480}, tpl);
  });
}

const Family family(register_match);

}  // namespace
}  // namespace nuqi::bench

// Benchmarks of the copy family; ":one" is a single plane of those of C3P3 and C4P4.
#include <array>

#include "arith/copy_members.h"
#include "arith/copy_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::CopyArgs;
using test::CopyMember;

// One way of calling a member, as the benchmarks of all sizes and levels call it.
template <class T, int channels, CopyWay way>
void register_way(const std::string& name, StatusCode (*call)(const CopyArgs<T>&), RoiSize roi) {
  constexpr int e = sizeof(T);
  const auto run = [roi](auto copy, bool one) {
    return [=](const Images& im) {
      // Sources are noise; destinations lie in `out`.
      T* in = const_cast<T*>(im.source<T>());
      T* out = reinterpret_cast<T*>(im.out.get());
      T* at = way == CopyWay::to_pixels ? in : out;
      std::array<T*, 4> planes{};
      for (int k = 0; k < channels; ++k)
        if (!one || k == 1) planes[k] = at + int64_t{k} * roi.width * roi.height;
      const CopyArgs<T> args = {way == CopyWay::to_pixels ? out : in, roi.width * channels * e,
                                nullptr, roi.width * e, roi};
      return [=] {
        CopyArgs<T> these = args;
        these.planes = planes.data();
        copy(these);
      };
    };
  };
  register_function(name, roi, run(call, way == CopyWay::to_one_plane));
  register_plain(name, "gcc", roi, run(gcc::plain_copy<T>(way, channels), false));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_copy<T>(way, channels), false));
#endif
}

template <class T, int channels>
void register_member(const CopyMember<T>& member, RoiSize roi) {
  constexpr int e = sizeof(T);
  using Pixels = Streams<channels * e>;
  using Planes = std::conditional_t<channels == 3, Streams<e, e, e>, Streams<e, e, e, e>>;
  if (!member.to_planes) {
    register_limit<Planes, Streams<>, Pixels>(member.name, roi);
    register_way<T, channels, CopyWay::to_pixels>(member.name, member.call, roi);
    return;
  }
  register_limit<Pixels, Streams<>, Planes>(member.name, roi);
  register_way<T, channels, CopyWay::to_planes>(member.name, member.call, roi);
  const std::string one = std::string(member.name) + ":one";
  register_limit<Pixels, Streams<>, Streams<e>>(one, roi);
  register_way<T, channels, CopyWay::to_one_plane>(one, member.call, roi);
}

void register_copy() {
  test::for_each_copy([]<class T>(const CopyMember<T>& member) {
    for (RoiSize roi : kSizes)
      member.channels == 3 ? register_member<T, 3>(member, roi)
                           : register_member<T, 4>(member, roi);
  });
}

const Family family(register_copy);

}  // namespace
}  // namespace nuqi::bench

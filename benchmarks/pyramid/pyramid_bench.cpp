// Benchmarks of the Gaussian pyramid. Sizes are the source's: up writes four times as many pixels.
#include <memory>

#include "pyramid/pyramid_members.h"
#include "pyramid/pyramid_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::PyramidArgs;
using test::PyramidMember;

template <int bytes, class T>
void register_limit_of(const PyramidMember<T>& member, RoiSize roi) {
  if (member.up)
    register_limit<Streams<bytes>, Streams<>, Streams<4 * bytes>>(member.name, roi);
  else
    register_limit<Streams<4 * bytes>, Streams<>, Streams<bytes>, 4>(member.name, roi);
}

template <class T>
void register_member(const PyramidMember<T>& member) {
  constexpr int e = sizeof(T);
  const auto run = [member](auto call) {
    return [=, row = member.channels * e](const Images& im) {
      int32_t size = 0;
      member.query(im.roi.width, &size);
      const auto buffer = std::make_shared<Buffer<uint8_t>>(size);
      const RoiSize result = member.result(im.roi);
      const PyramidArgs<T> args = {im.source<T>(),
                                   im.roi.width * row,
                                   reinterpret_cast<T*>(im.out.get()),
                                   result.width * row,
                                   im.roi,
                                   buffer->get()};
      return [=] {
        (void)buffer;
        call(args);
      };
    };
  };
  for (RoiSize roi : kSizes) {
    if (member.channels == 1)
      register_limit_of<e>(member, roi);
    else
      register_limit_of<3 * e>(member, roi);
    register_function(member.name, roi, run(member.call));
    register_plain(member.name, "gcc", roi, run(gcc::plain_pyramid<T>(member.up, member.channels)));
#if NUQI_PLAIN_CLANG
    register_plain(member.name, "clang", roi,
                   run(clang::plain_pyramid<T>(member.up, member.channels)));
#endif
  }
}

void register_pyramid() {
  test::for_each_pyramid([](const auto& member) { register_member(member); });
}

const Family family(register_pyramid);

}  // namespace
}  // namespace nuqi::bench

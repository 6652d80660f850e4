// Benchmarks of the line samplers, along a line as long as the picture is wide. Their limit is not a
// pass over the picture but a copy of the same pixels through a ready table of their offsets.
#include <cstring>
#include <vector>

#include "arith/sample_line_members.h"
#include "arith/sample_line_plain.h"
#include "arith/sample_line_reference.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::SampleLineMember;

template <class T, int channels>
void register_member(const SampleLineMember<T>& member, RoiSize roi) {
  constexpr int kPixel = channels * sizeof(T);
  const int32_t step = roi.width * kPixel;
  const PixelPoint start = {0, 0}, end = {roi.width - 1, roi.height * 2 / 3};

  const std::string limit = std::string("offsets:") + member.name;
  set_limit(member.name, limit);
  std::vector<int32_t> offsets;
  for (PixelPoint at : test::line_reference(start, end))
    offsets.push_back(at.y * step + at.x * kPixel);
  register_loop(bench_name(limit, "copy", roi), roi, [offsets](const Images& im) {
    const auto* src = reinterpret_cast<const char*>(im.source<T>());
    char* dst = reinterpret_cast<char*>(im.out.get());
    return [&offsets, src, dst] {
      char* to = dst;
      for (int32_t offset : offsets) {
        std::memcpy(to, src + offset, kPixel);
        to += kPixel;
      }
    };
  });

  const auto run = [=](auto sample) {
    return [=](const Images& im) {
      return [=, src = im.source<T>(), dst = reinterpret_cast<T*>(im.out.get())] {
        sample(src, step, roi, dst, start, end);
      };
    };
  };
  register_function(member.name, roi, run(member.call));
  register_plain(member.name, "gcc", roi, run(gcc::plain_sample_line<T, channels>));
#if NUQI_PLAIN_CLANG
  register_plain(member.name, "clang", roi, run(clang::plain_sample_line<T, channels>));
#endif
}

void register_sample_line() {
  test::for_each_sample_line([]<class T>(const SampleLineMember<T>& member) {
    for (RoiSize roi : kSizes)
      member.channels == 1 ? register_member<T, 1>(member, roi)
                           : register_member<T, 3>(member, roi);
  });
}

const Family family(register_sample_line);

}  // namespace
}  // namespace nuqi::bench

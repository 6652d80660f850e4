// Benchmarks of the extrema.
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "stats/min_max_members.h"
#include "stats/min_max_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::MinMaxArgs;
using test::MinMaxMember;

// Noise of bytes ends the search as soon as 0 and 255 have been met. Here no value is an end of the
// range: every pixel has to be looked at. `last` puts both extremes at the end; `signs` negates every
// second float.
enum class Picture { inner, last, signs };

template <class T>
T pixel(T value) {
  if constexpr (sizeof(T) == 4) return value;
  return static_cast<T>(value / 2 + 1);
}

template <class T>
const T* picture_of(const Images& im, Picture picture) {
  static std::map<std::pair<int, Picture>, std::unique_ptr<Buffer<T>>> made;
  auto& entry = made[{im.roi.width, picture}];
  if (!entry) {
    const size_t count = static_cast<size_t>(im.roi.width) * im.roi.height * 3;
    entry = std::make_unique<Buffer<T>>(count);
    T* pixels = entry->get();
    for (size_t i = 0; i < count; ++i) {
      pixels[i] = pixel(im.source<T>()[i]);
      if (picture == Picture::signs && i % 2 == 0) pixels[i] = static_cast<T>(-pixels[i]);
    }
    if (picture == Picture::last) {
      pixels[count / 3 - 2] = 0;
      pixels[count / 3 - 1] = 100;
      for (size_t i = 0; i < count / 3 - 2; ++i) pixels[i] = 50;
    }
  }
  return entry->get();
}

template <class T>
MinMaxArgs<T> args_of(const Images& im, int channels, Picture picture) {
  static float min, max;
  static PixelPoint min_at, max_at;
  const RoiSize roi = im.roi;
  return {picture_of<T>(im, picture),
          roi.width * channels * int32_t{sizeof(T)},
          im.mask.get(),
          roi.width,
          roi,
          channels,
          &min,
          &max,
          &min_at,
          &max_at};
}

template <int pixel, class T>
void register_limit_of(const MinMaxMember<T>& member, const std::string& name, RoiSize roi) {
  if (member.masked)
    register_limit<Streams<pixel, 1>>(name, roi);
  else
    register_limit<Streams<pixel>>(name, roi);
}

template <class T>
void register_one(const MinMaxMember<T>& member, const std::string& name, Picture picture) {
  for (RoiSize roi : kSizes) {
    if (member.channels == 3)
      register_limit_of<3 * sizeof(T)>(member, name, roi);
    else
      register_limit_of<sizeof(T)>(member, name, roi);
    const auto run = [picture, channels = member.channels](auto call) {
      return [=](const Images& im) {
        return [call, args = args_of<T>(im, channels, picture)] { call(args); };
      };
    };
    register_function(name, roi, run(member.call));
    register_plain(name, "gcc", roi, run(gcc::plain_min_max<T>(member.channels, member.masked)));
#if NUQI_PLAIN_CLANG
    register_plain(name, "clang", roi,
                   run(clang::plain_min_max<T>(member.channels, member.masked)));
#endif
  }
}

void register_min_max() {
  test::for_each_min_max([]<class T>(const MinMaxMember<T>& member) {
    register_one(member, member.name, Picture::inner);
    if (member.channels == 1 && !member.masked) {
      register_one(member, member.name + std::string("(last)"), Picture::last);
      if (sizeof(T) == 4)
        register_one(member, member.name + std::string("(signs)"), Picture::signs);
    }
  });
}

const Family family(register_min_max);

}  // namespace
}  // namespace nuqi::bench

// Motion histories, angles, pixels along lines.
#include <cstring>
#include <nuqi/hpp/motion.hpp>

#include "operation.h"

namespace nuqi::python {
namespace {

// (silhouette, history, timestamp, duration)
PyObject* motion_history(Arguments a) {
  const View<const std::uint8_t> silhouette = mask_of(a[0], "silhouette").view();
  const auto history = output<float>(a[1], "history");
  const float timestamp = real(a[2], "timestamp");
  const float duration = real(a[3], "duration");
  if (!(duration >= 0)) throw Error(StatusBadArg, "motion_history", "", "duration is below 0");
  unlocked([&] { nuqi::motion_history(silhouette, history, timestamp, duration); });
  return none();
}

// (y, x, out)
PyObject* arctan(Arguments a) {
  const auto y = input<float>(a[0], "y");
  const auto x = input<float>(a[1], "x");
  const auto out = output<float>(a[2]);
  unlocked([&] { nuqi::arctan(y, x, out); });
  return none();
}

// (image, start, end, out), out of shape (1, n) or (1, n, 3)
PyObject* sample_line(Arguments a) {
  const PixelPoint start = point(a[1], "start");
  const PixelPoint end = point(a[2], "end");
  return for_type<std::uint8_t, float>(a[0], "image", [&](auto type) {
    return for_channels<1, 3>(a[0], "image", [&](auto channels) {
      using T = typename decltype(type)::type;
      const auto image = input<T, decltype(channels)::value>(a[0]);
      const auto samples = unlocked([&] { return nuqi::sample_line(image, start, end); });
      const auto out = output<T, decltype(channels)::value>(a[3]);
      if (out.height() != 1 ||
          out.width() * out.channels() != static_cast<std::int64_t>(samples.size())) {
        throw Error(StatusBadSize, "sample_line", out.text(),
                    "out needs as many pixels as the line");
      }
      std::memcpy(out.data(), samples.data(), samples.size() * sizeof(T));
      return none();
    });
  });
}

const Operation kOperations[] = {
    {"motion_history", 4, motion_history},
    {"arctan", 3, arctan},
    {"sample_line", 4, sample_line},
};

}  // namespace

Operations motion_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python

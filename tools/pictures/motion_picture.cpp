// From frames to the picture of a motion: what lies between the library's calls.
#include "pictures/motion_picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nuqi/nuqi.hpp>

#include "failure.h"

namespace tools {
namespace {

// Red at 0 degrees, yellow, green, cyan, blue and magenta at further steps of 60.
void put_hue(double degrees, double brightness, uint8_t* rgb) {
  static constexpr double kPeaks[3] = {0, 120, 240};
  for (int c = 0; c < 3; ++c) {
    double distance = std::abs(std::remainder(degrees - kPeaks[c], 360.0));
    distance = std::clamp(2 - distance / 60, 0.0, 1.0);
    rgb[c] = uint8_t(std::lround(255 * brightness * distance));
  }
}

}  // namespace

Plane<uint8_t> silhouette_of(const Plane<uint8_t>& difference, int threshold) {
  Plane<uint8_t> silhouette(difference.size);
  std::transform(difference.values.begin(), difference.values.end(), silhouette.values.begin(),
                 [&](uint8_t value) { return uint8_t(value > threshold ? 255 : 0); });
  return silhouette;
}

void keep_steps(const Plane<float>& history, Plane<float>& dx, Plane<float>& dy) {
  constexpr float kLargestStep = 2;
  const RoiSize size = history.size;
  size_t i = 0;
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x, ++i) {
      if (dx.values[i] == 0 && dy.values[i] == 0) continue;
      float first = history.values[i], last = first;
      for (int32_t v = std::max(y - 1, 0); v <= std::min(y + 1, size.height - 1); ++v) {
        for (int32_t u = std::max(x - 1, 0); u <= std::min(x + 1, size.width - 1); ++u) {
          const float time = history.values[size_t(v) * size_t(size.width) + size_t(u)];
          first = std::min(first, time);
          last = std::max(last, time);
        }
      }
      if (first <= 0 || last - first > kLargestStep) dx.values[i] = dy.values[i] = 0;
    }
  }
}

void spread(Plane<float>& gradient) {
  nuqi::BoxSum box_sum(kSpreadSize);
  for (int i = 0; i < kSpreads; ++i) {
    Plane<float> sums(gradient.size);
    box_sum(gradient, sums);
    gradient = std::move(sums);
  }
}

Picture motion_picture(const Motion& motion) {
  // Fainter sums may be what rounding left.
  const double faintest = 1e-4 * std::pow(kSpreadSize * kSpreadSize, kSpreads);
  Picture picture(motion.frame.size, 3);
  uint8_t* rgb = picture.pixels.data();
  for (size_t i = 0; i < motion.history.values.size(); ++i, rgb += 3) {
    const double time = double(motion.history.values[i]);
    if (time <= 0) {
      std::fill(rgb, rgb + 3, uint8_t(motion.frame.values[i] / 3));
      continue;
    }
    const double brightness = 1 - 0.7 * (double(motion.now) - time) / (double(motion.duration) + 1);
    if (std::hypot(double(motion.dx.values[i]), double(motion.dy.values[i])) > faintest) {
      put_hue(double(motion.angle.values[i]), brightness, rgb);
    } else {
      std::fill(rgb, rgb + 3, uint8_t(std::lround(230 * brightness)));
    }
  }
  return picture;
}

Legend direction_legend() {
  std::string css;
  for (int degrees = 0; degrees <= 360; degrees += 60) {
    uint8_t rgb[3];
    put_hue(degrees, 1, rgb);
    char text[32];
    std::snprintf(text, sizeof text, "%s#%02x%02x%02x", degrees == 0 ? "" : ",", rgb[0], rgb[1],
                  rgb[2]);
    css += text;
  }
  return {css, "right → down", "left", "up → right"};
}

}  // namespace tools

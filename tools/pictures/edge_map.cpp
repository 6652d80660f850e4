// Canny's edges of a picture of any size, the outlines of drawn shapes among them.
#include "pictures/edge_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "clock.h"
#include "failure.h"

namespace tools {
namespace {

constexpr int kScale = 4;                 // room for a number below 4
constexpr int kMostStrength = 8160;       // Scharr's: 4 * 8160 + 3 fits 16 bits
constexpr uint64_t kHigh = 10, kLow = 4;  // one pixel in so many exceeds a threshold

// Makes strengths m into 4 * m + t, t from 0 to 3 and different at any two neighbours. The larger
// derivative takes t, away from zero, so that the direction changes least.
void break_ties(Plane<int16_t>& dx, Plane<int16_t>& dy) {
  size_t i = 0;
  for (int32_t y = 0; y < dx.size.height; ++y) {
    for (int32_t x = 0; x < dx.size.width; ++x, ++i) {
      const int a = kScale * dx.values[i], b = kScale * dy.values[i];
      const int t = (x & 1) + 2 * (y & 1);
      const bool first = std::abs(a) >= std::abs(b);
      dx.values[i] = int16_t(!first ? a : a < 0 ? a - t : a + t);
      dy.values[i] = int16_t(first ? b : b < 0 ? b - t : b + t);
    }
  }
}

// For whole strengths m > threshold as 4 * m + t > this, whatever t is. The library truncates, too.
float with_ties_broken(float threshold) {
  return kScale * std::floor(std::min(threshold, float(INT16_MAX))) + (kScale - 1);
}

}  // namespace

EdgeFinder::EdgeFinder(const Plane<uint8_t>& picture, const std::string& edge_operator)
    : size_(picture.size) {
  const Plane<uint8_t> grey = with_two_rows(picture);
  const RoiSize roi = grey.size;
  const uint8_t* src = grey.data();
  dx_ = dy_ = Plane<int16_t>(roi);
  const auto timed = [&](const char* name, const auto& call) {
    seconds_ += seconds_of([&] { require_ok(call(), name); });
  };
  if (edge_operator == "sobel") {
    timed("nuqiSobel3x3_Dx_8u16s_C1R",
          [&] { return nuqiSobel3x3_Dx_8u16s_C1R(src, grey.step(), dx_.data(), dx_.step(), roi); });
    timed("nuqiSobel3x3_Dy_8u16s_C1R", [&] {
      return nuqiSobel3x3_Dy_8u16s_C1R(src, grey.step(), dy_.data(), dy_.step(), 0, roi);
    });
  } else {
    timed("nuqiScharr_Dx_8u16s_C1R", [&] {
      return nuqiScharr_Dx_8u16s_C1R(src, grey.step(), dx_.data(), dx_.step(), roi, 0);
    });
    timed("nuqiScharr_Dy_8u16s_C1R", [&] {
      return nuqiScharr_Dy_8u16s_C1R(src, grey.step(), dy_.data(), dy_.step(), 0, roi, 0);
    });
  }
  break_ties(dx_, dy_);
}

Thresholds EdgeFinder::usual_thresholds() const {
  std::array<uint64_t, kMostStrength + 1> counts{};
  for (size_t i = 0; i < dx_.values.size(); ++i) {
    ++counts[size_t(std::abs(dx_.values[i]) + std::abs(dy_.values[i])) / kScale];
  }
  const uint64_t any = std::accumulate(counts.begin() + 1, counts.end(), uint64_t{0});
  const auto exceeded_by_one_in = [&](uint64_t share) {
    uint64_t above = 0;
    for (size_t strength = kMostStrength; strength > 0; --strength) {
      above += counts[strength];
      if (above * share >= any) return float(strength - 1);
    }
    return 0.0f;
  };
  if (any == 0) return {0, 0};
  return {exceeded_by_one_in(kLow), exceeded_by_one_in(kHigh)};
}

Plane<uint8_t> EdgeFinder::edges(Thresholds thresholds) {
  Plane<uint8_t> edges(size_);
  int32_t size = 0;
  require_ok(nuqiCannyGetSize(size_, &size), "nuqiCannyGetSize");
  std::vector<uint8_t> buffer(static_cast<size_t>(size));
  seconds_ += seconds_of([&] {
    require_ok(nuqiCanny_16s8u_C1R(dx_.data(), dx_.step(), dy_.data(), dy_.step(), edges.data(),
                                   edges.step(), size_, with_ties_broken(thresholds.low),
                                   with_ties_broken(thresholds.high), buffer.data()),
               "nuqiCanny_16s8u_C1R");
  });
  return edges;
}

Plane<uint8_t> edges_of(const Plane<uint8_t>& grey, const std::string& edge_operator, float low,
                        float high) {
  return EdgeFinder(grey, edge_operator).edges({low, high});
}

}  // namespace tools

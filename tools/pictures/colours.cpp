// Colours for numbers that are no picture: signed derivatives, variances, edges over a picture.
#include "pictures/colours.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <numeric>

namespace tools {
namespace {

struct Colour {
  uint8_t rgb[3];
};

constexpr Colour kSigned[] = {
    {{150, 220, 255}}, {{30, 105, 215}}, {{10, 12, 18}}, {{215, 75, 20}}, {{255, 215, 130}}};
constexpr Colour kHeat[] = {
    {{6, 6, 18}}, {{84, 18, 110}}, {{187, 55, 84}}, {{249, 142, 9}}, {{252, 255, 180}}};
constexpr Colour kEdge = {{255, 138, 30}};

// `at` from 0 to 1 along the colours.
template <size_t N>
void put_colour(const Colour (&colours)[N], double at, uint8_t* rgb) {
  const double place = std::clamp(at, 0.0, 1.0) * (N - 1);
  const size_t below = std::min(size_t(place), N - 2);
  const double part = place - double(below);
  for (int c = 0; c < 3; ++c) {
    rgb[c] =
        uint8_t(std::lround(colours[below].rgb[c] * (1 - part) + colours[below + 1].rgb[c] * part));
  }
}

template <size_t N>
Picture coloured(const Colour (&colours)[N], const Plane<float>& plane, double zero, double range) {
  Picture picture(plane.size, 3);
  uint8_t* rgb = picture.pixels.data();
  for (const float value : plane.values) {
    put_colour(colours, zero + (1 - zero) * double(value) / range, rgb);
    rgb += 3;
  }
  return picture;
}

template <size_t N>
std::string gradient_of(const Colour (&colours)[N]) {
  std::string css;
  for (const Colour& colour : colours) {
    char text[32];
    std::snprintf(text, sizeof text, "%s#%02x%02x%02x", css.empty() ? "" : ",", colour.rgb[0],
                  colour.rgb[1], colour.rgb[2]);
    css += text;
  }
  return css;
}

std::string number(const char* sign, double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%s%.*f", sign, value < 10 ? 1 : 0, value);
  return text;
}

// Among magnitudes in ascending order, the place of the one that is shown palest.
template <class Count>
Count usual_rank(Count count) {
  return count - 1 - count / 100;
}

}  // namespace

SignedColours::SignedColours(double range) : table_(size_t{3} << 16) {
  uint8_t* rgb = table_.data();
  for (int value = INT16_MIN; value <= INT16_MAX; ++value, rgb += 3) {
    put_colour(kSigned, 0.5 + 0.5 * value / range, rgb);
  }
}

void SignedColours::put(const int16_t* values, size_t count, uint8_t* rgb) const {
  for (size_t i = 0; i < count; ++i, rgb += 3) {
    std::memcpy(rgb, &table_[3 * size_t(values[i] - INT16_MIN)], 3);
  }
}

Picture signed_colours(const Plane<int16_t>& plane, double range) {
  Picture picture(plane.size, 3);
  SignedColours(range).put(plane.data(), plane.values.size(), picture.pixels.data());
  return picture;
}

Picture signed_colours(const Plane<float>& plane, double range) {
  return coloured(kSigned, plane, 0.5, range);
}

Legend signed_legend(double range) {
  return {gradient_of(kSigned), number("−", range), "0", number("+", range)};
}

Picture heat_colours(const Plane<float>& plane, double range) {
  return coloured(kHeat, plane, 0, range);
}

Legend heat_legend(double range, const std::string& middle) {
  return {gradient_of(kHeat), "0", middle, number("", range)};
}

void ValueCounts::add(const int16_t* values, size_t count) {
  for (size_t i = 0; i < count; ++i) ++of(values[i]);
}

int ValueCounts::lowest() const {
  int value = INT16_MIN;
  while (value < INT16_MAX && of(value) == 0) ++value;
  return value;
}

int ValueCounts::highest() const {
  int value = INT16_MAX;
  while (value > INT16_MIN && of(value) == 0) --value;
  return value;
}

double ValueCounts::usual_range() const {
  const uint64_t rank = usual_rank(std::accumulate(counts_.begin(), counts_.end(), uint64_t{0}));
  uint64_t within = of(0);
  int magnitude = 0;
  while (within <= rank) {
    ++magnitude;
    within += of(-magnitude) + (magnitude <= INT16_MAX ? of(magnitude) : 0);
  }
  return std::max(1, magnitude);
}

double usual_range(const Plane<int16_t>& plane) {
  ValueCounts counts;
  counts.add(plane.data(), plane.values.size());
  return counts.usual_range();
}

double usual_range(const Plane<float>& plane) {
  std::vector<float> magnitudes(plane.values.size());
  std::transform(plane.values.begin(), plane.values.end(), magnitudes.begin(),
                 [](float value) { return std::abs(value); });
  const auto at = magnitudes.begin() + ptrdiff_t(usual_rank(magnitudes.size()));
  std::nth_element(magnitudes.begin(), at, magnitudes.end());
  return std::max(1.0, double(*at));
}

Plane<uint8_t> rounded(const Plane<float>& plane) {
  Plane<uint8_t> bytes(plane.size);
  std::transform(plane.values.begin(), plane.values.end(), bytes.values.begin(),
                 [](float value) { return uint8_t(std::lround(std::clamp(value, 0.0f, 255.0f))); });
  return bytes;
}

Picture edges_over(const Plane<uint8_t>& grey, const Plane<uint8_t>& edges) {
  Picture picture(grey.size, 3);
  uint8_t* rgb = picture.pixels.data();
  for (size_t i = 0; i < grey.values.size(); ++i, rgb += 3) {
    for (int c = 0; c < 3; ++c) {
      rgb[c] = edges.values[i] != 0 ? kEdge.rgb[c] : uint8_t(grey.values[i] * 2 / 5);
    }
  }
  return picture;
}

}  // namespace tools

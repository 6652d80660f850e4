// Colours for numbers that are no picture: signed derivatives, variances, edges over a picture.
#include "tour_colours.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

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

template <size_t N, class T>
Picture coloured(const Colour (&colours)[N], const Plane<T>& plane, double zero, double range) {
  Picture picture(plane.size, 3);
  uint8_t* rgb = picture.pixels.data();
  for (const T value : plane.values) {
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

template <class T>
double range_of(const Plane<T>& plane) {
  std::vector<double> magnitudes(plane.values.size());
  std::transform(plane.values.begin(), plane.values.end(), magnitudes.begin(),
                 [](T value) { return std::abs(double(value)); });
  const size_t rank = magnitudes.size() - 1 - magnitudes.size() / 100;
  const auto at = magnitudes.begin() + ptrdiff_t(rank);
  std::nth_element(magnitudes.begin(), at, magnitudes.end());
  return std::max(1.0, *at);
}

}  // namespace

Picture signed_colours(const Plane<int16_t>& plane, double range) {
  return coloured(kSigned, plane, 0.5, range);
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

double usual_range(const Plane<int16_t>& plane) { return range_of(plane); }
double usual_range(const Plane<float>& plane) { return range_of(plane); }

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

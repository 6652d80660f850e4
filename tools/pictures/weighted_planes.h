// Sums of pixels that respect alpha: what a filter adds up, and the pixels that its sums make.
#pragma once

#include <cstdint>
#include <vector>

#include "pictures/picture.h"

namespace tools {

// The planes that a linear filter takes one by one. Of opaque pictures they are the channels; under alpha they
// are the products of colour and alpha, so that a colour counts as much as it covers, and alpha itself. A
// product of 16-bit samples is two planes, its digits to the base 65536: sums of up to 256 of them are exact in
// floats.
template <class T, class Element>
class WeightedPlanes {
 public:
  explicit WeightedPlanes(int channels)
      : channels_(size_t(channels)), digits_(channels == 4 ? kBits<T> / 8 : 1) {
    planes_.resize(channels == 4 ? 3 * digits_ + 1 : channels_);
  }

  size_t count() const { return planes_.size(); }
  const Element* plane(size_t i) const { return planes_[i].data(); }

  void take(const T* pixels, size_t count) {
    for (auto& plane : planes_) plane.resize(count);
    if (channels_ == 4) return take_weighted(pixels, count);
    for (size_t c = 0; c < channels_; ++c) {
      for (size_t i = 0; i < count; ++i) planes_[c][i] = Element(pixels[i * channels_ + c]);
    }
  }

  // Pixel `i` of sums whose weights add up to `weight`; sum(p) is that of plane p. Rounded.
  template <class Sum>
  void put(const Sum& sum, uint32_t weight, T* pixel) const {
    if (channels_ < 4) {
      for (size_t c = 0; c < channels_; ++c) pixel[c] = mean(uint32_t(sum(c)), weight);
      return;
    }
    const auto alphas = uint64_t(sum(count() - 1));
    pixel[3] = mean(alphas, uint64_t{weight});
    for (size_t c = 0; c < 3; ++c) {
      uint64_t products = 0;
      for (size_t d = 0; d < digits_; ++d) {
        products += uint64_t(sum(c * digits_ + d)) << (16 * d);
      }
      pixel[c] = alphas == 0 ? T(0) : mean(products, alphas);
    }
  }

 private:
  template <class Number>
  static T mean(Number sum, Number weight) {
    const Number rounded = (sum + weight / 2) / weight;
    return T(rounded);
  }

  void take_weighted(const T* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      const T* const pixel = pixels + 4 * i;
      for (size_t c = 0; c < 3; ++c) {
        const uint32_t product = uint32_t(pixel[c]) * uint32_t(pixel[3]);
        for (size_t d = 0; d < digits_; ++d) {
          planes_[c * digits_ + d][i] = Element(product >> (16 * d) & 0xFFFF);
        }
      }
      planes_.back()[i] = Element(pixel[3]);
    }
  }

  size_t channels_, digits_;
  std::vector<std::vector<Element>> planes_;
};

}  // namespace tools

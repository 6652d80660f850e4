// What the tests of the C++ header share.
#ifndef NUQI_TESTS_HPP_SUPPORT_H
#define NUQI_TESTS_HPP_SUPPORT_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <nuqi/nuqi.hpp>
#include <random>
#include <type_traits>

namespace nuqi::test {

/// Bytes over their whole range, floats from -100 to 100.
template <class T, int Channels = 1>
Image<T, Channels> random_image(std::int64_t width, std::int64_t height, unsigned seed = 1) {
  std::minstd_rand random(seed);
  Image<T, Channels> image(width, height);
  for (std::int64_t y = 0; y < height; ++y) {
    for (std::int64_t i = 0; i < width * Channels; ++i) {
      if constexpr (std::is_same_v<T, float>) {
        image.row(y)[i] = static_cast<float>(random() % 20001) / 100 - 100;
      } else {
        image.row(y)[i] = static_cast<T>(random() >> 8);
      }
    }
  }
  return image;
}

/// Half of the bytes are 0, the others any.
inline Image<std::uint8_t> random_mask(std::int64_t width, std::int64_t height, unsigned seed) {
  Image<std::uint8_t> mask = random_image<std::uint8_t>(width, height, seed);
  std::minstd_rand random(seed + 1);
  for (std::int64_t y = 0; y < height; ++y)
    for (std::int64_t x = 0; x < width; ++x)
      if (random() >> 8 & 1) mask(x, y) = 0;
  return mask;
}

/// Bit for bit.
template <class A, class B>
bool equal(const A& a, const B& b) {
  const auto first = as_view(a);
  const auto second = as_view(b);
  if (first.width() != second.width() || first.height() != second.height()) return false;
  for (std::int64_t y = 0; y < first.height(); ++y)
    if (std::memcmp(first.row(y), second.row(y), static_cast<std::size_t>(first.row_bytes())) != 0)
      return false;
  return true;
}

/// A step and a size as C functions take them.
inline std::int32_t step(std::ptrdiff_t bytes) { return static_cast<std::int32_t>(bytes); }
template <class AnyImage>
RoiSize roi_of(const AnyImage& image) {
  return {static_cast<std::int32_t>(image.width()), static_cast<std::int32_t>(image.height())};
}

/// The status that a call throws, or StatusOk.
inline StatusCode status_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.status();
  }
  return StatusOk;
}

}  // namespace nuqi::test

#endif

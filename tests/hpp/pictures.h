// Images for the tests of the C++ header.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <nuqi/nuqi.hpp>
#include <type_traits>

namespace pictures {

// Noise: bytes of all values, floats that are rounded differently by different orders of operations.
template <class T, int C = 1>
nuqi::Image<T, C> noise(std::int64_t width, std::int64_t height, std::uint32_t seed = 1) {
  nuqi::Image<T, C> image(width, height);
  for (std::int64_t y = 0; y < height; ++y) {
    for (std::int64_t x = 0; x < width * C; ++x) {
      seed = seed * 1664525u + 1013904223u;
      const auto byte = static_cast<int>(seed >> 24);
      image.row(y)[x] = std::is_same_v<T, float> ? static_cast<T>(static_cast<float>(byte) * 0.37f)
                                                 : static_cast<T>(byte);
    }
  }
  return image;
}

template <class A, class B>
testing::AssertionResult same(const A& a, const B& b) {
  const auto first = nuqi::as_view(a);
  const auto second = nuqi::as_view(b);
  if (first.width() != second.width() || first.height() != second.height())
    return testing::AssertionFailure() << first.text() << " and " << second.text();
  for (std::int64_t y = 0; y < first.height(); ++y)
    if (std::memcmp(first.row(y), second.row(y), static_cast<std::size_t>(first.row_bytes())) != 0)
      return testing::AssertionFailure() << "row " << y << " of " << first.text() << " differs";
  return testing::AssertionSuccess();
}

inline std::int32_t step(std::ptrdiff_t bytes) { return static_cast<std::int32_t>(bytes); }
template <class AnyImage>
RoiSize roi_of(const AnyImage& image) {
  return {static_cast<std::int32_t>(image.width()), static_cast<std::int32_t>(image.height())};
}

// The status of what must throw, or StatusOk.
template <class Body>
StatusCode status_of(const Body& body) {
  try {
    body();
  } catch (const nuqi::Error& error) {
    return error.status();
  }
  return StatusOk;
}

}  // namespace pictures

// What the tests of the C++ header share.
#ifndef NUQI_TESTS_HPP_SUPPORT_H
#define NUQI_TESTS_HPP_SUPPORT_H

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <nuqi/nuqi.hpp>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

namespace nuqi::test {

/// Calls visit(x, y) for every pixel of an image.
template <class AnyImage, class Visit>
void each_pixel(const AnyImage& image, const Visit& visit) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) visit(x, y);
}

/// value(x, y) everywhere.
template <class T, class Value>
Image<T> image_of(std::int64_t width, std::int64_t height, const Value& value) {
  Image<T> image(width, height);
  each_pixel(image, [&](int x, int y) { image(x, y) = static_cast<T>(value(x, y)); });
  return image;
}

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
  each_pixel(mask, [&](int x, int y) {
    if (random() >> 8 & 1) mask(x, y) = 0;
  });
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
template <class AnyImage>
std::int32_t step(const AnyImage& image) {
  return static_cast<std::int32_t>(image.step());
}
template <class AnyImage>
RoiSize roi_of(const AnyImage& image) {
  return {static_cast<std::int32_t>(image.width()), static_cast<std::int32_t>(image.height())};
}

/// The result of a C function that takes (src, srcStep, dst, dstStep, roi, more...).
template <class D, int C = 1, class Function, class Src, class... More>
Image<D, C> by_c(Function* function, const Src& src, std::int64_t width, std::int64_t height,
                 More... more) {
  Image<D, C> dst(width, height);
  EXPECT_EQ(function(src.data(), step(src), dst.data(), step(dst), roi_of(src), more...), StatusOk);
  return dst;
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
inline void expect_throws(StatusCode expected, const std::vector<std::function<void()>>& calls) {
  for (std::size_t i = 0; i < calls.size(); ++i)
    EXPECT_EQ(status_of(calls[i]), expected) << "call " << i;
}

/// Addresses: memory that there is none of until a pixel is written.
class Reserved {
 public:
  explicit Reserved(std::int64_t bytes) : bytes_(static_cast<std::size_t>(bytes)) {
    if (sizeof(void*) == 4) return;
    void* memory = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory != MAP_FAILED) memory_ = memory;
  }
  Reserved(const Reserved&) = delete;
  Reserved& operator=(const Reserved&) = delete;
  ~Reserved() {
    if (memory_ != nullptr) munmap(memory_, bytes_);
  }
  bool usable() const { return memory_ != nullptr; }
  template <class T, int Channels = 1>
  View<T, Channels> rows(std::int64_t width, std::int64_t height, std::int64_t step) const {
    return View<T, Channels>(static_cast<T*>(memory_), width, height,
                             static_cast<std::ptrdiff_t>(step));
  }

 private:
  std::size_t bytes_;
  void* memory_ = nullptr;
};

}  // namespace nuqi::test

#endif

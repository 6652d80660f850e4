// The pictures that benchmarks run on: made once a size, shared by all functions.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <utility>

#include "nuqi/nuqi.h"

namespace nuqi::bench {

constexpr RoiSize kSizes[] = {{8, 8}, {64, 64}, {640, 480}, {1920, 1080}};

template <class T>
class Buffer {
 public:
  explicit Buffer(size_t count)
      : data_(static_cast<T*>(std::aligned_alloc(64, (count * sizeof(T) + 127) / 64 * 64)),
              std::free) {}
  T* get() const { return data_.get(); }

 private:
  std::unique_ptr<T, void (*)(void*)> data_;
};

// Noise in every image, rows back to back. `wide` images have room for four channels of a type.
struct Images {
  explicit Images(RoiSize size);

  RoiSize roi;
  Buffer<uint8_t> u8, u8b;
  Buffer<int8_t> s8, s8b;
  Buffer<uint8_t> mask;     // half of the pixels, at random, so that branches show
  Buffer<float> f32, f32b;  // from 1 to 2: no denormals, which cost time of their own
  Buffer<float> acc;
  Buffer<uint8_t> in;   // 32 bytes a pixel, for the sources of a limit
  Buffer<uint8_t> out;  // 48 bytes a pixel, for any destination

  template <class T>
  const T* source() const;
  template <class T>
  const T* second() const;
};

template <>
inline const uint8_t* Images::source() const {
  return u8.get();
}
template <>
inline const int8_t* Images::source() const {
  return s8.get();
}
template <>
inline const float* Images::source() const {
  return f32.get();
}
template <>
inline const uint8_t* Images::second() const {
  return u8b.get();
}
template <>
inline const int8_t* Images::second() const {
  return s8b.get();
}
template <>
inline const float* Images::second() const {
  return f32b.get();
}

Images& images(RoiSize size);

}  // namespace nuqi::bench

// Makes the benchmark pictures.
#include "support/images.h"

namespace nuqi::bench {
namespace {

constexpr size_t kChannels = 4;

size_t pixels(RoiSize roi) { return static_cast<size_t>(roi.width) * roi.height; }

}  // namespace

Images::Images(RoiSize size)
    : roi(size),
      u8(pixels(size) * kChannels),
      u8b(pixels(size) * kChannels),
      s8(pixels(size) * kChannels),
      s8b(pixels(size) * kChannels),
      mask(pixels(size)),
      f32(pixels(size) * kChannels),
      f32b(pixels(size) * kChannels),
      acc(pixels(size)),
      in(pixels(size) * 32),
      out(pixels(size) * 48) {
  uint32_t state = 1;
  const auto noise = [&] { return (state = state * 1664525u + 1013904223u) >> 16; };
  for (size_t i = 0; i < pixels(size) * kChannels; ++i) {
    u8.get()[i] = static_cast<uint8_t>(noise());
    u8b.get()[i] = static_cast<uint8_t>(noise());
    s8.get()[i] = static_cast<int8_t>(noise());
    s8b.get()[i] = static_cast<int8_t>(noise());
    f32.get()[i] = 1.0f + static_cast<float>(noise() & 0xFFFF) / 65536.0f;
    f32b.get()[i] = 1.0f + static_cast<float>(noise() & 0xFFFF) / 65536.0f;
  }
  for (size_t i = 0; i < pixels(size); ++i) {
    mask.get()[i] = noise() & 0x40 ? 255 : 0;
    acc.get()[i] = 1.5f;
  }
  for (size_t i = 0; i < pixels(size) * 32; ++i) in.get()[i] = static_cast<uint8_t>(noise());
  for (size_t i = 0; i < pixels(size) * 48; ++i) out.get()[i] = 0;
}

Images& images(RoiSize size) {
  static std::map<std::pair<int, int>, std::unique_ptr<Images>> made;
  auto& entry = made[{size.width, size.height}];
  if (!entry) entry = std::make_unique<Images>(size);
  return *entry;
}

}  // namespace nuqi::bench

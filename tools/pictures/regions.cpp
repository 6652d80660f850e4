// All connected regions of equal pixels.
#include "pictures/regions.h"

#include <algorithm>
#include <bit>
#include <nuqi/nuqi.hpp>
#include <optional>

#include "progress.h"

namespace tools {
namespace {

constexpr int64_t kLarge = 4'000'000;  // pixels from which a bar shows the progress

// Every region is painted with a number of its own, as a negative float: more of them differ than a
// picture has pixels, and none is a grey level.
float paint_of(size_t number) { return std::bit_cast<float>(0xBF800000u + uint32_t(number)); }
size_t number_of(float paint) { return std::bit_cast<uint32_t>(paint) - 0xBF800000u; }

// Neighbouring numbers get unlike colours, none of them dark.
void colour_of(size_t number, uint8_t* rgb) {
  uint32_t bits = uint32_t(number) * 0x9E3779B1u;
  bits ^= bits >> 15;
  for (int c = 0; c < 3; ++c) rgb[c] = uint8_t(64 + (bits >> (8 * c) & 0xFF) * 191 / 255);
}

}  // namespace

Regions::Regions(const Plane<uint8_t>& grey, int connect) : paint_(grey.size) {
  std::copy(grey.values.begin(), grey.values.end(), paint_.values.begin());
  nuqi::Scratch scratch;
  fetch(scratch, nuqiFloodFillGetSize, grey.size);
  const auto connectivity = connect == 4 ? nuqi::Connectivity::four : nuqi::Connectivity::eight;

  const RoiSize roi = grey.size;
  std::optional<Progress> progress;
  if (int64_t{roi.width} * roi.height >= kLarge) progress.emplace("rows", roi.height);
  for (int32_t y = 0; y < roi.height; ++y) {
    for (int32_t x = 0; x < roi.width; ++x) {
      const float level = paint_.values[size_t(y) * size_t(roi.width) + size_t(x)];
      if (level < 0) continue;
      FillRegion found{};
      calls_.time([&] {
        found = nuqi::flood_fill(paint_, {x, y}, paint_of(all_.size()), connectivity, scratch);
      });
      all_.push_back({found, {x, y}, uint8_t(level)});
    }
    if (progress) progress->advance();
  }
}

Picture Regions::coloured(int64_t smallest, int dark) const {
  Picture picture(paint_.size, 3);
  for (size_t i = 0; i < paint_.values.size(); ++i) {
    const size_t number = number_of(paint_.values[i]);
    const Region& region = all_[number];
    if (region.found.area >= double(smallest) && region.level != dark)
      colour_of(number, &picture.pixels[3 * i]);
  }
  return picture;
}

}  // namespace tools

// Levels of a pyramid of colour pictures, and the differences between them.
#include "pictures/pyramid_picture.h"

#include <algorithm>
#include <cstdlib>
#include <nuqi/nuqi.hpp>

namespace tools {
namespace {

constexpr int kChannels = 3;

int32_t step_of(const Picture& picture) { return picture.size.width * kChannels; }

// `from` at (x, y) of `to`, or what of it has room there.
void place(const Picture& from, Picture& to, int32_t x, int32_t y) {
  const int32_t width = std::min(from.size.width, to.size.width - x) * kChannels;
  const int32_t height = std::min(from.size.height, to.size.height - y);
  for (int32_t row = 0; row < height; ++row) {
    std::copy_n(&from.pixels[size_t(row) * size_t(step_of(from))], width,
                &to.pixels[size_t(y + row) * size_t(step_of(to)) + size_t(x) * kChannels]);
  }
}

}  // namespace

int most_levels(RoiSize size) {
  int levels = 0;
  for (int64_t side = 1; side < std::max(size.width, size.height); side *= 2) ++levels;
  return levels;
}

Picture made_even(const Picture& picture) {
  const auto [width, height] = picture.size;
  Picture even({width + width % 2, height + height % 2}, kChannels);
  // What sticks out is covered by the copies before it.
  for (const int32_t y : {height % 2, 0}) {
    for (const int32_t x : {width % 2, 0}) place(picture, even, x, y);
  }
  return even;
}

Picture level_down(const Picture& picture) {
  const Picture src = made_even(picture);
  Picture dst({src.size.width / 2, src.size.height / 2}, kChannels);
  nuqi::pyramid_down(view_of(src).as<kChannels>(), view_of(dst).as<kChannels>());
  return dst;
}

Picture level_up(const Picture& picture, RoiSize size) {
  Picture dst({2 * picture.size.width, 2 * picture.size.height}, kChannels);
  nuqi::pyramid_up(view_of(picture).as<kChannels>(), view_of(dst).as<kChannels>());
  Picture result(size, kChannels);
  place(dst, result, 0, 0);
  return result;
}

std::vector<Picture> levels_of(const Picture& picture, int count) {
  std::vector<Picture> levels = {picture};
  for (int i = 0; i < count; ++i) levels.push_back(level_down(levels.back()));
  return levels;
}

Differences differences_of(const Picture& level, const Picture& below) {
  const Picture up = level_up(below, level.size);
  Differences result(level.pixels.size());
  std::transform(level.pixels.begin(), level.pixels.end(), up.pixels.begin(), result.begin(),
                 [](uint8_t a, uint8_t b) { return int16_t(a - b); });
  return result;
}

Picture rebuilt_level(const Differences& differences, const Picture& below, RoiSize size) {
  Picture result = level_up(below, size);
  std::transform(differences.begin(), differences.end(), result.pixels.begin(),
                 result.pixels.begin(), [](int16_t a, uint8_t b) { return uint8_t(a + b); });
  return result;
}

std::vector<Differences> differences_of(const std::vector<Picture>& levels) {
  std::vector<Differences> all;
  for (size_t i = 0; i + 1 < levels.size(); ++i) {
    all.push_back(differences_of(levels[i], levels[i + 1]));
  }
  return all;
}

Picture rebuilt(const std::vector<Differences>& differences, const std::vector<Picture>& levels) {
  Picture result = levels.back();
  for (size_t i = differences.size(); i-- > 0;) {
    result = rebuilt_level(differences[i], result, levels[i].size);
  }
  return result;
}

int largest_deviation(const Picture& a, const Picture& b) {
  int largest = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    largest = std::max(largest, std::abs(a.pixels[i] - b.pixels[i]));
  }
  return largest;
}

Picture picture_of(const Differences& differences, RoiSize size) {
  Picture picture(size, kChannels);
  std::transform(differences.begin(), differences.end(), picture.pixels.begin(),
                 [](int16_t value) { return uint8_t(std::clamp(128 + value, 0, 255)); });
  return picture;
}

std::vector<Picture> pictures_of(const std::vector<Differences>& differences,
                                 const std::vector<Picture>& levels) {
  std::vector<Picture> pictures;
  for (size_t i = 0; i < differences.size(); ++i) {
    pictures.push_back(picture_of(differences[i], levels[i].size));
  }
  pictures.push_back(levels.back());
  return pictures;
}

Picture sheet_of(const std::vector<Picture>& levels) {
  const RoiSize top = levels[0].size;
  int32_t below = 0;
  for (size_t i = 1; i < levels.size(); ++i) below += levels[i].size.width;
  const int32_t row = levels.size() > 1 ? levels[1].size.height : 0;
  Picture sheet({std::max(top.width, below), top.height + row}, kChannels);
  std::fill(sheet.pixels.begin(), sheet.pixels.end(), uint8_t{255});
  place(levels[0], sheet, 0, 0);
  int32_t x = 0;
  for (size_t i = 1; i < levels.size(); ++i) {
    place(levels[i], sheet, x, top.height);
    x += levels[i].size.width;
  }
  return sheet;
}

}  // namespace tools

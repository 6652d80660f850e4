// Pictures of 0 and 1, row after row, whose regions of 1 are hard to follow: for tests and benchmarks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "nuqi/nuqi.h"
#include "support/values.h"

namespace nuqi::test {

struct BinaryPicture {
  BinaryPicture(RoiSize size, uint8_t value)
      : roi(size), pixels(static_cast<size_t>(size.width) * size.height, value) {}
  uint8_t& at(int x, int y) { return pixels[static_cast<size_t>(y) * roi.width + x]; }
  uint8_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * roi.width + x]; }
  bool has(int x, int y) const { return x >= 0 && x < roi.width && y >= 0 && y < roi.height; }

  RoiSize roi;
  std::vector<uint8_t> pixels;
};

// A corridor of one pixel's width from the corner to the middle.
inline BinaryPicture spiral(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  int x = 0, y = 0, dx = 1, dy = 0;
  picture.at(0, 0) = 1;
  const auto free = [&](int ahead) {
    const int nx = x + ahead * dx, ny = y + ahead * dy;
    return !picture.has(nx, ny) || picture.at(nx, ny) == 0;
  };
  for (int turns = 0; turns < 2;) {
    if (picture.has(x + dx, y + dy) && free(1) && free(2)) {
      x += dx, y += dy, turns = 0;
      picture.at(x, y) = 1;
    } else {
      const int turned = dx;
      dx = -dy, dy = turned, ++turns;
    }
  }
  return picture;
}

// Teeth of one pixel's width that hang from the first row.
inline BinaryPicture comb(RoiSize roi) {
  BinaryPicture picture(roi, 1);
  for (int y = 1; y < roi.height; ++y)
    for (int x = 1; x < roi.width; x += 2) picture.at(x, y) = 0;
  return picture;
}

// Rows joined at one end, right and left by turns.
inline BinaryPicture serpent(RoiSize roi) {
  BinaryPicture picture(roi, 1);
  for (int y = 1; y < roi.height; y += 2)
    for (int x = 0; x < roi.width; ++x)
      picture.at(x, y) = x == (y % 4 == 1 ? roi.width - 1 : 0) ? 1 : 0;
  return picture;
}

// Columns far apart that the first and the last row join.
inline BinaryPicture legs(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x)
      picture.at(x, y) = y == 0 || y + 1 == roi.height || x % 640 == 3 || x + 1 == roi.width;
  return picture;
}

inline BinaryPicture checkerboard(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  for (int y = 0; y < roi.height; ++y)
    for (int x = y % 2; x < roi.width; x += 2) picture.at(x, y) = 1;
  return picture;
}

// Of every hundred pixels so many are 1, the first among them.
inline BinaryPicture noise(RoiSize roi, int percent) {
  BinaryPicture picture(roi, 0);
  Random random(static_cast<uint64_t>(percent));
  for (uint8_t& pixel : picture.pixels) pixel = random.between(1, 100) <= percent ? 1 : 0;
  picture.pixels[0] = 1;
  return picture;
}

// Corridors of one pixel between walls of one pixel, without a circle: depth first, at random.
inline BinaryPicture maze(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  Random random(1);
  std::vector<PixelPoint> path = {{0, 0}};
  picture.at(0, 0) = 1;
  while (!path.empty()) {
    const PixelPoint p = path.back();
    PixelPoint ways[4];
    int count = 0;
    for (PixelPoint d : {PixelPoint{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
      if (picture.has(p.x + 2 * d.x, p.y + 2 * d.y) &&
          picture.at(p.x + 2 * d.x, p.y + 2 * d.y) == 0)
        ways[count++] = d;
    if (count == 0) {
      path.pop_back();
      continue;
    }
    const PixelPoint d = ways[random.between(0, count - 1)];
    picture.at(p.x + d.x, p.y + d.y) = 1;
    picture.at(p.x + 2 * d.x, p.y + 2 * d.y) = 1;
    path.push_back({p.x + 2 * d.x, p.y + 2 * d.y});
  }
  return picture;
}

struct NamedPicture {
  const char* name;
  BinaryPicture (*make)(RoiSize);
};
constexpr NamedPicture kWindingPictures[] = {
    {"full", [](RoiSize roi) { return BinaryPicture(roi, 1); }},
    {"spiral", spiral},
    {"comb", comb},
    {"serpent", serpent},
    {"legs", legs},
    {"checkerboard", checkerboard},
    {"maze", maze},
    {"noise_41", [](RoiSize roi) { return noise(roi, 41); }},
    {"noise_50", [](RoiSize roi) { return noise(roi, 50); }},
    {"noise_59", [](RoiSize roi) { return noise(roi, 59); }},
    {"noise_75", [](RoiSize roi) { return noise(roi, 75); }},
};

}  // namespace nuqi::test

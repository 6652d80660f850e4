// The local maxima of a plane of numbers.
#include "pictures/peaks.h"

#include <algorithm>
#include <cstdio>

#include "pictures/file.h"

namespace tools {
namespace {

// Finds the plateaus of a plane: connected pixels of one value.
class Plateaus {
 public:
  explicit Plateaus(const Plane<float>& plane) : plane_(plane), seen_(plane.size) {}

  // The pixel is the first of a plateau that no neighbour exceeds.
  bool is_maximum(int32_t x, int32_t y) {
    if (seen_.values[at(x, y)]) return false;
    const float value = plane_.values[at(x, y)];
    bool highest = true;
    visit(x, y);
    while (!open_.empty()) {
      const auto [px, py] = open_.back();
      open_.pop_back();
      for (int32_t ny = std::max(py - 1, 0); ny <= std::min(py + 1, plane_.size.height - 1); ++ny)
        for (int32_t nx = std::max(px - 1, 0); nx <= std::min(px + 1, plane_.size.width - 1);
             ++nx) {
          const float other = plane_.values[at(nx, ny)];
          if (other > value) highest = false;
          if (other == value && !seen_.values[at(nx, ny)]) visit(nx, ny);
        }
    }
    return highest;
  }

 private:
  size_t at(int32_t x, int32_t y) const {
    return size_t(y) * size_t(plane_.size.width) + size_t(x);
  }
  void visit(int32_t x, int32_t y) {
    seen_.values[at(x, y)] = 1;
    open_.push_back({x, y});
  }

  const Plane<float>& plane_;
  Plane<uint8_t> seen_;
  std::vector<PixelPoint> open_;
};

}  // namespace

std::vector<Peak> peaks_of(const Plane<float>& plane) {
  std::vector<Peak> peaks;
  Plateaus plateaus(plane);
  size_t pixel = 0;
  for (int32_t y = 0; y < plane.size.height; ++y)
    for (int32_t x = 0; x < plane.size.width; ++x, ++pixel)
      if (plateaus.is_maximum(x, y)) peaks.push_back({x, y, plane.values[pixel]});
  // They come in raster order, which a stable sort keeps among equals.
  std::stable_sort(peaks.begin(), peaks.end(),
                   [](const Peak& a, const Peak& b) { return a.value > b.value; });
  return peaks;
}

void write_csv(const std::string& path, const std::string& value_name,
               const std::vector<Peak>& peaks) {
  std::string text = "x,y," + value_name + "\n";
  for (const Peak& peak : peaks) {
    char line[64];
    std::snprintf(line, sizeof line, "%d,%d,%.9g\n", peak.x, peak.y, double(peak.value));
    text += line;
  }
  write_file(path, text.data(), text.size());
}

}  // namespace tools

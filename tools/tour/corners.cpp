// The tour's section on corners.
#include <algorithm>
#include <cmath>

#include "pictures/colours.h"
#include "pictures/corner_points.h"
#include "pictures/plot.h"
#include "tour/families.h"
#include "tour/page.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "How much the picture changes around each pixel, and in which directions: two eigenvalues and "
    "their vectors. Both are small where it is flat, one is large along an edge, both at a corner. "
    "Grey levels run from 0 to 255: of floats in 0 to 1 the vectors would be zero nearly "
    "everywhere.";

const std::vector<Declaration> kDeclarations = {
    {"src", "static float src[height * width];  /* 0 to 255 */"},
    {"dst", "static float dst[height * width];"},
    {"src_step", "int32_t src_step = 4 * width;"},
    {"dst_step", "int32_t dst_step = 4 * width;"},
    {"buffer",
     "int32_t bytes = 0;\n"
     "nuqiMinEigenValGetSize(width, 3, 5, &bytes);\n"
     "void* buffer = malloc((size_t)bytes);"},
    {"levels", "static uint8_t levels[height * width];\nint32_t step = width;"},
    {"vectors",
     "static float vectors[height * width * 6];  /* two values, x, y and x, y of their vectors */\n"
     "int32_t vectors_step = 24 * width;"},
    {"room",
     "int32_t bytes = 0;\n"
     "nuqiEigenValsVecsGetSize(width, 3, 5, &bytes);\n"
     "void* room = malloc((size_t)bytes);"},
};

constexpr Ink kAcross = {255, 170, 60}, kAlong = {90, 180, 255};
constexpr int kCell = 16;  // pixels a side, with one pair of strokes

struct Strength {
  Plane<float> plane;
  std::vector<Call> calls;
};

Strength strength_of(const Plane<uint8_t>& grey) {
  const Plane<float> floats = floats_of(grey);
  Strength strength{Plane<float>(grey.size), {}};
  const RoiSize roi = grey.size;
  const float* src = floats.data();
  float* dst = strength.plane.data();
  const int32_t src_step = floats.step(), dst_step = strength.plane.step();
  int32_t size = 0;
  require_ok(nuqiMinEigenValGetSize(roi.width, 3, 5, &size), "nuqiMinEigenValGetSize");
  std::vector<uint8_t> memory(static_cast<size_t>(size));
  void* buffer = memory.data();
  Plane<float> plain_strength(roi);
  strength.calls.push_back(
      NUQI_TIMED(nuqiMinEigenVal_32f_C1R(src, src_step, dst, dst_step, roi, 3, 5, buffer))
          .against([&] { plain::corner_strength(floats, 3, 5, plain_strength); }));
  plain::require_near(plain_strength.values, strength.plane.values, "nuqiMinEigenVal_32f_C1R");
  return strength;
}

// Six values a pixel: two eigenvalues, then x and y of either's vector.
struct Vectors {
  std::vector<float> values;
  Call call;
};

Vectors vectors_of(const Plane<uint8_t>& grey) {
  const RoiSize roi = grey.size;
  Vectors result{std::vector<float>(6 * grey.values.size()), {}};
  const uint8_t* levels = grey.data();
  float* vectors = result.values.data();
  const int32_t step = grey.step(), vectors_step = 24 * roi.width;
  int32_t size = 0;
  require_ok(nuqiEigenValsVecsGetSize(roi.width, 3, 5, &size), "nuqiEigenValsVecsGetSize");
  std::vector<uint8_t> memory(static_cast<size_t>(size));
  void* room = memory.data();
  std::vector<float> plain_vectors(result.values.size());
  result.call =
      NUQI_TIMED(nuqiEigenValsVecs_8u32f_C1R(levels, step, vectors, vectors_step, roi, 3, 5, room))
          .against([&] { plain::corner_vectors(grey, 3, 5, plain_vectors); });
  return result;
}

// A line through a point, `length` pixels to either side.
void stroke(Picture& picture, double x, double y, double dx, double dy, double length, Ink ink) {
  for (double at = -length; at <= length; at += 0.5) {
    const auto px = int32_t(std::lround(x + at * dx)), py = int32_t(std::lround(y + at * dy));
    if (px < 0 || py < 0 || px >= picture.size.width || py >= picture.size.height) continue;
    const size_t pixel = size_t(py) * size_t(picture.size.width) + size_t(px);
    std::copy(ink.begin(), ink.end(), picture.pixels.begin() + ptrdiff_t(3 * pixel));
  }
}

// The vectors of each cell's most changing pixel over the darkened picture, as long as the square roots
// of their values.
Picture strokes_over(const Plane<uint8_t>& grey, const std::vector<float>& values) {
  Picture picture = edges_over(grey, Plane<uint8_t>(grey.size));
  for (int32_t top = 0; top < grey.size.height; top += kCell)
    for (int32_t left = 0; left < grey.size.width; left += kCell) {
      const float* most = nullptr;
      int32_t at_x = 0, at_y = 0;
      for (int32_t y = top; y < std::min(top + kCell, grey.size.height); ++y)
        for (int32_t x = left; x < std::min(left + kCell, grey.size.width); ++x) {
          const float* pixel = &values[6 * (size_t(y) * size_t(grey.size.width) + size_t(x))];
          if (most == nullptr || pixel[0] + pixel[1] > most[0] + most[1])
            most = pixel, at_x = x, at_y = y;
        }
      const auto length = [](float value) {
        return std::min(2 * std::sqrt(std::max(0.0, double(value))), kCell * 0.7);
      };
      stroke(picture, at_x, at_y, double(most[2]), double(most[3]), length(most[0]), kAcross);
      stroke(picture, at_x, at_y, double(most[4]), double(most[5]), length(most[1]), kAlong);
    }
  return picture;
}

}  // namespace

Section corners_section(const Scene& scene) {
  Section section{"corners", "Corners", kText, {}, {}, {}, kDeclarations};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(scene.grey));
  const Strength strength = strength_of(scene.grey);
  const auto corners = strongest_corners(strength.plane, 150, 10);
  const double range = corners.empty() ? 1.0 : double(corners[corners.size() / 3].value);
  Figure heat("Strength", "The smaller eigenvalue, bright at corners",
              heat_colours(strength.plane, range), Shrink::brightest);
  heat.with(heat_legend(range, "smaller eigenvalue")).note("Sums over 5x5 pixels.");
  for (const Call& call : strength.calls) heat.with(call);
  section.after.push_back(std::move(heat));

  Vectors vectors = vectors_of(scene.grey);
  Figure strokes("Directions", "Strokes across and along what changes, over the darkened picture",
                 strokes_over(scene.grey, vectors.values), Shrink::brightest);
  strokes
      .note(
          "Orange: the vector of the larger eigenvalue, across an edge. Blue: the other one, which "
          "is long at corners only.")
      .with(std::move(vectors.call));
  section.after.push_back(std::move(strokes));

  Figure rings("The strongest corners", "The picture with rings around its corners",
               with_rings(scene.colour, corners), Shrink::mean);
  rings.note("150 local maxima of the strength, at least 10 pixels apart.");
  section.after.push_back(std::move(rings));
  return section;
}

}  // namespace tools

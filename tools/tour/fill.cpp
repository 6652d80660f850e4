// The tour's section on flood fills.
#include <algorithm>
#include <nuqi/nuqi.hpp>

#include "pictures/regions.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "The connected region of a pixel, painted in place: all pixels that equal it, or all that are "
    "reached from neighbour to neighbour in small steps, however far a gradual change leads.";

const std::vector<Declaration> kDeclarations = {
    {"image", "static uint8_t image[height * width];\nint32_t step = width;"},
    {"seed", "PixelPoint seed = {width / 2, 0};"},
    {"region", "FillRegion region;"},
    {"buffer",
     "int32_t bytes = 0;\n"
     "nuqiFloodFillGetSize_Grad(roi, &bytes);\n"
     "void* buffer = malloc((size_t)(uint32_t)bytes);"},
};

std::vector<uint8_t> buffer_for(RoiSize size) {
  int32_t bytes = 0;
  require_ok(nuqiFloodFillGetSize_Grad(size, &bytes), "nuqiFloodFillGetSize_Grad");
  return std::vector<uint8_t>(size_t{uint32_t(bytes)});
}

// The picture with the region in orange.
Picture region_over(const Picture& colour, const Plane<uint8_t>& before,
                    const Plane<uint8_t>& after) {
  Picture picture = colour;
  for (size_t i = 0; i < picture.pixels.size() / size_t(picture.channels); ++i)
    if (before.values[i] != after.values[i])
      std::copy_n(std::begin({uint8_t{240}, uint8_t{140}, uint8_t{40}}), picture.channels,
                  &picture.pixels[i * size_t(picture.channels)]);
  return picture;
}

Figure gradient_figure(const Scene& scene) {
  Plane<uint8_t> filled = scene.grey;
  std::vector<uint8_t> scratch = buffer_for(filled.size);
  const RoiSize roi = filled.size;
  const PixelPoint seed = {roi.width / 2, 0};
  uint8_t* const image = filled.data();
  const int32_t step = filled.step();
  void* const buffer = scratch.data();
  FillRegion region{};
  const auto prepare = [&] { filled.values = scene.grey.values; };
  Call call = timed_call(
      "nuqiFloodFill_Grad4Con_8u_C1IR(image, step, roi, seed, 0, 3, 3, &region, buffer)",
      [&] {
        return nuqiFloodFill_Grad4Con_8u_C1IR(image, step, roi, seed, 0, 3, 3, &region, buffer);
      },
      prepare);
  Plane<uint8_t> plain_filled(roi);
  call = std::move(call).against([&] { plain::fill(plain_filled, seed, 0, 3, 3, scratch); },
                                 [&] { plain_filled.values = scene.grey.values; });
  plain::require_same(plain_filled.values, filled.values, "nuqiFloodFill_Grad4Con_8u_C1IR");
  Figure figure("What gradual steps reach", "The region of the topmost pixels in orange",
                region_over(scene.colour, scene.grey, filled));
  figure.with(std::move(call))
      .note("From the middle of the first row, by steps of 3 grey levels at most.");
  return figure;
}

// Canny's edges, whose regions are the lines of connected pixels.
Figure regions_figure(const Scene& scene) {
  Plane<uint8_t> edges(scene.grey.size);
  nuqi::canny(scene.grey, edges, 60, 150);
  const Regions regions(edges, 8);
  const auto lines = std::count_if(regions.all().begin(), regions.all().end(),
                                   [](const Region& region) { return region.level == 255; });
  Figure figure("Edges, line by line", "Canny's edges, each connected line in a colour of its own",
                regions.coloured(1, 0), Shrink::brightest);
  figure.note(std::to_string(lines) +
              " lines: <code>nuqiFloodFill_8Con_32f_C1IR</code> from every "
              "pixel that no fill has reached before.");
  return figure;
}

}  // namespace

Section fill_section(const Scene& scene) {
  Section section{"fills", "Flood fills", kText, {}, {}, {}, kDeclarations};
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(scene.grey));
  section.after.push_back(gradient_figure(scene));
  section.after.push_back(regions_figure(scene));
  return section;
}

}  // namespace tools

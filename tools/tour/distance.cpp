// The tour's section on distances to edges.
#include <algorithm>

#include "pictures/colours.h"
#include "pictures/distance_picture.h"
#include "pictures/plot.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "How far every pixel is from the nearest edge, by steps to neighbours: the weights of the "
    "steps "
    "are the metric. The lines join pixels of one distance, which form squares, diamonds and "
    "nearly "
    "circles around lone pixels. No distance exceeds 4096 pixels, and without any edge all would "
    "be "
    "4096.";

const std::vector<Declaration> kDeclarations = {
    {"edges", "static uint8_t edges[height * width];  /* 0 where distances start */"},
    {"step", "int32_t step = width;"},
    {"dst", "static float dst[height * width];"},
    {"dst_step", "int32_t dst_step = 4 * width;"},
    {"weights", "float weights[3];"},
};

// 0 on edges, 255 elsewhere.
Plane<uint8_t> edge_map(const Plane<uint8_t>& grey) {
  const RoiSize roi = grey.size;
  Plane<int16_t> dx(roi), dy(roi);
  Plane<uint8_t> edges(roi);
  int32_t bytes = 0;
  require_ok(nuqiCannyGetSize(roi, &bytes), "nuqiCannyGetSize");
  std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
  require_ok(nuqiSobel3x3_Dx_8u16s_C1R(grey.data(), grey.step(), dx.data(), dx.step(), roi),
             "nuqiSobel3x3_Dx_8u16s_C1R");
  require_ok(nuqiSobel3x3_Dy_8u16s_C1R(grey.data(), grey.step(), dy.data(), dy.step(), 0, roi),
             "nuqiSobel3x3_Dy_8u16s_C1R");
  require_ok(nuqiCanny_16s8u_C1R(dx.data(), dx.step(), dy.data(), dy.step(), edges.data(),
                                 edges.step(), roi, 100, 200, buffer.data()),
             "nuqiCanny_16s8u_C1R");
  for (uint8_t& pixel : edges.values) pixel = uint8_t(~pixel);
  return edges;
}

struct Metric {
  const char *title, *note;
  int32_t type;
};
constexpr Metric kMetrics[] = {
    {"Chessboard", "The larger one of columns and rows.", 30},
    {"City block", "Columns and rows together.", 31},
    {"Nearly Euclidean", "5x5: steps of 1, 1.4 and, for knight's moves, 2.1969.", 52},
};

struct Measured {
  Plane<float> distances;
  Call call;
};

Measured measure(const Plane<uint8_t>& map, int32_t type) {
  Measured measured{Plane<float>(map.size), {}};
  const RoiSize roi = map.size;
  const uint8_t* edges = map.data();
  const int32_t step = map.step(), dst_step = measured.distances.step();
  float* dst = measured.distances.data();
  float weights[3] = {};
  require_ok(nuqiGetDistanceTransformMask(type, weights), "nuqiGetDistanceTransformMask");
  if (type == 52) {
    measured.call =
        NUQI_TIMED(nuqiDistanceTransform_5x5_8u32f_C1R(edges, step, dst, dst_step, roi, weights));
  } else {
    measured.call =
        NUQI_TIMED(nuqiDistanceTransform_3x3_8u32f_C1R(edges, step, dst, dst_step, roi, weights));
  }
  Plane<float> plain_distances(roi);
  measured.call =
      std::move(measured.call)
          .made_by("nuqiGetDistanceTransformMask(" + std::to_string(type) + ", weights)")
          .against([&] { plain::distances(map, weights, type == 52, plain_distances); });
  plain::require_same(plain_distances.values, measured.distances.values, "nuqiDistanceTransform");
  return measured;
}

}  // namespace

Section distance_section(const Scene& scene) {
  Section section{"distance", "Distance transforms", kText, {}, {}, {}, kDeclarations};
  const Plane<uint8_t> edges = edge_map(scene.grey);
  section.before.emplace_back("The edges", "Canny's edges, black on white", picture_of(edges));
  std::vector<Measured> all;
  double range = 1;
  for (const Metric& metric : kMetrics) {
    all.push_back(measure(edges, metric.type));
    range = std::max(range, distance_range(all.back().distances));
  }
  const double step = step_to(range);
  for (size_t i = 0; i < all.size(); ++i) {
    Picture picture = distance_picture(all[i].distances, range);
    draw_contours(picture, all[i].distances, step);
    Figure figure(kMetrics[i].title, "Distances to the edges in colours, with contour lines",
                  picture);
    figure.note(kMetrics[i].note).with(std::move(all[i].call));
    Legend legend = heat_legend(range, "pixels");
    if (range >= double(kMostDistance)) legend.high += " or more";
    section.after.push_back(std::move(figure.with(std::move(legend))));
  }
  return section;
}

}  // namespace tools

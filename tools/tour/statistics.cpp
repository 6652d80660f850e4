// The tour's section on statistics: means, extrema, norms and histograms.
#include <algorithm>
#include <cstdio>

#include "pictures/colours.h"
#include "pictures/plot.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "One pass over a picture, and its mean and deviation, its darkest and its brightest pixel, its "
    "distance from another picture or its histogram are known: for all pixels or those of a mask.";

const std::vector<std::string> kCautions = {
    "Sums of bytes have 32 bits and wrap from 2<sup>31</sup> on, which takes 8.4 million white "
    "pixels: means and L1 norms are wrong then, and the status is 0. Take such pictures in stripes "
    "of fewer rows and add up what these give.",
    "The last boundary of a histogram is exclusive: with the boundaries 0, 1 &hellip; 255 level "
    "255 is never counted. What the bins lack of <code>width &times; height</code> are those "
    "pixels; of 16-bit and float pictures, choose a last boundary above all values.",
};

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width];  /* grey levels */"},
    {"src1", "static uint8_t src1[height * width], src2[height * width];"},
    {"mask", "static uint8_t mask[height * width];  /* not 0: taken */"},
    {"step", "int32_t step = width;"},
    {"mean", "double mean, deviation;"},
    {"low_at", "float low, high;\nPixelPoint low_at, high_at;"},
    {"largest", "double largest;"},
    {"sum", "double sum;"},
    {"relative", "double relative;"},
    {"levels", "uint8_t levels[256];\nfor (int i = 0; i < 256; ++i) levels[i] = (uint8_t)i;"},
    {"histogram", "int32_t histogram[256];"},
    {"pairs", "static uint8_t pairs[height * width * 2];\nint32_t pairs_step = 2 * width;"},
    {"boundaries",
     "int32_t boundaries[81 + 61];  /* of 80 bins, and of 60 */\n"
     "for (int i = 0; i <= 80; ++i) boundaries[i] = i * 256 / 80;\n"
     "for (int i = 0; i <= 60; ++i) boundaries[81 + i] = i * 256 / 60;"},
    {"counts", "static int32_t counts[81 * 61];\nint32_t counts_step = 80 * sizeof(int32_t);"},
    {"bins", "int32_t bins[2] = {80, 60};"},
};

template <class... Values>
std::string text_of(const char* format, Values... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

Picture darkened_outside(const Plane<uint8_t>& grey, const Plane<uint8_t>& mask) {
  Plane<uint8_t> shown = grey;
  for (size_t i = 0; i < shown.values.size(); ++i) {
    if (mask.values[i] == 0) shown.values[i] = uint8_t(shown.values[i] / 5);
  }
  return picture_of(shown);
}

void add_means(Section& section, const Plane<uint8_t>& grey) {
  const RoiSize roi = grey.size;
  const Plane<uint8_t> ellipse = ellipse_mask(roi);
  const uint8_t *src = grey.data(), *mask = ellipse.data();
  const int32_t step = grey.step();
  double mean = 0, deviation = 0;
  Call masked = NUQI_TIMED(nuqiMean_StdDev_8u_C1MR(src, step, mask, step, roi, &mean, &deviation));
  Figure figure("Mean and deviation", "The picture, darker outside an ellipse",
                darkened_outside(grey, ellipse));
  const std::string inside = text_of("%.2f ± %.2f inside the ellipse", mean, deviation);
  Call all = NUQI_TIMED(nuqiMean_StdDev_8u_C1R(src, step, roi, &mean, &deviation));
  figure.note(text_of("Grey levels: %.2f ± %.2f in all, ", mean, deviation) + inside + ".")
      .with(std::move(all))
      .with(std::move(masked));
  section.after.push_back(std::move(figure));
}

void draw_cross(Picture& picture, PixelPoint at, Ink ink) {
  const RoiSize size = picture.size;
  const int32_t arm = std::max(size.width, size.height) / 40, gap = arm / 3;
  for (int32_t d = -arm; d <= arm; ++d) {
    for (int32_t side = 0; side < 6; ++side) {  // three pixels thick, in both directions
      const int32_t across = side % 3 - 1;
      const int32_t x = at.x + (side < 3 ? d : across), y = at.y + (side < 3 ? across : d);
      if (std::abs(d) < gap || x < 0 || y < 0 || x >= size.width || y >= size.height) continue;
      std::copy(ink.begin(), ink.end(),
                picture.pixels.begin() + 3 * (ptrdiff_t(y) * size.width + x));
    }
  }
}

void add_extrema(Section& section, const Plane<uint8_t>& grey) {
  const RoiSize roi = grey.size;
  const uint8_t* src = grey.data();
  const int32_t step = grey.step();
  float low = 0, high = 0;
  PixelPoint low_at{}, high_at{};
  Call call = NUQI_TIMED(nuqiMinMaxIndx_8u_C1R(src, step, roi, &low, &high, &low_at, &high_at));
  Picture picture = edges_over(grey, Plane<uint8_t>(roi));
  draw_cross(picture, low_at, {70, 160, 255});
  draw_cross(picture, high_at, {255, 160, 50});
  Figure figure("Extrema", "The darkened picture with a blue and an orange cross", picture,
                Shrink::brightest);
  figure
      .note(text_of("The first darkest pixel, %.0f at (%d, %d), in blue; the first brightest, %.0f "
                    "at (%d, %d), in orange.",
                    double(low), low_at.x, low_at.y, double(high), high_at.x, high_at.y))
      .with(std::move(call));
  section.after.push_back(std::move(figure));
}

void add_norms(Section& section, const Plane<uint8_t>& grey, const Plane<uint8_t>& frame) {
  const RoiSize roi = grey.size;
  Plane<uint8_t> all(roi);
  std::fill(all.values.begin(), all.values.end(), uint8_t{255});
  const uint8_t *src1 = frame.data(), *src2 = grey.data(), *mask = all.data();
  const int32_t step = grey.step();
  double largest = 0, sum = 0, relative = 0;
  Call inf =
      NUQI_TIMED(nuqiNormDiff_Inf_8u_C1MR(src1, step, src2, step, mask, step, roi, &largest));
  Call l1 = NUQI_TIMED(nuqiNormDiff_L1_8u_C1MR(src1, step, src2, step, mask, step, roi, &sum));
  Call l2 = NUQI_TIMED(nuqiNormRel_L2_8u_C1MR(src1, step, src2, step, mask, step, roi, &relative));
  Plane<float> difference(roi);
  for (size_t i = 0; i < difference.values.size(); ++i) {
    difference.values[i] = float(frame.values[i]) - float(grey.values[i]);
  }
  const double range = usual_range(difference);
  Figure figure("Norms of a difference", "What the frame adds to the picture",
                signed_colours(difference, range));
  figure
      .note(text_of("From the picture to a noisy frame of it: %.0f grey levels at most, %.0f in "
                    "sum, and %.1f %% of the picture's own in root of squares.",
                    largest, sum, 100 * relative))
      .with(signed_legend(range))
      .with(std::move(inf))
      .with(std::move(l1))
      .with(std::move(l2));
  section.after.push_back(std::move(figure));
}

void add_histogram(Section& section, const Plane<uint8_t>& grey) {
  const RoiSize roi = grey.size;
  const uint8_t* src = grey.data();
  const int32_t step = grey.step();
  uint8_t levels[256];
  for (int i = 0; i < 256; ++i) levels[i] = uint8_t(i);
  int32_t histogram[256];
  std::vector<int32_t> counts;
  Call call = NUQI_TIMED(nuqiCalcHist_8u_C1R(src, step, roi, histogram, 256, levels)).against([&] {
    plain::histogram(grey, counts);
  });
  histogram[255] = counts[255];  // the last bin would end at 256, which is no byte
  plain::require_same(counts, {histogram, histogram + 256}, "nuqiCalcHist_8u_C1R");
  Plot plot(255, *std::max_element(histogram, histogram + 256));
  plot.bars({histogram, histogram + 256}, kGreyInk);
  Figure figure("Histogram", "One bar for each of 256 grey levels", plot.picture());
  figure.size = roi;
  figure.note("How many pixels have each grey level.").with(std::move(call));
  section.after.push_back(std::move(figure));
}

// Red along x, blue along y, in cells of 8 pixels.
void add_joint_histogram(Section& section, const Picture& colour) {
  constexpr int32_t kColumns = 80, kRows = 60, kCell = 8;
  const RoiSize roi = colour.size;
  std::vector<uint8_t> values(2 * size_t(roi.width) * size_t(roi.height));
  for (size_t i = 0; i < values.size() / 2; ++i) {
    values[2 * i] = colour.pixels[3 * i];
    values[2 * i + 1] = colour.pixels[3 * i + 2];
  }
  std::vector<int32_t> edges;
  for (int32_t i = 0; i <= kColumns; ++i) edges.push_back(i * 256 / kColumns);
  for (int32_t i = 0; i <= kRows; ++i) edges.push_back(i * 256 / kRows);
  std::vector<int32_t> cells((kColumns + 1) * (kRows + 1));  // all of them are cleared
  const uint8_t* pairs = values.data();
  int32_t* counts = cells.data();
  const int32_t* boundaries = edges.data();
  const int32_t bins[2] = {kColumns, kRows}, pairs_step = 2 * roi.width;
  const int32_t counts_step = kColumns * int32_t(sizeof(int32_t));
  Call call = NUQI_TIMED(
      nuqiCalcHist_8u_C2R(pairs, pairs_step, roi, counts, counts_step, bins, boundaries));
  Plane<float> shown({kColumns * kCell, kRows * kCell});
  for (size_t i = 0; i < shown.values.size(); ++i) {
    const size_t x = i % (kColumns * kCell) / kCell, y = i / (kColumns * kCell) / kCell;
    shown.values[i] = float(cells[(kRows - 1 - y) * kColumns + x]);
  }
  const double range = usual_range(shown);
  Figure figure("Joint histogram", "A cloud of pairs of red and blue", heat_colours(shown, range));
  figure.size = roi;
  figure.note("How often red, to the right, goes with blue, upwards.")
      .with(heat_legend(range, "pixels"))
      .with(std::move(call));
  section.after.push_back(std::move(figure));
}

}  // namespace

Section statistics_section(const Scene& scene) {
  Section section{"statistics", "Statistics", kText, {}, {}, kCautions, kDeclarations};
  const Plane<uint8_t>& grey = scene.grey;
  section.before.emplace_back("The picture in grey", "The picture in grey levels",
                              picture_of(grey));
  add_means(section, grey);
  add_extrema(section, grey);
  add_norms(section, grey, frame_of(scene, 0, 24));
  add_histogram(section, grey);
  add_joint_histogram(section, scene.colour);
  return section;
}

}  // namespace tools

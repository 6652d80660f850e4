// Where a template is found in a picture: the scores of all places, the best ones, and both drawn.
#include "pictures/template_match.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "pictures/colours.h"
#include "pictures/plot.h"

namespace tools {
namespace {

constexpr Ink kBest = {255, 138, 30}, kOther = {90, 180, 255}, kShade = {20, 16, 24};
constexpr int32_t kOfBytes = 1;

bool less_is_better(const Measure& measure) { return measure.range == Measure::Range::above_zero; }

void fill_inside(Picture& picture, int32_t left, int32_t top, int32_t right, int32_t bottom,
                 Ink ink) {
  fill(picture, std::max(left, 0), std::max(top, 0), std::min(right, picture.size.width - 1),
       std::min(bottom, picture.size.height - 1), ink);
}

// What all but one in a hundred scores stay within: where the picture is black, sqdiff-normed exceeds
// all others by far.
double all_but_highest(const Plane<float>& scores) {
  std::vector<float> sorted = scores.values;
  const auto at = sorted.begin() + ptrdiff_t(sorted.size() - 1 - sorted.size() / 100);
  std::nth_element(sorted.begin(), at, sorted.end());
  return double(*at);
}

// A frame `width` pixels thick around a rectangle whose ends are in.
void frame(Picture& picture, const Peak& at, RoiSize size, int32_t width, Ink ink) {
  const int32_t left = at.x - width, right = at.x + size.width - 1 + width;
  const int32_t top = at.y - width, bottom = at.y + size.height - 1 + width;
  fill_inside(picture, left, top, right, at.y - 1, ink);
  fill_inside(picture, left, at.y + size.height, right, bottom, ink);
  fill_inside(picture, left, top, at.x - 1, bottom, ink);
  fill_inside(picture, at.x + size.width, top, right, bottom, ink);
}

}  // namespace

// clang-format off
const Measure kMeasures[kMeasureCount] = {
    {"sqdiff", "nuqiMatchTemplate_SqDiff_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_SqDiff, nuqiMatchTemplate_SqDiff_8u32f_C1R,
     Measure::Range::above_zero},
    {"sqdiff-normed", "nuqiMatchTemplate_SqDiffNormed_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_SqDiffNormed, nuqiMatchTemplate_SqDiffNormed_8u32f_C1R,
     Measure::Range::above_zero},
    {"corr", "nuqiMatchTemplate_Corr_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_Corr, nuqiMatchTemplate_Corr_8u32f_C1R,
     Measure::Range::positive},
    {"corr-normed", "nuqiMatchTemplate_CorrNormed_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_CorrNormed, nuqiMatchTemplate_CorrNormed_8u32f_C1R,
     Measure::Range::positive},
    {"coeff", "nuqiMatchTemplate_Coeff_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_Coeff, nuqiMatchTemplate_Coeff_8u32f_C1R,
     Measure::Range::about_zero},
    {"coeff-normed", "nuqiMatchTemplate_CoeffNormed_8u32f_C1R",
     nuqiMatchTemplateGetBufSize_CoeffNormed, nuqiMatchTemplate_CoeffNormed_8u32f_C1R,
     Measure::Range::about_zero},
};
// clang-format on

void check_template(const Plane<uint8_t>& tpl, const std::string& name, RoiSize picture,
                    const Measure& measure) {
  if (tpl.size.width > picture.width || tpl.size.height > picture.height)
    throw UserError(name + ": is " + size_text(tpl.size) + ", which does not fit into " +
                    size_text(picture));
  const auto [darkest, brightest] = std::minmax_element(tpl.values.begin(), tpl.values.end());
  const std::string problem = "; --measure " + std::string(measure.name) + " scores all places 0";
  if (measure.range == Measure::Range::about_zero && *darkest == *brightest)
    throw UserError(name + ": all of its pixels have one grey level" + problem);
  if (measure.range == Measure::Range::positive && *brightest == 0)
    throw UserError(name + ": is black" + problem);
}

// All sums of bytes are exact, so that scores do not depend on which rows they are computed with.
Plane<float> scores_of(const Plane<uint8_t>& picture, const Plane<uint8_t>& tpl,
                       const Measure& measure, Stopwatch& calls, const RowsDone& rows_done) {
  constexpr int32_t kLeastRows = 128, kBands = 50;
  Plane<float> scores(
      {picture.size.width - tpl.size.width + 1, picture.size.height - tpl.size.height + 1});
  const int32_t height = scores.size.height;
  const int32_t band = std::clamp(height / kBands, std::min(kLeastRows, height), height);
  const auto source_of = [&](int32_t rows) {
    return RoiSize{picture.size.width, rows + tpl.size.height - 1};
  };
  int32_t bytes = 0;
  require_ok(measure.buffer_size(source_of(band), tpl.size, kOfBytes, &bytes),
             "nuqiMatchTemplateGetBufSize");
  std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
  for (int32_t y = 0; y < height; y += band) {
    const int32_t rows = std::min(band, height - y);
    calls.time([&] {
      require_ok(measure.match(picture.data() + size_t(y) * size_t(picture.size.width),
                               picture.step(), source_of(rows), tpl.data(), tpl.step(), tpl.size,
                               scores.data() + size_t(y) * size_t(scores.size.width), scores.step(),
                               buffer.data()),
                 measure.function);
    });
    rows_done(y + rows, height);
  }
  return scores;
}

std::vector<Peak> best_places(const Plane<float>& scores, const Measure& measure, RoiSize tpl,
                              size_t count) {
  const float sign = less_is_better(measure) ? -1 : 1;
  Plane<float> signed_scores = scores;
  for (float& score : signed_scores.values) score *= sign;
  std::vector<Peak> places;
  Plane<uint8_t> taken(scores.size);
  for (Peak peak : peaks_of(signed_scores)) {
    if (places.size() == count) break;
    if (taken.values[size_t(peak.y) * size_t(scores.size.width) + size_t(peak.x)]) continue;
    peak.value *= sign;
    places.push_back(peak);
    const int32_t left = std::max(peak.x - tpl.width + 1, 0);
    const int32_t end = std::min(peak.x + tpl.width, scores.size.width);
    for (int32_t y = std::max(peak.y - tpl.height + 1, 0);
         y < std::min(peak.y + tpl.height, scores.size.height); ++y) {
      const auto row = taken.values.begin() + ptrdiff_t(y) * scores.size.width;
      std::fill(row + left, row + end, uint8_t{1});
    }
  }
  return places;
}

Picture with_boxes(Picture picture, const std::vector<Peak>& places, RoiSize tpl) {
  const int32_t width = std::max(2, std::max(picture.size.width, picture.size.height) / 500);
  for (const Peak& place : places) frame(picture, place, tpl, width + 1, kShade);
  for (size_t i = places.size(); i-- > 0;)
    frame(picture, places[i], tpl, width, i == 0 ? kBest : kOther);
  return picture;
}

Scale score_scale(const Plane<float>& scores, const Measure& measure) {
  const auto [least, most] = std::minmax_element(scores.values.begin(), scores.values.end());
  const double low = double(*least), high = double(*most);
  if (measure.range == Measure::Range::above_zero) {
    const double usual = all_but_highest(scores);
    return scale_of(0, usual > 0 ? usual : 1);
  }
  if (measure.range == Measure::Range::positive) return scale_of(low, high > low ? high : low + 1);
  const double range = std::max(std::abs(low), std::abs(high));
  return range > 0 ? scale_of(-range, range) : scale_of(-1, 1);
}

Colouring score_colours(const Measure& measure, const Scale& scale) {
  if (measure.range == Measure::Range::about_zero)
    return [scale](const Plane<float>& scores) { return signed_colours(scores, scale.high); };
  const bool inverted = less_is_better(measure);
  return [scale, inverted](Plane<float> scores) {
    for (float& score : scores.values)
      score = inverted ? float(scale.high) - score : score - float(scale.low);
    return heat_colours(scores, scale.high - scale.low);
  };
}

Picture in_middle_of(RoiSize picture, const Picture& scores, RoiSize tpl) {
  Picture sheet(picture, 3);
  fill(sheet, 0, 0, picture.width - 1, picture.height - 1, kSheetInk);
  const ptrdiff_t left = (tpl.width - 1) / 2, top = (tpl.height - 1) / 2;
  for (int32_t y = 0; y < scores.size.height; ++y)
    std::copy_n(scores.pixels.begin() + 3 * ptrdiff_t(y) * scores.size.width, 3 * scores.size.width,
                sheet.pixels.begin() + 3 * ((top + y) * picture.width + left));
  return sheet;
}

}  // namespace tools

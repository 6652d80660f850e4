// The tour's section on template matching: a piece of the scene found again.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "pictures/template_match.h"
#include "tour/families.h"
#include "tour/landscape.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "A piece of the picture slides over it, and six measures score each place. Squared differences "
    "are least, and correlations largest, where the piece fits best: plain correlation also where "
    "the picture is bright. Less the means, and divided by the deviations, as "
    "<code>CoeffNormed</code> does it, brightness and contrast do not count.";

constexpr int32_t kMostPiece = 48;

Plane<uint8_t> part_of(const Plane<uint8_t>& plane, PixelPoint at, RoiSize size) {
  Plane<uint8_t> part(size);
  for (int32_t y = 0; y < size.height; ++y) {
    const auto row = plane.values.begin() + ptrdiff_t(at.y + y) * plane.size.width + at.x;
    std::copy(row, row + size.width, part.values.begin() + ptrdiff_t(y) * size.width);
  }
  return part;
}

Picture in_colour(const Plane<uint8_t>& grey) {
  Picture picture(grey.size, 3);
  for (size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = grey.values[i / 3];
  return picture;
}

// The place, on a grid of half pieces, at which grey levels deviate most: what is flat looks like
// anything flat.
PixelPoint piece_place(const Plane<uint8_t>& grey, RoiSize size) {
  PixelPoint best{0, 0};
  double most = -1;
  for (int32_t y = 0; y + size.height <= grey.size.height; y += size.height / 2 + 1)
    for (int32_t x = 0; x + size.width <= grey.size.width; x += size.width / 2 + 1) {
      double mean = 0, deviation = 0;
      const uint8_t* src = grey.data() + size_t(y) * size_t(grey.size.width) + size_t(x);
      require_ok(nuqiMean_StdDev_8u_C1R(src, grey.step(), size, &mean, &deviation),
                 "nuqiMean_StdDev_8u_C1R");
      if (deviation > most) most = deviation, best = {x, y};
    }
  return best;
}

Call timed_match(const Plane<uint8_t>& picture, const Plane<uint8_t>& piece, const Measure& measure,
                 Plane<float>& scores) {
  const RoiSize roi = picture.size, tpl_roi = piece.size;
  scores = Plane<float>({roi.width - tpl_roi.width + 1, roi.height - tpl_roi.height + 1});
  int32_t bytes = 0;
  require_ok(measure.buffer_size(roi, tpl_roi, 1, &bytes), "nuqiMatchTemplateGetBufSize");
  std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
  const std::string text = std::string(measure.function) +
                           "(src, step, roi, tpl, tpl_step, tpl_roi, dst, dst_step, buffer)";
  return timed_call(text.c_str(), [&] {
    return measure.match(picture.data(), picture.step(), roi, piece.data(), piece.step(), tpl_roi,
                         scores.data(), scores.step(), buffer.data());
  });
}

std::string text_of(double score) {
  char text[64];
  const bool large = std::abs(score) >= 1e6;
  std::snprintf(text, sizeof text, large ? "%.1f million" : "%.3g", large ? score / 1e6 : score);
  return text;
}

Legend legend_of(const Scale& scale, const Colouring& colours) {
  constexpr int kStops = 9;
  Plane<float> values({kStops, 1});
  for (int i = 0; i < kStops; ++i)
    values.values[size_t(i)] = float(scale.low + i * (scale.high - scale.low) / (kStops - 1));
  const Picture stops = colours(values);
  std::string css;
  for (size_t i = 0; i < kStops; ++i) {
    char text[32];
    const uint8_t* rgb = &stops.pixels[3 * i];
    std::snprintf(text, sizeof text, "%s#%02x%02x%02x", i == 0 ? "" : ",", rgb[0], rgb[1], rgb[2]);
    css += text;
  }
  return {css, text_of(scale.low), text_of((scale.low + scale.high) / 2), text_of(scale.high)};
}

void add_scores(Section& section, const Plane<uint8_t>& grey, const Plane<uint8_t>& piece) {
  for (const Measure& measure : kMeasures) {
    Plane<float> scores;
    Call call = timed_match(grey, piece, measure, scores);
    if (measure.match == nuqiMatchTemplate_Corr_8u32f_C1R) {
      Plane<float> sums(scores.size);
      call = std::move(call).against([&] { plain::sum_of_products(grey, piece, sums); });
      plain::require_same(sums.values, scores.values, measure.function);
    }
    const Scale scale = score_scale(scores, measure);
    const Colouring colours = score_colours(measure, scale);
    const Peak best = best_places(scores, measure, piece.size, 1).front();
    Figure figure(measure.name, std::string("The scores of all places by ") + measure.name,
                  in_middle_of(grey.size, colours(scores), piece.size));
    figure.note("The best is " + text_of(double(best.value)) + ", at (" + std::to_string(best.x) +
                ", " + std::to_string(best.y) + ").");
    figure.with(legend_of(scale, colours)).with(std::move(call));
    section.after.push_back(std::move(figure));
  }
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "none" : text;
}

// Where the measures find the piece in a picture that is not quite the one it comes from.
void add_search(Section& section, const char* title, const char* change,
                const Plane<uint8_t>& picture, const Plane<uint8_t>& piece, PixelPoint truth) {
  std::vector<Peak> places = {{truth.x, truth.y, 0}};
  std::vector<std::string> right, wrong;
  Call call;
  for (const Measure& measure : kMeasures) {
    Plane<float> scores;
    call = timed_match(picture, piece, measure, scores);
    const Peak best = best_places(scores, measure, piece.size, 1).front();
    const bool found = best.x == truth.x && best.y == truth.y;
    (found ? right : wrong).emplace_back(measure.name);
    if (!found) places.push_back(best);
  }
  Figure figure(title, "The changed picture with a box where the piece is, and others",
                with_boxes(in_colour(picture), places, piece.size));
  figure
      .note(std::string(change) + " Found, in orange, by: " + joined(right) +
            ". Elsewhere, in blue: " + joined(wrong) + ".")
      .with(std::move(call));
  section.after.push_back(std::move(figure));
}

Plane<uint8_t> noisy(Plane<uint8_t> grey) {
  uint32_t position = 0;
  for (uint8_t& level : grey.values) {
    const uint32_t bits = hash(position++, 5, 11);
    const int noise = int(bits & 255) + int(bits >> 8 & 255) - 255;  // deviation 104
    level = uint8_t(std::clamp(int(level) + noise / 3, 0, 255));
  }
  return grey;
}

Plane<uint8_t> duller(Plane<uint8_t> grey) {
  for (uint8_t& level : grey.values) level = uint8_t(25 + level * 3 / 10);
  return grey;
}

}  // namespace

Section match_section(const Scene& scene) {
  Section section{"match", "Template matching", kText, {}, {}};
  const Plane<uint8_t>& grey = scene.grey;
  const RoiSize size{std::clamp(grey.size.width / 8, 1, kMostPiece),
                     std::clamp(grey.size.height / 8, 1, kMostPiece)};
  section.declarations = {
      {"src", "static uint8_t src[height * width];  /* grey levels */\nint32_t step = width;"},
      {"tpl_roi", "RoiSize tpl_roi = {" + std::to_string(size.width) + ", " +
                      std::to_string(size.height) + "};"},
      {"tpl", "static uint8_t tpl[" + std::to_string(size.width * size.height) + "];"},
      {"tpl_step", "int32_t tpl_step = tpl_roi.width;"},
      {"dst", "static float dst[height * width];  /* more than is written */"},
      {"dst_step", "int32_t dst_step = 4 * (width - tpl_roi.width + 1);"},
      {"buffer",
       "int32_t bytes = 0;\n"
       "nuqiMatchTemplateGetBufSize_CoeffNormed(roi, tpl_roi, 1, &bytes);  /* no less than others "
       "*/\n"
       "void* buffer = malloc((size_t)bytes);"},
  };
  const PixelPoint place = piece_place(grey, size);
  const Plane<uint8_t> piece = part_of(grey, place, size);
  section.before.emplace_back("The picture in grey", "The picture with a box around the piece",
                              with_boxes(in_colour(grey), {{place.x, place.y, 0}}, size));
  section.before.emplace_back("The piece", "The piece, each pixel a square", picture_of(piece));
  section.before.back().note("The template: " + size_text(size) + " pixels.");
  add_scores(section, grey, piece);
  add_search(section, "Under noise", "Noise of 35 grey levels in root of mean square.", noisy(grey),
             piece, place);
  add_search(section, "Under other light", "Grey levels 25 + 0.3 times what they were.",
             duller(grey), piece, place);
  return section;
}

}  // namespace tools

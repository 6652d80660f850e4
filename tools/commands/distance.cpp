// nuqi distance: how far every pixel is from the dark ones.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>

#include "clock.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/distance_picture.h"
#include "pictures/file.h"
#include "pictures/pfm.h"
#include "pictures/picture.h"
#include "pictures/plot.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes each pixel's distance, in pixels, to the nearest one whose grey level is below\n"
    "--threshold: black at 0, over purple and orange, to pale yellow at the largest distance;\n"
    "below the picture is the scale. With --invert, the distance to the nearest pixel at or\n"
    "above the threshold. A way goes by steps to neighbours: chessboard counts the larger of\n"
    "columns and rows, city both together; euclid3 and euclid5 come close to the straight\n"
    "line, by steps within 3x3 and 5x5 pixels. No distance exceeds 4096, which is also that\n"
    "of all pixels where there is none to reach. A PFM file holds the distances as 32-bit\n"
    "floats.\n";

const std::map<std::string, nuqi::Distance> kMetrics = {{"chessboard", nuqi::Distance::chessboard},
                                                        {"city", nuqi::Distance::city_block},
                                                        {"euclid3", nuqi::Distance::euclidean_3x3},
                                                        {"euclid5", nuqi::Distance::euclidean_5x5}};

struct Options {
  std::string in, out, floats;
  std::string metric = "euclid5";
  int threshold = 128;
  bool contours = false, invert = false;
};

// 0 where distances start, 255 elsewhere.
Plane<uint8_t> features_of(Plane<uint8_t> grey, const Options& options) {
  for (uint8_t& level : grey.values) {
    level = (level < options.threshold) != options.invert ? 0 : 255;
  }
  return grey;
}

void show_distances(const Options& options) {
  check_picture_output(options.out);
  check_outputs_differ({options.out, options.floats});
  const Plane<uint8_t> features = features_of(read_grey(options.in), options);
  Plane<float> distances(features.size);
  const double seconds = seconds_of(
      [&] { nuqi::distance_transform(features, distances, kMetrics.at(options.metric)); });
  const double range = distance_range(distances), step = step_to(range);
  Picture picture = distance_picture(distances, range);
  if (options.contours) draw_contours(picture, distances, step);
  write_picture(options.out, with_scale(picture, range, step));
  if (!options.floats.empty()) write_pfm(options.floats, distances);

  const auto count = std::count(features.values.begin(), features.values.end(), 0);
  const auto far = std::count(distances.values.begin(), distances.values.end(), kMostDistance);
  report("%s: %s, %.1f %% %s, %s distances to %g, %.2f ms with %s\n", options.out.c_str(),
         size_text(features.size).c_str(), 100.0 * double(count) / double(features.values.size()),
         options.invert ? "light" : "dark", options.metric.c_str(), range, 1e3 * seconds,
         nuqi::name_of(nuqi::isa()));
  if (count == 0) {
    report("no pixel to measure from: all distances are %g\n", double(kMostDistance));
  } else if (far > 0) {
    report("%td pixels are %g or more away\n", far, double(kMostDistance));
  }
}

}  // namespace

void add_distance(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("distance", "Shows distances to the dark pixels");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The distances in colours, with their scale")
      ->required();
  command->add_option("--threshold", options->threshold, "Grey levels below this are dark")
      ->check(CLI::Range(1, 255))
      ->capture_default_str();
  command->add_option("--metric", options->metric, "chessboard, city, euclid3 or euclid5")
      ->check(CLI::IsMember(kMetrics))
      ->capture_default_str();
  command->add_flag("--contours", options->contours, "Draws a line at each number of the scale");
  command->add_flag("--invert", options->invert, "Measures from the light pixels");
  command->add_option("--float", options->floats, "A PFM file for the distances as numbers")
      ->type_name("FILE");
  command->callback([options] { show_distances(*options); });
}

}  // namespace tools

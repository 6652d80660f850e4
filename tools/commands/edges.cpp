// nuqi edges: finds the edges of a picture, by derivatives and Canny's method.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>
#include <vector>

#include "clock.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/picture.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a grey picture of IN's size: 255 on edges, 0 elsewhere. A pixel's strength is\n"
    "|dx| + |dy|: at most 2040 with sobel, 8160 with scharr. A pixel strongest along its\n"
    "gradient and stronger than --high starts an edge; neighbours stronger than --low continue\n"
    "it. A threshold that is not given is half or twice the other. With neither they are chosen\n"
    "from the picture and printed: of the pixels that have any strength, one in ten exceeds the\n"
    "high one and one in four the low one. Of two neighbours equally strong, as on both sides of\n"
    "a sharp step, one is taken for the stronger: of two columns the odd one, of two rows, too.\n";

struct Options {
  std::string in, out;
  std::string edge_operator = "sobel";
  float low = 0, high = 0;
  bool has_low = false, has_high = false;
};

nuqi::EdgeOperator operator_of(const Options& options) {
  return options.edge_operator == "sobel" ? nuqi::EdgeOperator::sobel : nuqi::EdgeOperator::scharr;
}

void check_thresholds(const Options& options) {
  if (options.has_low && !(options.low >= 0)) throw UserError("--low: must be 0 or more");
  if (options.has_high && !(options.high >= 0)) throw UserError("--high: must be 0 or more");
  if (options.has_low && options.has_high && options.high < options.low) {
    throw UserError("--high: must not be below --low");
  }
}

nuqi::CannyThresholds thresholds_for(const Plane<uint8_t>& grey, const Options& options) {
  if (!options.has_low && !options.has_high)
    return nuqi::canny_thresholds(grey, operator_of(options));
  return {options.has_low ? options.low : options.high / 2,
          options.has_high ? options.high : 2 * options.low};
}

void find_edges(const Options& options) {
  check_thresholds(options);
  check_picture_output(options.out);
  const Plane<uint8_t> grey = read_grey(options.in);
  const nuqi::CannyThresholds thresholds = thresholds_for(grey, options);
  Plane<uint8_t> edges(grey.size);
  nuqi::Scratch scratch;
  const auto find = [&] {
    nuqi::canny(grey, edges, thresholds.low, thresholds.high, operator_of(options), scratch);
  };
  find();  // the first time it fetches its memory
  const double seconds = seconds_of(find);
  write_picture(options.out, picture_of(edges));
  const auto count = std::count(edges.values.begin(), edges.values.end(), 255);
  report("%s: %s, %.1f %% edges (%s, low %g, high %g), %.2f ms with %s\n", options.out.c_str(),
         size_text(grey.size).c_str(), 100.0 * double(count) / double(edges.values.size()),
         options.edge_operator.c_str(), double(thresholds.low), double(thresholds.high),
         1e3 * seconds, nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_edges(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("edges", "Finds the edges of a picture");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The edges")->required();
  CLI::Option* low =
      command->add_option("--low", options->low, "Strength above which an edge goes on");
  CLI::Option* high =
      command->add_option("--high", options->high, "Strength above which an edge starts");
  command->add_option("--operator", options->edge_operator, "The derivatives: sobel or scharr")
      ->check(CLI::IsMember({"sobel", "scharr"}))
      ->capture_default_str();
  command->callback([options, low, high] {
    options->has_low = low->count() > 0;
    options->has_high = high->count() > 0;
    find_edges(*options);
  });
}

}  // namespace tools

// nuqi edges: finds the edges of a picture, by derivatives and Canny's method.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/edge_map.h"
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
    "high one and one in four the low one.\n"
    "\n"
    "nuqiCanny_16s8u_C1R itself drops both of two equal neighbours, and with them every edge\n"
    "between two flat colours. Here ties are broken before the call: derivatives times four, plus\n"
    "a number from 0 to 3 that differs between any two neighbours, (x & 1) + 2 * (y & 1), on the\n"
    "larger derivative, away from zero; thresholds times four plus three, so that exactly the\n"
    "same pixels pass them. Of two equal columns the odd one stays, of two equal rows the odd\n"
    "one. The time printed is that of the library's calls alone.\n";

struct Options {
  std::string in, out;
  std::string edge_operator = "sobel";
  float low = 0, high = 0;
  bool has_low = false, has_high = false;
};

void check_thresholds(const Options& options) {
  if (options.has_low && !(options.low >= 0)) throw UserError("--low: must be 0 or more");
  if (options.has_high && !(options.high >= 0)) throw UserError("--high: must be 0 or more");
  if (options.has_low && options.has_high && options.high < options.low) {
    throw UserError("--high: must not be below --low");
  }
}

Thresholds thresholds_of(const Options& options, const EdgeFinder& finder) {
  if (!options.has_low && !options.has_high) return finder.usual_thresholds();
  return {options.has_low ? options.low : options.high / 2,
          options.has_high ? options.high : 2 * options.low};
}

void find_edges(const Options& options) {
  check_thresholds(options);
  check_ending(options.out);
  const Plane<uint8_t> grey = read_grey(options.in);
  EdgeFinder finder(grey, options.edge_operator);
  const Thresholds thresholds = thresholds_of(options, finder);
  const Plane<uint8_t> edges = finder.edges(thresholds);
  write_picture(options.out, picture_of(edges));
  const auto count = std::count(edges.values.begin(), edges.values.end(), 255);
  report("%s: %s, %.1f %% edges (%s, low %g, high %g), %.2f ms with %s\n", options.out.c_str(),
         size_text(grey.size).c_str(), 100.0 * double(count) / double(edges.values.size()),
         options.edge_operator.c_str(), double(thresholds.low), double(thresholds.high),
         1e3 * finder.seconds(), nuqi::name_of(nuqi::isa()));
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

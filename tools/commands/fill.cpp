// nuqi fill: paints the connected region of a pixel.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>
#include <vector>

#include "clock.h"
#include "commands/commands.h"
#include "commands/position.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/file.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Paints the region of the pixel X,Y: without --lower and --upper all connected pixels\n"
    "that equal it, with them those reached from neighbour to neighbour in steps of at most\n"
    "--lower down and --upper up. The region is found in the grey picture; grey or red, green\n"
    "and blue are painted, alpha stays.\n";

struct Options {
  std::string in, out, seed, region;
  int value = 255, connect = 4, lower = 0, upper = 0;
  bool gradient = false;
};

FillRegion call_fill(const Options& options, Plane<uint8_t>& grey, PixelPoint seed, int32_t value,
                     nuqi::Scratch& scratch) {
  const auto connectivity =
      options.connect == 4 ? nuqi::Connectivity::four : nuqi::Connectivity::eight;
  return options.gradient ? nuqi::flood_fill(grey, seed, value, options.lower, options.upper,
                                             connectivity, scratch)
                          : nuqi::flood_fill(grey, seed, value, connectivity, scratch);
}

// 255 in the region, 0 elsewhere: what two fills with different values leave different.
Plane<uint8_t> mask_between(const Plane<uint8_t>& a, const Plane<uint8_t>& b) {
  Plane<uint8_t> mask(a.size);
  for (size_t i = 0; i < mask.values.size(); ++i)
    mask.values[i] = a.values[i] == b.values[i] ? 0 : 255;
  return mask;
}

void fill_region(const Options& options) {
  const PixelPoint seed = point_of(options.seed);
  check_picture_output(options.out);
  if (!options.region.empty()) check_picture_output(options.region);
  check_outputs_differ({options.out, options.region});
  if (options.lower + options.upper > 255)
    throw UserError("--lower and --upper: their sum must not exceed 255");
  Picture picture = read_picture(options.in, Form::stored);
  check_inside(seed, options.seed, options.in, picture.size);
  const Plane<uint8_t> grey = grey_of(picture);

  // A pixel of the region may have any value already: the region is what differs after two fills with
  // values that differ, both from the seed's, too.
  nuqi::Scratch scratch;
  const int old_value = grey.values[size_t(seed.y) * size_t(grey.size.width) + size_t(seed.x)];
  Plane<uint8_t> low = grey, high = grey;
  FillRegion region = call_fill(options, low, seed, (old_value + 1) % 256, scratch);
  const double seconds =
      seconds_of([&] { region = call_fill(options, high, seed, (old_value + 2) % 256, scratch); });
  const Plane<uint8_t> mask = mask_between(low, high);
  if (!options.region.empty()) write_picture(options.region, picture_of(mask));

  bool changed = false;
  for (size_t i = 0; i < mask.values.size(); ++i) {
    if (mask.values[i] == 0) continue;
    for (size_t c = 0; c < size_t(std::min(picture.channels, 3)); ++c) {
      uint8_t& channel = picture.pixels[i * size_t(picture.channels) + c];
      changed = changed || channel != options.value;
      channel = uint8_t(options.value);
    }
  }
  write_picture(options.out, picture);
  report("%s: %.0f pixels painted with %d, %dx%d from %d,%d, %.2f ms with %s\n",
         options.out.c_str(), region.area, options.value, region.width, region.height, region.x,
         region.y, 1e3 * seconds, nuqi::name_of(nuqi::isa()));
  if (!changed) report("The region had that value already.\n");
}

}  // namespace

void add_fill(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("fill", "Paints the connected region of a pixel");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The painted picture")->required();
  command->add_option("SEED", options->seed, "The pixel, as X,Y from the upper left")->required();
  command->add_option("--value", options->value, "What to paint with")
      ->check(CLI::Range(0, 255))
      ->capture_default_str();
  command->add_option("--connect", options->connect, "Neighbours of a pixel: 4 or 8")
      ->check(CLI::IsMember({4, 8}))
      ->capture_default_str();
  CLI::Option* lower = command->add_option("--lower", options->lower, "The largest step down")
                           ->check(CLI::Range(0, 255));
  CLI::Option* upper = command->add_option("--upper", options->upper, "The largest step up")
                           ->check(CLI::Range(0, 255));
  command->add_option("--region", options->region, "Writes the region as a mask, 255 inside");
  command->callback([options, lower, upper] {
    options->gradient = lower->count() + upper->count() > 0;
    fill_region(*options);
  });
}

}  // namespace tools

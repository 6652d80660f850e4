// nuqi stats: numbers that describe a picture.
#include "commands/stats.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/channels.hpp>
#include <string>

#include "commands/commands.h"
#include "failure.h"
#include "pictures/file.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Describes the grey levels, or one channel, 1 red, 2 green or 3 blue. A mask is a picture of\n"
    "IN's size: where its grey level is not 0 pixels take part. Make masks PNG files, as JPEG's\n"
    "blacks are not quite black.\n"
    "Norms: Inf is the largest level, L1 the sum, L2 the root of the sum of squares. With OTHER\n"
    "also those of the difference of both, and that relative to OTHER's. Minimum and maximum name\n"
    "the first pixel that has them, row by row from the top. The histogram ends the output.\n"
    "\n"
    "The C functions have limits that do not show here. nuqiMean_* and nuqiNorm_L1_* of bytes sum\n"
    "in 32 bits, which 24 megapixels of 200 exceed, and still succeed: here sums are exact. The\n"
    "deviation of a constant picture can be NaN: here it is 0. The last level of\n"
    "nuqiCalcHist_8u_C1R is exclusive, and a byte cannot say 256, so that it never counts 255:\n"
    "here the last bin has what the others leave.\n";

struct Options {
  std::string in, other, mask, histogram;
  int channel = 0, bins = 16;
};

Levels read_levels(const Options& options, const std::string& path) {
  if (options.channel == 0) return {read_grey(path), 0};
  const Picture picture = read_picture(path);
  Levels levels{Plane<uint8_t>(picture.size), options.channel};
  nuqi::split(view_of(picture).as<3>(), options.channel - 1, levels.plane);
  return levels;
}

Selection selection_of(const Options& options, const Levels& in) {
  Selection selection;
  if (options.mask.empty()) {
    selection.plane = Plane<uint8_t>(in.plane.size);
    std::fill(selection.plane.values.begin(), selection.plane.values.end(), 255);
  } else {
    selection.plane = read_grey(options.mask);
    check_same_size(options.mask, selection.plane.size, options.in, in.plane.size);
  }
  const auto& values = selection.plane.values;
  selection.count = int64_t(values.size()) - std::count(values.begin(), values.end(), 0);
  if (selection.count == 0) throw UserError(options.mask + ": selects no pixel");
  return selection;
}

void print_stats(const Options& options) {
  static constexpr const char* kChannels[] = {"grey levels", "red", "green", "blue"};
  if (!options.histogram.empty()) check_picture_output(options.histogram);
  if (options.histogram == kStandardStream) {
    throw UserError("--histogram -: standard output has the numbers");
  }
  const Levels in = read_levels(options, options.in);
  Levels other;
  if (!options.other.empty()) {
    other = read_levels(options, options.other);
    check_same_size(options.other, other.plane.size, options.in, in.plane.size);
  }
  const Selection selection = selection_of(options, in);
  std::printf("%-*s%s, %s, %s\n", kNameWidth, "picture", options.in.c_str(),
              size_text(in.plane.size).c_str(), kChannels[options.channel]);
  std::printf("%-*s%lld\n", kNameWidth, "pixels", static_cast<long long>(selection.count));
  print_means(in, selection);
  print_extrema(in, selection);
  print_norms(in, selection);
  if (!options.other.empty()) print_distance(in, other, selection);
  print_histogram(in, selection, options.bins);
  if (!options.histogram.empty()) draw_histogram(in, selection, options.histogram);
}

}  // namespace

void add_stats(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("stats", "Describes a picture in numbers");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OTHER", options->other, "A picture of the same size, to compare with");
  command->add_option("--channel", options->channel, "1 red, 2 green, 3 blue instead of grey")
      ->check(CLI::IsMember({1, 2, 3}));
  command->add_option("--mask", options->mask, "Selects the pixels that take part")
      ->type_name("PICTURE");
  command->add_option("--bins", options->bins, "The bins of the histogram, 1 to 256")
      ->check(CLI::Range(1, 256))
      ->capture_default_str();
  command->add_option("--histogram", options->histogram, "Also draws the histogram as this picture")
      ->type_name("FILE");
  command->callback([options] { print_stats(*options); });
}

}  // namespace tools

// nuqi profile: the pixels along a straight line.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nuqi/hpp/motion.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/position.h"
#include "failure.h"
#include "pictures/file.h"
#include "pictures/picture.h"
#include "pictures/plot.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Prints the pixels from x1,y1 to x2,y2, both included, as CSV: position, channels, grey\n"
    "level. Positions count from the upper left pixel, 0,0. --plot draws the channels in their\n"
    "colours and the grey level in black, over the number of the pixel on the line.\n";

struct Options {
  std::string in, start, end, plot;
};

int32_t length_between(PixelPoint a, PixelPoint b) {
  return std::max(std::abs(b.x - a.x), std::abs(b.y - a.y)) + 1;
}

// Where the library takes sample `k`: on the shorter axis the nearest pixel, halves towards a.
PixelPoint position_of(PixelPoint a, PixelPoint b, int32_t k) {
  const int64_t last = length_between(a, b) - 1;
  const auto moved = [&](int32_t from, int32_t to) {
    if (last == 0) return from;
    const int64_t steps = (2 * std::abs(int64_t{to} - from) * k + last - 1) / (2 * last);
    return int32_t(to < from ? from - steps : from + steps);
  };
  return {moved(a.x, b.x), moved(a.y, b.y)};
}

Picture samples_of(const Picture& picture, PixelPoint start, PixelPoint end) {
  Picture samples;
  samples.size = {length_between(start, end), 1};
  samples.pixels = nuqi::sample_line(view_of(picture).as<3>(), start, end);
  return samples;
}

void write_plot(const std::string& path, const Picture& samples, const Plane<uint8_t>& grey) {
  Plot plot(double(grey.values.size() - 1), 255);
  plot.channel_curves(samples.pixels);
  plot.curve({grey.values.begin(), grey.values.end()}, {20, 24, 32});
  write_picture(path, plot.picture());
}

void print_profile(const Options& options) {
  const PixelPoint start = point_of(options.start), end = point_of(options.end);
  if (!options.plot.empty()) check_picture_output(options.plot);
  if (options.plot == kStandardStream) {
    throw UserError("--plot -: standard output has the numbers");
  }
  const Picture picture = read_picture(options.in);
  check_inside(start, options.start, options.in, picture.size);
  check_inside(end, options.end, options.in, picture.size);
  const Picture samples = samples_of(picture, start, end);
  const Plane<uint8_t> grey = grey_of(samples);
  if (!options.plot.empty()) write_plot(options.plot, samples, grey);
  std::printf("x,y,red,green,blue,grey\n");
  for (int32_t k = 0; k < samples.size.width; ++k) {
    const PixelPoint at = position_of(start, end, k);
    const uint8_t* rgb = &samples.pixels[3 * size_t(k)];
    std::printf("%d,%d,%d,%d,%d,%d\n", at.x, at.y, rgb[0], rgb[1], rgb[2], grey.values[size_t(k)]);
  }
}

}  // namespace

void add_profile(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("profile", "Prints the pixels along a straight line");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("START", options->start, "The line's first pixel, x1,y1")->required();
  command->add_option("END", options->end, "The line's last pixel, x2,y2")->required();
  command->add_option("--plot", options->plot, "Also draws the samples as this picture")
      ->type_name("FILE");
  command->callback([options] { print_profile(*options); });
}

}  // namespace tools

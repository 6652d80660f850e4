// nuqi corners: the strongest corners of a picture.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>

#include "clock.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/corner_points.h"
#include "pictures/file.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes IN, of 16 bits and with alpha where it has them, with a ring around each of its\n"
    "strongest corners in the grey picture, alpha over white. A pixel's strength is the\n"
    "smaller eigenvalue of the products of the derivatives, by Sobel kernels of --aperture,\n"
    "summed over a square of --block pixels: grey levels from 0 to 255, so that strengths are\n"
    "the same on every machine. Corners are local maxima above 0; none is nearer than\n"
    "--distance pixels to a stronger one. Of equal ones the upper comes first, then the left\n"
    "one; of a plateau one pixel counts. --csv writes a line x,y,strength for each.\n";

struct Options {
  std::string in, out, csv;
  int aperture = 3, block = 3;
  int top = 100;
  double distance = 10;
};

Plane<float> strength_of(const Plane<float>& grey, const Options& options, Stopwatch& calls) {
  Plane<float> strength(grey.size);
  nuqi::Scratch scratch;
  fetch(scratch, nuqiMinEigenValGetSize, grey.size.width, options.aperture, options.block);
  calls.time([&] { nuqi::min_eigen(grey, strength, {options.aperture, options.block}, scratch); });
  return strength;
}

template <class T>
void find_corners(RowReader& rows, const Options& options) {
  PictureOf<T> picture = whole_picture<T>(rows, options.in);
  Stopwatch calls;
  const Plane<float> strength = strength_of(floats_of(grey_of(picture)), options, calls);
  const auto corners = strongest_corners(strength, size_t(options.top), options.distance);
  if (picture.channels == 1) picture = with_channels(picture, 3);
  write_picture(options.out, with_rings(std::move(picture), corners));
  if (!options.csv.empty()) write_csv(options.csv, "strength", corners);
  report("%s: %s, %zu corner%s", options.out.c_str(), size_text(rows.size()).c_str(),
         corners.size(), corners.size() == 1 ? "" : "s");
  if (!corners.empty())
    report(" of strength %.4g to %.4g", double(corners.front().value),
           double(corners.back().value));
  report(" (aperture %d, block %d), %.2f ms with %s\n", options.aperture, options.block,
         1e3 * calls.seconds(), nuqi::name_of(nuqi::isa()));
}

void run(const Options& options) {
  check_picture_output(options.out);
  check_outputs_differ({options.out, options.csv});
  const auto rows = open_rows(options.in, Form::stored, Depth::stored);
  (rows->format().bits == 8 ? find_corners<uint8_t> : find_corners<float>)(*rows, options);
}

}  // namespace

void add_corners(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("corners", "Finds the strongest corners of a picture");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The picture with rings")->required();
  command->add_option("--aperture", options->aperture, "Size of the derivatives: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command->add_option("--block", options->block, "Side of the square of sums: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command->add_option("--top", options->top, "How many corners at most")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--distance", options->distance, "Pixels from a corner to stronger ones")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command->add_option("--csv", options->csv, "A file for places and strengths")->type_name("FILE");
  command->callback([options] { run(*options); });
}

}  // namespace tools

// nuqi regions: every connected region of equal pixels.
#include "commands/regions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <bit>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/file.h"
#include "pictures/picture.h"
#include "progress.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Regions are of equal levels in the grey picture. OUT shows each in a colour of its own, "
    "those\n"
    "of fewer than --smallest pixels in black. The CSV lists the others in the order of their "
    "first\n"
    "pixels, row by row: level, area, x, y, width, height of the rectangle, first pixel.\n";

constexpr int64_t kLarge = 4'000'000;  // pixels from which a bar shows the progress

struct Options {
  std::string in, out, csv;
  int connect = 4;
  int64_t smallest = 1;
};

// Every region is painted with a number of its own, as a negative float: more of them differ than a
// picture has pixels, and none is a grey level.
float paint_of(size_t number) { return std::bit_cast<float>(0xBF800000u + uint32_t(number)); }
size_t number_of(float paint) { return std::bit_cast<uint32_t>(paint) - 0xBF800000u; }

// Neighbouring numbers get unlike colours, none of them dark.
void colour_of(size_t number, uint8_t* rgb) {
  uint32_t bits = uint32_t(number) * 0x9E3779B1u;
  bits ^= bits >> 15;
  for (int c = 0; c < 3; ++c) rgb[c] = uint8_t(64 + (bits >> (8 * c) & 0xFF) * 191 / 255);
}

std::string csv_of(const Regions& regions, int64_t smallest) {
  std::string text = "level,area,x,y,width,height,first_x,first_y\n";
  for (const Region& region : regions.all()) {
    const FillRegion& r = region.found;
    if (r.area < double(smallest)) continue;
    for (const int64_t number : {int64_t{region.level}, int64_t(r.area), int64_t{r.x}, int64_t{r.y},
                                 int64_t{r.width}, int64_t{r.height}, int64_t{region.first.x}})
      text += std::to_string(number) + ",";
    text += std::to_string(region.first.y) + "\n";
  }
  return text;
}

void find_regions(const Options& options) {
  check_picture_output(options.out);
  check_outputs_differ({options.out, options.csv});
  const Plane<uint8_t> grey = read_grey(options.in);
  const Regions regions(grey, options.connect);
  write_picture(options.out, regions.coloured(options.smallest));
  if (!options.csv.empty()) {
    const std::string text = csv_of(regions, options.smallest);
    write_file(options.csv, text.data(), text.size());
  }
  const auto kept = std::count_if(
      regions.all().begin(), regions.all().end(),
      [&](const Region& region) { return region.found.area >= double(options.smallest); });
  report("%s: %s, %zu regions, %td of them shown, %.2f ms with %s\n", options.out.c_str(),
         size_text(grey.size).c_str(), regions.all().size(), kept, 1e3 * regions.seconds(),
         nuqi::name_of(nuqi::isa()));
}

}  // namespace

Regions::Regions(const Plane<uint8_t>& grey, int connect) : paint_(grey.size) {
  std::copy(grey.values.begin(), grey.values.end(), paint_.values.begin());
  nuqi::Scratch scratch;
  fetch(scratch, nuqiFloodFillGetSize, grey.size);
  const auto connectivity = connect == 4 ? nuqi::Connectivity::four : nuqi::Connectivity::eight;

  const RoiSize roi = grey.size;
  std::optional<Progress> progress;
  if (int64_t{roi.width} * roi.height >= kLarge) progress.emplace("rows", roi.height);
  for (int32_t y = 0; y < roi.height; ++y) {
    for (int32_t x = 0; x < roi.width; ++x) {
      const float level = paint_.values[size_t(y) * size_t(roi.width) + size_t(x)];
      if (level < 0) continue;
      FillRegion found{};
      calls_.time([&] {
        found = nuqi::flood_fill(paint_, {x, y}, paint_of(all_.size()), connectivity, scratch);
      });
      all_.push_back({found, {x, y}, uint8_t(level)});
    }
    if (progress) progress->advance();
  }
}

Picture Regions::coloured(int64_t smallest, int dark) const {
  Picture picture(paint_.size, 3);
  for (size_t i = 0; i < paint_.values.size(); ++i) {
    const size_t number = number_of(paint_.values[i]);
    const Region& region = all_[number];
    if (region.found.area >= double(smallest) && region.level != dark)
      colour_of(number, &picture.pixels[3 * i]);
  }
  return picture;
}

void add_regions(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("regions", "Finds all connected regions of equal pixels");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The regions in colours")->required();
  command->add_option("--connect", options->connect, "Neighbours of a pixel: 4 or 8")
      ->check(CLI::IsMember({4, 8}))
      ->capture_default_str();
  command->add_option("--smallest", options->smallest, "The smallest area to show, in pixels")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command->add_option("--csv", options->csv, "Lists the regions in this file")->type_name("FILE");
  command->callback([options] { find_regions(*options); });
}

}  // namespace tools

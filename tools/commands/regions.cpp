// nuqi regions: every connected region of equal pixels.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/file.h"
#include "pictures/picture.h"
#include "pictures/regions.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Regions are of equal levels in the grey picture. OUT shows each in a colour of its own,\n"
    "those of fewer than --smallest pixels in black. The CSV lists the others in the order of\n"
    "their first pixels, row by row: level, area, x, y, width, height of the rectangle, first\n"
    "pixel.\n";

struct Options {
  std::string in, out, csv;
  int connect = 4;
  int64_t smallest = 1;
};

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

// nuqi tour: shows what each family does to a picture, on a page of its own.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/file.h"
#include "progress.h"
#include "tour/families.h"

namespace tools {
namespace {

struct Family {
  const char* name;
  Section (*section)(const Scene& scene);
};

constexpr Family kFamilies[] = {
    {"accumulation", accumulation_section},
    {"channels and profiles", layout_section},
    {"motion", motion_section},
    {"statistics", statistics_section},
    {"3x3 derivatives", derivatives_section},
    {"blur, Sobel, Laplace", filters_section},
    {"Canny edges", canny_section},
    {"corners", corners_section},
    {"distance transforms", distance_section},
    {"erosion and dilation", morphology_section},
    {"Gaussian pyramid", pyramid_section},
    {"template matching", match_section},
    {"flood fills", fill_section},
};

constexpr char kFooter[] =
    "Writes DIR/index.html, a page that needs no other file and no network: the pictures before\n"
    "and after each family's work, the calls that made them and their times.\n";

struct Options {
  std::string picture;
  std::string out = "nuqi-tour";
};

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw UserError(path + ": cannot be made a folder: " + error.message());
}

std::string version_text() {
  return std::to_string(NUQI_VERSION_MAJOR) + "." + std::to_string(NUQI_VERSION_MINOR) + "." +
         std::to_string(NUQI_VERSION_PATCH);
}

void make_tour(const Options& options) {
  const Scene scene = options.picture.empty() ? built_in_scene() : scene_of_file(options.picture);
  make_folder(options.out);
  std::vector<Section> sections;
  {
    Progress progress("families", int(std::size(kFamilies)));
    for (const Family& family : kFamilies) {
      sections.push_back(family.section(scene));
      progress.advance(family.name);
    }
  }
  const PageFacts facts{scene.name, scene.colour, nuqi::name_of(nuqi::isa()), version_text()};
  const std::string html = page_html(facts, sections);
  const std::filesystem::path page = std::filesystem::path(options.out) / "index.html";
  write_file(page.string(), html.data(), html.size());
  std::printf("The tour is ready: open %s in a browser.\n",
              std::filesystem::absolute(page).lexically_normal().c_str());
}

}  // namespace

void add_tour(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("tour", "Shows each family's work on a picture, as a web page");
  command->footer(kFooter);
  command->add_option("PICTURE", options->picture, "The picture; a built-in landscape without one");
  command->add_option("--out", options->out, "The folder for the page")
      ->type_name("DIR")
      ->capture_default_str();
  command->callback([options] { make_tour(*options); });
}

}  // namespace tools

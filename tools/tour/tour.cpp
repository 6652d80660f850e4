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
#include "report.h"
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
    "Writes DIR/index.html, a page that needs no network: the pictures before and after each\n"
    "family's work, the calls that made them, their times and programs to paste. The pictures in\n"
    "the page are small; DIR/pictures holds them whole, and the page opens them from there. A\n"
    "picture of more than 1024 pixels a side is made smaller first.\n";

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

std::string shown_size(const Scene& scene) {
  const std::string shown = size_text(scene.grey.size), file = size_text(scene.file_size);
  return scene.colour.size.width == scene.file_size.width ? file : file + ", shown at " + shown;
}

void make_tour(const Options& options) {
  const Scene scene = options.picture.empty() ? built_in_scene() : scene_of_file(options.picture);
  // A folder that cannot be written shows before the work.
  const std::filesystem::path folder = options.out, path = folder / "index.html";
  make_folder((folder / "pictures").string());
  OutputFile file(path.string());
  std::vector<Section> sections;
  {
    Progress progress("families", int(std::size(kFamilies)));
    for (const Family& family : kFamilies) {
      sections.push_back(family.section(scene));
      progress.advance(family.name);
    }
  }
  const PageFacts facts{scene.name, shown_size(scene),
                        PagePicture(scene.colour, scene.name, Shrink::mean),
                        nuqi::name_of(nuqi::isa()), version_text()};
  const Page page = page_of(facts, sections);
  for (const PageFile& picture : page.files)
    write_file((folder / picture.name).string(), picture.bytes.data(), picture.bytes.size());
  if (std::fwrite(page.html.data(), 1, page.html.size(), file.stream()) != page.html.size())
    fail_on_file(path.string(), "written");
  file.commit();
  report("The tour is ready: open %s in a browser.\n",
         std::filesystem::absolute(path).lexically_normal().c_str());
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

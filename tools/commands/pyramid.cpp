// nuqi pyramid: a picture at smaller and smaller sizes, or what each size adds to the next smaller one.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "clock.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/picture.h"
#include "pictures/pyramid_picture.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes the picture and N levels below it, each smoothed and half as wide and high as the\n"
    "one above, of IN's kind. Where a width or height is odd, the last column or row is\n"
    "repeated first. Where there is alpha, colours are weighted by it, so that those of\n"
    "transparent pixels do not show. All levels come on one sheet, or one file each where OUT\n"
    "holds %d: that becomes 0 for the picture, 1 for the first level below it, and so on.\n"
    "With --laplacian all levels but the last are what they lack that the level below,\n"
    "brought up to their size, gives: mid-grey where nothing, as much brighter or darker as\n"
    "the difference; alpha is laid over white. The differences are kept whole; the picture is\n"
    "rebuilt from them and the last level, and the largest deviation from IN is printed: 0.\n";

constexpr char kNumber[] = "%d";

struct Options {
  std::string in, out;
  int levels = 0;
  bool laplacian = false;
};

template <class T>
void write_levels(const std::string& out, const std::vector<PictureOf<T>>& levels) {
  const size_t number = out.find(kNumber);
  if (number == std::string::npos) return write_picture(out, sheet_of(levels));
  for (size_t i = 0; i < levels.size(); ++i) {
    std::string path = out;
    write_picture(path.replace(number, sizeof kNumber - 1, std::to_string(i)), levels[i]);
  }
}

template <class T>
void make_pyramid(RowReader& rows, const Options& options) {
  const PictureOf<T> picture = whole_picture<T>(rows, options.in);
  Stopwatch calls;
  const std::vector<PictureOf<T>> levels = levels_of(picture, options.levels, calls);
  std::string rebuilding;
  if (options.laplacian) {
    const std::vector<Differences> differences = differences_of(levels);
    const int deviation = largest_deviation(rebuilt(differences, levels), picture);
    rebuilding = ", rebuilt with a largest deviation of " + std::to_string(deviation);
    write_levels(options.out, pictures_of(differences, levels));
  } else {
    write_levels(options.out, levels);
  }
  report("%s: %s and %d levels down to %s%s, %.2f ms with %s\n", options.out.c_str(),
         size_text(picture.size).c_str(), options.levels, size_text(levels.back().size).c_str(),
         rebuilding.c_str(), 1e3 * calls.seconds(), nuqi::name_of(nuqi::isa()));
}

void run(const Options& options) {
  check_picture_output(options.out);
  const auto rows =
      open_rows(options.in, options.laplacian ? Form::opaque : Form::stored, Depth::stored);
  const int most = most_levels(rows->size());
  if (options.levels > most) {
    throw UserError("--levels " + std::to_string(options.levels) + ": " + options.in + " is " +
                    size_text(rows->size()) + " and has at most " + std::to_string(most) +
                    " levels below it");
  }
  (rows->format().bits == 8 ? make_pyramid<uint8_t> : make_pyramid<float>)(*rows, options);
}

}  // namespace

void add_pyramid(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("pyramid", "Shows a picture at smaller and smaller sizes");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "All levels, or one each where it holds %d")->required();
  command->add_option("--levels", options->levels, "How many below the picture")
      ->check(CLI::Range(1, 1000000))
      ->required();
  command->add_flag("--laplacian", options->laplacian, "Shows what each level adds to the next");
  command->callback([options] { run(*options); });
}

}  // namespace tools

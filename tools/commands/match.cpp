// nuqi match: where a template is found in a picture.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "clock.h"
#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/file.h"
#include "pictures/template_match.h"
#include "progress.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Scores every place at which TEMPLATE lies wholly inside IN, both in grey. OUT shows the\n"
    "picture with boxes around the best places, orange around the best of all, and below it\n"
    "the scores in colours with their scale, each in the middle of its place.\n"
    "\n"
    "  sqdiff         sum of squared differences: 0 where both are equal\n"
    "  sqdiff-normed  the same over the root of both sums of squares\n"
    "  corr           sum of products: also large wherever the picture is bright\n"
    "  corr-normed    the same over that root: 1 at best, whatever the contrast\n"
    "  coeff          sum of products less the means: about 0 where nothing is alike\n"
    "  coeff-normed   the same over the root of both variances: from -1 to 1, whatever the\n"
    "                 brightness and the contrast\n"
    "\n"
    "The best places are local extrema, and no box overlaps another. Of equal ones the upper\n"
    "comes first, then the left one; of a plateau one pixel counts. --csv writes a line\n"
    "x,y,score for each, which are the box's pixel at the upper left and its score, the best\n"
    "first.\n";

struct Options {
  std::string in, tpl, out, csv;
  std::string measure = "coeff-normed";
  int top = 1;
};

const Measure& measure_named(const std::string& name) {
  return *std::find_if(std::begin(kMeasures), std::end(kMeasures),
                       [&](const Measure& measure) { return name == measure.name; });
}

// A bar for work of which the first part tells that all of it takes more than a second.
class LateProgress {
 public:
  void done(int32_t rows, int32_t of) {
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    if (!bar_ && rows < of && seconds * of > rows) bar_.emplace("rows", of);
    if (!bar_) return;
    bar_->advance(rows - shown_);
    shown_ = rows;
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::optional<Progress> bar_;
  int32_t shown_ = 0;
};

Picture one_above_other(const Picture& above, const Picture& below) {
  const int32_t width = above.size.width, height = above.size.height;
  const int32_t gap = std::max(4, width / 120);
  Picture sheet({width, height + gap + below.size.height}, 3);
  fill(sheet, 0, height, width - 1, height + gap - 1, kSheetInk);
  std::copy(above.pixels.begin(), above.pixels.end(), sheet.pixels.begin());
  std::copy(below.pixels.begin(), below.pixels.end(),
            sheet.pixels.end() - ptrdiff_t(below.pixels.size()));
  return sheet;
}

void find_template(const Options& options) {
  check_picture_output(options.out);
  check_outputs_differ({options.out, options.csv});
  const Measure& measure = measure_named(options.measure);
  const Picture picture = read_picture(options.in);
  const Plane<uint8_t> tpl = grey_of(read_picture(options.tpl));
  check_template(tpl, options.tpl, picture.size, measure);
  LateProgress progress;
  Stopwatch calls;
  const Plane<float> scores = scores_of(grey_of(picture), tpl, measure, calls,
                                        [&](int32_t rows, int32_t of) { progress.done(rows, of); });
  const auto places = best_places(scores, measure, tpl.size, size_t(options.top));
  const Scale scale = score_scale(scores, measure);
  const Colouring colours = score_colours(measure, scale);
  const Picture sheet = one_above_other(with_boxes(picture, places, tpl.size),
                                        in_middle_of(picture.size, colours(scores), tpl.size));
  write_picture(options.out, with_scale(sheet, scale, colours));
  if (!options.csv.empty()) write_csv(options.csv, "score", places);
  report("%s: %s in %s, %zu place%s, the best at %d,%d with %s %.6g, %.2f ms with %s\n",
         options.out.c_str(), size_text(tpl.size).c_str(), size_text(picture.size).c_str(),
         places.size(), places.size() == 1 ? "" : "s", places[0].x, places[0].y, measure.name,
         double(places[0].value), 1e3 * calls.seconds(), nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_match(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("match", "Finds a template in a picture");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("TEMPLATE", options->tpl, "What to find in it")->required();
  command->add_option("OUT", options->out, "The places found, and the scores with their scale")
      ->required();
  std::vector<std::string> names;
  for (const Measure& measure : kMeasures) names.emplace_back(measure.name);
  command->add_option("--measure", options->measure, "How a place is scored, as listed below")
      ->check(CLI::IsMember(names))
      ->capture_default_str();
  command->add_option("--top", options->top, "How many places at most")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--csv", options->csv, "A file for places and scores")->type_name("FILE");
  command->callback([options] { find_template(*options); });
}

}  // namespace tools

// nuqi erode, dilate, open, close and gradient: least and greatest pixels around each pixel.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/element.h"
#include "core/isa.h"
#include "pictures/strips.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a picture of IN's kind and size; channels are taken each on its own, also those of\n"
    "transparent pixels, alpha is copied unchanged. Pixels beyond an edge equal the edge pixel.\n"
    "Takes pictures larger than memory (`nuqi --help`).\n"
    "\n"
    "The element is a rectangle, a cross of the row and the column through the anchor, a filled\n"
    "ellipse, or a FILE of 0 and 1 in lines or a picture that is bright (128 and more) inside the\n"
    "element. The library has an ellipse of its own, shape 2, whose middle row is empty at odd\n"
    "heights (3x3 is two pixels); the one here is drawn and passed as a mask. The second step of\n"
    "open and close takes the element turned by 180 degrees.\n";

enum class Operation { erode, dilate, open, close, gradient };

struct Command {
  const char* name;
  const char* description;
  const char* done;
};

constexpr Command kCommands[] = {
    {"erode", "Takes the least of the pixels around each pixel: dark spreads", "eroded"},
    {"dilate", "Takes the greatest of the pixels around each pixel: bright spreads", "dilated"},
    {"open", "Erodes, then dilates: bright spots smaller than the element vanish", "opened"},
    {"close", "Dilates, then erodes: dark spots smaller than the element vanish", "closed"},
    {"gradient", "Takes the difference of dilation and erosion: bright along edges", "gradient"},
};

struct Options {
  std::string in, out;
  ElementOptions element;
  int times = 1;
};

using nuqi::Element;
using nuqi::Extremum;

// T is float where samples have 16 bits.
template <class T>
class Chain {
 public:
  void add(Extremum extremum, const Element& element, int times, RoiSize picture, int channels) {
    for (int i = 0; i < times; ++i) {
      stages_.emplace_back(nuqi::Morphology(element), picture, channels, extremum);
    }
  }

  Strip<T> operator()(Strip<T> strip) {
    for (Stage& stage : stages_) strip = stage(strip);
    return strip;
  }

  double seconds() const {
    double sum = 0;
    for (const Stage& stage : stages_) sum += stage.seconds();
    return sum;
  }

 private:
  using Stage = FilterStage<T, T, nuqi::Morphology, 1, 3, 4>;

  std::vector<Stage> stages_;
};

template <class T>
class Morphology {
 public:
  Morphology(Operation operation, const Element& element, int times, RoiSize picture, int channels)
      : row_(size_t(picture.width) * size_t(channels)), has_alpha_(channels == 4) {
    const auto add = [&](Chain<T>& chain, Extremum extremum, const Element& shape) {
      chain.add(extremum, shape, times, picture, channels);
    };
    switch (operation) {
      case Operation::erode: add(chain_, Extremum::least, element); break;
      case Operation::dilate: add(chain_, Extremum::greatest, element); break;
      case Operation::open:
        add(chain_, Extremum::least, element);
        add(chain_, Extremum::greatest, element.turned());
        break;
      case Operation::close:
        add(chain_, Extremum::greatest, element);
        add(chain_, Extremum::least, element.turned());
        break;
      case Operation::gradient:
        add(chain_, Extremum::greatest, element);
        add(subtracted_, Extremum::least, element);
        break;
    }
    subtracts_ = operation == Operation::gradient;
  }

  Strip<T> operator()(Strip<T> strip) {
    if (has_alpha_) keep_alpha(strip);
    Strip<T> result = chain_(strip);
    if (!subtracts_ && !has_alpha_) return result;
    result_.assign(result.values, result.values + row_ * size_t(result.rows));
    if (subtracts_) subtract(subtracted_(strip));
    if (has_alpha_) put_alpha();
    return {result_.data(), result.rows};
  }

  double seconds() const { return chain_.seconds() + subtracted_.seconds(); }

 private:
  // Both chains have the same elements, so that they give the same rows.
  void subtract(Strip<T> least) {
    for (size_t i = 0; i < row_ * size_t(least.rows); ++i) {
      result_[i] = T(result_[i] - least.values[i]);
    }
  }

  // Alpha waits for the rows that it belongs to.
  void keep_alpha(Strip<T> strip) {
    for (size_t i = 3; i < row_ * size_t(strip.rows); i += 4) alpha_.push_back(strip.values[i]);
  }
  void put_alpha() {
    for (size_t i = 3; i < result_.size(); i += 4) result_[i] = alpha_[i / 4];
    alpha_.erase(alpha_.begin(), alpha_.begin() + ptrdiff_t(result_.size() / 4));
  }

  size_t row_;
  bool has_alpha_, subtracts_ = false;
  Chain<T> chain_, subtracted_;
  std::vector<T> result_, alpha_;
};

// Returns the seconds that the library took.
template <class T>
double filter_rows(Operation operation, const Options& options, const Element& element,
                   RowReader& in, RowWriter& out) {
  Morphology<T> morphology(operation, element, options.times, in.size(), in.channels());
  RowProgress progress(in.size(), 1);
  for_strips<T>(in, progress,
                [&](Strip<T> strip) { write_strip(out, morphology(strip), in.row_samples()); });
  return morphology.seconds();
}

void run(Operation operation, const Options& options) {
  check_picture_output(options.out);
  const NamedElement element = element_of(options.element);
  const auto in = open_rows(options.in, Form::stored, Depth::stored);
  const auto out = create_picture(options.out, in->size(), in->format());
  auto* const filter = in->format().bits == 8 ? filter_rows<uint8_t> : filter_rows<float>;
  const double seconds = filter(operation, options, element.element, *in, *out);
  out->finish();
  const std::string times =
      options.times == 1 ? "" : ", " + std::to_string(options.times) + " times";
  report("%s: %s, %s with a %s%s, %.2f ms with %s\n", options.out.c_str(),
         size_text(in->size()).c_str(), kCommands[int(operation)].done, element.name.c_str(),
         times.c_str(), 1e3 * seconds, nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_morphology(CLI::App& app) {
  for (const Operation operation : {Operation::erode, Operation::dilate, Operation::open,
                                    Operation::close, Operation::gradient}) {
    const Command& texts = kCommands[int(operation)];
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(texts.name, texts.description);
    command->footer(kFooter);
    command->add_option("IN", options->in, "The picture")->required();
    command->add_option("OUT", options->out, "The result")->required();
    add_element_options(*command, options->element);
    command->add_option("--times", options->times, "Repeats each step")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    command->callback([operation, options] { run(operation, *options); });
  }
}

}  // namespace tools

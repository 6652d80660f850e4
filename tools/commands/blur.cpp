// nuqi blur: the mean of the pixels around each pixel.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "pictures/strips.h"
#include "pictures/weighted_planes.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a picture of IN's kind and size: in each channel the mean of the square of pixels\n"
    "around each pixel, rounded. Where there is alpha, colours are weighted by it, so that\n"
    "those of transparent pixels do not show. Pixels beyond an edge equal the edge pixel.\n"
    "Takes pictures larger than memory (`nuqi --help`).\n"
    "\n"
    "nuqiBlur_8u16s_C1R, and nuqiBlur_32f_C1R for 16 bits and alpha, give sums, which are\n"
    "divided here. nuqiConvolFree succeeds and leaves the state's memory allocated, by\n"
    "contract: a program that blurs often keeps its states.\n";

struct Options {
  std::string in, out;
  int size = 3;
};

// Blurs strips of a picture whose samples are T. The library sums planes of Element to Sum.
template <class T, class Element, class Sum>
class Blur {
 public:
  Blur(RoiSize picture, int channels, int size)
      : row_(size_t(picture.width)),
        channels_(size_t(channels)),
        area_(uint32_t(size * size)),
        planes_(channels) {
    for (size_t i = 0; i < planes_.count(); ++i)
      stages_.emplace_back(nuqi::BoxSum(size), picture, 1);
  }

  Strip<T> operator()(Strip<T> strip) {
    planes_.take(strip.values, size_t(strip.rows) * row_);
    std::vector<const Sum*> sums;
    int32_t rows = 0;
    for (size_t i = 0; i < stages_.size(); ++i) {
      const Strip<Sum> blurred = stages_[i]({planes_.plane(i), strip.rows});
      sums.push_back(blurred.values);
      rows = blurred.rows;
    }
    result_.resize(size_t(rows) * row_ * channels_);
    for (size_t i = 0; i < size_t(rows) * row_; ++i) {
      planes_.put([&](size_t plane) { return sums[plane][i]; }, area_, &result_[i * channels_]);
    }
    return {result_.data(), rows};
  }

  // What the library took, without the ways between channels and planes.
  double seconds() const {
    double sum = 0;
    for (const Stage& stage : stages_) sum += stage.seconds();
    return sum;
  }

 private:
  using Stage = FilterStage<Element, Sum, nuqi::BoxSum, 1>;

  size_t row_, channels_;
  uint32_t area_;
  WeightedPlanes<T, Element> planes_;
  std::vector<Stage> stages_;
  std::vector<T> result_;
};

// Returns the seconds that the library took.
template <class T, class Element, class Sum>
double blur_rows(RowReader& in, int size, RowWriter& out) {
  Blur<T, Element, Sum> blur(in.size(), in.channels(), size);
  RowProgress progress(in.size(), 1);
  for_strips<T>(in, progress,
                [&](Strip<T> strip) { write_strip(out, blur(strip), in.row_samples()); });
  return blur.seconds();
}

void blur(const Options& options) {
  check_picture_output(options.out);
  const auto in = open_rows(options.in, Form::stored, Depth::stored);
  const auto out = create_picture(options.out, in->size(), in->format());
  auto* const filter = in->format().bits == 16 ? blur_rows<float, float, float>
                       : in->channels() == 4   ? blur_rows<uint8_t, float, float>
                                               : blur_rows<uint8_t, uint8_t, int16_t>;
  const double seconds = filter(*in, options.size, *out);
  out->finish();
  report("%s: %s, means of %dx%d pixels, %.2f ms with %s\n", options.out.c_str(),
         size_text(in->size()).c_str(), options.size, options.size, 1e3 * seconds,
         nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_blur(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("blur", "Blurs a picture");
  command->footer(kFooter);
  command->add_option("IN", options->in, "The picture")->required();
  command->add_option("OUT", options->out, "The blurred picture")->required();
  command->add_option("--size", options->size, "The square's side: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command->callback([options] { blur(*options); });
}

}  // namespace tools

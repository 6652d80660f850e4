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
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes a picture of IN's size, grey or in colours: in each channel the mean of the square of\n"
    "pixels around each pixel, rounded. Pixels beyond an edge equal the edge pixel.\n"
    "Takes pictures larger than memory (`nuqi --help`).\n"
    "\n"
    "nuqiBlur_8u16s_C1R gives sums, which are divided here. nuqiConvolFree succeeds and leaves "
    "the\n"
    "state's memory allocated, by contract: a program that blurs often keeps its states.\n";

struct Options {
  std::string in, out;
  int size = 3;
};

// Blurs strips of a picture of 1 or 3 channels, each by itself.
class Blur {
 public:
  Blur(RoiSize picture, int channels, int size)
      : row_(size_t(picture.width)), channels_(size_t(channels)) {
    for (int c = 0; c < channels; ++c) stages_.emplace_back(nuqi::BoxSum(size), picture, 1);
    const int area = size * size;
    for (int sum = 0; sum <= 255 * area; ++sum) means_.push_back(uint8_t((sum + area / 2) / area));
  }

  Strip<uint8_t> operator()(Strip<uint8_t> strip) {
    Strip<int16_t> sums{nullptr, 0};
    for (size_t c = 0; c < channels_; ++c) {
      sums = stages_[c](channel_of(strip, c));
      result_.resize(size_t(sums.rows) * row_ * channels_);
      uint8_t* out = result_.data() + c;
      for (size_t i = 0; i < size_t(sums.rows) * row_; ++i, out += channels_) {
        *out = means_[size_t(sums.values[i])];
      }
    }
    return {result_.data(), sums.rows};
  }

  // What the library took, without the ways between channels and planes.
  double seconds() const {
    double sum = 0;
    for (const Stage& stage : stages_) sum += stage.seconds();
    return sum;
  }

 private:
  using Stage = FilterStage<uint8_t, int16_t, nuqi::BoxSum, 1>;

  Strip<uint8_t> channel_of(Strip<uint8_t> strip, size_t c) {
    if (channels_ == 1) return strip;
    plane_.resize(size_t(strip.rows) * row_);
    for (size_t i = 0; i < plane_.size(); ++i) plane_[i] = strip.values[i * channels_ + c];
    return {plane_.data(), strip.rows};
  }

  size_t row_, channels_;
  std::vector<Stage> stages_;
  Bytes means_, plane_, result_;  // a mean for every sum
};

void blur(const Options& options) {
  check_ending(options.out);
  const auto in = open_rows(options.in, Form::opaque);
  const RoiSize size = in->size();
  const auto out = create_picture(options.out, size, in->channels());
  Blur blur(size, in->channels(), options.size);
  RowProgress progress(size, 1);
  for_strips(*in, progress,
             [&](Strip<uint8_t> strip) { write_strip(*out, blur(strip), in->row_bytes()); });
  out->finish();
  report("%s: %s, means of %dx%d pixels, %.2f ms with %s\n", options.out.c_str(),
         size_text(size).c_str(), options.size, options.size, 1e3 * blur.seconds(),
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

// nuqi background: the still background of a sequence of frames, and where the frames differ.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/arith.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/file.h"
#include "pictures/picture.h"
#include "progress.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes the mean of all frames as a grey picture: what moves fades, what stands still stays.\n"
    "The variance is the mean squared distance from that mean, in squared grey levels, rounded;\n"
    "255 and more is white. Both are exact for any number of frames.\n"
    "With --alpha A the mean is an exponential average instead, which follows slow changes: it\n"
    "starts as the first frame, and each later frame moves it by A times the difference; the\n"
    "variance is then weighted in the same way.\n";

struct Options {
  std::string out, variance;
  std::vector<std::string> frames;
  float alpha = 0;
  bool exponential = false;
};

// Mean and mean square of every pixel, after any number of frames.
class Moments {
 public:
  virtual ~Moments() = default;
  virtual void add(const Plane<uint8_t>& frame) = 0;
  virtual double mean(size_t i) const = 0;
  virtual double mean_square(size_t i) const = 0;
};

// Single precision holds the sum of up to 258 squares of bytes exactly (below 2^24), so blocks of
// 256 frames are summed in single precision and the blocks in double precision.
class EqualMoments : public Moments {
 public:
  explicit EqualMoments(RoiSize roi)
      : block_(roi), block_square_(roi), sum_(block_.values.size()), square_(sum_.size()) {}

  void add(const Plane<uint8_t>& frame) override {
    nuqi::accumulate(frame, block_);
    nuqi::accumulate_square(frame, block_square_);
    if (++count_ % kBlock == 0) close_block();
  }
  double mean(size_t i) const override { return (sum_[i] + double(block_.values[i])) / count_; }
  double mean_square(size_t i) const override {
    return (square_[i] + double(block_square_.values[i])) / count_;
  }

 private:
  static constexpr int kBlock = 256;

  void close_block() {
    for (size_t i = 0; i < sum_.size(); ++i) {
      sum_[i] += double(block_.values[i]);
      square_[i] += double(block_square_.values[i]);
    }
    std::fill(block_.values.begin(), block_.values.end(), 0.0f);
    std::fill(block_square_.values.begin(), block_square_.values.end(), 0.0f);
  }

  Plane<float> block_, block_square_;
  std::vector<double> sum_, square_;
  int count_ = 0;
};

class ExponentialMoments : public Moments {
 public:
  ExponentialMoments(RoiSize roi, float alpha)
      : mean_(roi), mean_square_(roi), square_(roi), alpha_(alpha) {}

  void add(const Plane<uint8_t>& frame) override {
    const float alpha = first_ ? 1.0f : alpha_;  // from zero, weight 1 gives the frame itself
    first_ = false;
    nuqi::accumulate_weighted(frame, mean_, alpha);
    std::fill(square_.values.begin(), square_.values.end(), 0.0f);
    nuqi::accumulate_square(frame, square_);
    nuqi::accumulate_weighted(square_, mean_square_, alpha);
  }
  double mean(size_t i) const override { return double(mean_.values[i]); }
  double mean_square(size_t i) const override { return double(mean_square_.values[i]); }

 private:
  Plane<float> mean_, mean_square_, square_;
  float alpha_;
  bool first_ = true;
};

std::unique_ptr<Moments> moments_for(RoiSize roi, const Options& options) {
  if (options.exponential) return std::make_unique<ExponentialMoments>(roi, options.alpha);
  return std::make_unique<EqualMoments>(roi);
}

uint8_t byte_of(double value) { return uint8_t(std::lround(std::clamp(value, 0.0, 255.0))); }

void write_results(const Options& options, const Moments& moments, RoiSize roi) {
  Plane<uint8_t> picture(roi);
  for (size_t i = 0; i < picture.values.size(); ++i) picture.values[i] = byte_of(moments.mean(i));
  write_picture(options.out, picture_of(picture));
  if (options.variance.empty()) return;
  for (size_t i = 0; i < picture.values.size(); ++i) {
    const double mean = moments.mean(i);
    picture.values[i] = byte_of(moments.mean_square(i) - mean * mean);
  }
  write_picture(options.variance, picture_of(picture));
}

void make_background(const Options& options) {
  if (options.exponential && !(options.alpha > 0 && options.alpha <= 1)) {
    throw UserError("--alpha: must be above 0 and at most 1");
  }
  check_picture_output(options.out);
  if (!options.variance.empty()) check_picture_output(options.variance);
  check_outputs_differ({options.out, options.variance});
  Progress progress("frames", int(options.frames.size()));
  std::unique_ptr<Moments> moments;
  RoiSize roi{0, 0};
  for (const std::string& path : options.frames) {
    const Plane<uint8_t> frame = read_grey(path);
    if (!moments) {
      roi = frame.size;
      moments = moments_for(roi, options);
    }
    check_same_size(path, frame.size, options.frames[0], roi);
    moments->add(frame);
    progress.advance();
  }
  write_results(options, *moments, roi);
  report("%s: the mean of %zu frames of %s with %s\n", options.out.c_str(), options.frames.size(),
         size_text(roi).c_str(), nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_background(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("background", "Finds the still background of a sequence of frames");
  command->footer(kFooter);
  command->add_option("OUT", options->out, "The mean of the frames")->required();
  command->add_option("FRAME", options->frames, "Pictures of one size")->required();
  command->add_option("--variance", options->variance, "Also writes the variance to this picture")
      ->type_name("FILE");
  CLI::Option* alpha =
      command->add_option("--alpha", options->alpha, "Averages exponentially with this weight");
  command->callback([options, alpha] {
    options->exponential = alpha->count() > 0;
    make_background(*options);
  });
}

}  // namespace tools

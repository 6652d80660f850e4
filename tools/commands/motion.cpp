// nuqi motion: what moved in a sequence of frames, when and where to.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numeric>
#include <nuqi/hpp/arith.hpp>
#include <nuqi/hpp/derivatives.hpp>
#include <nuqi/hpp/motion.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "core/isa.h"
#include "failure.h"
#include "pictures/motion_picture.h"
#include "pictures/picture.h"
#include "progress.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes the last frame darkened and over it all that moved, brighter the later. The hue is\n"
    "the direction: red to the right, yellow-green down, cyan to the left, violet up; grey where\n"
    "no direction shows. A pixel moves where its grey level changes by more than --threshold from\n"
    "one frame to the next; after --duration frames its motion is forgotten.\n";

struct Options {
  std::string out;
  std::vector<std::string> frames;
  int threshold = 30;
  int duration = 0;  // 0: all frames
};

void add_frame(Motion& motion, Plane<uint8_t> frame, int threshold) {
  Plane<uint8_t> difference(frame.size);
  nuqi::abs_diff(motion.frame, frame, difference);
  const Plane<uint8_t> silhouette = silhouette_of(difference, threshold);
  motion.now += 1;
  nuqi::motion_history(silhouette, motion.history, motion.now, motion.duration);
  motion.frame = std::move(frame);
}

// `size` becomes that of the frames, which are worked on with two rows at least.
Motion history_of(const Options& options, RoiSize& size) {
  Motion motion;
  Progress progress("frames", int(options.frames.size()));
  for (const std::string& path : options.frames) {
    const Plane<uint8_t> grey = read_grey(path);
    if (motion.frame.values.empty()) {
      size = grey.size;
      motion.frame = with_two_rows(grey);
      motion.history = Plane<float>(motion.frame.size);
      const int most = int(options.frames.size()) - 1;
      motion.duration = float(options.duration > 0 ? std::min(options.duration, most) : most);
    } else {
      check_same_size(path, grey.size, options.frames[0], size);
      add_frame(motion, with_two_rows(grey), options.threshold);
    }
    progress.advance();
  }
  return motion;
}

// The direction of the whole, in degrees; below 0 where there is none.
float find_directions(Motion& motion) {
  const Plane<float>& history = motion.history;
  motion.dx = motion.dy = motion.angle = Plane<float>(history.size);
  nuqi::sobel3x3(history, nuqi::Derivative::dx, motion.dx);
  nuqi::sobel3x3(history, nuqi::Derivative::dy, motion.dy);
  keep_steps(history, motion.dx, motion.dy);
  const auto sum = [](const Plane<float>& plane) {
    return float(std::accumulate(plane.values.begin(), plane.values.end(), 0.0));
  };
  const float x = sum(motion.dx), y = sum(motion.dy);
  float whole = -1;
  if (x != 0 || y != 0) {
    nuqi::arctan(nuqi::View(&y, 1, 1), nuqi::View(&x, 1, 1), nuqi::View(&whole, 1, 1));
    whole = std::max(whole, 0.0f);
  }
  spread(motion.dx);
  spread(motion.dy);
  nuqi::arctan(motion.dy, motion.dx, motion.angle);
  return whole;
}

std::string direction_text(float degrees) {
  static constexpr const char* kNames[] = {"right", "lower right", "down", "lower left",
                                           "left",  "upper left",  "up",   "upper right"};
  if (degrees < 0) return "in no direction";
  char text[64];
  std::snprintf(text, sizeof text, "mostly %s (%.0f degrees)",
                kNames[std::lround(degrees / 45) % 8], double(degrees));
  return text;
}

void show_motion(const Options& options) {
  check_picture_output(options.out);
  if (options.frames.size() < 2) throw UserError(options.frames[0] + ": motion takes two frames");
  RoiSize size{0, 0};
  Motion motion = history_of(options, size);
  const float direction = find_directions(motion);
  Picture picture = motion_picture(motion);
  picture.size = size;
  picture.pixels.resize(3 * size_t(size.width) * size_t(size.height));
  write_picture(options.out, picture);
  const auto& history = motion.history.values;
  const auto still = std::count(history.begin(), history.end(), 0.0f);
  report("%s: %zu frames of %s, %.1f %% in motion, %s, with %s\n", options.out.c_str(),
         options.frames.size(), size_text(picture.size).c_str(),
         100 - 100.0 * double(still) / double(history.size()), direction_text(direction).c_str(),
         nuqi::name_of(nuqi::isa()));
}

}  // namespace

void add_motion(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("motion", "Shows what moved in a sequence of frames");
  command->footer(kFooter);
  command->add_option("OUT", options->out, "The motion in colours")->required();
  command->add_option("FRAME", options->frames, "Pictures of one size")->required();
  command->add_option("--threshold", options->threshold, "Changes beyond this are motion")
      ->check(CLI::Range(0, 254))
      ->capture_default_str();
  command->add_option("--duration", options->duration, "Frames until a motion is forgotten; all")
      ->check(CLI::Range(1, 1000000));
  command->callback([options] { show_motion(*options); });
}

}  // namespace tools
